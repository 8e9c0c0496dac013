#include <desktop/recording/Recording.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>
#include <testkit/TemporaryFolder.h>

#include "FakeWindow.h"
#include "Waiting.h"

namespace ScrollingCapture::Desktop {
namespace {

/// A recording whose temporary files go to a folder of the test's own.
class RecordingTest : public testing::Test {
 protected:
  RecordingTest() { qputenv("TMPDIR", QByteArray::fromStdString(folder.Path().string())); }
  ~RecordingTest() override { qunsetenv("TMPDIR"); }

  std::unique_ptr<Recording> Begin(const PickSource& pick, const RecordingOptions& options = {}) {
    auto recording = std::make_unique<Recording>(pick, options);
    QObject::connect(recording.get(), &Recording::opened,
                     [&, running = recording.get()](auto area) {
                       region = area;
                       running->begin();
                     });
    QObject::connect(recording.get(), &Recording::progressed,
                     [this](const QString& size, const QString& warning) {
                       lastSize = size;
                       lastWarning = warning;
                     });
    QObject::connect(recording.get(), &Recording::grown,
                     [this](const QImage& image) { preview = image; });
    QObject::connect(recording.get(), &Recording::finished, [this](const Recorded& recorded) {
      result = recorded;
      hasEnded = true;
    });
    QObject::connect(recording.get(), &Recording::discarded,
                     [this] { hasEnded = isDiscarded = true; });
    QObject::connect(recording.get(), &Recording::failed, [this](const QString& line) {
      failure = line;
      hasEnded = true;
    });
    recording->start();
    return recording;
  }

  bool WaitForEnd() {
    return WaitUntil([this] { return hasEnded; });
  }

  bool WaitForSize(const QString& size) {
    return WaitUntil([&] { return lastSize == size; });
  }

  cv::Mat Pixels(std::size_t part = 0) const {
    const RecordedPicture& picture = *result.parts.at(part);
    return picture.Area({{0, 0}, picture.Size()});
  }

  const Testing::TemporaryFolder folder;
  FakeWindow window;
  QRect region;
  QString lastSize;
  QString lastWarning;
  QImage preview;
  Recorded result;
  QString failure;
  bool isDiscarded = false;
  bool hasEnded = false;
};

TEST_F(RecordingTest, GivesThePageThatWasScrolled) {
  const auto recording = Begin(PickOf(window));
  ASSERT_TRUE(WaitForSize("200 rows × 240 columns"));
  EXPECT_EQ(region, QRect(100, 100, 240, 200));
  window.row = 90;
  ASSERT_TRUE(WaitForSize("290 rows × 240 columns"));
  window.row = 170;
  ASSERT_TRUE(WaitForSize("370 rows × 240 columns"));
  recording->finish();
  ASSERT_TRUE(WaitForEnd());
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_TRUE(Testing::SameBits(Pixels(), window.Seen()));
  EXPECT_TRUE(result.notes.isEmpty());
  EXPECT_FALSE(preview.isNull());
}

TEST_F(RecordingTest, ScrollsByItselfToTheEndOfThePage) {
  RecordingOptions options;
  options.scrollsByItself = Live::ScrollDirection::Down;
  const auto recording = Begin(PickOf(window), options);
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(failure, "");
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_TRUE(Testing::SameBits(Pixels(), window.page));
}

TEST_F(RecordingTest, SaysThatItWasTooFastUntilTheWayIsSeen) {
  const auto recording = Begin(PickOf(window));
  ASSERT_TRUE(WaitForSize("200 rows × 240 columns"));
  window.row = 500;
  ASSERT_TRUE(WaitUntil([this] { return lastWarning.startsWith("Too fast: scroll back"); }));
  for (const int row : {380, 260, 130}) {
    window.row = row;
    QTest::qWait(200);
  }
  ASSERT_TRUE(WaitUntil([this] { return lastWarning.isEmpty(); }));
  recording->finish();
  ASSERT_TRUE(WaitForEnd());
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_TRUE(Testing::SameBits(Pixels(), window.page.rowRange(0, 700)));
}

TEST_F(RecordingTest, TellsOfPartsBetweenWhichCapturesAreMissing) {
  const auto recording = Begin(PickOf(window));
  ASSERT_TRUE(WaitForSize("200 rows × 240 columns"));
  window.row = 500;
  ASSERT_TRUE(WaitUntil([this] { return lastWarning.startsWith("Too fast"); }));
  recording->finish();
  ASSERT_TRUE(WaitForEnd());
  ASSERT_EQ(result.parts.size(), 2U);
  EXPECT_EQ(result.notes,
            QStringList("Captures are missing in between: the picture comes in 2 parts"));
}

TEST_F(RecordingTest, DiscardedLeavesNothing) {
  const auto recording = Begin(PickOf(window));
  ASSERT_TRUE(WaitForSize("200 rows × 240 columns"));
  EXPECT_FALSE(folder.Contents().empty());
  recording->discard();
  ASSERT_TRUE(WaitForEnd());
  EXPECT_TRUE(isDiscarded);
  EXPECT_TRUE(result.parts.empty());
}

TEST_F(RecordingTest, LeavesNothingWhenItGoesInTheMidst) {
  {
    const auto recording = Begin(PickOf(window));
    ASSERT_TRUE(WaitForSize("200 rows × 240 columns"));
  }
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(RecordingTest, KeepsWhatWasCapturedWhenTheWindowCloses) {
  const auto recording = Begin(PickOf(window));
  ASSERT_TRUE(WaitForSize("200 rows × 240 columns"));
  window.isClosed = true;
  ASSERT_TRUE(WaitForEnd());
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_TRUE(Testing::SameBits(Pixels(), window.Seen()));
  EXPECT_EQ(result.notes,
            QStringList("The window was closed; this is what was captured until then"));
}

TEST_F(RecordingTest, IsDiscardedWhenNothingIsChosen) {
  const auto recording = Begin([](const auto&, const auto&) { return OpenSource(); });
  ASSERT_TRUE(WaitForEnd());
  EXPECT_TRUE(isDiscarded);
}

TEST_F(RecordingTest, StopsToChooseWhenItIsDiscarded) {
  const auto recording = Begin([](const RecordingOptions&, const std::function<bool()>& goOn) {
    while (goOn()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return OpenSource();
  });
  recording->discard();
  ASSERT_TRUE(WaitForEnd());
  EXPECT_TRUE(isDiscarded);
}

TEST_F(RecordingTest, TellsWhyAWindowCannotBeCaptured) {
  const auto recording = Begin([](const auto&, const auto&) -> OpenSource {
    return []() -> std::unique_ptr<Live::ICaptureSource> {
      throw std::runtime_error("the window is hidden; show it first");
    };
  });
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(failure, "The window is hidden; show it first");
}

TEST_F(RecordingTest, TellsThatThereIsNoTemporaryFolder) {
  qputenv("TMPDIR", "/nowhere");
  const auto recording = Begin(PickOf(window));
  ASSERT_TRUE(WaitForEnd());
  EXPECT_TRUE(failure.startsWith("No temporary folder can be made")) << failure.toStdString();
}

TEST_F(RecordingTest, IsFinishedByAKey) {
  std::atomic<bool> isPressed{false};
  Recording recording(PickOf(window), {});
  bool isFinished = false;
  QObject::connect(&recording, &Recording::finished, [&] { isFinished = true; });
  QObject::connect(&recording, &Recording::opened, [&] { recording.begin(); });
  recording.listenTo([&] { return isPressed.load(); });
  recording.start();
  QTest::qWait(200);
  EXPECT_FALSE(isFinished);
  isPressed = true;
  EXPECT_TRUE(WaitUntil([&] { return isFinished; }));
}

}  // namespace
}  // namespace ScrollingCapture::Desktop
