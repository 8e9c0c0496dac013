#include <filesystem>

#include <nlohmann/json.hpp>
#include <velscroll/input/FileContent.h>
#include <velscroll/input/JoinsFile.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

using Json = nlohmann::json;

Json Parse(const std::string& path) {
  try {
    return Json::parse(ReadFile(path)).at("captures");
  } catch (const Json::exception&) {
    throw BadInput(Quoted(path) +
                   " has no captures to read joins from; give a file that --report has written");
  }
}

std::string FileName(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

/// Names that are no UTF-8 are not in a report as they are on the disk.
bool IsAbout(const Json& capture, const std::string& file) {
  const Json written =
      Json::parse(Json(FileName(file)).dump(-1, ' ', false, Json::error_handler_t::replace));
  return FileName(capture.at("file").get<std::string>()) == written.get<std::string>();
}

std::optional<Translation> MotionOf(const Json& capture) {
  const Json& join = capture.at("join");
  if (join.is_null()) {
    return std::nullopt;
  }
  const Translation motion(join.at("rows").get<int>(), join.at("columns").get<int>());
  const bool isUnknown = join.at("verdict") == "none" && motion == Translation();
  return isUnknown ? std::nullopt : std::make_optional(motion);
}

void RequireSame(bool same, const std::string& path) {
  if (!same) {
    throw BadInput(Quoted(path) +
                   " is about other captures; give the same captures in the same order");
  }
}

}  // namespace

std::vector<std::optional<Translation>> ReadJoins(const std::string& path,
                                                  const std::vector<std::string>& captures) {
  const Json told = Parse(path);
  RequireSame(told.is_array() && told.size() == captures.size(), path);
  std::vector<std::optional<Translation>> motions;
  for (size_t i = 0; i < captures.size(); ++i) {
    try {
      RequireSame(IsAbout(told[i], captures[i]), path);
      motions.push_back(MotionOf(told[i]));
    } catch (const Json::exception&) {
      throw BadInput(Quoted(path) + " does not tell how " + Quoted(captures[i]) +
                     R"( is joined; write "join": {"verdict": ..., "rows": ..., "columns": ...})");
    }
  }
  return motions;
}

}  // namespace ScrollingCapture::Program
