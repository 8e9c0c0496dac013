#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <live/x11/X11CaptureSource.h>
#include <testkit/MatrixTesting.h>
#include <testkit/pages/Page.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "PageWindow.h"
#include "UserInput.h"
#include "XServer.h"

namespace ScrollingCapture::Live {
namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;
using Testing::PageWindow;
using Testing::SameBits;
using Testing::UserInput;
using Testing::XServer;

const cv::Mat& Page() {
  static const cv::Mat page = Testing::NoiseCapture({300, 1000}, 4);
  return page;
}

/// What the user is told when an action ends captures; empty when it does not.
template <typename Action>
std::string EndOf(const Action& action) {
  try {
    action();
  } catch (const CaptureEnded& ended) {
    return ended.what();
  }
  return {};
}

struct Setting {
  const char* name;
  std::vector<std::string> options;
};

class EverySource : public ::testing::TestWithParam<Setting> {
 protected:
  XServer server{GetParam().options};
  PageWindow window{Page(), {50, 40, 300, 200}, "page"};
};

TEST_P(EverySource, GrabsWhatTheWindowShows) {
  X11CaptureSource source({window.Number(), {}}, false);
  EXPECT_EQ(source.Region(), cv::Rect(52, 42, 300, 200));
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(0)));
  window.ScrollTo(333);
  EXPECT_TRUE(source.WaitForChange(milliseconds(2000)));
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(333)));
}

TEST_P(EverySource, GrabsARegionOfTheScreen) {
  X11CaptureSource source({XCB_WINDOW_NONE, {62, 52, 100, 90}}, false);
  window.ScrollTo(70);
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(70)(cv::Rect(10, 10, 100, 90))));
}

TEST_P(EverySource, EndsWhenTheWindowCloses) {
  X11CaptureSource source({window.Number(), {}}, false);
  source.Grab();
  window.Close();
  EXPECT_EQ(EndOf([&] {
              source.WaitForChange(milliseconds(2000));
              source.Grab();
            }),
            "the window was closed");
}

TEST_P(EverySource, EndsWhenTheServerDoes) {
  X11CaptureSource source({window.Number(), {}}, false);
  source.Grab();
  server.Kill();
  EXPECT_EQ(EndOf([&] {
              source.WaitForChange(milliseconds(2000));
              source.Grab();
            }),
            "the connection to the X server broke");
}

INSTANTIATE_TEST_SUITE_P(Servers, EverySource,
                         ::testing::Values(Setting{"Usual", {}},
                                           Setting{"NoSharedMemory", {"-extension", "MIT-SHM"}},
                                           Setting{"NoDamage", {"-extension", "DAMAGE"}},
                                           Setting{"NoComposite", {"-extension", "Composite"}},
                                           Setting{"DeepColour", {"-screen", "0", "640x480x30"}}),
                         [](const auto& setting) { return std::string(setting.param.name); });

class Source : public ::testing::Test {
 protected:
  XServer server{{"-screen", "0", "640x480x24"}};
  PageWindow window{Page(), {50, 40, 300, 200}, "page"};
  X11CaptureSource source{{window.Number(), {}}, false};
};

TEST_F(Source, HearsOfNothingWhereNothingChanges) {
  source.Grab();
  while (source.WaitForChange(milliseconds(200))) {
    source.Grab();
  }
  EXPECT_FALSE(source.WaitForChange(milliseconds(50)));
}

TEST_F(Source, SeesAWindowThatIsCovered) {
  const PageWindow above(Page(), {100, 100, 300, 200}, "above");
  window.ScrollTo(123);
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(123)));
}

TEST_F(Source, SeesAWindowPartlyOffTheScreen) {
  window.MoveTo({500, 400});
  window.ScrollTo(77);
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(77)));
}

TEST_F(Source, SaysThatAWindowIsHiddenUntilItIsShown) {
  window.Hide();
  const Frame hidden = source.Grab();
  EXPECT_TRUE(hidden.pixels.empty());
  EXPECT_THAT(hidden.hindrance, HasSubstr("hidden"));
  window.Show();
  EXPECT_TRUE(source.WaitForChange(milliseconds(2000)));
  window.ScrollTo(99);
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(99)));
}

TEST_F(Source, EndsWhenTheWindowChangesItsSize) {
  source.Grab();
  window.Resize({310, 200});
  EXPECT_EQ(EndOf([&] { source.WaitForChange(milliseconds(2000)); }),
            "the window changed its size");
}

TEST_F(Source, GoesOnWhenTheWindowMoves) {
  window.MoveTo({10, 10});
  window.ScrollTo(10);
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(10)));
  EXPECT_EQ(source.Region(), cv::Rect(12, 12, 300, 200));
}

TEST_F(Source, ScrollsTheWindowAndPutsThePointerBack) {
  const UserInput user;
  user.MoveTo({600, 20});
  EXPECT_EQ(source.Scroll(ScrollDirection::Down, 3), "");
  EXPECT_EQ(user.Pointer(), cv::Point(600, 20));
  while (window.Presses() < 3) {
    source.WaitForChange(milliseconds(20));
  }
  window.ScrollTo(120);
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(120)));
}

TEST_F(Source, NeverTurnsTheWheelOverAnotherWindow) {
  const UserInput user;
  user.MoveTo({600, 20});
  const PageWindow above(Page(), {100, 100, 300, 200}, "above");
  EXPECT_THAT(source.Scroll(ScrollDirection::Down, 3), HasSubstr("another window"));
  EXPECT_EQ(user.Pointer(), cv::Point(600, 20));
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(above.Presses(), 0);
  EXPECT_EQ(window.Presses(), 0);
}

TEST_F(Source, NeverTurnsTheWheelWhileAnotherProgramHoldsThePointer) {
  PageWindow menu(Page(), {500, 300, 100, 100}, "menu");
  menu.HoldPointer();
  EXPECT_THAT(source.Scroll(ScrollDirection::Down, 3), HasSubstr("holds the pointer"));
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(menu.Presses(), 0);
}

TEST_F(Source, NeverTurnsTheWheelWhileAModifierIsHeld) {
  const UserInput user;
  user.PressKey(XKB_KEY_Control_L);
  EXPECT_THAT(source.Scroll(ScrollDirection::Down, 3), HasSubstr("held down"));
  user.ReleaseKey(XKB_KEY_Control_L);
  EXPECT_EQ(source.Scroll(ScrollDirection::Down, 1), "");
}

TEST_F(Source, OfARegionScrollsTheWindowThatWasThereAtFirst) {
  X11CaptureSource region({XCB_WINDOW_NONE, {100, 80, 150, 100}}, false);
  EXPECT_EQ(region.Scroll(ScrollDirection::Down, 1), "");
  const PageWindow above(Page(), {100, 60, 300, 200}, "above");
  EXPECT_THAT(region.Scroll(ScrollDirection::Down, 1), HasSubstr("another window"));
  EXPECT_EQ(above.Presses(), 0);
}

TEST_F(Source, DrawsThePointerInWhenAsked) {
  const UserInput user;
  user.MoveTo({150, 120});
  X11CaptureSource drawing({window.Number(), {}}, true);
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(0)));
  const cv::Mat with = drawing.Grab().pixels;
  const cv::Mat without = window.ViewAt(0);
  cv::Mat difference;
  cv::absdiff(with, without, difference);
  EXPECT_GT(cv::countNonZero(difference.reshape(1)(cv::Rect(300, 50, 200, 60))), 20);
  difference.reshape(1)(cv::Rect(300, 50, 200, 60)) = 0;
  EXPECT_EQ(cv::countNonZero(difference.reshape(1)), 0);
}

TEST_F(Source, RefusesWhatIsNotThere) {
  const auto refusal = [](const XChoice& choice) -> std::string {
    try {
      X11CaptureSource(choice, false);
    } catch (const CaptureFailure& failure) {
      return failure.what();
    }
    return {};
  };
  EXPECT_EQ(refusal({0x123456, {}}), "there is no window 0x123456");
  EXPECT_THAT(refusal({XCB_WINDOW_NONE, {600, 400, 100, 80}}),
              HasSubstr("outside the screens, which are 640x480+0+0"));
  window.Hide();
  EXPECT_THAT(refusal({window.Number(), {}}), HasSubstr("is hidden"));
}

TEST(SourceWithoutComposite, SaysThatAWindowIsCovered) {
  const XServer server({"-extension", "Composite"});
  const PageWindow window(Page(), {50, 40, 300, 200}, "page");
  X11CaptureSource source({window.Number(), {}}, false);
  {
    const PageWindow above(Page(), {100, 100, 300, 200}, "above");
    const Frame covered = source.Grab();
    EXPECT_TRUE(covered.pixels.empty());
    EXPECT_THAT(covered.hindrance, HasSubstr("covered"));
  }
  EXPECT_EQ(source.Grab().hindrance, "");
}

TEST(SourceOnTheSecondScreen, GrabsWhatTheWindowShows) {
  const XServer server({"-screen", "0", "320x240x24", "-screen", "1", "640x480x24"});
  server.UseScreen(1);
  const PageWindow window(Page(), {200, 100, 300, 200}, "page");
  X11CaptureSource source({window.Number(), {}}, false);
  EXPECT_TRUE(SameBits(source.Grab().pixels, window.ViewAt(0)));
  X11CaptureSource region({XCB_WINDOW_NONE, {202, 102, 300, 200}}, false);
  EXPECT_TRUE(SameBits(region.Grab().pixels, window.ViewAt(0)));
}

TEST(SourceWithoutServer, IsRefused) {
  setenv("DISPLAY", ":12345", 1);
  EXPECT_THROW(X11CaptureSource({1, {}}, false), CaptureFailure);
}

}  // namespace
}  // namespace ScrollingCapture::Live
