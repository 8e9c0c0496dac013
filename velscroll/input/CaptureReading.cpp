#include <velscroll/input/CaptureReading.h>
#include <velscroll/input/ImageFile.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {

void ReadCaptures(const std::vector<std::string>& files, const TakeCapture& take) {
  for (const std::string& file : files) {
    StopIfInterrupted();
    take(file, ReadCapture(file));
  }
}

}  // namespace ScrollingCapture::Program
