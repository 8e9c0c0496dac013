#include <velscroll/output/staging/StagedFile.h>
#include <velscroll/output/staging/StagedOutput.h>
#include <velscroll/output/staging/StagedStandardOutput.h>

namespace ScrollingCapture::Program {

std::unique_ptr<StagedOutput> MakeStagedOutput(const std::string& name,
                                               const std::string& content) {
  if (name == StagedStandardOutput::Argument) {
    return std::make_unique<StagedStandardOutput>(content);
  }
  return std::make_unique<StagedFile>(name);
}

}  // namespace ScrollingCapture::Program
