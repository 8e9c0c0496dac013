// Runs tests that need an application, on a platform without a screen unless told otherwise.
#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  const QTemporaryDir session;
  qputenv("XDG_RUNTIME_DIR", session.path().toLocal8Bit());
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
