#include <atomic>
#include <chrono>
#include <future>
#include <optional>

#include <gtest/gtest.h>
#include <live/x11/XPicker.h>
#include <testkit/pages/Page.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "PageWindow.h"
#include "UserInput.h"
#include "XServer.h"

namespace ScrollingCapture::Live {
namespace {

class Picking : public ::testing::Test {
 protected:
  /// Waits until the pointer is the picker's.
  void Begin() {
    picked = std::async(std::launch::async, [this] {
      return PickOnScreen([this] {
        asked = true;
        return goOn.load();
      });
    });
    while (!asked) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }

  Testing::XServer server{{"-screen", "0", "640x480x24"}};
  const Testing::PageWindow window{Testing::TextPage({300, 400}), {50, 40, 300, 200}, "page"};
  const Testing::UserInput user{};
  std::atomic<bool> goOn{true};
  std::atomic<bool> asked{false};
  std::future<std::optional<XChoice>> picked;
};

TEST_F(Picking, TakesTheWindowThatIsClickedAndTellsItNothing) {
  Begin();
  user.MoveTo({100, 100});
  user.PressButton(1);
  user.ReleaseButton(1);
  const auto choice = picked.get();
  ASSERT_TRUE(choice.has_value());
  EXPECT_EQ(choice->window, window.Number());
  EXPECT_EQ(window.Presses(), 0);
}

TEST_F(Picking, TakesTheWindowBelowItsOwnOutline) {
  Begin();
  user.MoveTo({100, 100});
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  user.MoveTo({53, 100});
  user.PressButton(1);
  user.ReleaseButton(1);
  EXPECT_EQ(picked.get()->window, window.Number());
}

TEST_F(Picking, TakesTheRectangleThatIsDragged) {
  Begin();
  user.MoveTo({400, 300});
  user.PressButton(1);
  user.MoveTo({200, 250});
  user.MoveTo({100, 80});
  user.ReleaseButton(1);
  const auto choice = picked.get();
  ASSERT_TRUE(choice.has_value());
  EXPECT_EQ(choice->window, xcb_window_t{XCB_WINDOW_NONE});
  EXPECT_EQ(choice->region, cv::Rect(100, 80, 300, 220));
}

TEST_F(Picking, GoesOnAfterAClickOnTheBackground) {
  Begin();
  user.MoveTo({600, 400});
  user.PressButton(1);
  user.ReleaseButton(1);
  user.MoveTo({100, 100});
  user.PressButton(1);
  user.ReleaseButton(1);
  EXPECT_EQ(picked.get()->window, window.Number());
}

TEST_F(Picking, IsCancelledByEscape) {
  Begin();
  user.PressKey(XKB_KEY_Escape);
  user.ReleaseKey(XKB_KEY_Escape);
  EXPECT_FALSE(picked.get().has_value());
}

TEST_F(Picking, IsCancelledByAnotherButton) {
  Begin();
  user.PressButton(3);
  user.ReleaseButton(3);
  EXPECT_FALSE(picked.get().has_value());
}

TEST_F(Picking, IsCancelledByTheCaller) {
  Begin();
  goOn = false;
  EXPECT_FALSE(picked.get().has_value());
}

TEST_F(Picking, SaysSoWhenTheServerEnds) {
  Begin();
  server.Kill();
  EXPECT_THROW(picked.get(), CaptureFailure);
}

}  // namespace
}  // namespace ScrollingCapture::Live
