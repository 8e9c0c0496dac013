#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <testkit/pages/ScrolledCaptures.h>

#include <VelScrollingCapture/session/CaptureIntake.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Testing::NoiseCapture;
using Testing::SameBits;
using Testing::ScrolledCaptures;
using State = CaptureOutcome::State;

class Intake : public testing::Test {
 protected:
  BasicImageProvider captures;
  PreviewImage preview{{250, 250}, 1, 0};
  CaptureIntake intake{captures, &preview, false};
};

TEST_F(Intake, AddsEachCaptureAndShowsItToThePreview) {
  PreviewImage expected({250, 250}, 1, 0);
  for (const cv::Mat& capture : ScrolledCaptures(3)) {
    const CaptureOutcome outcome = intake.Add(capture);
    EXPECT_EQ(outcome.state, State::Placed);
    EXPECT_THAT(outcome.reason, IsEmpty());
    expected.AddCapture(capture);
  }
  EXPECT_EQ(captures.Count(), 3U);
  EXPECT_TRUE(SameBits(preview.GetPreview(), expected.GetPreview()));
}

TEST_F(Intake, SharesThePixels) {
  const cv::Mat capture = ScrolledCaptures(1)[0];
  intake.Add(capture);
  EXPECT_EQ(captures.GetLastImage()->data, capture.data);
}

TEST_F(Intake, DropsARepeatOfTheLastOne) {
  const std::vector<cv::Mat> scrolled = ScrolledCaptures(2);
  intake.Add(scrolled[0]);
  const cv::Mat before = preview.GetPreview();
  EXPECT_EQ(intake.Add(scrolled[0].clone()).state, State::Repeated);
  EXPECT_EQ(captures.Count(), 1U);
  EXPECT_TRUE(SameBits(preview.GetPreview(), before));
  EXPECT_EQ(intake.Add(scrolled[1]).state, State::Placed);
  EXPECT_EQ(intake.Add(scrolled[0]).state, State::Placed) << "Not the last one any more";
}

TEST_F(Intake, KeepsRepeatsWhereAskedTo) {
  CaptureIntake keeping(captures, nullptr, true);
  const cv::Mat capture = ScrolledCaptures(1)[0];
  EXPECT_EQ(keeping.Add(capture).state, State::Placed);
  EXPECT_EQ(keeping.Add(capture).state, State::Placed);
  EXPECT_EQ(captures.Count(), 2U);
}

TEST_F(Intake, GoesOnWithoutAPreviewThatCannotShowTheCapture) {
  cv::Mat withoutColour(300, 300, CV_8UC1, cv::Scalar(3));
  EXPECT_EQ(intake.Add(withoutColour).state, State::Placed);
  EXPECT_EQ(captures.Count(), 1U);
}

struct Misfit {
  const char* name;
  cv::Mat capture;
  const char* reason;
};
void PrintTo(const Misfit& misfit, std::ostream* stream) { *stream << misfit.name; }

class Misfits : public testing::TestWithParam<Misfit> {};

TEST_P(Misfits, AreRefusedWithAReason) {
  for (const bool keepRepeats : {false, true}) {
    BasicImageProvider captures;
    CaptureIntake intake(captures, nullptr, keepRepeats);
    intake.Add(NoiseCapture({60, 40}, 1));
    const CaptureOutcome outcome = intake.Add(GetParam().capture);
    EXPECT_EQ(outcome.state, State::Unusable);
    EXPECT_THAT(outcome.reason, HasSubstr(GetParam().reason));
    EXPECT_EQ(captures.Count(), 1U);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Captures, Misfits,
    testing::Values(Misfit{"Wider", NoiseCapture({61, 40}, 1), "61 x 40 pixels"},
                    Misfit{"Lower", NoiseCapture({60, 39}, 1), "before it have 60 x 40 pixels"},
                    Misfit{"Empty", cv::Mat(), "0 x 0 pixels"},
                    Misfit{"Grey", cv::Mat(40, 60, CV_8UC1, cv::Scalar(0)), "another type"},
                    Misfit{"Deep", cv::Mat(40, 60, CV_16UC4, cv::Scalar(0)), "another type"}),
    [](const auto& test) { return test.param.name; });

TEST(WhyUnusable, SaysNothingOfAUsableCapture) {
  EXPECT_THAT(WhyUnusable(NoiseCapture({1, 1}, 1)), IsEmpty());
}

TEST(WhyUnusable, NamesWhatIsMissing) {
  const int sides[] = {2, 2, 2};
  EXPECT_THAT(WhyUnusable(cv::Mat()), HasSubstr("no pixels"));
  EXPECT_THAT(WhyUnusable(cv::Mat(3, sides, CV_8UC4)), HasSubstr("no pixels"));
  EXPECT_THAT(WhyUnusable(cv::Mat(2, 2, CV_8UC3)), HasSubstr("another type"));
  EXPECT_THAT(WhyUnusable(cv::Mat(2, 2, CV_8SC4)), HasSubstr("another type"));
}

}  // namespace
}  // namespace ScrollingCapture
