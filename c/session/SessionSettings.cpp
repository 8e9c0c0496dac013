#include <cstdint>
#include <filesystem>
#include <system_error>

#include <c/calls/SizedStruct.h>
#include <c/calls/ThreadCount.h>
#include <c/pictures/Images.h>
#include <c/session/SessionSettings.h>

namespace ScrollingCapture::C {
namespace {

constexpr vel_session_settings DefaultSettings = {sizeof(vel_session_settings),
                                                  VEL_EXACT,
                                                  VEL_BOTH,
                                                  0,
                                                  1,
                                                  0,
                                                  VEL_ONCE,
                                                  0,
                                                  BorderThresholds().difference,
                                                  BorderThresholds().neighbors,
                                                  0,
                                                  0,
                                                  0,
                                                  UINT64_MAX,
                                                  nullptr};

std::optional<cv::Size> PreviewBoxOf(const vel_session_settings& settings) {
  if (settings.preview_width == 0 && settings.preview_height == 0) {
    return std::nullopt;
  }
  InRange(settings.preview_width, 1, LongestSide, "preview_width");
  InRange(settings.preview_height, 1, std::min(LongestSide, MostPixels / settings.preview_width),
          "preview_height");
  return cv::Size(settings.preview_width, settings.preview_height);
}

std::string FolderOf(const char* folder) {
  std::error_code error;
  if (folder != nullptr && !std::filesystem::is_directory(folder, error)) {
    throw InvalidArgument("there is no folder '" + std::string(folder) + "' for spill files");
  }
  return folder == nullptr ? "" : folder;
}

}  // namespace

ScrollOrientation OrientationOf(int orientation) {
  return static_cast<ScrollOrientation>(
      InRange<int>(orientation, VEL_VERTICAL, VEL_BOTH, "orientation"));
}

BorderThresholds ThresholdsOf(unsigned int difference, unsigned int neighbors) {
  return {InRange(difference, 0U, 255U, "border_difference"),
          InRange(neighbors, 0U, 8U, "border_neighbors")};
}

SessionSettings SettingsOf(const vel_session_settings* settings) {
  const vel_session_settings taken = settings == nullptr
                                         ? DefaultSettings
                                         : Taken(settings, DefaultSettings, "vel_session_settings");
  SessionSettings asked;
  asked.engine =
      static_cast<Engine>(InRange<int>(taken.engine, VEL_EXACT, VEL_PHASE_CORRELATION, "engine"));
  asked.orientation = OrientationOf(taken.orientation);
  asked.expectConsistentTranslations = taken.expect_consistent_motions != 0;
  asked.threadCount = ThreadCountOf(taken.thread_count);
  asked.keepRepeats = taken.keep_repeats != 0;
  asked.fixedParts =
      static_cast<FixedParts>(InRange<int>(taken.fixed_parts, VEL_ONCE, VEL_KEEP, "fixed_parts"));
  const BorderThresholds borders = ThresholdsOf(taken.border_difference, taken.border_neighbors);
  if (taken.find_borders != 0) {
    asked.borders = borders;
  }
  if (taken.memory_limit != UINT64_MAX) {
    asked.memoryLimit = taken.memory_limit;
  }
  asked.spillFolder = FolderOf(taken.spill_folder);
  asked.previewBox = PreviewBoxOf(taken);
  return asked;
}

}  // namespace ScrollingCapture::C

void vel_session_settings_init(vel_session_settings* settings, size_t struct_size) {
  ScrollingCapture::C::Initialise(settings, struct_size, ScrollingCapture::C::DefaultSettings);
}
