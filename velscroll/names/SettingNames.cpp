#include <algorithm>
#include <array>
#include <utility>

#include <velscroll/names/SettingNames.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

const std::array<std::pair<const char*, ScrollOrientation>, 3> Orientations = {{
    {"vertical", ScrollOrientation::Vertical},
    {"horizontal", ScrollOrientation::Horizontal},
    {"both", ScrollOrientation::Both},
}};

const std::array<std::pair<const char*, Engine>, 2> Engines = {{
    {"exact", Engine::Exact},
    {"phase-correlation", Engine::PhaseCorrelation},
}};

const std::array<std::pair<const char*, FixedParts>, 2> FixedPartsNames = {{
    {"once", FixedParts::Once},
    {"keep", FixedParts::Keep},
}};

const std::array<std::pair<const char*, Verdict>, 4> Verdicts = {{
    {"proven", Verdict::Proven},
    {"likely", Verdict::Likely},
    {"doubtful", Verdict::Doubtful},
    {"none", Verdict::None},
}};

/// Every value is in its table.
template <typename Names, typename Value>
std::string NameIn(const Names& names, Value value) {
  return std::find_if(names.begin(), names.end(),
                      [value](const auto& entry) { return entry.second == value; })
      ->first;
}

/// Such as "vertical, horizontal or both".
template <typename Names>
std::string ListOf(const Names& names) {
  std::string list;
  for (const auto& entry : names) {
    const bool isLast = &entry == &names.back();
    list += (list.empty() ? "" : isLast ? " or " : ", ") + std::string(entry.first);
  }
  return list;
}

template <typename Names>
auto Parse(const Names& names, const std::string& option, const std::string& text) {
  const auto found = std::find_if(names.begin(), names.end(),
                                  [&text](const auto& entry) { return text == entry.first; });
  if (found == names.end()) {
    throw BadInput(option + " does not know " + Quoted(text) + "; use " + ListOf(names));
  }
  return found->second;
}

}  // namespace

std::string NameOf(ScrollOrientation orientation) { return NameIn(Orientations, orientation); }

std::string NameOf(Engine engine) { return NameIn(Engines, engine); }

std::string NameOf(FixedParts fixedParts) { return NameIn(FixedPartsNames, fixedParts); }

std::string NameOf(Verdict verdict) { return NameIn(Verdicts, verdict); }

ScrollOrientation ParseOrientation(const std::string& name) {
  return Parse(Orientations, "--orientation", name);
}

Engine ParseEngine(const std::string& name) { return Parse(Engines, "--engine", name); }

FixedParts ParseFixedParts(const std::string& name) {
  return Parse(FixedPartsNames, "--fixed", name);
}

}  // namespace ScrollingCapture::Program
