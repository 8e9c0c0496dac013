#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/StreamCapture.h>

#include <VelScrollingCapture/borders/BorderDetection.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Testing::RecordingListener;
using Testing::StreamCapture;

using Calls = std::vector<std::string>;

constexpr auto StitchFailure = "Error: Failed to stitch images.\n";
constexpr auto ApplicationFailure =
    "Error: Found borders, but failed to apply them to result image.\n";

/// Gives a one-pixel result, and reports one step of progress.
class ScriptedStitcher : public IStitcher {
 public:
  ScriptedStitcher(Calls& calls, bool succeeds) : calls(calls), succeeds(succeeds) {}

  bool Stitch(IImageProvider& /*images*/, cv::Mat& result, IStitcherListener* listener,
              int progressStart, int progressEnd, bool notifyCompletion) override {
    calls.push_back("stitch " + std::to_string(progressStart) + " to " +
                    std::to_string(progressEnd) + (notifyCompletion ? " and announce" : ""));
    if (listener != nullptr) {
      listener->ProgressCallback(progressEnd);
    }
    if (succeeds) {
      result = cv::Mat(1, 1, CV_8UC4, cv::Scalar::all(7));
    }
    return succeeds;
  }

  std::vector<Translation> GetTranslations() const override { return {{-4, 5}, {6, 0}}; }

 private:
  Calls& calls;
  bool succeeds;
};

class ScriptedBorders : public BorderDetection {
 public:
  ScriptedBorders(Calls& calls, std::shared_ptr<IStitcher> stitcher, bool found, bool applies)
      : BorderDetection(std::move(stitcher)), calls(calls), found(found), applies(applies) {}

 protected:
  bool ExtractBorders(IImageProvider& /*images*/) override {
    calls.emplace_back("extract");
    return found;
  }

  bool ApplyBorders(cv::Mat& image) override {
    calls.push_back("apply to " + std::to_string(image.at<cv::Vec4b>(0, 0)[0]));
    return applies;
  }

 private:
  Calls& calls;
  bool found;
  bool applies;
};

/// What goes well in a stitch.
struct Script {
  bool bordersFound = true;
  bool stitched = true;
  bool applied = true;
};

class BorderDetectionStitch : public testing::Test {
 protected:
  bool Stitch(const Script& script, IStitcherListener* listener, bool notifyCompletion = true) {
    ScriptedBorders detection(calls, std::make_shared<ScriptedStitcher>(calls, script.stitched),
                              script.bordersFound, script.applied);
    BasicImageProvider captures;
    return detection.Stitch(captures, result, listener, 20, 80, notifyCompletion);
  }

  const StreamCapture errors{std::cerr};
  Calls calls;
  RecordingListener listener;
  cv::Mat result;
};

TEST_F(BorderDetectionStitch, ExtractsThenStitchesThenApplies) {
  EXPECT_TRUE(Stitch({}, &listener));
  EXPECT_THAT(calls, ElementsAre("extract", "stitch 20 to 80", "apply to 7"));
  EXPECT_THAT(listener.calls, ElementsAre("progress 80", "complete true"));
  EXPECT_EQ(errors.Text(), "");
}

TEST_F(BorderDetectionStitch, AppliesNothingWhenNoBorderIsFound) {
  Script script;
  script.bordersFound = false;
  EXPECT_TRUE(Stitch(script, &listener));
  EXPECT_THAT(calls, ElementsAre("extract", "stitch 20 to 80"));
  EXPECT_THAT(listener.calls, ElementsAre("progress 80", "complete true"));
}

TEST_F(BorderDetectionStitch, FailsWhenTheInnerStitchFails) {
  Script script;
  script.stitched = false;
  EXPECT_FALSE(Stitch(script, &listener));
  EXPECT_THAT(calls, ElementsAre("extract", "stitch 20 to 80"));
  EXPECT_THAT(listener.calls, ElementsAre("progress 80", "complete false"));
  EXPECT_EQ(errors.Text(), StitchFailure);
  EXPECT_TRUE(result.empty());
}

TEST_F(BorderDetectionStitch, LetsTheListenerAcceptAResultWithoutBorders) {
  Script script;
  script.applied = false;
  listener.answerToErrors = true;
  EXPECT_TRUE(Stitch(script, &listener));
  EXPECT_THAT(listener.calls, ElementsAre("progress 80", "error 5 true", "complete true"));
  EXPECT_EQ(errors.Text(), ApplicationFailure);
  EXPECT_EQ(result.size(), cv::Size(1, 1));
}

TEST_F(BorderDetectionStitch, LetsTheListenerRefuseAResultWithoutBorders) {
  Script script;
  script.applied = false;
  listener.answerToErrors = false;
  EXPECT_FALSE(Stitch(script, &listener));
  EXPECT_THAT(listener.calls, ElementsAre("progress 80", "error 5 true", "complete false"));
  EXPECT_EQ(errors.Text(), ApplicationFailure);
}

TEST_F(BorderDetectionStitch, AnnouncesCompletionOnlyWhenAsked) {
  const bool quiet = false;
  EXPECT_TRUE(Stitch({true, true, true}, &listener, quiet));
  EXPECT_TRUE(Stitch({false, true, true}, &listener, quiet));
  EXPECT_FALSE(Stitch({true, false, true}, &listener, quiet));
  listener.answerToErrors = true;
  EXPECT_TRUE(Stitch({true, true, false}, &listener, quiet));
  EXPECT_THAT(listener.calls, ElementsAre("progress 80", "progress 80", "progress 80",
                                          "progress 80", "error 5 true"));
}

TEST_F(BorderDetectionStitch, TellsTheOutcomeByItsResultAloneWithoutAListener) {
  EXPECT_TRUE(Stitch({true, true, true}, nullptr));
  EXPECT_TRUE(Stitch({false, true, true}, nullptr));
  EXPECT_FALSE(Stitch({true, false, true}, nullptr));
  EXPECT_FALSE(Stitch({true, true, false}, nullptr));
  EXPECT_EQ(errors.Text(), std::string(StitchFailure) + ApplicationFailure);
}

TEST(BorderDetection, GivesTheInnerStitchersTranslations) {
  Calls calls;
  const ScriptedBorders detection(calls, std::make_shared<ScriptedStitcher>(calls, true), true,
                                  true);
  EXPECT_THAT(detection.GetTranslations(), ElementsAre(Translation(-4, 5), Translation(6, 0)));
  EXPECT_THAT(calls, IsEmpty());
}

TEST(BorderDetection, ReleasesTheInnerStitcherWithItself) {
  Calls calls;
  auto inner = std::make_shared<ScriptedStitcher>(calls, true);
  {
    const ScriptedBorders detection(calls, inner, true, true);
    EXPECT_EQ(inner.use_count(), 2);
  }
  EXPECT_EQ(inner.use_count(), 1);
}

}  // namespace
}  // namespace ScrollingCapture
