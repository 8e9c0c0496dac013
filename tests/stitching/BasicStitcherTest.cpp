#include <iostream>
#include <limits>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/ScriptedDetector.h>
#include <testkit/StreamCapture.h>
#include <testkit/VirtualSlots.h>

#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Testing::NoiseCapture;
using Testing::RecordingListener;
using Testing::SameBits;
using Testing::ScriptedDetector;
using Testing::StreamCapture;
using Translations = std::vector<Translation>;

/// A BasicStitcher whose own operations a test can call.
class OpenStitcher : public BasicStitcher {
 public:
  using BasicStitcher::BasicStitcher;
  using BasicStitcher::BuildResultImage;
  using BasicStitcher::CalcResultImage;
  using BasicStitcher::CropSourceImage;
  using BasicStitcher::SizeResultImage;
};

struct Pipeline {
  explicit Pipeline(const Translations& translations)
      : detector(std::make_shared<ScriptedDetector>(translations)), stitcher(detector) {}

  /// Adds a capture of noise, each different from the others.
  void AddNoise(const cv::Size& size) {
    cv::Mat capture = NoiseCapture(size, 100 + captures.Count());
    captures.Add(capture);
    originals.push_back(capture.clone());
  }

  bool Stitch(IStitcherListener* listener = nullptr) {
    return stitcher.Stitch(captures, result, listener, 0, 100, true);
  }

  std::shared_ptr<ScriptedDetector> detector;
  OpenStitcher stitcher;
  BasicImageProvider captures;
  std::vector<cv::Mat> originals;  ///< copies of the captures as they were added
  cv::Mat result;
};

Pipeline PipelineOf(size_t captures, const Translations& translations,
                    const cv::Size& size = {20, 100}) {
  Pipeline pipeline(translations);
  for (size_t i = 0; i < captures; ++i) {
    pipeline.AddNoise(size);
  }
  return pipeline;
}

constexpr auto BuildFailure = "Error: Failed to build the Result image.\n";

TEST(BasicStitcher, RefusesAProviderWithoutCaptures) {
  Pipeline pipeline({});
  pipeline.result = NoiseCapture({3, 3}, 1);
  const cv::Mat before = pipeline.result.clone();
  RecordingListener listener;
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(pipeline.Stitch(&listener));
  EXPECT_EQ(errors.Text(), "Error: No images in provider passed to Stitch().\n");
  EXPECT_THAT(listener.calls, ElementsAre("error 1 false", "complete false"));
  EXPECT_TRUE(SameBits(pipeline.result, before));
  EXPECT_THAT(pipeline.detector->ranges, IsEmpty());
}

TEST(BasicStitcher, SharesThePixelsOfASingleCapture) {
  Pipeline pipeline = PipelineOf(1, {});
  RecordingListener listener;
  EXPECT_TRUE(pipeline.Stitch(&listener));
  EXPECT_EQ(pipeline.result.data, pipeline.captures.GetImageAt(0)->data);
  EXPECT_THAT(listener.calls, ElementsAre("progress 100", "complete true"));
  EXPECT_THAT(pipeline.detector->ranges, IsEmpty());
}

TEST(BasicStitcher, FailsForASingleCaptureWhenItsProgressIsRefused) {
  Pipeline pipeline = PipelineOf(1, {});
  RecordingListener listener(0);
  pipeline.result = NoiseCapture({3, 3}, 1);
  const cv::Mat before = pipeline.result;
  EXPECT_FALSE(pipeline.Stitch(&listener));
  EXPECT_THAT(listener.calls, ElementsAre("progress 100", "error 4 false", "complete false"));
  EXPECT_EQ(pipeline.result.data, before.data);
}

/// Has lost the captures from some index on.
class LossyProvider : public BasicImageProvider {
 public:
  LossyProvider(size_t count, size_t firstLost) : firstLost(firstLost) {
    for (size_t i = 0; i < count; ++i) {
      cv::Mat capture = NoiseCapture({20, 100}, i);
      Add(capture);
    }
  }

  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    if (index >= firstLost) {
      throw std::runtime_error("lost");
    }
    return BasicImageProvider::GetImageAt(index);
  }

 private:
  size_t firstLost;
};

TEST(BasicStitcher, FetchesASingleCaptureBeforeItTellsTheEnd) {
  LossyProvider captures(1, 0);
  Pipeline pipeline({});
  RecordingListener listener;
  EXPECT_THROW(pipeline.stitcher.Stitch(captures, pipeline.result, &listener, 0, 100, false),
               std::runtime_error);
  EXPECT_THAT(listener.calls, IsEmpty());
  EXPECT_TRUE(pipeline.result.empty());
}

TEST(BasicStitcher, TellsThatItHasFailedBeforeAnExceptionPasses) {
  LossyProvider captures(3, 2);
  Pipeline pipeline({{-40, 0}, {-40, 0}});
  RecordingListener listener;
  EXPECT_THROW(pipeline.stitcher.Stitch(captures, pipeline.result, &listener, 0, 100, true),
               std::runtime_error);
  EXPECT_THAT(listener.calls, ElementsAre("progress 90", "progress 95", "complete false"));
  EXPECT_TRUE(pipeline.result.empty());
}

TEST(BasicStitcher, DoesNotTellOfAnExceptionUnlessAskedToTellTheEnd) {
  LossyProvider captures(3, 0);
  Pipeline pipeline({{-40, 0}, {-40, 0}});
  RecordingListener listener;
  EXPECT_THROW(pipeline.stitcher.Stitch(captures, pipeline.result, &listener, 0, 100, false),
               std::runtime_error);
  EXPECT_THAT(listener.calls, IsEmpty());
  EXPECT_THROW(pipeline.stitcher.Stitch(captures, pipeline.result, nullptr, 0, 100, true),
               std::runtime_error);
}

TEST(BasicStitcher, KeepsTheLastTranslationsWhenASingleCaptureFollows) {
  Pipeline pipeline = PipelineOf(2, {{-40, 0}});
  ASSERT_TRUE(pipeline.Stitch());
  BasicImageProvider single;
  cv::Mat capture = NoiseCapture({5, 5}, 1);
  single.Add(capture);
  ASSERT_TRUE(pipeline.stitcher.Stitch(single, pipeline.result, nullptr, 0, 100, true));
  EXPECT_EQ(pipeline.stitcher.GetTranslations(), Translations({{-40, 0}}));
}

TEST(BasicStitcher, WorksWithoutAListener) {
  EXPECT_TRUE(PipelineOf(1, {}).Stitch());
  EXPECT_TRUE(PipelineOf(2, {{-40, 0}}).Stitch());
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(PipelineOf(0, {}).Stitch());
  EXPECT_FALSE(PipelineOf(2, {}).Stitch());
}

TEST(BasicStitcher, PutsTheSeamOfAScrollDownInTheMiddleOfTheOverlap) {
  Pipeline pipeline = PipelineOf(2, {{-40, 0}});
  ASSERT_TRUE(pipeline.Stitch());
  ASSERT_EQ(pipeline.result.size(), cv::Size(20, 140));
  EXPECT_TRUE(SameBits(pipeline.result.rowRange(0, 71), pipeline.originals[0].rowRange(0, 71)));
  EXPECT_TRUE(SameBits(pipeline.result.rowRange(71, 140), pipeline.originals[1].rowRange(31, 100)));
}

TEST(BasicStitcher, LeavesTheCutInTheProvidersCapture) {
  Pipeline pipeline = PipelineOf(2, {{-40, 0}});
  ASSERT_TRUE(pipeline.Stitch());
  const cv::Mat& capture = *pipeline.captures.GetImageAt(1);
  EXPECT_TRUE(SameBits(capture.rowRange(0, 31), cv::Mat(31, 20, CV_8UC4, cv::Scalar(0, 0, 0, 0))));
  EXPECT_TRUE(SameBits(capture.rowRange(31, 100), pipeline.originals[1].rowRange(31, 100)));
}

TEST(BasicStitcher, PlacesTheNextCaptureAboveAfterAScrollUp) {
  Pipeline pipeline = PipelineOf(2, {{40, 0}});
  ASSERT_TRUE(pipeline.Stitch());
  ASSERT_EQ(pipeline.result.size(), cv::Size(20, 140));
  EXPECT_TRUE(SameBits(pipeline.result.rowRange(0, 70), pipeline.originals[1].rowRange(0, 70)));
  EXPECT_TRUE(SameBits(pipeline.result.rowRange(70, 140), pipeline.originals[0].rowRange(30, 100)));
}

TEST(BasicStitcher, PlacesTheNextCaptureBesideAfterASidewaysScroll) {
  Pipeline pipeline = PipelineOf(2, {{0, -8}});
  ASSERT_TRUE(pipeline.Stitch());
  ASSERT_EQ(pipeline.result.size(), cv::Size(28, 100));
  EXPECT_TRUE(SameBits(pipeline.result.colRange(0, 15), pipeline.originals[0].colRange(0, 15)));
  EXPECT_TRUE(SameBits(pipeline.result.colRange(15, 28), pipeline.originals[1].colRange(7, 20)));
}

TEST(BasicStitcher, LeavesPlacesThatNoCaptureCoversTransparent) {
  Pipeline pipeline = PipelineOf(2, {{-10, -5}});
  ASSERT_TRUE(pipeline.Stitch());
  ASSERT_EQ(pipeline.result.size(), cv::Size(25, 110));
  EXPECT_EQ(cv::countNonZero(pipeline.result(cv::Rect(20, 0, 5, 10)).clone().reshape(1)), 0);
  EXPECT_EQ(cv::countNonZero(pipeline.result(cv::Rect(0, 100, 5, 10)).clone().reshape(1)), 0);
}

TEST(BasicStitcher, CopiesTheFirstCaptureWithItsTransparentPixels) {
  Pipeline pipeline(Translations{{-1, 0}});
  cv::Mat first(4, 4, CV_8UC4, cv::Scalar(1, 2, 3, 0));
  pipeline.captures.Add(first);
  pipeline.AddNoise({4, 4});
  ASSERT_TRUE(pipeline.Stitch());
  EXPECT_EQ(pipeline.result.at<cv::Vec4b>(0, 0), cv::Vec4b(1, 2, 3, 0));
}

TEST(BasicStitcher, LeavesOutACaptureThatDidNotMove) {
  Pipeline pipeline = PipelineOf(4, {{-10, 0}, {0, 0}, {-10, 0}});
  ASSERT_TRUE(pipeline.Stitch());
  ASSERT_EQ(pipeline.result.rows, 120);
  EXPECT_TRUE(SameBits(pipeline.result.rowRange(56, 66), pipeline.originals[1].rowRange(46, 56)));
  EXPECT_TRUE(SameBits(pipeline.result.rowRange(66, 120), pipeline.originals[3].rowRange(46, 100)));
  EXPECT_TRUE(SameBits(*pipeline.captures.GetImageAt(2), pipeline.originals[2]));
}

TEST(BasicStitcher, LeavesOutACaptureOfAnotherSizeWithAMessage) {
  Pipeline pipeline = PipelineOf(1, {{-10, 0}});
  pipeline.AddNoise({20, 99});
  const StreamCapture errors(std::cerr);
  EXPECT_TRUE(pipeline.Stitch());
  EXPECT_EQ(errors.Text(),
            "The Ranges provided must be the same width and heigh as the source image\n");
  EXPECT_TRUE(SameBits(pipeline.result.rowRange(0, 100), pipeline.originals[0]));
  EXPECT_EQ(cv::countNonZero(pipeline.result.rowRange(100, 110).reshape(1)), 0);
}

TEST(BasicStitcher, BlendsACaptureUncutWhenItDoesNotOverlap) {
  Pipeline pipeline = PipelineOf(2, {{-130, 0}});
  const StreamCapture errors(std::cerr);
  EXPECT_TRUE(pipeline.Stitch());
  EXPECT_EQ(errors.Text(), "Points given are out of the bounds for the given matrix\n");
  EXPECT_TRUE(SameBits(pipeline.result.rowRange(130, 230), pipeline.originals[1]));
}

TEST(BasicStitcher, ReportsProgressBeforeEachCaptureAndAtTheEnd) {
  Pipeline pipeline = PipelineOf(5, {{-1, 0}, {-1, 0}, {-1, 0}, {-1, 0}});
  RecordingListener listener;
  ASSERT_TRUE(pipeline.Stitch(&listener));
  EXPECT_THAT(pipeline.detector->ranges, ElementsAre(std::make_pair(0, 90)));
  EXPECT_EQ(pipeline.detector->lastListener, &listener);
  EXPECT_THAT(listener.calls, ElementsAre("progress 90", "progress 92", "progress 95",
                                          "progress 97", "progress 100", "complete true"));
}

TEST(BasicStitcher, DoesNotOffsetTheEndOfTheDetectionByTheStartOfTheRange) {
  Pipeline pipeline = PipelineOf(2, {{-1, 0}});
  RecordingListener listener;
  ASSERT_TRUE(
      pipeline.stitcher.Stitch(pipeline.captures, pipeline.result, &listener, 50, 100, false));
  EXPECT_THAT(pipeline.detector->ranges, ElementsAre(std::make_pair(50, 45)));
  EXPECT_THAT(listener.calls, ElementsAre("progress 45", "progress 100"));
}

TEST(BasicStitcher, FailsWithoutTranslations) {
  Pipeline pipeline = PipelineOf(2, {});
  RecordingListener listener;
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(pipeline.Stitch(&listener));
  EXPECT_EQ(errors.Text(), "Error: Failed to detect translations.\n");
  EXPECT_THAT(listener.calls, ElementsAre("complete false"));
  EXPECT_TRUE(pipeline.result.empty());
}

TEST(BasicStitcher, StopsWhenProgressIsRefusedDuringTheBuild) {
  Pipeline pipeline = PipelineOf(3, {{-1, 0}, {-1, 0}});
  RecordingListener listener(1);
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(pipeline.Stitch(&listener));
  EXPECT_EQ(errors.Text(), BuildFailure);
  EXPECT_THAT(listener.calls,
              ElementsAre("progress 90", "progress 95", "error 4 false", "complete false"));
  EXPECT_TRUE(pipeline.result.empty());
  EXPECT_EQ(pipeline.stitcher.GetTranslations().size(), 2U);
}

TEST(BasicStitcher, FailsWithoutAnErrorCodeWhenTheLastProgressIsRefused) {
  Pipeline pipeline = PipelineOf(2, {{-1, 0}});
  RecordingListener listener(1);
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(pipeline.Stitch(&listener));
  EXPECT_EQ(errors.Text(), BuildFailure);
  EXPECT_THAT(listener.calls, ElementsAre("progress 90", "progress 100", "complete false"));
  EXPECT_TRUE(pipeline.result.empty());
}

TEST(BasicStitcher, AnnouncesCompletionOnlyWhenAskedTo) {
  const StreamCapture errors(std::cerr);
  for (const size_t captures : {0, 1, 2}) {
    Pipeline pipeline = PipelineOf(captures, {{-1, 0}});
    RecordingListener listener;
    pipeline.stitcher.Stitch(pipeline.captures, pipeline.result, &listener, 0, 100, false);
    EXPECT_THAT(listener.calls, testing::Each(testing::Not(testing::StartsWith("complete"))));
  }
}

struct Absurdity {
  std::string name;
  Translations translations;
};

void PrintTo(const Absurdity& absurdity, std::ostream* stream) { *stream << absurdity.name; }

class AbsurdTranslations : public testing::TestWithParam<Absurdity> {};

TEST_P(AbsurdTranslations, FailAsAResultThatCannotBeSized) {
  const Translations& translations = GetParam().translations;
  Pipeline pipeline = PipelineOf(translations.size() + 1, translations);
  pipeline.result = NoiseCapture({3, 3}, 1);
  const cv::Mat before = pipeline.result;
  RecordingListener listener;
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(pipeline.Stitch(&listener));
  EXPECT_EQ(errors.Text(),
            std::string("Error: Failed to size the resulting image.\n") + BuildFailure);
  EXPECT_THAT(listener.calls, ElementsAre("error 3 false", "complete false"));
  EXPECT_EQ(pipeline.result.data, before.data);
}

constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();

// Most sums of 32 bits would come round to sizes that fit captures, or even to none at all.
INSTANTIATE_TEST_SUITE_P(
    Sums, AbsurdTranslations,
    testing::Values(Absurdity{"MorePixelsThanMemory", {{-2'000'000'000, -1'000'000'000}}},
                    Absurdity{"FarthestDown", {{Lowest, 0}}},
                    Absurdity{"FarthestUp", {{Highest, 0}}},
                    Absurdity{"FarthestRight", {{0, Lowest}}},
                    Absurdity{"FarthestLeft", {{0, Highest}}},
                    Absurdity{"DownByAllOf32Bits", {{Lowest, 0}, {Lowest, 0}}},
                    Absurdity{"RightByAllOf32Bits", {{0, Lowest}, {0, Lowest}}},
                    Absurdity{"UpByAllOf32Bits", {{Highest, 0}, {Highest, 0}, {2, 0}}},
                    Absurdity{"UpAndDownByAllOf32Bits", {{Highest, 0}, {Lowest, 0}, {Lowest, 0}}}),
    [](const auto& test) { return test.param.name; });

TEST(BasicStitcher, ReportsProgressOfRangesWiderThan32Bits) {
  Pipeline pipeline = PipelineOf(3, {{-1, 0}, {-1, 0}});
  RecordingListener listener;
  ASSERT_TRUE(pipeline.stitcher.Stitch(pipeline.captures, pipeline.result, &listener, Lowest,
                                       Highest, false));
  EXPECT_THAT(pipeline.detector->ranges, ElementsAre(std::make_pair(Lowest, Highest)));
  EXPECT_THAT(listener.calls, testing::Each("progress " + std::to_string(Highest)));
}

TEST(BasicStitcher, BuildsNothingWithoutTranslations) {
  Pipeline pipeline = PipelineOf(2, {});
  RecordingListener listener;
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(
      pipeline.stitcher.BuildResultImage(pipeline.captures, pipeline.result, &listener, 90, 100));
  EXPECT_EQ(errors.Text(),
            "Error: No translations in list.\nError: Failed to size the resulting image.\n");
  EXPECT_THAT(listener.calls, ElementsAre("error 2 false"));
}

TEST(BasicStitcher, GivesTheCodeOfAFailedSizing) {
  Pipeline pipeline({});
  cv::Mat image;
  cv::Rect placement;
  const StreamCapture errors(std::cerr);
  EXPECT_EQ(pipeline.stitcher.SizeResultImage(image, placement), IStitcherListener::NoTranslations);
}

TEST(BasicStitcher, SizesTheResultInTheTypeOfTheFirstCapture) {
  Pipeline pipeline(Translations{{-3, -4}});
  for (int i = 0; i < 2; ++i) {
    cv::Mat capture(10, 10, CV_16UC4, cv::Scalar::all(9));
    pipeline.captures.Add(capture);
  }
  // Captures that are not 8-bit have no mask to be blended with.
  EXPECT_THROW(pipeline.Stitch(), cv::Exception);
  cv::Mat image;
  cv::Rect placement;
  ASSERT_EQ(pipeline.stitcher.SizeResultImage(image, placement), 0);
  EXPECT_EQ(image.type(), CV_16UC4);
  EXPECT_EQ(image.size(), cv::Size(14, 13));
  EXPECT_EQ(cv::countNonZero(image.reshape(1)), 0);
}

TEST(BasicStitcher, CropsByTheTranslationOfTheIndex) {
  Pipeline pipeline = PipelineOf(3, {{-40, 0}, {40, 0}});
  ASSERT_TRUE(pipeline.Stitch());
  cv::Mat image(100, 20, CV_8UC4, cv::Scalar::all(255));
  pipeline.stitcher.CropSourceImage(image, 1, cv::Rect(0, 0, 20, 100));
  EXPECT_EQ(cv::countNonZero(image.rowRange(70, 100).reshape(1)), 0);
  EXPECT_EQ(cv::countNonZero(image.rowRange(0, 70).reshape(1)), 70 * 20 * 4);
}

TEST(BasicStitcher, HasItsOwnOperationInTheLastVirtualSlot) {
  struct Slots : BasicStitcher {
    static size_t OfBuild() { return Testing::SlotOf(&Slots::BuildResultImage); }
  };
  EXPECT_EQ(Slots::OfBuild(), 4U);
}

TEST(BasicStitcher, BuildsThroughItsVirtualOperation) {
  class RefusingStitcher : public BasicStitcher {
   public:
    using BasicStitcher::BasicStitcher;

   protected:
    bool BuildResultImage(IImageProvider& /*provider*/, cv::Mat& /*result*/,
                          IStitcherListener* /*listener*/, int /*progressStart*/,
                          int /*progressEnd*/) override {
      return false;
    }
  };
  Pipeline pipeline = PipelineOf(2, {{-1, 0}});
  RefusingStitcher stitcher(pipeline.detector);
  const StreamCapture errors(std::cerr);
  EXPECT_FALSE(stitcher.Stitch(pipeline.captures, pipeline.result, nullptr, 0, 100, true));
  EXPECT_EQ(errors.Text(), BuildFailure);
}

struct Extent {
  std::string name;
  Translations translations;
  cv::Size size;       ///< of the result, for captures 50 wide and 100 high
  cv::Rect placement;  ///< of the first capture: x is its row, y its column
};

void PrintTo(const Extent& extent, std::ostream* stream) { *stream << extent.name; }

class ResultExtent : public testing::TestWithParam<Extent> {};

TEST_P(ResultExtent, FollowsFromTheTranslations) {
  Pipeline pipeline =
      PipelineOf(GetParam().translations.size() + 1, GetParam().translations, {50, 100});
  ASSERT_TRUE(pipeline.Stitch());
  cv::Size size;
  cv::Rect placement;
  ASSERT_TRUE(pipeline.stitcher.CalcResultImage(placement, size));
  EXPECT_EQ(size, GetParam().size);
  EXPECT_EQ(placement, GetParam().placement);
  EXPECT_EQ(pipeline.result.size(), GetParam().size);
}

INSTANTIATE_TEST_SUITE_P(
    Scrolls, ResultExtent,
    testing::Values(Extent{"SteadilyDown", {{-10, 0}, {-20, 0}}, {50, 130}, {0, 0, 50, 100}},
                    Extent{"SteadilyUp", {{10, 0}, {20, 0}}, {50, 130}, {30, 0, 50, 100}},
                    Extent{"SteadilyLeft", {{0, 10}, {0, 20}}, {80, 100}, {0, 30, 50, 100}},
                    Extent{"BothWays", {{-10, 5}, {-10, 5}}, {60, 120}, {0, 10, 50, 100}},
                    Extent{"DownUpDownIsLargerThanTheCapturesReach",
                           {{-10, 0}, {5, 0}, {-10, 0}},
                           {50, 120},
                           {0, 0, 50, 100}},
                    Extent{"UpDownUpIsLargerThanTheCapturesReach",
                           {{10, 0}, {-5, 0}, {10, 0}},
                           {50, 120},
                           {20, 0, 50, 100}}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace ScrollingCapture
