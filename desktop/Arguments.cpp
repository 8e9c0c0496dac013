#include <QCommandLineParser>
#include <QRegularExpression>

#include <desktop/Arguments.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {
namespace {

using Program::BadInput;

xcb_window_t WindowOf(const QString& text) {
  constexpr int AnyBase = 0;
  bool isNumber = false;
  const uint window = text.toUInt(&isNumber, AnyBase);
  if (!isNumber || window == XCB_WINDOW_NONE) {
    throw BadInput("--window takes a window's number, such as 0x2a00007");
  }
  return window;
}

cv::Rect RegionOf(const QString& text) {
  static const QRegularExpression form(R"(^([1-9]\d{0,4})x([1-9]\d{0,4})\+(\d{1,5})\+(\d{1,5})$)");
  const QRegularExpressionMatch match = form.match(text);
  if (!match.hasMatch()) {
    throw BadInput("--region takes width, height, column and row, such as 800x600+100+50");
  }
  const auto number = [&match](int group) { return match.captured(group).toInt(); };
  return {number(3), number(4), number(1), number(2)};
}

Live::ScrollDirection DirectionOf(const QString& text) {
  static const QStringList names = {"down", "up", "right", "left"};
  const int index = names.indexOf(text);
  if (index < 0) {
    throw BadInput("--auto takes down, up, right or left");
  }
  return static_cast<Live::ScrollDirection>(index);
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
    arguments.choice = Live::XChoice{WindowOf(parser.value("window")), {}};
  } else if (hasRegion) {
    arguments.choice = Live::XChoice{XCB_WINDOW_NONE, RegionOf(parser.value("region"))};
  }
  if (parser.isSet("auto")) {
    arguments.options.scrollsByItself = DirectionOf(parser.value("auto"));
  }
  arguments.options.showsPointer = parser.isSet("cursor");
  return arguments;
}

}  // namespace ScrollingCapture::Desktop
