// Reads any bytes as an image file: a premultiplied capture, or a clear complaint.

#include <cstdint>
#include <string>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Messages.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>
#include <velscroll/input/ImageFile.h>
#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Fuzzing {
namespace {

bool IsPremultiplied(const cv::Mat& capture) {
  for (int row = 0; row < capture.rows; ++row) {
    for (int column = 0; column < capture.cols; ++column) {
      const auto& pixel = capture.at<cv::Vec4b>(row, column);
      if (pixel[0] > pixel[3] || pixel[1] > pixel[3] || pixel[2] > pixel[3]) {
        return false;
      }
    }
  }
  return true;
}

void ReadAny(const std::string& bytes) {
  // New files each time: file systems write what replaces a file to the disk at once.
  const Testing::TemporaryFolder folder;
  const std::string path = folder.Prefix() + "any.png";
  Testing::WriteFile(path, bytes);
  try {
    const cv::Mat capture = Program::ReadCapture(path).pixels;
    Expect(!capture.empty() && capture.type() == CV_8UC4, "what is read is a capture");
    Expect(IsPremultiplied(capture), "no colour is above its alpha");
  } catch (const Program::Failure& failure) {
    ExpectOneLine(failure);
  }
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  ScrollingCapture::Program::OwnStandardError();
  ScrollingCapture::Fuzzing::ReadAny({reinterpret_cast<const char*>(bytes), count});
  return 0;
}
