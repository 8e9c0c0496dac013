// A host with a window: scrolls a document, captures it, and stitches the captures.
//
// Exit status with --auto: 0 done, 1 failed, 2 wrong usage, 130 cancelled.
#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include "MainWindow.h"

namespace {

enum ExitStatus { Done = 0, Failed = 1, WrongUsage = 2, Cancelled = 130 };

struct Options {
  bool runsByItself = false;
  QString save;
  QString screenshot;
  QString document;
  QString cancelDuring;
  QString closeDuring;
};

Options Parse(const QApplication& application) {
  QCommandLineParser parser;
  parser.setApplicationDescription("Captures a document while it scrolls by itself.");
  parser.addHelpOption();
  parser.addOptions({
      {"auto", "Start at once, and quit when done."},
      {"save", "With --auto, write the result to <file>.", "file"},
      {"screenshot", "With --auto, write a picture of the window while it captures.", "file"},
      {"document", "Write the whole document in one piece to <file>, to compare.", "file"},
      {"cancel-during", "With --auto, cancel during <stage>: capture or stitch.", "stage"},
      {"close-during", "With --auto, close the window during <stage>.", "stage"},
  });
  parser.process(application);
  return {parser.isSet("auto"),     parser.value("save"),          parser.value("screenshot"),
          parser.value("document"), parser.value("cancel-during"), parser.value("close-during")};
}

int Fail(const QString& file, const QString& problem) {
  QTextStream(stderr) << file << ": " << problem << '\n';
  return Failed;
}

bool IsStage(const QString& name) {
  return name.isEmpty() || name == "capture" || name == "stitch";
}

void EndEarly(MainWindow& window, const Options& options, const QString& stage) {
  if (options.cancelDuring == stage) {
    window.cancel();
  } else if (options.closeDuring == stage) {
    window.close();
  }
}

/// Does what a user would do with the mouse.
void RunByItself(MainWindow& window, const Options& options) {
  QObject::connect(&window, &MainWindow::captured, &window, [&](int count) {
    constexpr int Midway = 5;
    if (count == Midway && !options.screenshot.isEmpty() &&
        !window.grab().save(options.screenshot)) {
      QApplication::exit(Fail(options.screenshot, "cannot be written"));
    }
    if (count == Midway) {
      EndEarly(window, options, "capture");
    }
  });
  QObject::connect(&window, &MainWindow::stitchProgressed, &window,
                   [&] { EndEarly(window, options, "stitch"); });
  QObject::connect(&window, &MainWindow::finished, &window, [&](MainWindow::Outcome outcome) {
    if (outcome != MainWindow::Outcome::Stitched) {
      QApplication::exit(outcome == MainWindow::Outcome::Cancelled ? Cancelled : Failed);
      return;
    }
    const QString problem = options.save.isEmpty() ? QString() : window.save(options.save);
    QApplication::exit(problem.isEmpty() ? int{Done} : Fail(options.save, problem));
  });
  QApplication::setQuitOnLastWindowClosed(false);  // the exit status tells how the capture ended
  window.start();
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  const Options options = Parse(application);
  if (!IsStage(options.cancelDuring) || !IsStage(options.closeDuring)) {
    QTextStream(stderr) << "--cancel-during and --close-during take capture or stitch\n";
    return WrongUsage;
  }
  MainWindow window;
  if (!options.document.isEmpty() && !window.documentInOnePiece().save(options.document)) {
    return Fail(options.document, "cannot be written");
  }
  window.show();
  if (options.runsByItself) {
    RunByItself(window, options);
  }
  return QApplication::exec();
}
