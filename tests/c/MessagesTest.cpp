#include <string>

#include <gtest/gtest.h>

#include <VelScrollingCapture/core/internal/Messages.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

struct Heard {
  std::string text;
  int32_t kind = -1;
};

void Hear(int32_t kind, const char* text, void* user) { *static_cast<Heard*>(user) = {text, kind}; }

TEST(MessagesInC, GoToTheHandlerUntilItIsTakenAway) {
  Heard heard;
  ASSERT_EQ(vel_set_message_handler(Hear, &heard), VEL_OK);
  TellError("Error: Something.");
  ASSERT_EQ(vel_set_message_handler(nullptr, nullptr), VEL_OK);
  EXPECT_EQ(heard.kind, VEL_ERROR);
  EXPECT_EQ(heard.text, "Error: Something.");
  heard = {};
  testing::internal::CaptureStderr();
  TellError("Error: Something else.");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: Something else.\n");
  EXPECT_EQ(heard.text, "");
}

}  // namespace
}  // namespace ScrollingCapture
