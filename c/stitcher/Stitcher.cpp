#include <memory>
#include <utility>
#include <vector>

#include <c/calls/Call.h>
#include <c/calls/ProgressRelay.h>
#include <c/calls/SizedStruct.h>
#include <c/calls/ThreadCount.h>
#include <c/pictures/CaptureFile.h>
#include <c/pictures/Images.h>
#include <c/pictures/Picture.h>
#include <c/session/Joins.h>
#include <c/session/SessionSettings.h>

#include <VelScrollingCapture/c/session.h>
#include <VelScrollingCapture/c/stitcher.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

using namespace ScrollingCapture;
using namespace ScrollingCapture::C;

namespace {

/// What a caller's settings ask for.
struct StitcherSettings {
  ScrollOrientation orientation;
  bool expectConsistentTranslations;
  unsigned int threadCount;
  std::optional<BorderThresholds> borders;
};

constexpr vel_stitcher_settings DefaultSettings = {
    sizeof(vel_stitcher_settings), VEL_BOTH, 0, 1, 0, BorderThresholds().difference,
    BorderThresholds().neighbors};

StitcherSettings SettingsOf(const vel_stitcher_settings* settings) {
  const vel_stitcher_settings taken =
      settings == nullptr ? DefaultSettings
                          : Taken(settings, DefaultSettings, "vel_stitcher_settings");
  const BorderThresholds borders = ThresholdsOf(taken.border_difference, taken.border_neighbors);
  return {OrientationOf(taken.orientation), taken.expect_consistent_motions != 0,
          ThreadCountOf(taken.thread_count),
          taken.find_borders != 0 ? std::make_optional(borders) : std::nullopt};
}

/// A new one for each stitch: one that finds borders remembers them.
std::shared_ptr<IStitcher> MakeStitcher(const StitcherSettings& settings) {
  if (!settings.borders) {
    return StitcherFactory::CreateBasicStitcher(
        settings.orientation, settings.expectConsistentTranslations, settings.threadCount);
  }
  return StitcherFactory::CreateStitcherWithBasicBorderDetection(
      settings.orientation, settings.expectConsistentTranslations, settings.threadCount,
      settings.borders->difference, settings.borders->neighbors);
}

}  // namespace

/// A stitcher that a caller holds.
struct vel_stitcher : Handle {
  explicit vel_stitcher(const StitcherSettings& settings)
      : Handle(std::make_shared<Gate>()), settings(settings) {}

  void Add(cv::Mat capture) {
    if (!captures.IsEmpty() && captures.GetImageAt(0)->size() != capture.size()) {
      throw InvalidArgument("the capture has another size than those before it");
    }
    captures.Add(capture);
  }

  cv::Mat Stitch(ProgressRelay& relay);

  std::vector<Translation> translations;  ///< of the last stitch

 private:
  const StitcherSettings settings;
  BasicImageProvider captures;
};

cv::Mat vel_stitcher::Stitch(ProgressRelay& relay) {
  constexpr int WholeProgress = 100;
  // Seams are cut into the captures: they are of no use afterwards.
  BasicImageProvider used;
  std::swap(used, captures);
  if (used.IsEmpty()) {
    throw CallFailure(VEL_NO_CAPTURES, vel_result_text(VEL_NO_CAPTURES));
  }
  const auto stitcher = MakeStitcher(settings);
  cv::Mat picture;
  if (!stitcher->Stitch(used, picture, &relay, 0, WholeProgress, false)) {
    ThrowStitchFailure(relay);
  }
  translations = stitcher->GetTranslations();
  return picture;
}

void vel_stitcher_settings_init(vel_stitcher_settings* settings, size_t struct_size) {
  Initialise(settings, struct_size, DefaultSettings);
}

vel_result vel_stitcher_create(const vel_stitcher_settings* settings, vel_stitcher** stitcher,
                               char* text, size_t size) {
  return Create(stitcher, text, size, [=] { return new vel_stitcher(SettingsOf(settings)); });
}

vel_result vel_stitcher_add(vel_stitcher* stitcher, const vel_source_image* image) {
  return Call(stitcher, [=](vel_stitcher& called) { called.Add(CaptureOf(image)); });
}

vel_result vel_stitcher_add_file(vel_stitcher* stitcher, const char* path) {
  return Call(stitcher, [=](vel_stitcher& called) { called.Add(ReadCaptureFile(path).pixels); });
}

vel_result vel_stitcher_stitch(vel_stitcher* stitcher, vel_progress progress, void* user,
                               vel_picture** picture) {
  return Call(stitcher, [=](vel_stitcher& called) {
    *Required(picture, "picture") = nullptr;
    ProgressRelay relay(progress, user);
    *picture = new vel_picture(called.Stitch(relay));
  });
}

vel_result vel_stitcher_motion_count(vel_stitcher* stitcher, size_t* count) {
  return Call(stitcher, [=](const vel_stitcher& called) {
    *Required(count, "count") = called.translations.size();
  });
}

vel_result vel_stitcher_motion(vel_stitcher* stitcher, size_t index, vel_motion* motion) {
  return Call(stitcher, [=](const vel_stitcher& called) {
    *Required(motion, "motion") = MotionOf(ElementOf(called.translations, index, "index"));
  });
}

vel_result vel_stitcher_message(vel_stitcher* stitcher, char* text, size_t size) {
  return GiveMessage(stitcher, text, size);
}

void vel_stitcher_free(vel_stitcher* stitcher) { Free(stitcher); }
