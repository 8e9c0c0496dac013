#include <QApplication>
#include <QScreen>
#include <QSignalSpy>

#include <desktop/Host.h>
#include <gtest/gtest.h>
#include <testkit/TemporaryFolder.h>
#include <velscroll/terminal/Failure.h>

#include "FakeWindow.h"
#include "ShownWindows.h"
#include "Waiting.h"

namespace ScrollingCapture::Desktop {
namespace {

void Click(QWidget& window, const char* button) {
  QTest::mouseClick(window.findChild<QPushButton*>(button), Qt::LeftButton);
}

class HostTest : public testing::Test {
 protected:
  HostTest()
      : host({PickOf(window), "F9",
              [this] {
                if (isKeyTaken) {
                  throw std::runtime_error("another program has the key F9");
                }
                return [this] { return isKeyPressed.load(); };
              }},
             {[this](QWidget* /*window*/, const QString& /*loss*/) {
                ++closingQuestions;
                return ClosingAnswer::Discard;
              },
              [this](const QString& notice) {
                notices << notice;
                return recordsBlind;
              }}) {
    QObject::connect(&host, &Host::ended, [this](int endStatus, const QString& endLine) {
      status = endStatus;
      line = endLine;
    });
  }

  bool WaitForRows(Panel& panel, const QString& rows) {
    return WaitUntil([&] { return panel.findChild<QLabel*>("size")->text().startsWith(rows); });
  }

  void FillScreen() {
    const QSize screen = QApplication::primaryScreen()->size();
    window.region = {0, 0, screen.width(), screen.height()};
    window.page = Testing::TextPage({screen.width(), screen.height() + 300});
  }

  bool WaitForTheEnd(int expected) const {
    return WaitUntil([&] { return status == expected; });
  }

  FakeWindow window;
  std::atomic<bool> isKeyPressed{false};
  bool isKeyTaken = false;
  bool recordsBlind = true;
  int closingQuestions = 0;
  QStringList notices;
  int status = -1;
  QString line;
  Host host;
};

TEST_F(HostTest, RecordsBesideAPanelAndShowsThePicture) {
  host.showStart();
  Click(*WaitFor<StartWindow>(), "choose");
  auto* const panel = WaitFor<Panel>();
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(Shown<StartWindow>(), nullptr);
  EXPECT_FALSE(panel->frameGeometry().intersects(QRect(100, 100, 240, 200)));
  ASSERT_TRUE(WaitForRows(*panel, "200 rows"));
  window.row = 120;
  ASSERT_TRUE(WaitForRows(*panel, "320 rows"));
  EXPECT_TRUE(WaitUntil([&] {
    return panel->findChild<QLabel*>("preview")->pixmap(Qt::ReturnByValue).height() > 200;
  }));
  Click(*panel, "finish");
  auto* const picture = WaitFor<PictureWindow>();
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(Shown<Panel>(), nullptr);
  EXPECT_EQ(status, -1);
  picture->close();
  EXPECT_EQ(closingQuestions, 1);
  EXPECT_TRUE(WaitForTheEnd(Program::Done));
}

TEST_F(HostTest, TakesThePicturesAndTheirFilesWithIt) {
  const Testing::TemporaryFolder folder;
  qputenv("TMPDIR", QByteArray::fromStdString(folder.Path().string()));
  {
    Host other({PickOf(window), {}, {}}, DialogQuestions());
    other.record(PickOf(window), {});
    auto* const panel = WaitFor<Panel>();
    ASSERT_NE(panel, nullptr);
    ASSERT_TRUE(WaitForRows(*panel, "200 rows"));
    Click(*panel, "finish");
    auto* const picture = WaitFor<PictureWindow>();
    ASSERT_NE(picture, nullptr);
    picture->copy();
    EXPECT_TRUE(WaitUntil([&] { return folder.Contents().size() == 2; }));
  }
  qunsetenv("TMPDIR");
  EXPECT_EQ(Shown<PictureWindow>(), nullptr);
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(HostTest, ShowsTheStartAgainWhenTheUserDiscards) {
  host.showStart();
  Click(*WaitFor<StartWindow>(), "choose");
  auto* const panel = WaitFor<Panel>();
  ASSERT_NE(panel, nullptr);
  Click(*panel, "discard");
  auto* const start = WaitFor<StartWindow>();
  ASSERT_NE(start, nullptr);
  EXPECT_EQ(Shown<Panel>(), nullptr);
  start->close();
  EXPECT_TRUE(WaitForTheEnd(Program::Done));
}

TEST_F(HostTest, AsksToChooseWhenThePanelIsToBeClosed) {
  host.record(PickOf(window), {});
  auto* const panel = WaitFor<Panel>();
  ASSERT_NE(panel, nullptr);
  EXPECT_FALSE(panel->close());
  EXPECT_TRUE(panel->isVisible());
  EXPECT_TRUE(panel->findChild<QLabel*>("warning")->text().startsWith("Finish keeps"));
}

TEST_F(HostTest, EndsWhenWhatWasNamedAtTheStartIsDiscarded) {
  host.record(PickOf(window), {});
  auto* const panel = WaitFor<Panel>();
  ASSERT_NE(panel, nullptr);
  Click(*panel, "discard");
  EXPECT_TRUE(WaitForTheEnd(Program::WasCancelled));
}

TEST_F(HostTest, EndsWithALineWhenWhatWasNamedAtTheStartCannotBeCaptured) {
  host.record([](const auto&,
                 const auto&) -> OpenSource { throw std::runtime_error("there is no window 9"); },
              {});
  EXPECT_TRUE(WaitForTheEnd(Program::WorkFailed));
  EXPECT_EQ(line, "There is no window 9");
}

TEST_F(HostTest, TellsInTheStartWindowWhyARecordingFailed) {
  host.showStart();
  host.record([](const auto&,
                 const auto&) -> OpenSource { throw std::runtime_error("there is no window 9"); },
              {});
  auto* const start = WaitFor<StartWindow>();
  ASSERT_NE(start, nullptr);
  EXPECT_EQ(start->findChild<QLabel*>("message")->text(), "There is no window 9");
}

TEST_F(HostTest, RecordsAFullScreenWithoutAPanelUntilTheKeyIsPressed) {
  FillScreen();
  host.record(PickOf(window), {});
  ASSERT_TRUE(WaitUntil([&] { return !notices.isEmpty(); }));
  EXPECT_TRUE(notices[0].contains("F9"));
  QTest::qWait(500);
  EXPECT_EQ(Shown<Panel>(), nullptr);
  EXPECT_EQ(Shown<PictureWindow>(), nullptr);
  isKeyPressed = true;
  EXPECT_NE(WaitFor<PictureWindow>(), nullptr);
}

TEST_F(HostTest, DropsAFullScreenThatTheUserDoesNotWant) {
  FillScreen();
  recordsBlind = false;
  host.record(PickOf(window), {});
  EXPECT_TRUE(WaitForTheEnd(Program::WasCancelled));
}

TEST_F(HostTest, RefusesAFullScreenThatNothingCouldEnd) {
  FillScreen();
  isKeyTaken = true;
  host.record(PickOf(window), {});
  EXPECT_TRUE(WaitForTheEnd(Program::WorkFailed));
  EXPECT_TRUE(line.contains("choose a smaller one (Another program has the key F9)"));
}

TEST_F(HostTest, PassesOnWhatTheStartWindowOffers) {
  host.showStart();
  auto* const start = WaitFor<StartWindow>();
  ASSERT_NE(start, nullptr);
  EXPECT_FALSE(start->options().scrollsByItself);
  EXPECT_FALSE(start->options().showsPointer);
  start->findChild<QComboBox*>("scrolling")->setCurrentIndex(2);
  start->findChild<QCheckBox*>("pointer")->setChecked(true);
  EXPECT_EQ(start->options().scrollsByItself, Live::ScrollDirection::Up);
  EXPECT_TRUE(start->options().showsPointer);
}

}  // namespace
}  // namespace ScrollingCapture::Desktop
