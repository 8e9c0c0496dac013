#include <gmock/gmock.h>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>

#include <VelScrollingCapture/preview/PreviewImage.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

class Preview : public Testing::ProgramTest {
 protected:
  void SetUp() override {
    for (int i = 0; i < 3; ++i) {
      cv::Mat capture(300, 500, CV_8UC3);
      largePage(cv::Rect(0, 100 * i, 500, 300)).copyTo(capture);
      WriteImage("capture-" + std::to_string(i) + ".png", capture);
    }
  }

  /// What a host that hands over the same captures sees, in the channel order of files.
  cv::Mat HostsPreview(const cv::Size& box) const {
    PreviewImage preview(box, 1, 0);
    for (int i = 0; i < 3; ++i) {
      cv::Mat capture;
      cv::cvtColor(ReadImage("capture-" + std::to_string(i) + ".png"), capture, cv::COLOR_BGR2RGBA);
      preview.AddCapture(capture);
    }
    cv::Mat picture;
    cv::cvtColor(preview.GetPreview(box.width, box.height), picture, cv::COLOR_RGBA2BGR);
    return picture;
  }

  cv::Mat WrittenPreview(const std::string& name) const {
    cv::Mat picture = ReadImage(name);
    if (picture.channels() == 4) {
      cv::cvtColor(picture, picture, cv::COLOR_BGRA2BGR);
    }
    return picture;
  }

 private:
  cv::Mat MakeLargePage() const {
    cv::Mat made;
    cv::resize(page(cv::Rect(0, 0, 50, 60)), made, cv::Size(500, 600), 0, 0, cv::INTER_NEAREST);
    return made;
  }

  cv::Mat largePage = MakeLargePage();
};

TEST_F(Preview, IsWhatAHostSeesAtTheEnd) {
  ASSERT_EQ(Run({"capture-*.png", "-o", "page.png", "--preview", "small.png"}).status, 0);
  EXPECT_TRUE(Testing::SameBits(WrittenPreview("small.png"), HostsPreview({250, 250})));
}

TEST_F(Preview, FitsIntoTheGivenBox) {
  ASSERT_EQ(
      Run({"capture-*.png", "-o", "page.png", "--preview", "small.png", "--preview-size", "120x90"})
          .status,
      0);
  const cv::Mat written = WrittenPreview("small.png");
  EXPECT_LE(written.cols, 120);
  EXPECT_LE(written.rows, 90);
  EXPECT_TRUE(Testing::SameBits(written, HostsPreview({120, 90})));
}

TEST_F(Preview, IsRefusedForABoxThatLeavesLessThanAPixel) {
  const auto before = Names();
  const Testing::ProgramResult result =
      Run({"capture-0.png", "-o", "page.png", "--preview", "small.png", "--preview-size", "1x10"});
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, ::testing::HasSubstr("--preview-size leaves less than"));
  EXPECT_EQ(Names(), before);
}

}  // namespace
}  // namespace ScrollingCapture
