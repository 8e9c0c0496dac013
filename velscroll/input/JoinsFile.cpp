#include <cmath>
#include <filesystem>
#include <stdexcept>

#include <nlohmann/json.hpp>
#include <velscroll/input/FileContent.h>
#include <velscroll/input/JoinsFile.h>
#include <velscroll/terminal/Failure.h>

#include <VelScrollingCapture/matching/CapturePlacer.h>

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

/// The parser's own conversion would take fractions, truth values, and what no int can tell.
int PixelsOf(const Json& number) {
  const auto pixels = number.get<double>();
  if (!number.is_number_integer() || std::abs(pixels) > CapturePlacer::LongestPrescribed) {
    throw std::out_of_range("This is not a number of pixels.");
  }
  return static_cast<int>(pixels);
}

Translation MotionOf(const Json& told) {
  return {PixelsOf(told.at("rows")), PixelsOf(told.at("columns"))};
}

/// Whether the report knew of no motion, as far as nobody has put one there: nothing joins the
/// capture to those before it, or not to the part of the one before.
bool IsUnknown(const Json& capture, const Json& before) {
  const Json& join = capture.at("join");
  const bool isEdited =
      MotionOf(join) !=
      (capture.contains("translation") ? MotionOf(capture.at("translation")) : Translation());
  const bool isOfOtherPart = capture.value("part", Json()) != before.value("part", Json());
  return !isEdited && (join.at("verdict") == "none" || isOfOtherPart);
}

std::optional<Translation> MotionTo(const Json& capture, const Json& before) {
  const bool isUnknown = capture.at("join").is_null() || IsUnknown(capture, before);
  return isUnknown ? std::nullopt : std::make_optional(MotionOf(capture.at("join")));
}

[[noreturn]] void RefuseJoin(const std::string& path, const std::string& capture) {
  throw BadInput(Quoted(path) + " does not tell how " + Quoted(capture) +
                 R"( is joined; write "join": {"verdict": ..., "rows": ..., "columns": ...})");
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
      motions.push_back(MotionTo(told[i], i > 0 ? told[i - 1] : told[i]));
    } catch (const Json::exception&) {
      RefuseJoin(path, captures[i]);
    } catch (const std::out_of_range&) {
      RefuseJoin(path, captures[i]);
    }
  }
  return motions;
}

}  // namespace ScrollingCapture::Program
