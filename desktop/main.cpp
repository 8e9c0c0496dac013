// Choose a window, scroll, get the picture.
//
// Exit status: 0 done, 1 failed, 2 wrong usage, 130 cancelled.
#include <QApplication>
#include <QIcon>
#include <QTextStream>
#include <QTimer>
#include <csignal>

#include <desktop/Arguments.h>
#include <desktop/Host.h>
#include <desktop/support/Explanation.h>
#include <desktop/x11/X11Platform.h>
#include <live/x11/XConnection.h>
#include <opencv2/core/utils/logger.hpp>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Desktop {
namespace {

int Complain(int status, const QString& line) {
  QTextStream(stderr) << "velscroll-desktop: " << line << '\n';
  return status;
}

/// Throws what tells the user that there is nothing to show windows on: Qt would end the process.
void RequireServer() { const Live::XConnection connection; }

/// Ctrl-C and a termination request end the program, and what it leaves behind goes with it.
void EndWhenInterrupted(QTimer& timer) {
  constexpr int BetweenLooks = 200;
  Program::ListenForInterruption();
  QObject::connect(&timer, &QTimer::timeout, [] {
    if (Program::InterruptionRequested()) {
      QApplication::exit(Program::WasCancelled);
    }
  });
  timer.start(BetweenLooks);
}

/// The help needs no server, but an application.
Arguments ParseWithoutServer(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  return ParseArguments(QCoreApplication::arguments());
}

int RunHost(const Arguments& arguments) {
  Host host(X11Platform(), DialogQuestions());
  QObject::connect(&host, &Host::ended, [](int status, const QString& line) {
    QApplication::exit(line.isEmpty() ? status : Complain(status, line));
  });
  if (arguments.choice) {
    host.record(Chosen(*arguments.choice), arguments.options);
  } else {
    host.showStart();
  }
  return QApplication::exec();
}

int Run(int argc, char** argv) {
  const Arguments arguments = ParseWithoutServer(argc, argv);
  if (!arguments.text.isEmpty()) {
    QTextStream(stdout) << arguments.text;
    return Program::Done;
  }
  RequireServer();
  qputenv("QT_QPA_PLATFORM",
          "xcb");  // also in a Wayland session: it is X windows that are captured
  QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
  QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  const QApplication application(argc, argv);
  QApplication::setApplicationDisplayName("Scrolling capture");
  QApplication::setDesktopFileName("velscroll-desktop");
  QApplication::setWindowIcon(QIcon(":/velscroll-desktop.svg"));
  QApplication::setQuitOnLastWindowClosed(false);  // a recording has no window at times
  QTimer interruption;
  EndWhenInterrupted(interruption);
  return RunHost(arguments);
}

}  // namespace
}  // namespace ScrollingCapture::Desktop

int main(int argc, char** argv) {
  using namespace ScrollingCapture;
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  std::signal(SIGXFSZ, SIG_IGN);  // writing then fails like on a full disk
  try {
    return Desktop::Run(argc, argv);
  } catch (const Program::Failure& failure) {
    return Desktop::Complain(failure.Status(), failure.what());
  } catch (const std::exception&) {
    return Desktop::Complain(Program::WorkFailed, Desktop::Explain(std::current_exception()));
  }
}
