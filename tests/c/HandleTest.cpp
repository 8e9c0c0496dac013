// Handles between threads and within callbacks.

#include <array>
#include <atomic>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

using Testing::Owned;

std::vector<cv::Mat> SomeCaptures() {
  return Testing::CapturesOf(Testing::NoiseCapture({100, 400}, 3), 100, 50);
}

bool IsOkOrBusy(vel_result result) { return result == VEL_OK || result == VEL_BUSY; }

class HandleBetweenThreads : public testing::Test {
 protected:
  /// Calls something over and over on two threads at once.
  template <typename First, typename Second>
  static void RunAtOnce(const First& first, const Second& second) {
    constexpr int Rounds = 200;
    std::thread other([&] {
      for (int i = 0; i < Rounds; ++i) {
        second(i);
      }
    });
    for (int i = 0; i < Rounds; ++i) {
      first(i);
    }
    other.join();
  }
};

TEST_F(HandleBetweenThreads, AnswersOrIsBusyWhileCapturesAreAdded) {
  const std::vector<cv::Mat> captures = SomeCaptures();
  const auto session = Testing::MakeSession();
  std::atomic<int> added = 0;
  const auto add = [&](int round) {
    const cv::Mat& capture = captures[static_cast<size_t>(round) % captures.size()];
    const vel_source_image image = Testing::SourceOf(capture);
    vel_outcome outcome;
    vel_outcome_init(&outcome, sizeof outcome);
    const vel_result result = vel_session_add(session.get(), &image, nullptr, &outcome);
    EXPECT_TRUE(IsOkOrBusy(result));
    added += result == VEL_OK && outcome.state != VEL_REPEATED ? 1 : 0;
  };
  RunAtOnce(add, add);
  size_t count = 0;
  EXPECT_EQ(vel_stitched_capture_count(Testing::Stitch(session.get()).get(), &count), VEL_OK);
  EXPECT_EQ(count, static_cast<size_t>(added));
}

TEST_F(HandleBetweenThreads, CountsAsOneWithItsResults) {
  const std::vector<cv::Mat> captures = SomeCaptures();
  const auto session = Testing::MakeSession();
  Testing::AddAll(session.get(), captures);
  const auto picture = Testing::PartOf(Testing::Stitch(session.get()).get());
  const cv::Mat expected = Testing::Whole(picture.get());
  RunAtOnce(
      [&](int round) {
        const vel_source_image image =
            Testing::SourceOf(captures[static_cast<size_t>(round) % captures.size()]);
        EXPECT_TRUE(IsOkOrBusy(vel_session_add(session.get(), &image, nullptr, nullptr)));
      },
      [&](int /*round*/) {
        cv::Mat pixels(expected.size(), expected.type());
        const vel_target_image image = Testing::TargetOf(pixels);
        const vel_result result = vel_picture_read(picture.get(), 0, 0, &image);
        EXPECT_TRUE(IsOkOrBusy(result));
        EXPECT_TRUE(result == VEL_BUSY || Testing::SameBits(pixels, expected));
      });
}

TEST_F(HandleBetweenThreads, GivesItsMessageWholeOrIsBusy) {
  const auto session = Testing::MakeSession();
  RunAtOnce(
      [&](int round) {
        const vel_result result = round % 2 == 0
                                      ? vel_session_add(session.get(), nullptr, nullptr, nullptr)
                                      : vel_session_preview(session.get(), nullptr);
        EXPECT_TRUE(result == VEL_INVALID_ARGUMENT || result == VEL_BUSY);
      },
      [&](int /*round*/) {
        std::array<char, VEL_MESSAGE_SIZE> text = {};
        if (vel_session_message(session.get(), text.data(), text.size()) == VEL_OK) {
          const std::string message = text.data();
          EXPECT_TRUE(message.empty() || message == "vel_source_image is NULL" ||
                      message == "preview is NULL")
              << message;
        }
      });
}

/// Two threads that wait for each other.
struct Rendezvous {
  std::atomic<bool> hasBegun = false;
  std::atomic<bool> isFreed = false;
};

int32_t AwaitFreeing(int32_t /*percent*/, void* user) {
  auto& rendezvous = *static_cast<Rendezvous*>(user);
  rendezvous.hasBegun = true;
  while (!rendezvous.isFreed) {
    std::this_thread::yield();
  }
  return 0;
}

TEST_F(HandleBetweenThreads, MayBeFreedWhileTheOtherIsAtWork) {
  auto session = Testing::MakeSession();
  Testing::AddAll(session.get(), SomeCaptures());
  Rendezvous rendezvous;
  vel_stitched* stitched = nullptr;
  std::thread other([&, atWork = session.get()] {
    EXPECT_EQ(vel_session_stitch(atWork, AwaitFreeing, &rendezvous, &stitched), VEL_OK);
  });
  while (!rendezvous.hasBegun) {
    std::this_thread::yield();
  }
  session.reset();
  rendezvous.isFreed = true;
  other.join();
  EXPECT_EQ(Testing::SizeOf(Testing::PartOf(stitched).get()), cv::Size(100, 400));
  vel_stitched_free(stitched);
}

/// What a callback does with the handle that is at work.
struct Meddling {
  vel_session* session;
  vel_result whenAdding = VEL_OK;
  vel_result whenAsking = VEL_OK;
};

int32_t Meddle(int32_t /*percent*/, void* user) {
  auto& meddling = *static_cast<Meddling*>(user);
  const cv::Mat capture = SomeCaptures().front();
  const vel_source_image image = Testing::SourceOf(capture);
  char text = 'x';
  meddling.whenAdding = vel_session_add(meddling.session, &image, nullptr, nullptr);
  meddling.whenAsking = vel_session_message(meddling.session, &text, 1);
  return 0;
}

class HandleWithinCallbacks : public testing::TestWithParam<vel_engine> {
 protected:
  static vel_session* NewSession() {
    vel_session_settings settings = Testing::DefaultSettings();
    settings.engine = GetParam();
    auto session = Testing::MakeSession(settings);
    Testing::AddAll(session.get(), SomeCaptures());
    return session.release();
  }
};

TEST_P(HandleWithinCallbacks, IsBusy) {
  const Owned<vel_session> session(NewSession());
  Meddling meddling = {session.get()};
  vel_stitched* stitched = nullptr;
  EXPECT_EQ(vel_session_stitch(session.get(), Meddle, &meddling, &stitched), VEL_OK);
  vel_stitched_free(stitched);
  EXPECT_EQ(meddling.whenAdding, VEL_BUSY);
  EXPECT_EQ(meddling.whenAsking, VEL_BUSY);
}

TEST_P(HandleWithinCallbacks, MayBeFreed) {
  vel_session* session = NewSession();
  const vel_progress freeOnce = [](int32_t /*percent*/, void* user) -> int32_t {
    auto& freed = *static_cast<vel_session**>(user);
    vel_session_free(freed);
    freed = nullptr;
    return 0;
  };
  vel_stitched* stitched = nullptr;
  vel_session* freed = session;
  EXPECT_EQ(vel_session_stitch(session, freeOnce, &freed, &stitched), VEL_OK);
  EXPECT_EQ(freed, nullptr);
  EXPECT_EQ(Testing::SizeOf(Testing::PartOf(stitched).get()), cv::Size(100, 400));
  vel_stitched_free(stitched);
}

TEST_P(HandleWithinCallbacks, IsCancelledByOneThatThrows) {
  const Owned<vel_session> session(NewSession());
  const vel_progress throwing = [](int32_t /*percent*/, void* /*user*/) -> int32_t {
    throw std::runtime_error("from a host in C++");
  };
  vel_stitched* stitched = nullptr;
  EXPECT_EQ(vel_session_stitch(session.get(), throwing, nullptr, &stitched), VEL_CANCELLED);
  EXPECT_EQ(stitched, nullptr);
}

INSTANTIATE_TEST_SUITE_P(, HandleWithinCallbacks, testing::Values(VEL_EXACT, VEL_PHASE_CORRELATION),
                         [](const auto& test) {
                           return test.param == VEL_EXACT ? "Exact" : "PhaseCorrelation";
                         });

}  // namespace
}  // namespace ScrollingCapture
