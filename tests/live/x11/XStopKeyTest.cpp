#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <live/x11/XStopKey.h>
#include <testkit/pages/Page.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "PageWindow.h"
#include "UserInput.h"
#include "XServer.h"

namespace ScrollingCapture::Live {
namespace {

using ::testing::HasSubstr;

class StopKey : public ::testing::Test {
 protected:
  static std::string Refusal(const std::string& name) {
    try {
      const XStopKey key(name);
    } catch (const CaptureFailure& failure) {
      return failure.what();
    }
    return {};
  }

  const Testing::XServer server{{}};
  const Testing::UserInput user;
};

TEST_F(StopKey, IsHeardOfWhereverItIsPressed) {
  XStopKey key("F12");
  EXPECT_FALSE(key.WasPressed());
  user.PressKey(XKB_KEY_F12);
  user.ReleaseKey(XKB_KEY_F12);
  EXPECT_TRUE(key.WasPressed());
  EXPECT_FALSE(key.WasPressed());
}

TEST_F(StopKey, NeedsItsModifiers) {
  XStopKey key("ctrl+Shift+s");
  user.PressKey(XKB_KEY_s);
  user.ReleaseKey(XKB_KEY_s);
  EXPECT_FALSE(key.WasPressed());
  user.PressKey(XKB_KEY_Control_L);
  user.PressKey(XKB_KEY_Shift_L);
  user.PressKey(XKB_KEY_s);
  EXPECT_TRUE(key.WasPressed());
}

TEST_F(StopKey, IsHeardOfUnderNumLock) {
  XStopKey key("Pause");
  user.PressKey(XKB_KEY_Num_Lock);
  user.ReleaseKey(XKB_KEY_Num_Lock);
  user.PressKey(XKB_KEY_Pause);
  EXPECT_TRUE(key.WasPressed());
}

TEST_F(StopKey, IsRefusedWhenThereIsNoSuchKey) {
  EXPECT_THAT(Refusal("Hyperspace"), HasSubstr("there is no key 'Hyperspace'"));
  EXPECT_THAT(Refusal("Foo+F12"), HasSubstr("there is no key"));
  EXPECT_THAT(Refusal("+"), HasSubstr("there is no key"));
}

TEST_F(StopKey, IsRefusedWhenAnotherProgramHasIt) {
  const XStopKey first("F12");
  EXPECT_THAT(Refusal("F12"), HasSubstr("has taken the key"));
}

}  // namespace
}  // namespace ScrollingCapture::Live
