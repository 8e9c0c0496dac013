#include <fuzz/velscroll/ToldReport.h>
#include <nlohmann/json.hpp>

namespace ScrollingCapture::Fuzzing {

ToldReport ReadReport(const std::string& text) {
  const nlohmann::json report = nlohmann::json::parse(text);
  const nlohmann::json& result = report.at("result");
  ToldReport told;
  told.file = result.at("file");
  told.size = {result.at("width").get<int>(), result.at("height").get<int>()};
  told.warnings = report.at("warnings").size();
  for (const nlohmann::json& capture : report.at("captures")) {
    told.captures.push_back(
        {capture.at("file"), capture.at("place").at("row"), !capture.at("overlap").is_null()});
  }
  return told;
}

}  // namespace ScrollingCapture::Fuzzing
