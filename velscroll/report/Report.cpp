#include <nlohmann/json.hpp>
#include <velscroll/arguments/SettingNames.h>
#include <velscroll/report/Report.h>

namespace ScrollingCapture::Program {
namespace {

using Json = nlohmann::ordered_json;

const char* StateName(ReportedCapture::State state) {
  switch (state) {
    case ReportedCapture::Repeated:
      return "repeated";
    case ReportedCapture::LeftOut:
      return "left out";
    default:
      return "kept";
  }
}

Json RowsAndColumns(int rows, int columns) { return {{"rows", rows}, {"columns", columns}}; }

Json Describe(const Overlap& overlap) {
  Json described = RowsAndColumns(overlap.rows, overlap.columns);
  described["correlation"] = overlap.correlation ? Json(*overlap.correlation) : Json();
  described["agrees"] = overlap.Agrees();
  return described;
}

Json Describe(const ReportedCapture& capture, bool isFirst) {
  const Translation& translation = capture.translation;
  return {
      {"file", capture.file},
      {"state", StateName(capture.state)},
      {"translation",
       isFirst ? Json() : RowsAndColumns(translation.GetRows(), translation.GetCols())},
      {"place", {{"row", capture.place.row}, {"column", capture.place.column}}},
      {"overlap", capture.overlap ? Describe(*capture.overlap) : Json()},
  };
}

Json DescribeAll(const std::vector<ReportedCapture>& captures) {
  Json described = Json::array();
  for (const ReportedCapture& capture : captures) {
    described.push_back(Describe(capture, described.empty()));
  }
  return described;
}

Json Describe(const BorderThresholds& thresholds) {
  return {{"differenceThreshold", thresholds.difference},
          {"neighborThreshold", thresholds.neighbors}};
}

Json Describe(const SessionSettings& settings) {
  return {
      {"orientation", NameOf(settings.orientation)},
      {"consistent", settings.expectConsistentTranslations},
      {"threads", settings.threadCount},
      {"keepRepeats", settings.keepRepeats},
      {"borders", settings.borders ? Describe(*settings.borders) : Json()},
      {"memoryLimit", settings.memoryLimit ? Json(*settings.memoryLimit) : Json()},
  };
}

Json Describe(const FixedBorders& borders) {
  const cv::Rect& box = borders.contentBox;
  return {
      {"contentBox",
       {{"row", box.y}, {"column", box.x}, {"rows", box.height}, {"columns", box.width}}},
      {"top", borders.top},
      {"bottom", borders.bottom},
      {"left", borders.left},
      {"right", borders.right},
  };
}

Json Describe(const StageSeconds& seconds) {
  return {
      {"reading", seconds.reading},
      {"detection", seconds.detection},
      {"composing", seconds.composing},
      {"writing", seconds.writing},
  };
}

}  // namespace

std::string ReportText(const ReportContent& content) {
  const Json report = {
      {"version", VELSCROLL_VERSION},
      {"result",
       {{"file", content.resultFile},
        {"width", content.resultSize.width},
        {"height", content.resultSize.height}}},
      {"settings", Describe(content.settings)},
      {"borders", content.borders ? Describe(*content.borders) : Json()},
      {"captures", DescribeAll(content.captures)},
      {"warnings", content.warnings},
      {"remarks", content.remarks},
      {"seconds", Describe(content.seconds)},
  };
  // A file name may hold bytes that are no UTF-8.
  constexpr int Indentation = 2;
  return report.dump(Indentation, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace ScrollingCapture::Program
