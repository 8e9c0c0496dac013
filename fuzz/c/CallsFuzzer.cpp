// Makes any calls of the interface for C in any order, with any pixels, numbers and structures,
// from within callbacks as well. Each answers as documented, and a file is whole or not there.

#include <array>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Quiet.h>
#include <fuzz/support/RandomCaptures.h>
#include <testkit/OwnedHandle.h>
#include <testkit/TemporaryFolder.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int LongestSide = 24;

using Testing::Owned;

/// A structure of any stated size; those that are larger than it have zeros behind it, or not.
template <typename Struct>
class AnyStruct {
 public:
  AnyStruct(FuzzedDataProvider& data, void (*initialise)(Struct*, size_t)) {
    initialise(&Get(), sizeof(Struct));
    if (data.ConsumeIntegralInRange(0, 15) == 0) {
      Get().struct_size =
          data.PickValueInArray<size_t>({0, 8, 16, 24, sizeof(Struct) + 8, 4096, 4104, ~size_t{0}});
      room.back() = data.ConsumeIntegral<std::uint8_t>();
    }
  }

  Struct& Get() { return *reinterpret_cast<Struct*>(room.data()); }

 private:
  alignas(std::max_align_t) std::array<std::uint8_t, 4096> room = {};
};

/// Mostly one of those that make sense.
int AnyChoice(FuzzedDataProvider& data, int most) {
  return data.ConsumeIntegralInRange(0, 31) == 0 ? data.ConsumeIntegral<int>()
                                                 : data.ConsumeIntegralInRange(0, most);
}

/// What the callback of a call does meanwhile.
struct Meanwhile {
  vel_session* session;  ///< that is at work, or null
  int callsToCome;       ///< before it asks to stop
};

int32_t Interfere(int32_t /*percent*/, void* user) {
  auto& meanwhile = *static_cast<Meanwhile*>(user);
  std::array<char, 8> text = {};
  if (meanwhile.session != nullptr) {
    Expect(vel_session_message(meanwhile.session, text.data(), text.size()) == VEL_BUSY,
           "a handle that is at work is busy");
  }
  return --meanwhile.callsToCome < 0 ? 1 : 0;
}

class Host {
 public:
  explicit Host(FuzzedDataProvider& data) : data(data), size(AnySize(data, LongestSide)) {
    page = AnyPixels(data, {size.width * 2, size.height * 2}, CV_8UC4);
    MakeSession();
    MakeStitcher();
  }

  void CallAny() {
    using Call = void (Host::*)();
    const Call call = data.PickValueInArray<Call>(
        {&Host::MakeSession, &Host::AddToSession, &Host::AddToSession, &Host::AddToSession,
         &Host::Stitch, &Host::LookAtStitched, &Host::TakePreview, &Host::Read, &Host::Write,
         &Host::MakeStitcher, &Host::AddToStitcher, &Host::AddToStitcher, &Host::StitchPlainly,
         &Host::FreeAny, &Host::AskForMessage});
    (this->*call)();
  }

 private:
  /// Every answer but those that only a fault in the library can cause.
  vel_result Answered(vel_result result) {
    Expect(result >= VEL_OK && result < VEL_FAILURE, "the answer is a documented one");
    Expect(result != VEL_BUSY, "nothing is busy between calls");
    return result;
  }

  void ExpectMade(vel_result result, const void* handle) {
    Answered(result);
    Expect((result == VEL_OK) == (handle != nullptr), "there is a handle if all went well");
  }

  vel_progress AnyProgress(vel_session* atWork) {
    meanwhile = {atWork, data.ConsumeIntegralInRange(0, 40)};
    return data.ConsumeBool() ? Interfere : nullptr;
  }

  void MakeSession() {
    AnyStruct<vel_session_settings> any(data, vel_session_settings_init);
    vel_session_settings& settings = any.Get();
    settings.engine = AnyChoice(data, 1);
    settings.orientation = AnyChoice(data, 2);
    settings.expect_consistent_motions = AnyChoice(data, 1);
    settings.thread_count = static_cast<std::uint32_t>(AnyChoice(data, 3));
    settings.keep_repeats = AnyChoice(data, 1);
    settings.fixed_parts = AnyChoice(data, 1);
    settings.find_borders = data.ConsumeIntegralInRange(0, 3) == 0 ? 1 : 0;
    settings.border_difference = static_cast<std::uint32_t>(AnyChoice(data, 255));
    settings.border_neighbors = static_cast<std::uint32_t>(AnyChoice(data, 8));
    if (data.ConsumeIntegralInRange(0, 7) == 0) {
      settings.preview_width = AnyCoordinate(data, 100);
      settings.preview_height = AnyCoordinate(data, 100);
    }
    const std::string path = folder.Prefix() + "spill";
    if (data.ConsumeBool()) {
      std::filesystem::create_directory(path);
      settings.memory_limit = data.ConsumeIntegralInRange(0U, 8192U);
      settings.spill_folder = data.ConsumeIntegralInRange(0, 7) == 0 ? "\xFF" : path.c_str();
    }
    std::array<char, 16> text = {};
    vel_session* made = nullptr;
    ExpectMade(vel_session_create(&settings, &made, text.data(), text.size()), made);
    session.reset(made);
  }

  vel_source_image AnyCapture(AnyStruct<vel_source_image>& any) {
    const cv::Point corner(data.ConsumeIntegralInRange(0, size.width),
                           data.ConsumeIntegralInRange(0, size.height));
    // Always of four channels a pixel, so that there is enough for every format.
    capture = page(cv::Rect(corner, size));
    vel_source_image& image = any.Get();
    image.pixels = capture.data;
    image.stride = capture.step;
    image.width = size.width;
    image.height = size.height;
    image.format = AnyChoice(data, VEL_GREY);
    image.alpha = AnyChoice(data, VEL_UNUSED);
    if (data.ConsumeIntegralInRange(0, 15) == 0) {
      Spoil(image);
    }
    return image;
  }

  /// So that there is nothing to read.
  void Spoil(vel_source_image& image) {
    const int absurd = data.PickValueInArray({0, -1, INT32_MIN, INT32_MAX, (1 << 20) + 1});
    switch (data.ConsumeIntegralInRange(0, 4)) {
      case 0:
        image.width = absurd;
        break;
      case 1:
        image.height = absurd;
        break;
      case 2:
        image.stride = static_cast<size_t>(size.width) - 1;
        image.width += image.stride == 0 ? INT32_MAX - LongestSide : 0;
        break;
      case 3:
        image.stride = ~size_t{0};
        break;
      default:
        image.pixels = nullptr;
    }
  }

  void AddToSession() {
    AnyStruct<vel_source_image> image(data, vel_source_image_init);
    AnyCapture(image);
    AnyStruct<vel_outcome> outcome(data, vel_outcome_init);
    const vel_motion motion = {AnyCoordinate(data, size.height), AnyCoordinate(data, size.width)};
    const bool prescribes = data.ConsumeIntegralInRange(0, 7) == 0;
    const vel_result result = vel_session_add(session.get(), &image.Get(),
                                              prescribes ? &motion : nullptr, &outcome.Get());
    if (Answered(result) == VEL_OK) {
      ExpectAlternatives(outcome.Get());
    }
  }

  void ExpectAlternatives(const vel_outcome& outcome) {
    if (outcome.struct_size < sizeof outcome) {
      return;
    }
    vel_motion motion = {0, 0};
    const size_t count = outcome.alternative_count;
    Expect(vel_session_alternative(session.get(), count, &motion) == VEL_INVALID_ARGUMENT,
           "there are no more alternatives than told");
    Expect(count == 0 || vel_session_alternative(session.get(), count - 1, &motion) == VEL_OK,
           "there are as many alternatives as told");
    Expect(outcome.state >= VEL_PLACED && outcome.state <= VEL_UNUSABLE,
           "a state is a documented one");
  }

  void Stitch() {
    vel_stitched* made = nullptr;
    const vel_progress progress = AnyProgress(session.get());
    ExpectMade(vel_session_stitch(session.get(), progress, &meanwhile, &made), made);
    stitched.reset(made);
  }

  void LookAtStitched() {
    AnyStruct<vel_placement> placement(data, vel_placement_init);
    AnyStruct<vel_borders> borders(data, vel_borders_init);
    vel_motion motion = {0, 0};
    const size_t index = data.ConsumeIntegralInRange<size_t>(0, 4);
    Answered(vel_stitched_capture(stitched.get(), index, &placement.Get()));
    Answered(vel_stitched_alternative(stitched.get(), index, index, &motion));
    Answered(vel_stitched_borders(stitched.get(), &borders.Get()));
    vel_picture* made = nullptr;
    ExpectMade(vel_stitched_part(stitched.get(), data.ConsumeIntegralInRange<size_t>(0, 2), &made),
               made);
    picture.reset(made);
  }

  void TakePreview() {
    vel_picture* made = nullptr;
    ExpectMade(vel_session_preview(session.get(), &made), made);
    picture.reset(made);
  }

  void Read() {
    cv::Size whole;
    Answered(vel_picture_size(picture.get(), &whole.width, &whole.height));
    const cv::Size area = AnySize(data, 3 * LongestSide);
    const size_t stride = static_cast<size_t>(area.width) * 4 + data.ConsumeIntegralInRange(0U, 9U);
    std::vector<std::uint8_t> pixels(stride * static_cast<size_t>(area.height));
    AnyStruct<vel_target_image> any(data, vel_target_image_init);
    vel_target_image& image = any.Get();
    image.pixels = pixels.data();
    image.stride = stride;
    image.width = area.width;
    image.height = area.height;
    image.format = AnyChoice(data, VEL_GREY);
    image.alpha = AnyChoice(data, VEL_UNUSED);
    const int column = AnyCoordinate(data, whole.width);
    const int row = AnyCoordinate(data, whole.height);
    const bool inside = cv::Rect({}, whole).contains({column, row}) &&
                        area.width <= whole.width - column && area.height <= whole.height - row;
    Expect(Answered(vel_picture_read(picture.get(), column, row, &image)) != VEL_OK || inside,
           "nothing is read from outside of the picture");
  }

  void Write() {
    AnyStruct<vel_file_settings> any(data, vel_file_settings_init);
    vel_file_settings& settings = any.Get();
    settings.jpeg_quality = AnyChoice(data, 100);
    settings.png_level = AnyChoice(data, 9);
    settings.thread_count = static_cast<std::uint32_t>(AnyChoice(data, 2));
    settings.rows_per_file = AnyChoice(data, LongestSide);
    settings.has_background = AnyChoice(data, 1);
    const Testing::TemporaryFolder target;
    const std::string path =
        target.Prefix() + data.PickValueInArray({"page.png", "page.jpg", "page.bmp", "page.webp",
                                                 "page.tiff", "page", "no/page.png", ""});
    const vel_progress progress = AnyProgress(nullptr);
    const vel_result result =
        data.ConsumeBool()
            ? vel_picture_write(picture.get(), path.c_str(), &settings, progress, &meanwhile)
            : vel_stitched_write(stitched.get(), path.c_str(), &settings, progress, &meanwhile);
    Expect((Answered(result) == VEL_OK) == !target.Contents().empty(),
           "there are files if all went well");
    if (result == VEL_OK) {
      Answered(
          vel_session_add_file(session.get(), target.Contents().front().c_str(), nullptr, nullptr));
    }
  }

  void MakeStitcher() {
    AnyStruct<vel_stitcher_settings> any(data, vel_stitcher_settings_init);
    any.Get().orientation = AnyChoice(data, 2);
    any.Get().thread_count = static_cast<std::uint32_t>(AnyChoice(data, 2));
    any.Get().find_borders = AnyChoice(data, 1);
    any.Get().border_difference = static_cast<std::uint32_t>(AnyChoice(data, 255));
    vel_stitcher* made = nullptr;
    ExpectMade(vel_stitcher_create(&any.Get(), &made, nullptr, 0), made);
    stitcher.reset(made);
  }

  void AddToStitcher() {
    AnyStruct<vel_source_image> image(data, vel_source_image_init);
    AnyCapture(image);
    Answered(vel_stitcher_add(stitcher.get(), &image.Get()));
  }

  void StitchPlainly() {
    vel_picture* made = nullptr;
    const vel_progress progress = AnyProgress(nullptr);
    ExpectMade(vel_stitcher_stitch(stitcher.get(), progress, &meanwhile, &made), made);
    picture.reset(made);
    vel_motion motion = {0, 0};
    Answered(
        vel_stitcher_motion(stitcher.get(), data.ConsumeIntegralInRange<size_t>(0, 3), &motion));
  }

  void FreeAny() {
    switch (data.ConsumeIntegralInRange(0, 3)) {
      case 0:
        session.reset();
        break;
      case 1:
        stitched.reset();
        break;
      case 2:
        picture.reset();
        break;
      default:
        stitcher.reset();
    }
  }

  void AskForMessage() {
    std::array<char, VEL_MESSAGE_SIZE + 1> text = {};
    const size_t room = data.ConsumeIntegralInRange<size_t>(0, VEL_MESSAGE_SIZE);
    text[room] = 'x';
    Answered(vel_session_message(session.get(), text.data(), room));
    Answered(vel_picture_message(picture.get(), text.data(), room));
    Expect(text[room] == 'x', "a message stays within its room");
    Expect(room == 0 || std::memchr(text.data(), '\0', room) != nullptr, "a message has an end");
  }

  FuzzedDataProvider& data;
  const cv::Size size;
  const Testing::TemporaryFolder folder;
  cv::Mat page;
  cv::Mat capture;
  Meanwhile meanwhile = {};
  Owned<vel_session> session;
  Owned<vel_stitched> stitched;
  Owned<vel_picture> picture;
  Owned<vel_stitcher> stitcher;
};

void CallAnything(FuzzedDataProvider& data) {
  constexpr int MostCalls = 24;
  const Quiet quiet;
  Host host(data);
  for (int calls = 0; calls < MostCalls && data.remaining_bytes() > 0; ++calls) {
    host.CallAny();
  }
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::CallAnything(data);
  return 0;
}
