#include <fuzz/velscroll/ToldReport.h>
#include <nlohmann/json.hpp>

namespace ScrollingCapture::Fuzzing {

ToldReport ReadReport(const std::string& text) {
  const nlohmann::json report = nlohmann::json::parse(text);
  ToldReport told;
  for (const nlohmann::json& part : report.at("parts")) {
    told.parts.push_back({part.at("file"),
                          {part.at("width").get<int>(), part.at("height").get<int>()},
                          part.value("pieces", std::vector<std::string>())});
  }
  told.warnings = report.at("warnings").size();
  for (const nlohmann::json& capture : report.at("captures")) {
    told.captures.push_back(
        {capture.at("file"), capture.at("place").at("row"), !capture.at("join").is_null()});
  }
  return told;
}

}  // namespace ScrollingCapture::Fuzzing
