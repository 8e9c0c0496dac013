#include <filesystem>
#include <future>
#include <ostream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/faults/FailingAllocator.h>

namespace ScrollingCapture {
namespace {

using Testing::AddAll;
using Testing::FailingAllocator;
using Testing::LoadedCount;
using Testing::NoiseCaptures;
using Testing::ReadFile;
using Testing::SameBits;
using Testing::TemporaryFolder;
using Testing::WriteFile;

void ExpectCaptures(MemoryEfficientImageProvider& provider, const std::vector<cv::Mat>& expected) {
  ASSERT_EQ(provider.Count(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_TRUE(SameBits(*provider.GetImageAt(i), expected[i])) << i;
  }
}

struct BadFolder {
  const char* name;
  const char* path;  ///< absolute, or relative to a folder that holds the file "plain"
};

void PrintTo(const BadFolder& folder, std::ostream* stream) { *stream << folder.name; }

class MemoryEfficientImageProviderFolderTest : public testing::TestWithParam<BadFolder> {
 protected:
  TemporaryFolder folder;
  std::vector<cv::Mat> captures = NoiseCaptures(5);
};

TEST_P(MemoryEfficientImageProviderFolderTest, LeavesEveryCaptureInMemory) {
  WriteFile(folder.Prefix() + "plain", "plain");
  MemoryEfficientImageProvider provider((folder.Path() / GetParam().path).string(), 0);
  AddAll(provider, captures);
  EXPECT_EQ(LoadedCount(provider), captures.size());
  EXPECT_FALSE(provider.UnloadMat());
  EXPECT_FALSE(provider.IsMatSaved(0));
  ExpectCaptures(provider, captures);

  provider.SetImageAt(1, captures[4]);
  EXPECT_EQ(provider.GetImageAt(1)->data, captures[4].data);
  EXPECT_EQ(provider.GetLastImage()->data, captures[4].data);
  EXPECT_THAT(folder.Contents(), testing::ElementsAre(folder.Prefix() + "plain"));
  provider.Clear();
  EXPECT_TRUE(provider.IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Folders, MemoryEfficientImageProviderFolderTest,
                         testing::Values(BadFolder{"Missing", "missing/"},
                                         BadFolder{"BelowAFile", "plain/"},
                                         BadFolder{"OfTheSystem", "/proc/"},
                                         BadFolder{"Nameless", "/dev/null/"}),
                         [](const auto& param) { return param.param.name; });

class MemoryEfficientImageProviderFaultsTest : public testing::Test {
 protected:
  /// Adds the captures and spills the first one; the path of its file.
  std::string SpillFirst() {
    AddAll(provider, {captures[0], captures[1], captures[2]});
    return folder.Contents().at(0);
  }

  void ExpectFirstIsLost() {
    try {
      provider.GetImageAt(0);
      ADD_FAILURE() << "was read";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "Could not open or read file.");
    }
  }

  TemporaryFolder folder;
  std::vector<cv::Mat> captures = NoiseCaptures(4, {64, 64});
  MemoryEfficientImageProvider provider{folder.Prefix(), 0};
};

TEST_F(MemoryEfficientImageProviderFaultsTest, KeepsCapturesWhenTheDiskIsFullInTheMiddleOfASpill) {
  {
    const Testing::FileSizeLimit limit(4096);
    AddAll(provider, captures);
    EXPECT_EQ(LoadedCount(provider), captures.size());
    EXPECT_TRUE(folder.Contents().empty());
    EXPECT_FALSE(provider.UnloadMat());
    EXPECT_TRUE(folder.Contents().empty());
  }
  ExpectCaptures(provider, captures);
}

TEST_F(MemoryEfficientImageProviderFaultsTest, TellsThatItExceedsItsLimitWhileTheDiskIsFull) {
  {
    const Testing::FileSizeLimit limit(4096);
    AddAll(provider, {captures[0], captures[1]});
    EXPECT_FALSE(provider.ExceedsMemoryLimit());
    provider.Add(captures[2]);
    EXPECT_TRUE(provider.ExceedsMemoryLimit());
  }
  EXPECT_TRUE(provider.UnloadMat());
  EXPECT_FALSE(provider.ExceedsMemoryLimit());
}

TEST_F(MemoryEfficientImageProviderFaultsTest, KeepsTheOrderOfItsQueueWhenASpillFails) {
  {
    const Testing::FileSizeLimit limit(4096);
    AddAll(provider, captures);
  }
  EXPECT_TRUE(provider.UnloadMat());
  EXPECT_FALSE(provider.IsMatLoaded(0));
  EXPECT_EQ(folder.Contents().size(), 1U);
  ExpectCaptures(provider, captures);
}

TEST_F(MemoryEfficientImageProviderFaultsTest, ReadsSpilledCapturesBackWhileTheDiskIsFull) {
  AddAll(provider, captures);
  const Testing::FileSizeLimit limit(0);
  ExpectCaptures(provider, captures);
}

TEST_F(MemoryEfficientImageProviderFaultsTest, SpillsOnceItsFolderIsThere) {
  MemoryEfficientImageProvider early(folder.Prefix() + "later/", 0);
  AddAll(early, captures);
  ASSERT_EQ(LoadedCount(early), captures.size());
  std::filesystem::create_directory(folder.Path() / "later");
  EXPECT_TRUE(early.UnloadMat());
  EXPECT_FALSE(early.IsMatLoaded(0));
  ExpectCaptures(early, captures);
}

TEST_F(MemoryEfficientImageProviderFaultsTest, SaysThatADeletedFileCannotBeRead) {
  std::filesystem::remove(SpillFirst());
  ExpectFirstIsLost();
}

TEST_F(MemoryEfficientImageProviderFaultsTest, SaysThatAFileThatWasCutShortCannotBeRead) {
  const std::string file = SpillFirst();
  for (const std::uintmax_t length : {20U + 64 * 64 * 4 - 1, 20U, 19U, 0U}) {
    SCOPED_TRACE(length);
    std::filesystem::resize_file(file, length);
    ExpectFirstIsLost();
  }
  provider.Clear();
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(MemoryEfficientImageProviderFaultsTest, StaysAsItWasWhenACaptureCannotBeRead) {
  const std::string file = SpillFirst();
  const std::string bytes = ReadFile(file);
  std::filesystem::remove(file);
  ExpectFirstIsLost();
  EXPECT_FALSE(provider.IsMatLoaded(0));
  EXPECT_TRUE(provider.IsMatSaved(0));
  EXPECT_TRUE(provider.IsMatLoaded(1));
  EXPECT_TRUE(provider.IsMatLoaded(2));
  EXPECT_EQ(provider.GetMemoryUsage(), 2U * 64 * 64 * 4);

  WriteFile(file, bytes);
  ExpectCaptures(provider, {captures[0], captures[1], captures[2]});
}

TEST_F(MemoryEfficientImageProviderFaultsTest, KeepsCapturesOnDiskWhileThereIsNoMemoryForThem) {
  MemoryEfficientImageProvider provider(folder.Prefix(), 0);
  AddAll(provider, captures);
  ASSERT_FALSE(provider.IsMatLoaded(0));
  {
    const FailingAllocator memory;
    try {
      provider.GetImageAt(0);
      ADD_FAILURE() << "was read";
    } catch (const cv::Exception& error) {
      EXPECT_EQ(error.code, cv::Error::StsNoMem) << "and not an unreadable file";
    }
  }
  EXPECT_TRUE(provider.IsMatSaved(0));
  EXPECT_FALSE(provider.IsMatLoaded(0));
  ExpectCaptures(provider, captures);
}

TEST_F(MemoryEfficientImageProviderFaultsTest, KeepsCapturesLoadedThatCannotBeCopiedWithoutGaps) {
  const cv::Mat wide = captures[0];
  cv::Mat withGaps = wide.colRange(0, wide.cols / 2);
  MemoryEfficientImageProvider provider(folder.Prefix(), 0);
  provider.Add(withGaps);
  {
    const FailingAllocator memory;
    EXPECT_FALSE(provider.UnloadMat());
  }
  EXPECT_TRUE(provider.IsMatLoaded(0));
  EXPECT_FALSE(provider.IsMatSaved(0));
  EXPECT_TRUE(provider.UnloadMat());
  ExpectCaptures(provider, {withGaps});
}

TEST_F(MemoryEfficientImageProviderFaultsTest, CanBeUsedByOthersAfterACaptureCouldNotBeRead) {
  std::filesystem::remove(SpillFirst());
  ExpectFirstIsLost();
  const auto elsewhere = std::async(std::launch::async, [this] { return provider.GetImageAt(1); });
  ASSERT_EQ(elsewhere.wait_for(std::chrono::seconds(60)), std::future_status::ready);
}

TEST_F(MemoryEfficientImageProviderFaultsTest, TakesAReplacementForACaptureThatIsLost) {
  std::filesystem::remove(SpillFirst());
  provider.SetImageAt(0, captures[3]);
  ExpectCaptures(provider, {captures[3], captures[1], captures[2]});
}

TEST_F(MemoryEfficientImageProviderFaultsTest, ClearsCapturesWhoseFilesAreGone) {
  std::filesystem::remove(SpillFirst());
  provider.Clear();
  EXPECT_TRUE(provider.IsEmpty());
}

TEST_F(MemoryEfficientImageProviderFaultsTest, LeavesFilesAloneThatHaveTheNameItDraws) {
  const std::vector<std::string> names = Testing::NextNames(3, 24);
  const std::string first = folder.Prefix() + names[0];
  const std::string second = folder.Prefix() + names[1];
  WriteFile(first, "first");
  WriteFile(second, "second");
  AddAll(provider, {captures[0], captures[1], captures[2]});
  EXPECT_THAT(folder.Contents(),
              testing::UnorderedElementsAre(first, second, folder.Prefix() + names[2]));
  ExpectCaptures(provider, {captures[0], captures[1], captures[2]});
  provider.Clear();
  EXPECT_EQ(ReadFile(first), "first");
  EXPECT_EQ(ReadFile(second), "second");
}

TEST_F(MemoryEfficientImageProviderFaultsTest, LeavesLinksAloneThatHaveTheNameItDraws) {
  const std::vector<std::string> names = Testing::NextNames(2, 24);
  const std::string link = folder.Prefix() + names[0];
  const std::string target = folder.Prefix() + "target";
  std::filesystem::create_symlink(target, link);
  AddAll(provider, {captures[0], captures[1], captures[2]});
  EXPECT_FALSE(std::filesystem::exists(target));
  EXPECT_THAT(folder.Contents(), testing::UnorderedElementsAre(link, folder.Prefix() + names[1]));
  ExpectCaptures(provider, {captures[0], captures[1], captures[2]});
  provider.Clear();
  EXPECT_THAT(folder.Contents(), testing::ElementsAre(link));
}

TEST_F(MemoryEfficientImageProviderFaultsTest, MakesFilesThatOnlyTheirOwnerMayReadAndWrite) {
  const mode_t previous = umask(0);
  const std::string file = SpillFirst();
  umask(previous);
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(file).permissions(), perms::owner_read | perms::owner_write);
}

TEST_F(MemoryEfficientImageProviderFaultsTest, ShareAFolderWithoutTouchingEachOthersFiles) {
  MemoryEfficientImageProvider other(folder.Prefix(), 0);
  const std::minstd_rand engine = Utilities::RANDOM_ENGINE;
  AddAll(provider, {captures[0], captures[1], captures[2]});
  Utilities::RANDOM_ENGINE = engine;
  AddAll(other, {captures[3], captures[1], captures[2]});
  ExpectCaptures(provider, {captures[0], captures[1], captures[2]});
  other.Clear();
  ExpectCaptures(provider, {captures[0], captures[1], captures[2]});
}

}  // namespace
}  // namespace ScrollingCapture
