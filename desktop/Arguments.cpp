#include <QCommandLineParser>

#include <desktop/Arguments.h>
#include <velscroll/arguments/ChoiceValues.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {
namespace {

using Program::BadInput;

Live::XChoice WindowOf(const QString& text) {
  return {Program::ParseWindow(text.toStdString()), {}};
}

Live::XChoice RegionOf(const QString& text) {
  return {XCB_WINDOW_NONE, Program::ParseRegion(text.toStdString())};
}

}  // namespace

Arguments ParseArguments(const QStringList& words) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "Captures a window while it scrolls, and joins what it shows into one picture.");
  const QCommandLineOption help = parser.addHelpOption();
  const QCommandLineOption version = parser.addVersionOption();
  parser.addOptions({
      {"window", "Record the window with this <number> at once.", "number"},
      {"region", "Record this <region> of the screen at once: WxH+X+Y.", "region"},
      {"auto", "Scroll by itself: down, up, right or left.", "direction"},
      {"cursor", "Show the mouse pointer in the picture."},
  });
  if (!parser.parse(words)) {
    throw BadInput(parser.errorText().toStdString());
  }
  Arguments arguments;
  if (parser.isSet(help)) {
    arguments.text = parser.helpText();
    return arguments;
  }
  if (parser.isSet(version)) {
    arguments.text = "velscroll-desktop " VEL_VERSION "\n";
    return arguments;
  }
  if (!parser.positionalArguments().isEmpty()) {
    throw BadInput(parser.positionalArguments().front().toStdString() + " is not an option");
  }
  const bool hasWindow = parser.isSet("window");
  const bool hasRegion = parser.isSet("region");
  if (hasWindow && hasRegion) {
    throw BadInput("--window and --region do not go together");
  }
  if ((parser.isSet("auto") || parser.isSet("cursor")) && !hasWindow && !hasRegion) {
    throw BadInput("--auto and --cursor take --window or --region");
  }
  if (hasWindow) {
    arguments.choice = WindowOf(parser.value("window"));
  } else if (hasRegion) {
    arguments.choice = RegionOf(parser.value("region"));
  }
  if (parser.isSet("auto")) {
    arguments.options.scrollsByItself = Program::ParseDirection(parser.value("auto").toStdString());
  }
  arguments.options.showsPointer = parser.isSet("cursor");
  return arguments;
}

}  // namespace ScrollingCapture::Desktop
