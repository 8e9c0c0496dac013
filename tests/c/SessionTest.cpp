#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <testkit/TemporaryFolder.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/session/CaptureSession.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

using ::testing::HasSubstr;
using Testing::MessageOf;
using Testing::Owned;
using Testing::SameBits;

constexpr int Width = 200;
constexpr int Height = 160;

class SessionInC : public testing::Test {
 protected:
  cv::Mat At(int row) const { return page(cv::Rect(0, row, Width, Height)).clone(); }

  static int32_t CountOf(vel_stitched* stitched) {
    size_t count = 0;
    EXPECT_EQ(vel_stitched_part_count(stitched, &count), VEL_OK);
    return static_cast<int32_t>(count);
  }

  const cv::Mat page = Testing::NoiseCapture({Width, 1000}, 9);
};

/// The settings of both interfaces.
struct SameSettings {
  const char* name;
  vel_session_settings inC;
  SessionSettings inCpp;
};

SameSettings Exact() { return {"Exact", Testing::DefaultSettings(), {}}; }

SameSettings Keeping() {
  SameSettings settings = Exact();
  settings.name = "KeepingFixedPartsAndRepeats";
  settings.inC.fixed_parts = VEL_KEEP;
  settings.inC.keep_repeats = 1;
  settings.inC.thread_count = 2;
  settings.inCpp.fixedParts = FixedParts::Keep;
  settings.inCpp.keepRepeats = true;
  settings.inCpp.threadCount = 2;
  return settings;
}

SameSettings ByPhaseCorrelation() {
  SameSettings settings = Exact();
  settings.name = "ByPhaseCorrelationWithBorders";
  settings.inC.engine = VEL_PHASE_CORRELATION;
  settings.inC.find_borders = 1;
  settings.inC.orientation = VEL_VERTICAL;
  settings.inC.expect_consistent_motions = 1;
  settings.inCpp.engine = Engine::PhaseCorrelation;
  settings.inCpp.borders = BorderThresholds();
  settings.inCpp.orientation = Vertical;
  settings.inCpp.expectConsistentTranslations = true;
  return settings;
}

SameSettings WithinAMemoryLimit() {
  SameSettings settings = Exact();
  settings.name = "WithinAMemoryLimit";
  settings.inC.memory_limit = 1;
  settings.inCpp.memoryLimit = 1;
  return settings;
}

class SameAsInCpp : public testing::TestWithParam<SameSettings> {
 protected:
  /// A toolbar above an article that scrolls, and one capture twice.
  std::vector<cv::Mat> captures = [] {
    const cv::Mat article = Testing::DrawArticle({320, 900}, 3);
    const cv::Mat bar = Testing::DrawBar({320, 30}, 4);
    std::vector<cv::Mat> all;
    for (const int row : {0, 90, 90, 180, 270}) {
      cv::Mat capture(230, 320, CV_8UC4);
      Testing::Lay(bar, capture, {0, 0});
      Testing::Lay(Testing::Window(article, {320, 200}, {0, row}), capture, {0, 30});
      all.push_back(capture);
    }
    return all;
  }();
};

TEST_P(SameAsInCpp, EveryPixelAndPlace) {
  const auto session = Testing::MakeSession(GetParam().inC);
  CaptureSession expected(GetParam().inCpp);
  for (const cv::Mat& capture : captures) {
    const vel_outcome outcome = Testing::Add(session.get(), capture);
    const CaptureOutcome expectedOutcome = expected.Add(capture.clone());
    EXPECT_EQ(outcome.state, static_cast<int>(expectedOutcome.state));
    ASSERT_EQ(outcome.is_placed, expectedOutcome.placed.has_value() ? 1 : 0);
    if (expectedOutcome.placed) {
      EXPECT_EQ(outcome.compared, expectedOutcome.placed->join.compared);
      EXPECT_EQ(outcome.equal, expectedOutcome.placed->join.equal);
      EXPECT_EQ(outcome.row, expectedOutcome.placed->place.row);
    }
  }
  const auto stitched = Testing::Stitch(session.get());
  const std::optional<SessionResult> result = expected.Stitch(nullptr);
  ASSERT_TRUE(result.has_value());
  for (size_t part = 0; part < result->parts.size(); ++part) {
    const auto picture = Testing::PartOf(stitched.get(), part);
    const StitchedPicture& expectedPart = *result->parts[part];
    EXPECT_TRUE(
        SameBits(Testing::Whole(picture.get()), expectedPart.Area({{0, 0}, expectedPart.Size()})));
  }
  size_t count = 0;
  EXPECT_EQ(vel_stitched_capture_count(stitched.get(), &count), VEL_OK);
  ASSERT_EQ(count, result->captures.size());
  for (size_t i = 0; i < count; ++i) {
    vel_placement placement;
    vel_placement_init(&placement, sizeof placement);
    EXPECT_EQ(vel_stitched_capture(stitched.get(), i, &placement), VEL_OK);
    EXPECT_EQ((Place{placement.row, placement.column}), result->captures[i].place);
    EXPECT_EQ(placement.part, result->captures[i].part);
    EXPECT_EQ(placement.left_out != 0, result->captures[i].leftOut);
    EXPECT_EQ(Translation(placement.motion.rows, placement.motion.columns),
              result->captures[i].join.motion);
    EXPECT_EQ(placement.equal, result->captures[i].join.equal);
    EXPECT_EQ(placement.joined_to, result->captures[i].joinedTo
                                       ? static_cast<int64_t>(*result->captures[i].joinedTo)
                                       : -1);
  }
  vel_borders borders;
  vel_borders_init(&borders, sizeof borders);
  EXPECT_EQ(vel_stitched_borders(stitched.get(), &borders), VEL_OK);
  EXPECT_EQ(borders.found != 0, result->borders.has_value());
  EXPECT_EQ(borders.top, result->borders ? result->borders->top : 0);
}

INSTANTIATE_TEST_SUITE_P(, SameAsInCpp,
                         testing::Values(Exact(), Keeping(), ByPhaseCorrelation(),
                                         WithinAMemoryLimit()),
                         [](const auto& test) { return test.param.name; });

TEST_F(SessionInC, TellsWhatHasBecomeOfACapture) {
  const auto session = Testing::MakeSession();
  EXPECT_EQ(Testing::Add(session.get(), At(0)).state, VEL_PLACED);
  EXPECT_EQ(Testing::Add(session.get(), At(0)).state, VEL_REPEATED);
  const vel_outcome tooFast = Testing::Add(session.get(), At(500));
  EXPECT_EQ(tooFast.state, VEL_TOO_FAST);
  EXPECT_EQ(tooFast.part, 1);
  EXPECT_EQ(tooFast.joined_to, -1);
  const vel_outcome joined = Testing::Add(session.get(), At(440));
  EXPECT_EQ(joined.verdict, VEL_JOIN_PROVEN);
  EXPECT_EQ(joined.joined_to, 1);
  EXPECT_EQ(joined.row, -60);
  EXPECT_EQ(joined.motion.rows, 60);
}

TEST_F(SessionInC, ListsTheMotionsThatExplainACaptureInDoubt) {
  const cv::Mat rows = Testing::DrawEqualRows({240, 600}, 40);
  const auto session = Testing::MakeSession();
  Testing::Add(session.get(), Testing::Window(rows, {240, 220}, {0, 0}));
  const cv::Mat later = Testing::Window(rows, {240, 220}, {0, 15});
  const vel_outcome outcome = Testing::Add(session.get(), later);
  ASSERT_EQ(outcome.state, VEL_DOUBTFUL);
  EXPECT_EQ(outcome.verdict, VEL_JOIN_DOUBTFUL);
  ASSERT_GT(outcome.alternative_count, 0U);

  CaptureSession expected({});
  expected.Add(Testing::Window(rows, {240, 220}, {0, 0}));
  const auto alternatives = expected.Add(later).placed->join.alternatives;
  ASSERT_EQ(alternatives.size(), outcome.alternative_count);
  const auto stitched = Testing::Stitch(session.get());
  for (size_t i = 0; i < alternatives.size(); ++i) {
    vel_motion motion = {0, 0};
    EXPECT_EQ(vel_session_alternative(session.get(), i, &motion), VEL_OK);
    EXPECT_EQ(Translation(motion.rows, motion.columns), alternatives[i]);
    EXPECT_EQ(vel_stitched_alternative(stitched.get(), 1, i, &motion), VEL_OK);
    EXPECT_EQ(Translation(motion.rows, motion.columns), alternatives[i]);
  }
  vel_motion motion = {0, 0};
  EXPECT_EQ(vel_session_alternative(session.get(), alternatives.size(), &motion),
            VEL_INVALID_ARGUMENT);
}

TEST_F(SessionInC, PlacesACaptureByAPrescribedMotion) {
  const auto session = Testing::MakeSession();
  Testing::Add(session.get(), At(0));
  const vel_motion motion = {-25, 0};
  EXPECT_EQ(Testing::Add(session.get(), At(60), &motion).row, 25);
}

TEST_F(SessionInC, RefusesAMotionThatLeavesNothingInCommon) {
  const auto session = Testing::MakeSession();
  Testing::Add(session.get(), At(0));
  const cv::Mat capture = At(60);
  const vel_source_image image = Testing::SourceOf(capture);
  for (const vel_motion motion :
       {vel_motion{Height, 0}, {-Height, 0}, {0, Width}, {INT32_MIN, 0}}) {
    EXPECT_EQ(vel_session_add(session.get(), &image, &motion, nullptr), VEL_INVALID_ARGUMENT);
  }
  EXPECT_EQ(Testing::Add(session.get(), capture).row, 60);
}

TEST_F(SessionInC, SaysWhyACaptureIsUnusable) {
  const auto session = Testing::MakeSession();
  Testing::Add(session.get(), At(0));
  EXPECT_EQ(Testing::Add(session.get(), page(cv::Rect(0, 0, Width, 10)).clone()).state,
            VEL_UNUSABLE);
  EXPECT_THAT(MessageOf(session.get()), HasSubstr("must have the same size"));
}

TEST_F(SessionInC, AddsFilesAsTheyAre) {
  const Testing::TemporaryFolder folder;
  const auto session = Testing::MakeSession();
  for (const int row : {0, 70}) {
    const std::string path = folder.Prefix() + std::to_string(row) + ".png";
    cv::Mat file;
    cv::cvtColor(At(row), file, cv::COLOR_RGBA2BGR);
    ASSERT_TRUE(cv::imwrite(path, file));
    ASSERT_EQ(vel_session_add_file(session.get(), path.c_str(), nullptr, nullptr), VEL_OK);
  }
  const auto stitched = Testing::Stitch(session.get());
  EXPECT_TRUE(SameBits(Testing::Whole(Testing::PartOf(stitched.get()).get()),
                       page.rowRange(0, Height + 70)));
}

TEST_F(SessionInC, SaysWhichFileCannotBeRead) {
  const auto session = Testing::MakeSession();
  EXPECT_EQ(vel_session_add_file(session.get(), "/nowhere/capture.png", nullptr, nullptr),
            VEL_FILE_UNUSABLE);
  EXPECT_THAT(MessageOf(session.get()), HasSubstr("'/nowhere/capture.png'"));
}

TEST_F(SessionInC, ShowsThePreview) {
  vel_session_settings settings = Testing::DefaultSettings();
  settings.preview_width = 120;
  settings.preview_height = 90;
  SessionSettings inCpp;
  inCpp.previewBox = cv::Size(120, 90);
  const auto session = Testing::MakeSession(settings);
  CaptureSession expected(inCpp);
  for (const int row : {0, 50}) {
    Testing::Add(session.get(), At(row));
    expected.Add(At(row));
  }
  vel_picture* preview = nullptr;
  ASSERT_EQ(vel_session_preview(session.get(), &preview), VEL_OK);
  const Owned<vel_picture> owned(preview);
  const cv::Mat before = expected.Preview().clone();
  Testing::Add(session.get(), At(120));
  EXPECT_TRUE(SameBits(Testing::Whole(preview), before));
}

TEST_F(SessionInC, HasNoPreviewUnasked) {
  const auto session = Testing::MakeSession();
  vel_picture* preview = nullptr;
  EXPECT_EQ(vel_session_preview(session.get(), &preview), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(preview, nullptr);
}

TEST_F(SessionInC, StitchesAgainAfterMoreCaptures) {
  const auto session = Testing::MakeSession();
  Testing::AddAll(session.get(), {At(0), At(60)});
  const auto first = Testing::Stitch(session.get());
  Testing::Add(session.get(), At(120));
  const auto second = Testing::Stitch(session.get());
  EXPECT_EQ(Testing::SizeOf(Testing::PartOf(first.get()).get()).height, Height + 60);
  EXPECT_EQ(Testing::SizeOf(Testing::PartOf(second.get()).get()).height, Height + 120);
}

TEST_F(SessionInC, ByPhaseCorrelationStitchesOnce) {
  vel_session_settings settings = Testing::DefaultSettings();
  settings.engine = VEL_PHASE_CORRELATION;
  const auto session = Testing::MakeSession(settings);
  Testing::AddAll(session.get(), {At(0), At(60)});
  Testing::Stitch(session.get());
  vel_stitched* stitched = nullptr;
  EXPECT_EQ(vel_session_stitch(session.get(), nullptr, nullptr, &stitched), VEL_ALREADY_STITCHED);
  const cv::Mat capture = At(120);
  const vel_source_image image = Testing::SourceOf(capture);
  EXPECT_EQ(vel_session_add(session.get(), &image, nullptr, nullptr), VEL_ALREADY_STITCHED);
}

TEST_F(SessionInC, LeavesNoSpillFileBehind) {
  const Testing::TemporaryFolder folder;
  const std::string path = folder.Path().string();
  vel_session_settings settings = Testing::DefaultSettings();
  settings.memory_limit = 1;
  settings.spill_folder = path.c_str();
  auto session = Testing::MakeSession(settings);
  Testing::AddAll(session.get(), {At(0), At(60), At(120), At(180)});
  EXPECT_THAT(folder.Contents(), testing::Not(testing::IsEmpty()));
  auto stitched = Testing::Stitch(session.get());
  session.reset();
  EXPECT_TRUE(SameBits(Testing::Whole(Testing::PartOf(stitched.get()).get()),
                       page.rowRange(0, Height + 180)));
  stitched.reset();
  EXPECT_THAT(folder.Contents(), testing::IsEmpty());
}

TEST_F(SessionInC, SaysWhenASpilledCaptureIsLost) {
  const Testing::TemporaryFolder folder;
  const std::string path = folder.Path().string();
  vel_session_settings settings = Testing::DefaultSettings();
  settings.memory_limit = 1;
  settings.spill_folder = path.c_str();
  const auto session = Testing::MakeSession(settings);
  Testing::AddAll(session.get(), {At(0), At(60), At(120), At(180)});
  for (const std::string& file : folder.Contents()) {
    std::filesystem::remove(file);
  }
  vel_stitched* stitched = nullptr;
  EXPECT_EQ(vel_session_stitch(session.get(), nullptr, nullptr, &stitched), VEL_CAPTURE_LOST);
  EXPECT_EQ(stitched, nullptr);
}

TEST_F(SessionInC, TellsOfMemoryThatIsExceeded) {
  vel_session_settings settings = Testing::DefaultSettings();
  settings.memory_limit = 1;
  const auto session = Testing::MakeSession(settings);
  Testing::AddAll(session.get(), {At(0), At(60), At(120)});
  int32_t exceeds = -1;
  EXPECT_EQ(vel_session_exceeds_memory_limit(session.get(), &exceeds), VEL_OK);
  EXPECT_EQ(exceeds, 0);
}

struct BadSettings {
  void (*spoil)(vel_session_settings&);
  const char* told;
};

class RefusedSettings : public testing::TestWithParam<BadSettings> {};

TEST_P(RefusedSettings, AreTold) {
  vel_session_settings settings = Testing::DefaultSettings();
  GetParam().spoil(settings);
  vel_session* session = nullptr;
  char message[VEL_MESSAGE_SIZE] = "";
  EXPECT_EQ(vel_session_create(&settings, &session, message, sizeof message), VEL_INVALID_ARGUMENT);
  EXPECT_EQ(session, nullptr);
  EXPECT_THAT(message, HasSubstr(GetParam().told));
}

INSTANTIATE_TEST_SUITE_P(
    , RefusedSettings,
    testing::Values(
        BadSettings{[](auto& settings) { settings.engine = 2; }, "engine"},
        BadSettings{[](auto& settings) { settings.orientation = -1; }, "orientation"},
        BadSettings{[](auto& settings) { settings.thread_count = UINT32_MAX; }, "thread_count"},
        BadSettings{[](auto& settings) { settings.fixed_parts = 9; }, "fixed_parts"},
        BadSettings{[](auto& settings) { settings.find_borders = 1; }, "phase correlation only"},
        BadSettings{[](auto& settings) { settings.border_difference = 256; }, "border_difference"},
        BadSettings{[](auto& settings) { settings.border_neighbors = 9; }, "border_neighbors"},
        BadSettings{[](auto& settings) { settings.preview_width = 100; }, "preview_height"},
        BadSettings{[](auto& settings) { settings.preview_height = -1; }, "preview_width"},
        BadSettings{[](auto& settings) { settings.spill_folder = "/no/where"; }, "'/no/where'"},
        BadSettings{[](auto& settings) { settings.struct_size = 3; }, "struct_size"}));

}  // namespace
}  // namespace ScrollingCapture
