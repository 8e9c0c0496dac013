#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <testkit/RecordingListener.h>
#include <testkit/StreamCapture.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/pages/ScrolledCaptures.h>

#include <VelScrollingCapture/preview/PreviewImage.h>
#include <VelScrollingCapture/session/CaptureSession.h>
#include <VelScrollingCapture/session/SpillFileLost.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using Testing::NoiseCapture;
using Testing::RecordingListener;
using Testing::SameBits;
using Testing::ScrolledCaptures;
using Testing::ScrolledPage;
using Testing::ScrolledStep;
using ::testing::SizeIs;
using ::testing::StartsWith;
using State = CaptureOutcome::State;

constexpr int CaptureCount = 4;

void AddAll(CaptureSession& session, const std::vector<cv::Mat>& captures) {
  for (const cv::Mat& capture : captures) {
    ASSERT_EQ(session.Add(capture).state, State::Placed);
  }
}

SessionSettings Correlating() {
  SessionSettings settings;
  settings.engine = Engine::PhaseCorrelation;
  return settings;
}

/// The only part of a result, as a whole.
cv::Mat WholePicture(const SessionResult& result) {
  EXPECT_EQ(result.parts.size(), 1U);
  const StitchedPicture& picture = *result.parts.at(0);
  return picture.Area({{0, 0}, picture.Size()});
}

TEST(CaptureSession, GivesThePictureAndWhereEveryCaptureLies) {
  CaptureSession session({});
  AddAll(session, ScrolledCaptures(CaptureCount));
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(SameBits(WholePicture(*result), ScrolledPage(CaptureCount)));
  EXPECT_FALSE(result->borders.has_value());
  ASSERT_THAT(result->captures, SizeIs(CaptureCount));
  for (int i = 0; i < CaptureCount; ++i) {
    EXPECT_EQ(result->captures[static_cast<size_t>(i)].place, (Place{i * ScrolledStep, 0}));
    EXPECT_FALSE(result->captures[static_cast<size_t>(i)].leftOut);
  }
  EXPECT_EQ(result->captures[2].join.motion, Translation(-ScrolledStep, 0));
}

TEST(CaptureSession, GivesAnyAreaOfThePicture) {
  CaptureSession session({});
  AddAll(session, ScrolledCaptures(CaptureCount));
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  const cv::Rect area(10, 90, 50, 60);
  EXPECT_TRUE(SameBits(result->parts[0]->Area(area).clone(), ScrolledPage(CaptureCount)(area)));
  EXPECT_THROW(result->parts[0]->Area({0, 0, 10000, 1}), cv::Exception);
}

TEST(CaptureSession, RefusesWhatNoStitcherTakes) {
  CaptureSession session({});
  for (const cv::Mat& capture : {cv::Mat(), cv::Mat(5, 5, CV_8UC1, cv::Scalar(0))}) {
    const CaptureOutcome outcome = session.Add(capture);
    EXPECT_EQ(outcome.state, State::Unusable);
    EXPECT_NE(outcome.reason, "");
  }
  EXPECT_EQ(session.Add(ScrolledCaptures(1)[0]).state, State::Placed);
}

TEST(CaptureSession, RefusesACaptureOfAnotherSizeAndStitchesTheOthers) {
  CaptureSession session({});
  const std::vector<cv::Mat> captures = ScrolledCaptures(CaptureCount);
  AddAll(session, {captures[0], captures[1]});
  EXPECT_EQ(session.Add(NoiseCapture({7, 7}, 1)).state, State::Unusable);
  AddAll(session, {captures[2], captures[3]});
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(SameBits(WholePicture(*result), ScrolledPage(CaptureCount)));
}

TEST(CaptureSession, DropsRepeatsUnlessAskedToKeepThem) {
  const cv::Mat capture = ScrolledCaptures(1)[0];
  CaptureSession dropping({});
  EXPECT_EQ(dropping.Add(capture).state, State::Placed);
  EXPECT_EQ(dropping.Add(capture.clone()).state, State::Repeated);
  SessionSettings settings = Correlating();
  settings.keepRepeats = true;
  CaptureSession keeping(settings);
  EXPECT_EQ(keeping.Add(capture).state, State::Placed);
  EXPECT_EQ(keeping.Add(capture.clone()).state, State::Placed);
  const auto result = keeping.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(result->captures[1].leftOut);
}

TEST(CaptureSession, LooksForMotionInTheAskedDirectionsOnly) {
  SessionSettings settings = Correlating();
  settings.orientation = Horizontal;
  CaptureSession session(settings);
  AddAll(session, ScrolledCaptures(2));
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->captures[1].join.motion.GetRows(), 0);
}

TEST(CaptureSession, TellsProgressUpToTheEndAndNoCompletion) {
  SessionSettings settings;
  settings.threadCount = 0;  // counts as one
  CaptureSession session(settings);
  AddAll(session, ScrolledCaptures(CaptureCount));
  RecordingListener listener;
  ASSERT_TRUE(session.Stitch(&listener).has_value());
  EXPECT_THAT(listener.calls, Each(StartsWith("progress ")));
  EXPECT_EQ(listener.calls.back(), "progress 100");
}

TEST(CaptureSession, GivesNothingWhenTheListenerStopsIt) {
  CaptureSession session({});
  AddAll(session, ScrolledCaptures(CaptureCount));
  const Testing::StreamCapture errors(std::cerr);
  RecordingListener listener(1);
  EXPECT_FALSE(session.Stitch(&listener).has_value());
  EXPECT_THAT(listener.calls, testing::Contains("error 4 false"));
}

TEST(CaptureSession, GivesNothingWithoutCaptures) {
  CaptureSession session({});
  const Testing::StreamCapture errors(std::cerr);
  RecordingListener listener;
  EXPECT_FALSE(session.Stitch(&listener).has_value());
  EXPECT_THAT(listener.calls, testing::ElementsAre("error 1 false"));
}

TEST(CaptureSession, ShowsThePreviewOfAHost) {
  SessionSettings settings;
  settings.previewBox = cv::Size(200, 90);
  CaptureSession session(settings);
  PreviewImage expected({200, 90}, 1, 0);
  for (const cv::Mat& capture : ScrolledCaptures(CaptureCount)) {
    session.Add(capture);
    expected.AddCapture(capture);
  }
  EXPECT_TRUE(SameBits(session.Preview(), expected.GetPreview(200, 90)));
}

TEST(CaptureSession, ShowsNoPreviewWhereNoneIsAskedForOrTheBoxLeavesNoPixel) {
  CaptureSession without({});
  AddAll(without, ScrolledCaptures(1));
  EXPECT_TRUE(without.Preview().empty());
  SessionSettings settings;
  settings.previewBox = cv::Size(1, 1);
  CaptureSession narrow(settings);
  AddAll(narrow, ScrolledCaptures(3));
  EXPECT_TRUE(narrow.Preview().empty());
}

/// A page that scrolls between a fixed top and a fixed left side.
std::vector<cv::Mat> BorderedCaptures() {
  std::vector<cv::Mat> captures = ScrolledCaptures(CaptureCount);
  for (cv::Mat& capture : captures) {
    capture.rowRange(0, 8) = cv::Scalar(200, 10, 10, 255);
    capture.colRange(0, 5) = cv::Scalar(10, 200, 10, 255);
  }
  return captures;
}

TEST(CaptureSession, FindsBordersWhereAskedTo) {
  SessionSettings settings = Correlating();
  settings.borders = BorderThresholds{};
  CaptureSession session(settings);
  AddAll(session, BorderedCaptures());
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  ASSERT_TRUE(result->borders.has_value());
  EXPECT_EQ(result->borders->top, 8);
  EXPECT_EQ(result->borders->left, 5);

  BasicImageProvider provider;
  for (cv::Mat& capture : BorderedCaptures()) {
    provider.Add(capture);
  }
  cv::Mat expected;
  const BorderThresholds thresholds;
  ASSERT_TRUE(StitcherFactory::CreateStitcherWithBasicBorderDetection(
                  Both, false, 1, thresholds.difference, thresholds.neighbors)
                  ->Stitch(provider, expected, nullptr, 0, 100, false));
  EXPECT_TRUE(SameBits(WholePicture(*result), expected));
}

class SpillingSession : public testing::Test {
 protected:
  SessionSettings Settings(const std::string& spillFolder) const {
    SessionSettings settings;
    settings.memoryLimit = 0;
    settings.spillFolder = spillFolder;
    return settings;
  }

  const Testing::TemporaryFolder folder;
};

TEST_F(SpillingSession, KeepsToTheFolderWithOrWithoutASeparatorAtItsEnd) {
  const std::filesystem::path inside = folder.Path() / "spill";
  std::filesystem::create_directory(inside);
  for (const std::string& name : {inside.string(), inside.string() + "/"}) {
    CaptureSession session(Settings(name));
    AddAll(session, ScrolledCaptures(CaptureCount));
    EXPECT_THAT(folder.Contents(), SizeIs(1)) << "No files beside the folder";
    EXPECT_FALSE(std::filesystem::is_empty(inside));
  }
  EXPECT_TRUE(std::filesystem::is_empty(inside));
}

TEST_F(SpillingSession, GivesTheSamePicture) {
  CaptureSession session(Settings(folder.Path().string()));
  AddAll(session, ScrolledCaptures(CaptureCount));
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(SameBits(WholePicture(*result), ScrolledPage(CaptureCount)));
}

TEST_F(SpillingSession, TellsThatAFileIsLost) {
  CaptureSession session(Settings(folder.Path().string()));
  AddAll(session, ScrolledCaptures(CaptureCount));
  for (const std::string& file : folder.Contents()) {
    std::filesystem::remove(file);
  }
  EXPECT_THROW(session.Stitch(nullptr), SpillFileLost);
}

}  // namespace
}  // namespace ScrollingCapture
