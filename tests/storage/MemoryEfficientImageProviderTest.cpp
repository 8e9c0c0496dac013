#include <filesystem>
#include <limits>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>

namespace ScrollingCapture {
namespace {

using Testing::AddAll;
using Testing::LoadedCount;
using Testing::NoiseCapture;
using Testing::NoiseCaptures;
using Testing::ReadFile;
using Testing::SameBits;
using Testing::TemporaryFolder;

constexpr unsigned long CaptureBytes = 16UL * 8 * 4;

static_assert(MemoryEfficientImageProvider::MINIMUM_LOADED_IMAGES == 2);
static_assert(
    std::is_same_v<decltype(MemoryEfficientImageProvider::MINIMUM_LOADED_IMAGES), const size_t>);
static_assert(!std::is_copy_constructible_v<MemoryEfficientImageProvider>);
static_assert(std::has_virtual_destructor_v<MemoryEfficientImageProvider>);

class MemoryEfficientImageProviderTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  std::vector<cv::Mat> captures = NoiseCaptures(6);
  MemoryEfficientImageProvider provider{folder.Prefix(), 0};
  MemoryEfficientImageProvider roomy{folder.Prefix(), 3 * CaptureBytes};
};

TEST_F(MemoryEfficientImageProviderTest, IsEmptyAtFirst) {
  EXPECT_EQ(provider.Count(), 0U);
  EXPECT_TRUE(provider.IsEmpty());
  EXPECT_EQ(provider.GetMemoryUsage(), 0U);
  EXPECT_FALSE(provider.UnloadMat());
}

TEST_F(MemoryEfficientImageProviderTest, TellsItsFolderPathAsGiven) {
  EXPECT_EQ(provider.GetFolderPath(), folder.Prefix());
  EXPECT_EQ(MemoryEfficientImageProvider("somewhere/page-").GetFolderPath(), "somewhere/page-");
}

TEST_F(MemoryEfficientImageProviderTest, CountsPixelsAsRowsTimesColumnsTimesElementSize) {
  EXPECT_EQ(provider.GetMatrixMemory(cv::Mat(3, 2, CV_8UC4)), 24U);
  EXPECT_EQ(provider.GetMatrixMemory(cv::Mat(5, 7, CV_32FC2)), 280U);
  EXPECT_EQ(provider.GetMatrixMemory(cv::Mat()), 0U);
  EXPECT_EQ(provider.GetMatrixMemory(cv::Mat(100, 100, CV_8UC1)(cv::Rect(10, 10, 4, 3))), 12U);
}

TEST_F(MemoryEfficientImageProviderTest, CountsLargeMatricesIn64Bits) {
  unsigned char pixels[4] = {};
  const cv::Mat repeated(1 << 20, 1, CV_8UC4, static_cast<void*>(pixels), 4);
  const cv::Mat wide(1, std::numeric_limits<int>::max(), CV_8UC4, static_cast<void*>(pixels));
  EXPECT_EQ(provider.GetMatrixMemory(repeated), size_t{4} << 20);
  EXPECT_EQ(provider.GetMatrixMemory(wide), size_t{4} * std::numeric_limits<int>::max());
}

TEST_F(MemoryEfficientImageProviderTest, UsesTheMemoryOfLoadedCapturesOnly) {
  AddAll(provider, captures);
  EXPECT_EQ(provider.GetMemoryUsage(), 2 * CaptureBytes);
  provider.UnloadMat();
  EXPECT_EQ(provider.GetMemoryUsage(), CaptureBytes);
}

TEST_F(MemoryEfficientImageProviderTest, HoldsTwoHundredMebibytesByDefault) {
  MemoryEfficientImageProvider byDefault(folder.Prefix());
  cv::Mat small(1, 1, CV_8UC1, cv::Scalar(0));
  cv::Mat large(1, 209715200 - 2, CV_8UC1);
  byDefault.Add(small);
  byDefault.Add(small);
  byDefault.Add(large);
  EXPECT_EQ(byDefault.GetMemoryUsage(), 209715200U);
  EXPECT_EQ(LoadedCount(byDefault), 3U);
  byDefault.Add(small);
  EXPECT_FALSE(byDefault.IsMatLoaded(0));
  EXPECT_EQ(LoadedCount(byDefault), 3U);
}

TEST_F(MemoryEfficientImageProviderTest, StaysWithinItsLimitHoweverManyCapturesComeAndGo) {
  for (MemoryEfficientImageProvider* const any : {&provider, &roomy}) {
    for (cv::Mat& capture : captures) {
      any->Add(capture);
      EXPECT_FALSE(any->ExceedsMemoryLimit());
    }
    for (size_t i = 0; i < captures.size(); ++i) {
      any->GetImageAt(i);
      EXPECT_FALSE(any->ExceedsMemoryLimit());
    }
  }
}

TEST_F(MemoryEfficientImageProviderTest, SharesThePixelsOfACaptureThatIsAdded) {
  provider.Add(captures[0]);
  EXPECT_EQ(provider.GetImageAt(0)->data, captures[0].data);
  captures[0] = captures[1];
  EXPECT_NE(provider.GetImageAt(0)->data, captures[0].data);
  EXPECT_FALSE(provider.IsMatSaved(0));
}

TEST_F(MemoryEfficientImageProviderTest, KeepsTwoCapturesLoadedUnderALimitOfZero) {
  for (size_t i = 0; i < captures.size(); ++i) {
    provider.Add(captures[i]);
    EXPECT_EQ(LoadedCount(provider), std::min<size_t>(i + 1, 2));
    EXPECT_TRUE(provider.IsMatLoaded(i));
    if (i >= 2) {
      EXPECT_FALSE(provider.IsMatLoaded(i - 2));
      EXPECT_TRUE(provider.IsMatSaved(i - 2));
    }
  }
  EXPECT_EQ(provider.Count(), captures.size());
  EXPECT_EQ(folder.Contents().size(), captures.size() - 2);
}

TEST_F(MemoryEfficientImageProviderTest, FillsItsLimitToTheLastByte) {
  AddAll(roomy, {captures[0], captures[1], captures[2]});
  EXPECT_EQ(LoadedCount(roomy), 3U);

  MemoryEfficientImageProvider oneByteLess(folder.Prefix(), 3 * CaptureBytes - 1);
  AddAll(oneByteLess, {captures[0], captures[1], captures[2]});
  EXPECT_EQ(LoadedCount(oneByteLess), 2U);
}

TEST_F(MemoryEfficientImageProviderTest, SpillsOneCaptureForOneThatComesIn) {
  AddAll(roomy, {captures[0], captures[1], captures[2]});
  cv::Mat large = NoiseCapture({64, 64}, 9);
  roomy.Add(large);
  EXPECT_EQ(LoadedCount(roomy), 3U);
  EXPECT_GT(roomy.GetMemoryUsage(), 3 * CaptureBytes);
}

TEST_F(MemoryEfficientImageProviderTest, GivesBackEveryCapture) {
  AddAll(provider, captures);
  for (size_t i = 0; i < captures.size(); ++i) {
    EXPECT_TRUE(SameBits(*provider.GetImageAt(i), captures[i])) << i;
  }
}

TEST_F(MemoryEfficientImageProviderTest, WritesTheFileFormatOfSpillFiles) {
  AddAll(provider, {captures[0], captures[1], captures[2]});
  ASSERT_EQ(folder.Contents().size(), 1U);
  const std::string bytes = ReadFile(folder.Contents()[0]);
  EXPECT_EQ(bytes.substr(0, 20),
            std::string("\x10\0\0\0\x08\0\0\0\x04\0\0\0\0\0\0\0\x18\0\0\0", 20));
  EXPECT_EQ(bytes.substr(20),
            std::string(reinterpret_cast<const char*>(captures[0].data), CaptureBytes));
}

TEST_F(MemoryEfficientImageProviderTest, KeepsTheFileOfACaptureThatIsReadBack) {
  AddAll(provider, {captures[0], captures[1], captures[2]});
  provider.GetImageAt(0);
  EXPECT_TRUE(provider.IsMatLoaded(0));
  EXPECT_TRUE(provider.IsMatSaved(0));
  EXPECT_FALSE(provider.IsMatLoaded(1));
}

TEST_F(MemoryEfficientImageProviderTest, SpillsTheCaptureThatWasReadLongestAgo) {
  AddAll(roomy, {captures[0], captures[1], captures[2]});
  roomy.GetImageAt(0);
  roomy.GetImageAt(2);
  roomy.Add(captures[3]);
  EXPECT_FALSE(roomy.IsMatLoaded(1));
  roomy.Add(captures[4]);
  EXPECT_FALSE(roomy.IsMatLoaded(0));
  roomy.Add(captures[5]);
  EXPECT_FALSE(roomy.IsMatLoaded(2));
}

TEST_F(MemoryEfficientImageProviderTest, MovesACaptureThatIsReadBackToTheEndOfTheQueue) {
  AddAll(provider, {captures[0], captures[1], captures[2]});
  provider.GetImageAt(0);
  provider.UnloadMat();
  EXPECT_FALSE(provider.IsMatLoaded(2));
  EXPECT_TRUE(provider.IsMatLoaded(0));
}

TEST_F(MemoryEfficientImageProviderTest, QueuesACaptureOnceHoweverOftenItIsRead) {
  AddAll(roomy, {captures[0], captures[1]});
  roomy.GetImageAt(0);
  roomy.GetImageAt(0);
  EXPECT_TRUE(roomy.UnloadMat());
  EXPECT_TRUE(roomy.UnloadMat());
  EXPECT_FALSE(roomy.UnloadMat());
}

TEST_F(MemoryEfficientImageProviderTest, UnloadsEveryCaptureWhenAskedTo) {
  AddAll(provider, captures);
  EXPECT_TRUE(provider.UnloadMat());
  EXPECT_TRUE(provider.UnloadMat());
  EXPECT_EQ(LoadedCount(provider), 0U);
  EXPECT_FALSE(provider.UnloadMat());
  EXPECT_TRUE(SameBits(*provider.GetLastImage(), captures.back()));
}

TEST_F(MemoryEfficientImageProviderTest, WritesACaptureOnlyOnce) {
  AddAll(provider, {captures[0], captures[1]});
  provider.UnloadMat();
  const std::vector<std::string> files = folder.Contents();
  ASSERT_EQ(files.size(), 1U);
  const auto firstWrite = std::filesystem::last_write_time(files[0]);
  std::filesystem::last_write_time(files[0], firstWrite - std::chrono::hours(1));

  provider.GetImageAt(0)->setTo(cv::Scalar::all(7));
  provider.UnloadMat();
  provider.UnloadMat();
  ASSERT_FALSE(provider.IsMatLoaded(0));
  EXPECT_EQ(std::filesystem::last_write_time(files[0]), firstWrite - std::chrono::hours(1));
  EXPECT_TRUE(SameBits(*provider.GetImageAt(0), captures[0]));
}

TEST_F(MemoryEfficientImageProviderTest, LeavesSpilledCapturesToThoseWhoHoldThem) {
  AddAll(provider, {captures[0], captures[1]});
  const std::shared_ptr<cv::Mat> held = provider.GetImageAt(0);
  AddAll(provider, {captures[2], captures[3]});
  EXPECT_FALSE(provider.IsMatLoaded(0));
  EXPECT_TRUE(SameBits(*held, captures[0]));
  EXPECT_NE(provider.GetImageAt(0), held);
}

TEST_F(MemoryEfficientImageProviderTest, DropsItsOwnReferenceToASpilledCapture) {
  AddAll(provider, {captures[0], captures[1]});
  const std::weak_ptr<cv::Mat> first = provider.GetImageAt(0);
  provider.GetImageAt(1);
  EXPECT_FALSE(first.expired());
  provider.UnloadMat();
  EXPECT_TRUE(first.expired());
}

TEST_F(MemoryEfficientImageProviderTest, ReplacesALoadedCapture) {
  AddAll(roomy, {captures[0], captures[1]});
  roomy.SetImageAt(0, captures[2]);
  EXPECT_EQ(roomy.Count(), 2U);
  EXPECT_EQ(roomy.GetImageAt(0)->data, captures[2].data);
  EXPECT_EQ(roomy.GetImageAt(1)->data, captures[1].data);
}

TEST_F(MemoryEfficientImageProviderTest, DeletesTheFileOfASpilledCaptureThatIsReplaced) {
  AddAll(provider, {captures[0], captures[1]});
  provider.UnloadMat();
  ASSERT_EQ(folder.Contents().size(), 1U);
  provider.SetImageAt(0, captures[2]);
  EXPECT_TRUE(folder.Contents().empty());
  EXPECT_FALSE(provider.IsMatSaved(0));
  EXPECT_EQ(provider.GetImageAt(0)->data, captures[2].data);
}

TEST_F(MemoryEfficientImageProviderTest, DeletesTheFileOfALoadedCaptureThatIsReplaced) {
  AddAll(roomy, {captures[0], captures[1]});
  roomy.UnloadMat();
  roomy.GetImageAt(0);
  roomy.SetImageAt(0, captures[2]);
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(MemoryEfficientImageProviderTest, SpillsThePixelsOfTheReplacement) {
  AddAll(provider, {captures[0], captures[1], captures[2]});
  provider.SetImageAt(0, captures[3]);
  provider.UnloadMat();
  provider.UnloadMat();
  ASSERT_FALSE(provider.IsMatLoaded(0));
  EXPECT_TRUE(SameBits(*provider.GetImageAt(0), captures[3]));
}

TEST_F(MemoryEfficientImageProviderTest, CountsTheReplacedCaptureNoLongerWhenItMakesRoom) {
  AddAll(roomy, {captures[0], captures[1], captures[2]});
  roomy.SetImageAt(1, captures[3]);
  EXPECT_EQ(LoadedCount(roomy), 3U);
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(MemoryEfficientImageProviderTest, MakesRoomForTheReplacementOfASpilledCapture) {
  AddAll(roomy, {captures[0], captures[1], captures[2], captures[3]});
  roomy.SetImageAt(0, captures[4]);
  EXPECT_TRUE(roomy.IsMatLoaded(0));
  EXPECT_FALSE(roomy.IsMatLoaded(1));
}

TEST_F(MemoryEfficientImageProviderTest, PutsAReplacementAtTheEndOfTheQueue) {
  AddAll(roomy, {captures[0], captures[1]});
  roomy.SetImageAt(0, captures[2]);
  roomy.UnloadMat();
  EXPECT_FALSE(roomy.IsMatLoaded(1));
  EXPECT_TRUE(roomy.IsMatLoaded(0));
}

TEST_F(MemoryEfficientImageProviderTest, TakesACaptureOfItsOwnAsReplacement) {
  cv::Mat handedOver = captures[0].clone();
  provider.Add(handedOver);
  handedOver.release();
  cv::Mat& own = *provider.GetImageAt(0);
  provider.SetImageAt(0, own);
  EXPECT_TRUE(SameBits(*provider.GetImageAt(0), captures[0]));
}

TEST_F(MemoryEfficientImageProviderTest, DeletesEveryFileOfItsOwnWhenCleared) {
  const std::string foreign = folder.Prefix() + "foreign";
  Testing::WriteFile(foreign, "foreign");
  AddAll(provider, captures);
  provider.GetImageAt(0);
  provider.Clear();
  EXPECT_TRUE(provider.IsEmpty());
  EXPECT_EQ(provider.GetMemoryUsage(), 0U);
  EXPECT_FALSE(provider.UnloadMat());
  EXPECT_THAT(folder.Contents(), testing::ElementsAre(foreign));
}

TEST_F(MemoryEfficientImageProviderTest, TakesCapturesAgainAfterAClear) {
  AddAll(provider, captures);
  provider.Clear();
  AddAll(provider, {captures[3], captures[4], captures[5]});
  EXPECT_EQ(provider.Count(), 3U);
  EXPECT_TRUE(SameBits(*provider.GetImageAt(0), captures[3]));
}

TEST_F(MemoryEfficientImageProviderTest, DeletesItsFilesAtItsEnd) {
  std::unique_ptr<IImageProvider> shortLived =
      std::make_unique<MemoryEfficientImageProvider>(folder.Prefix(), 0);
  AddAll(*shortLived, captures);
  const std::shared_ptr<cv::Mat> held = shortLived->GetImageAt(1);
  ASSERT_FALSE(folder.Contents().empty());
  shortLived.reset();
  EXPECT_TRUE(folder.Contents().empty());
  EXPECT_TRUE(std::filesystem::exists(folder.Path()));
  EXPECT_TRUE(SameBits(*held, captures[1]));
}

TEST_F(MemoryEfficientImageProviderTest, ReadsTheLastCaptureBack) {
  AddAll(provider, captures);
  EXPECT_EQ(provider.GetLastImage()->data, captures.back().data);
  provider.UnloadMat();
  provider.UnloadMat();
  EXPECT_TRUE(SameBits(*provider.GetLastImage(), captures.back()));
  EXPECT_TRUE(provider.IsMatLoaded(captures.size() - 1));
}

TEST_F(MemoryEfficientImageProviderTest, LetsADerivedProviderDecideWhatTheLastCaptureIs) {
  class FirstAgain : public MemoryEfficientImageProvider {
   public:
    using MemoryEfficientImageProvider::MemoryEfficientImageProvider;
    std::shared_ptr<cv::Mat> GetImageAt(size_t /*index*/) override {
      return MemoryEfficientImageProvider::GetImageAt(0);
    }
  };
  FirstAgain derived(folder.Prefix());
  AddAll(derived, {captures[0], captures[1]});
  EXPECT_EQ(derived.GetLastImage()->data, captures[0].data);
}

TEST_F(MemoryEfficientImageProviderTest, GivesBackARegionOfALargerMatrix) {
  const cv::Mat whole = NoiseCapture({40, 30}, 8);
  cv::Mat region = whole(cv::Rect(3, 5, 16, 8));
  provider.Add(region);
  provider.UnloadMat();
  ASSERT_FALSE(provider.IsMatLoaded(0));
  EXPECT_TRUE(SameBits(*provider.GetImageAt(0), region));
}

TEST_F(MemoryEfficientImageProviderTest, GivesBackAnEmptyCapture) {
  cv::Mat empty;
  provider.Add(empty);
  EXPECT_TRUE(provider.UnloadMat());
  EXPECT_TRUE(provider.GetImageAt(0)->empty());
}

TEST_F(MemoryEfficientImageProviderTest, KeepsAMatrixOfMoreThanTwoDimensionsInMemory) {
  const int sizes[] = {2, 3, 4};
  cv::Mat cube(3, sizes, CV_8UC4, cv::Scalar::all(5));
  provider.Add(cube);
  EXPECT_FALSE(provider.UnloadMat());
  EXPECT_EQ(provider.GetImageAt(0)->data, cube.data);
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(MemoryEfficientImageProviderTest, SpillsWhatComesAfterAMatrixThatHasToStayInMemory) {
  const int sizes[] = {2, 3, 4};
  cv::Mat cube(3, sizes, CV_8UC4, cv::Scalar::all(5));
  provider.Add(cube);
  AddAll(provider, captures);
  EXPECT_EQ(LoadedCount(provider), 2U);
  EXPECT_TRUE(provider.IsMatLoaded(0));
  EXPECT_TRUE(provider.IsMatLoaded(captures.size()));
  EXPECT_TRUE(provider.UnloadMat());
  EXPECT_FALSE(provider.UnloadMat());
  EXPECT_EQ(provider.GetImageAt(0)->data, cube.data);
  for (size_t i = 0; i < captures.size(); ++i) {
    EXPECT_TRUE(SameBits(*provider.GetImageAt(i + 1), captures[i])) << i;
  }
}

TEST_F(MemoryEfficientImageProviderTest, KeepsAMatrixInMemoryThatIsTooLargeToBeReadBack) {
  constexpr size_t bytes = size_t{1} << 31;
  void* const pixels =
      mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(pixels, MAP_FAILED);
  cv::Mat tooLarge(65536, 32768, CV_8UC1, pixels);
  provider.Add(tooLarge);
  EXPECT_FALSE(provider.UnloadMat());
  EXPECT_TRUE(provider.IsMatLoaded(0));
  EXPECT_TRUE(folder.Contents().empty());
  munmap(pixels, bytes);
}

}  // namespace
}  // namespace ScrollingCapture
