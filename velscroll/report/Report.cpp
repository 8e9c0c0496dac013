#include <nlohmann/json.hpp>
#include <velscroll/names/SettingNames.h>
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

Json Describe(const Join& join) {
  Json described = {{"verdict", NameOf(join.verdict)},
                    {"rows", join.motion.GetRows()},
                    {"columns", join.motion.GetCols()},
                    {"compared", join.compared},
                    {"equal", join.equal},
                    {"alternatives", Json::array()}};
  for (const Translation& motion : join.alternatives) {
    described["alternatives"].push_back(RowsAndColumns(motion.GetRows(), motion.GetCols()));
  }
  return described;
}

Json Describe(const ReportedCapture& capture) {
  const auto& join = capture.join;
  return {
      {"file", capture.file},
      {"state", StateName(capture.state)},
      {"part", capture.part + 1},
      {"translation",
       join ? RowsAndColumns(join->motion.GetRows(), join->motion.GetCols()) : Json()},
      {"place", {{"row", capture.place.row}, {"column", capture.place.column}}},
      {"join", join ? Describe(*join) : Json()},
  };
}

Json Describe(const ReportedPart& part) {
  Json described = {{"file", part.file}, {"width", part.size.width}, {"height", part.size.height}};
  if (part.pieces.size() > 1) {
    described["pieces"] = part.pieces;
  }
  return described;
}

template <typename Items>
Json DescribeAll(const Items& items) {
  Json described = Json::array();
  for (const auto& item : items) {
    described.push_back(Describe(item));
  }
  return described;
}

Json Describe(const BorderThresholds& thresholds) {
  return {{"differenceThreshold", thresholds.difference},
          {"neighborThreshold", thresholds.neighbors}};
}

Json Describe(const SessionSettings& settings) {
  return {
      {"engine", NameOf(settings.engine)},
      {"orientation", NameOf(settings.orientation)},
      {"consistent", settings.expectConsistentTranslations},
      {"threads", settings.threadCount},
      {"keepRepeats", settings.keepRepeats},
      {"fixed", settings.engine == Engine::Exact ? Json(NameOf(settings.fixedParts)) : Json()},
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
      {"result", content.parts.size() == 1 ? Describe(content.parts.front()) : Json()},
      {"parts", DescribeAll(content.parts)},
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
