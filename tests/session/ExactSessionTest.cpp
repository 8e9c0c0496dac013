// Sessions that join exactly: the live answer, parts, and motions that somebody prescribes.

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <testkit/MatrixTesting.h>
#include <testkit/RecordingListener.h>
#include <testkit/TemporaryFolder.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture {
namespace {

using ::testing::ElementsAre;
using Testing::NoiseCapture;
using Testing::SameBits;
using ::testing::SizeIs;
using State = CaptureOutcome::State;

constexpr int Width = 200;
constexpr int Height = 160;

class ExactSession : public testing::Test {
 protected:
  cv::Mat At(int row) const { return page(cv::Rect(0, row, Width, Height)).clone(); }

  std::vector<State> AddAll(CaptureSession& session, const std::vector<int>& rows) const {
    std::vector<State> states;
    for (const int row : rows) {
      states.push_back(session.Add(At(row)).state);
    }
    return states;
  }

  static cv::Mat Whole(const StitchedPicture& part) {
    return part.Area({{0, 0}, part.Size()}).clone();
  }

  const cv::Mat page = NoiseCapture({Width, 1000}, 9);
};

TEST_F(ExactSession, TellsAtOnceWhereACaptureLies) {
  CaptureSession session({});
  EXPECT_EQ(session.Add(At(100)).state, State::Placed);
  const CaptureOutcome outcome = session.Add(At(160));
  EXPECT_EQ(outcome.state, State::Placed);
  ASSERT_TRUE(outcome.placed.has_value());
  EXPECT_EQ(outcome.placed->join.verdict, Verdict::Proven);
  EXPECT_EQ(outcome.placed->join.motion, Translation(-60, 0));
  EXPECT_EQ(outcome.placed->place, (Place{60, 0}));
}

TEST_F(ExactSession, TellsOfScrollingTooFastUntilACaptureJoins) {
  CaptureSession session({});
  EXPECT_THAT(
      AddAll(session, {0, 60, 400, 150, 270}),
      ElementsAre(State::Placed, State::Placed, State::TooFast, State::Placed, State::Placed));
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  ASSERT_THAT(result->parts, SizeIs(1)) << "The last capture joins both parts";
  EXPECT_TRUE(SameBits(Whole(*result->parts[0]), page.rowRange(0, 560).clone()));
  EXPECT_TRUE(result->parts[0]->IsOpaque());
}

TEST_F(ExactSession, TellsOfDoubt) {
  cv::Mat rows = page.clone();
  for (int row = 16; row + 16 <= rows.rows; row += 16) {
    rows.rowRange(0, 16).copyTo(rows.rowRange(row, row + 16));
  }
  CaptureSession session({});
  session.Add(rows.rowRange(0, Height).clone());
  const CaptureOutcome outcome = session.Add(rows.rowRange(40, 40 + Height).clone());
  EXPECT_EQ(outcome.state, State::Doubtful);
  ASSERT_TRUE(outcome.placed.has_value());
  EXPECT_FALSE(outcome.placed->join.alternatives.empty());
}

TEST_F(ExactSession, GivesEachPartThatNothingJoins) {
  CaptureSession session({});
  AddAll(session, {0, 50, 500, 560});
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  ASSERT_THAT(result->parts, SizeIs(2));
  EXPECT_TRUE(SameBits(Whole(*result->parts[0]), page.rowRange(0, 210).clone()));
  EXPECT_TRUE(SameBits(Whole(*result->parts[1]), page.rowRange(500, 720).clone()));
  EXPECT_EQ(result->captures[3].part, 1U);
  EXPECT_EQ(result->captures[3].place, (Place{60, 0}));
}

TEST_F(ExactSession, KnowsThatAPictureHasGaps) {
  const cv::Mat wide = NoiseCapture({500, 500}, 3);
  CaptureSession session({});
  for (const cv::Point corner : {cv::Point(0, 0), cv::Point(60, 50)}) {
    ASSERT_EQ(session.Add(wide(cv::Rect(corner, cv::Size(Width, Height))).clone()).state,
              State::Placed);
  }
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_FALSE(result->parts[0]->IsOpaque());
  EXPECT_EQ(Whole(*result->parts[0]).at<cv::Vec4b>(0, Width + 59), cv::Vec4b(0, 0, 0, 0));
}

TEST_F(ExactSession, TakesAPrescribedMotionAndTellsWhatThePixelsSay) {
  CaptureSession session({});
  session.Add(At(0));
  EXPECT_EQ(session.Add(IncomingCapture{At(60), {}, Translation(-60, 0)}).placed->join.verdict,
            Verdict::Proven);
  EXPECT_EQ(session.Add(IncomingCapture{At(120), {}, Translation(-30, 0)}).placed->join.verdict,
            Verdict::None);
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->parts[0]->Size(), cv::Size(Width, 90 + Height));
}

TEST_F(ExactSession, HasTheSameOutcomeWhenCapturesArePreparedOnOtherThreads) {
  CaptureSession session({});
  const std::vector<int> rows = {0, 60, 130, 190};
  std::vector<IncomingCapture> prepared(rows.size());
  std::vector<std::thread> threads;
  for (size_t i = 0; i < rows.size(); ++i) {
    threads.emplace_back([&, i] { prepared[i] = session.Prepare(At(rows[i])); });
  }
  std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
  for (const IncomingCapture& capture : prepared) {
    EXPECT_TRUE(capture.prepared.has_value());
    EXPECT_EQ(session.Add(capture).state, State::Placed);
  }
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(SameBits(Whole(*result->parts[0]), page.rowRange(0, 350).clone()));
}

TEST_F(ExactSession, StitchesAgainAfterMoreCaptures) {
  CaptureSession session({});
  AddAll(session, {0, 60});
  ASSERT_TRUE(session.Stitch(nullptr).has_value());
  AddAll(session, {120});
  const auto result = session.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(SameBits(Whole(*result->parts[0]), page.rowRange(0, 280).clone()));
}

TEST_F(ExactSession, KeepsItsCapturesForAResultThatOutlivesIt) {
  const Testing::TemporaryFolder folder;
  SessionSettings settings;
  settings.memoryLimit = 0;
  settings.spillFolder = folder.Path().string();
  std::optional<SessionResult> result;
  {
    CaptureSession session(settings);
    AddAll(session, {0, 60, 120, 180});
    EXPECT_FALSE(session.ExceedsMemoryLimit());
    result = session.Stitch(nullptr);
  }
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(SameBits(Whole(*result->parts[0]), page.rowRange(0, 340).clone()));
  result.reset();
  EXPECT_THAT(folder.Contents(), ::testing::IsEmpty());
}

TEST_F(ExactSession, TellsWhenCapturesCannotBeSpilled) {
  SessionSettings settings;
  settings.memoryLimit = 0;
  settings.spillFolder = "/nowhere/at/all";
  CaptureSession session(settings);
  AddAll(session, {0, 60, 120, 180});
  EXPECT_TRUE(session.ExceedsMemoryLimit());
  EXPECT_TRUE(session.Stitch(nullptr).has_value());
}

TEST_F(ExactSession, IsStoppedByItsListenerAndMayTryAgain) {
  CaptureSession session({});
  AddAll(session, {0, 60});
  Testing::RecordingListener listener(0);
  EXPECT_FALSE(session.Stitch(&listener).has_value());
  EXPECT_THAT(listener.calls, ::testing::Contains("error 4 false"));
  EXPECT_TRUE(session.Stitch(nullptr).has_value());
}

TEST_F(ExactSession, TakesNoBorders) {
  SessionSettings settings;
  settings.borders = BorderThresholds{};
  EXPECT_THROW(CaptureSession{settings}, std::invalid_argument);
}

}  // namespace
}  // namespace ScrollingCapture
