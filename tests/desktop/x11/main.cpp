// Runs tests on an X server of their own, with a window manager where there is one.
#include <QApplication>
#include <QProcess>
#include <QStandardPaths>
#include <exception>

#include <gtest/gtest.h>
#include <testkit/TemporaryFolder.h>
#include <tests/live/x11/XServer.h>

namespace {

/// A window manager, as long as this lives.
class WindowManager {
 public:
  WindowManager() {
    const QString program = QStandardPaths::findExecutable("openbox");
    if (!program.isEmpty()) {
      process.start(program, {"--sm-disable"});
      process.waitForStarted();
    }
  }
  WindowManager(const WindowManager&) = delete;
  WindowManager& operator=(const WindowManager&) = delete;
  ~WindowManager() {
    process.terminate();
    process.waitForFinished();
  }

 private:
  QProcess process;
};

int RunOnServer(int argc, char** argv) {
  const ScrollingCapture::Testing::XServer server({"-screen", "0", "1280x900x24"});
  const ScrollingCapture::Testing::TemporaryFolder session;
  qputenv("XDG_RUNTIME_DIR", session.Path().c_str());
  qputenv("QT_QPA_PLATFORM", "xcb");
  const WindowManager manager;
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}

}  // namespace

int main(int argc, char** argv) try {
  testing::InitGoogleTest(&argc, argv);
  return testing::GTEST_FLAG(list_tests) ? RUN_ALL_TESTS() : RunOnServer(argc, argv);
} catch (const std::exception& error) {
  qWarning("%s", error.what());
  return 1;
}
