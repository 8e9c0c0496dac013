#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <live/x11/XWindows.h>
#include <testkit/pages/Page.h>

#include "PageWindow.h"
#include "XServer.h"

namespace ScrollingCapture::Live {
namespace {

using ::testing::HasSubstr;

class Windows : public ::testing::Test {
 protected:
  std::string Refusal(const std::string& text) const {
    try {
      FindWindow(connection, text);
    } catch (const CaptureFailure& failure) {
      return failure.what();
    }
    return {};
  }

  const Testing::XServer server{{"-screen", "0", "640x480x24"}};
  Testing::PageWindow first{Testing::TextPage({300, 400}), {0, 0, 100, 100}, "The First Page"};
  Testing::PageWindow second{Testing::TextPage({300, 400}), {50, 50, 100, 100}, "A second page"};
  const XConnection connection;
};

TEST_F(Windows, AreFoundByAPartOfTheirTitles) {
  EXPECT_EQ(FindWindow(connection, "first"), first.Number());
  EXPECT_EQ(FindWindow(connection, "SECOND"), second.Number());
  EXPECT_EQ(TitleOf(connection, first.Number()), "The First Page");
}

TEST_F(Windows, AreNotFoundWhenTheirTitlesAreMissing) {
  EXPECT_EQ(Refusal("third"), "no window on the screen has 'third' in its title");
  first.Hide();
  EXPECT_THAT(Refusal("first"), HasSubstr("no window"));
}

TEST_F(Windows, AreListedWhenSeveralHaveTheTitle) {
  EXPECT_THAT(Refusal("page"), ::testing::AllOf(HasSubstr("'The First Page'"),
                                                HasSubstr("'A second page'"), HasSubstr("0x")));
}

TEST_F(Windows, AreCoveredByThoseAboveAndByTheEdgeOfTheScreen) {
  EXPECT_TRUE(IsCovered(connection, first.Number()));
  EXPECT_FALSE(IsCovered(connection, second.Number()));
  second.MoveTo({600, 50});
  EXPECT_FALSE(IsCovered(connection, first.Number()));
  EXPECT_TRUE(IsCovered(connection, second.Number()));
}

}  // namespace
}  // namespace ScrollingCapture::Live
