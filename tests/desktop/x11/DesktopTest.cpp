#include <QApplication>
#include <QLabel>
#include <QProcess>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>

#include <desktop/Host.h>
#include <desktop/support/Pixels.h>
#include <desktop/x11/X11Platform.h>
#include <gtest/gtest.h>
#include <live/x11/XWindows.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/pages/Page.h>
#include <tests/desktop/ShownWindows.h>
#include <tests/desktop/Waiting.h>
#include <tests/live/x11/UserInput.h>

namespace ScrollingCapture::Desktop {
namespace {

constexpr int LeftButton = 1;
constexpr int WheelDown = 5;

/// A window of another program: a page that its wheel scrolls.
class ScrolledView : public QScrollArea {
 public:
  explicit ScrolledView(const cv::Mat& page) {
    setWindowTitle("A page");
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* const label = new QLabel;
    label->setPixmap(QPixmap::fromImage(ImageOf(page)));
    setWidget(label);
    setFixedSize(page.cols, 360);
    move(80, 120);
    show();
  }

  cv::Rect AreaOnScreen() const {
    const QPoint corner = mapToGlobal({0, 0});
    return {corner.x(), corner.y(), width(), height()};
  }

  cv::Point Middle() const { return (AreaOnScreen().tl() + AreaOnScreen().br()) / 2; }
};

class DesktopTest : public testing::Test {
 protected:
  DesktopTest() : host(X11Platform(), {AskInDialog, [](const QString&) { return false; }}) {
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    QTest::qWait(300);  // for the window manager to put it where it stays
  }

  void ClickAt(const QWidget& widget) const {
    const QPoint place = widget.mapToGlobal(widget.rect().center());
    user.MoveTo({place.x(), place.y()});
    Click();
  }

  void Click() const {
    user.PressButton(LeftButton);
    user.ReleaseButton(LeftButton);
  }

  void ScrollByHandToTheEnd() const {
    user.MoveTo(view.Middle());
    QScrollBar* const bar = view.verticalScrollBar();
    while (bar->value() < bar->maximum()) {
      const int before = bar->value();
      user.PressButton(WheelDown);
      user.ReleaseButton(WheelDown);
      ASSERT_TRUE(WaitUntil([&] { return bar->value() > before; }));
      QTest::qWait(150);
    }
  }

  void ExpectThatThePageIsSaved() {
    auto* const window = WaitFor<PictureWindow>();
    ASSERT_NE(window, nullptr);
    QSignalSpy saved(window, &PictureWindow::saved);
    const std::string file = folder.Prefix() + "page.png";
    window->save(QString::fromStdString(file));
    ASSERT_TRUE(WaitUntil([&] { return saved.count() == 1; }));
    cv::Mat pixels;
    cv::cvtColor(cv::imread(file), pixels, cv::COLOR_BGR2RGBA);
    EXPECT_TRUE(Testing::SameBits(pixels, page));
  }

  const Testing::TemporaryFolder folder;
  const cv::Mat page = Testing::TextPage({420, 1300}, 4);
  ScrolledView view{page};
  const Testing::UserInput user;
  Host host;
};

TEST_F(DesktopTest, RecordsARegionThatItScrollsByItselfBesideItsPanel) {
  RecordingOptions options;
  options.scrollsByItself = Live::ScrollDirection::Down;
  host.record(Chosen({XCB_WINDOW_NONE, view.AreaOnScreen()}), options);
  auto* const panel = WaitFor<Panel>();
  ASSERT_NE(panel, nullptr);
  EXPECT_TRUE(QTest::qWaitForWindowExposed(panel));
  EXPECT_FALSE(panel->frameGeometry().intersects(RectangleOf(view.AreaOnScreen())));
  EXPECT_EQ(panel->pos(), QPoint(view.AreaOnScreen().br().x + 8, view.AreaOnScreen().y));
  ExpectThatThePageIsSaved();
}

TEST_F(DesktopTest, RecordsTheWindowThatTheUserClicksOnAndScrolls) {
  host.showStart();
  auto* const start = WaitFor<StartWindow>();
  ASSERT_NE(start, nullptr);
  EXPECT_TRUE(QTest::qWaitForWindowExposed(start));
  start->move(700, 500);
  QTest::qWait(300);
  ClickAt(*start->findChild<QPushButton*>("choose"));
  ASSERT_TRUE(WaitUntil([&] { return !start->isVisible(); }));
  QTest::qWait(500);
  user.MoveTo(view.Middle());
  Click();
  auto* const panel = WaitFor<Panel>();
  ASSERT_NE(panel, nullptr);
  ASSERT_TRUE(
      WaitUntil([&] { return panel->findChild<QLabel*>("size")->text().startsWith("360 rows"); }));
  ScrollByHandToTheEnd();
  ASSERT_TRUE(WaitUntil([&] {
    return panel->findChild<QLabel*>("size")->text().remove(',').startsWith("1300 rows");
  }));
  ClickAt(*panel->findChild<QPushButton*>("finish"));
  ExpectThatThePageIsSaved();
}

TEST_F(DesktopTest, TellsOnTheCommandLineWhatCannotBeCaptured) {
  QProcess program;
  program.start(VELSCROLL_DESKTOP, {"--window", "0x12345"});
  ASSERT_TRUE(program.waitForFinished());
  EXPECT_EQ(program.exitCode(), 1);
  EXPECT_EQ(program.readAllStandardError(),
            QByteArray("velscroll-desktop: There is no window 0x12345\n"));
}

/// The program by itself, whose temporary files go to a folder of the test's own.
class ProgramTest : public DesktopTest {
 protected:
  void Start(const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", QString::fromStdString(folder.Path().string()));
    program.setProcessEnvironment(environment);
    program.start(VELSCROLL_DESKTOP, arguments);
    ASSERT_TRUE(program.waitForStarted());
  }

  void ExpectThatItEndsAndLeavesNothing() {
    ASSERT_TRUE(WaitUntil([this] { return !folder.Contents().empty(); }));
    program.terminate();
    ASSERT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 130);
    EXPECT_TRUE(folder.Contents().empty());
  }

  static bool ShowsPicture() {
    try {
      Live::FindWindow(Live::XConnection(), "Picture");
      return true;
    } catch (const Live::CaptureFailure&) {
      return false;
    }
  }

  QProcess program;
};

TEST_F(ProgramTest, LeavesNothingWhenItIsTerminatedWhileItRecords) {
  Start({"--region", "200x200+0+0"});
  ExpectThatItEndsAndLeavesNothing();
}

TEST_F(ProgramTest, LeavesNothingWhenItIsTerminatedWithAnOpenPicture) {
  const cv::Rect area = view.AreaOnScreen();
  Start({"--auto", "down", "--region",
         QString("%1x%2+%3+%4").arg(area.width).arg(area.height).arg(area.x).arg(area.y)});
  ASSERT_TRUE(WaitUntil(ShowsPicture));
  ExpectThatItEndsAndLeavesNothing();
}

}  // namespace
}  // namespace ScrollingCapture::Desktop
