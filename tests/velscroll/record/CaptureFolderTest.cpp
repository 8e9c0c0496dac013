#include <fstream>

#include <gmock/gmock.h>
#include <testkit/MatrixTesting.h>
#include <testkit/TemporaryFolder.h>
#include <velscroll/record/CaptureFolder.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

class CaptureFolderTest : public ::testing::Test {
 protected:
  void MakeFile(const char* name) const { std::ofstream(temporary.Path() / name) << "kept"; }

  const Testing::TemporaryFolder temporary;
  const std::string path = temporary.Path().string();
};

TEST_F(CaptureFolderTest, KeepsNothingBesideCapturesOfAnotherRun) {
  MakeFile("capture-0007.png");
  EXPECT_THROW(CaptureFolder{path}, BadInput);
}

TEST_F(CaptureFolderTest, MayHoldOtherFiles) {
  MakeFile("page.png");
  MakeFile("capture-0001.txt");
  EXPECT_NO_THROW(CaptureFolder{path});
}

TEST_F(CaptureFolderTest, EndsTheKeepingAndNothingElseWhateverGoesWrong) {
  const cv::Mat unusable(20, 10, CV_8UC2, cv::Scalar::all(0));
  CaptureFolder folder(path);
  folder.Keep(Testing::NoiseCapture({20, 10}, 1));
  EXPECT_EQ(folder.Trouble(), "");
  EXPECT_NO_THROW(folder.Keep(unusable));
  EXPECT_NE(folder.Trouble(), "");
  folder.Keep(Testing::NoiseCapture({20, 10}, 2));
  EXPECT_EQ(temporary.Contents().size(), 1U);
  EXPECT_EQ(folder.Count(), 3U);
}

}  // namespace
}  // namespace ScrollingCapture::Program
