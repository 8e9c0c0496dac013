#include <gmock/gmock.h>
#include <sys/resource.h>
#include <testkit/TemporaryFolder.h>
#include <velscroll/output/PictureWriting.h>

namespace ScrollingCapture {
namespace {

long PeakKiB() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

class TallPictureMemory : public ::testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Formats, TallPictureMemory, ::testing::Values(".png", ".tif", ".bmp"),
                         [](const auto& format) { return std::string(format.param + 1); });

TEST_P(TallPictureMemory, IsThatOfSomeStripsWhateverTheNumberOfRows) {
  constexpr long MostKiB = 48L << 10U;
  const cv::Size size(64, 1200000);  // 293 MiB of pixels
  const Testing::TemporaryFolder folder;
  Program::PictureOutput output;
  output.path = folder.Prefix() + "tall" + GetParam();
  output.settings.threads = 2;
  const Program::Picture picture = {size, true, [](const cv::Rect& area) {
                                      return cv::Mat(area.size(), CV_8UC4,
                                                     cv::Scalar(area.y % 256, 9, 99, 255));
                                    }};
  const long before = PeakKiB();
  StagePicture(picture, output, [](int) {});
  EXPECT_LT(PeakKiB() - before, MostKiB);
}

}  // namespace
}  // namespace ScrollingCapture
