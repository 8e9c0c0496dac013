#include <cerrno>
#include <cstdio>
#include <dlfcn.h>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>

#include <VelScrollingCapture/storage/internal/SpillFile.h>

namespace {

bool streamsFail = false;

}  // namespace

/// In the place of the C library's, so that it can fail as it does without memory for a buffer.
extern "C" std::FILE* fdopen(int fd, const char* modes) noexcept {
  if (streamsFail) {
    errno = ENOMEM;
    return nullptr;
  }
  using Open = std::FILE* (*)(int, const char*);
  static const auto open = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "fdopen"));
  return open(fd, modes);
}

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

/// Whether files are replaced or not: none is left behind.
class SpillFileWithoutAStream : public NewSpillFile, public testing::WithParamInterface<Existing> {
 protected:
  SpillFileWithoutAStream() { streamsFail = true; }
  ~SpillFileWithoutAStream() override { streamsFail = false; }
};

TEST_P(SpillFileWithoutAStream, LeavesNothingBehind) {
  EXPECT_FALSE(WriteSpillFile(capture, path, GetParam()));
  EXPECT_THAT(folder.Contents(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Existing, SpillFileWithoutAStream,
                         testing::Values(Existing::Replaced, Existing::Refused),
                         [](const auto& existing) {
                           return existing.param == Existing::Replaced ? "Replaced" : "Refused";
                         });

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
