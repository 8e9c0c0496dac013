#include <c/calls/Failures.h>
#include <c/pictures/CaptureFile.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::C {

Program::CaptureImage ReadCaptureFile(const char* path) try {
  return Program::ReadCapture(Required(path, "the path"));
} catch (const Program::Failed& noMemory) {
  throw CallFailure(VEL_OUT_OF_MEMORY, noMemory.what());
}

}  // namespace ScrollingCapture::C
