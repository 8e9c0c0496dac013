#include <velscroll/input/CaptureDecoding.h>
#include <velscroll/input/FileContent.h>
#include <velscroll/input/ImageFile.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {

CaptureImage ReadCapture(const std::string& path) {
  try {
    const std::vector<unsigned char> file = ReadFile(path);
    return {DecodeCapture(file), MetadataOf(file)};
  } catch (const UnusableImage& unusable) {
    throw BadInput(Quoted(path) + " " + unusable.what());
  } catch (const cv::Exception& error) {
    if (error.code != cv::Error::StsNoMem) {
      throw;
    }
    throw Failed("not enough memory to read " + Quoted(path));
  }
}

}  // namespace ScrollingCapture::Program
