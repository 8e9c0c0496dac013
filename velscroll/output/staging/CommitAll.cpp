#include <algorithm>
#include <iterator>
#include <set>

#include <velscroll/files/SameFile.h>
#include <velscroll/output/staging/CommitAll.h>
#include <velscroll/output/staging/StagedStandardOutput.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

bool IsStandardOutput(const std::string& name) { return name == StagedStandardOutput::Argument; }

/// In the order in which they are committed.
std::vector<StagedOutput*> Ordered(const std::vector<std::unique_ptr<StagedOutput>>& outputs) {
  std::vector<StagedOutput*> ordered;
  std::transform(outputs.begin(), outputs.end(), std::back_inserter(ordered),
                 [](const auto& output) { return output.get(); });
  std::stable_partition(ordered.begin(), ordered.end(), [](const StagedOutput* output) {
    return IsStandardOutput(output->Name());
  });
  return ordered;
}

std::string NamesOf(const std::vector<StagedOutput*>& outputs, size_t count) {
  std::string names;
  for (size_t i = 0; i < count; ++i) {
    names += (i == 0 ? "" : ", ") + Quoted(outputs[i]->Name());
  }
  return names;
}

/// Takes no memory unless it fails: once the first one is shown, nothing else is to go wrong.
void Commit(const std::vector<StagedOutput*>& outputs, size_t index) {
  try {
    outputs[index]->Commit();
  } catch (const Failed& failure) {
    if (index == 0) {
      throw;
    }
    throw Failed(failure.what() + ("; written before that: " + NamesOf(outputs, index)));
  }
}

}  // namespace

void RequireDifferentTargets(const std::vector<std::string>& names) {
  std::set<std::string> targets;
  for (const std::string& name : names) {
    if (!targets.insert(IsStandardOutput(name) ? name : ResolvedPath(name).string()).second) {
      throw BadInput("two results would both be written to " + Quoted(name) +
                     "; choose different names");
    }
  }
}

void CommitAll(const std::vector<std::unique_ptr<StagedOutput>>& outputs) {
  std::vector<std::string> names;
  std::transform(outputs.begin(), outputs.end(), std::back_inserter(names),
                 [](const auto& output) { return output->Name(); });
  RequireDifferentTargets(names);
  const std::vector<StagedOutput*> ordered = Ordered(outputs);
  for (size_t i = 0; i < ordered.size(); ++i) {
    Commit(ordered, i);
  }
}

}  // namespace ScrollingCapture::Program
