#include <filesystem>

#include <gtest/gtest.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>

#include <VelScrollingCapture/storage/internal/SpillFile.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::ReadFile;
using Testing::WriteFile;

class NewSpillFile : public testing::Test {
 protected:
  bool Write() const { return WriteSpillFile(capture, path, Existing::Refused); }

  const Testing::TemporaryFolder folder;
  const std::string path = folder.Prefix() + "file";
  const cv::Mat capture = NoiseCapture({6, 4}, 1);
};

TEST_F(NewSpillFile, IsWrittenWhereThereIsNothing) {
  ASSERT_TRUE(Write());
  cv::Mat read;
  ReadSpillFile(read, path);
  EXPECT_TRUE(Testing::SameBits(read, capture));
}

TEST_F(NewSpillFile, LeavesAFileAloneThatHasTheName) {
  WriteFile(path, "taken");
  EXPECT_FALSE(Write());
  EXPECT_EQ(ReadFile(path), "taken");
}

TEST_F(NewSpillFile, FollowsNoLinkWhereverItLeads) {
  const std::string target = folder.Prefix() + "target";
  std::filesystem::create_symlink(target, path);
  EXPECT_FALSE(Write());
  EXPECT_FALSE(std::filesystem::exists(target));
  WriteFile(target, "foreign");
  EXPECT_FALSE(Write());
  EXPECT_EQ(ReadFile(target), "foreign");
  EXPECT_TRUE(std::filesystem::is_symlink(path));
}

TEST(SpillFile, CanGiveBackTwoDimensionsOfLessThan2To31Elements) {
  unsigned char pixel = 0;
  const int cube[] = {1, 1, 1};
  EXPECT_TRUE(CanBeReadBack(cv::Mat()));
  EXPECT_TRUE(CanBeReadBack(cv::Mat(1, std::numeric_limits<int>::max(), CV_8UC1, &pixel)));
  EXPECT_FALSE(CanBeReadBack(cv::Mat(65536, 32768, CV_8UC1, &pixel)));
  EXPECT_FALSE(CanBeReadBack(cv::Mat(3, cube, CV_8UC1, &pixel)));
}

}  // namespace
}  // namespace ScrollingCapture
