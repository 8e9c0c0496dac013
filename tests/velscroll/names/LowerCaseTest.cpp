#include <gtest/gtest.h>
#include <velscroll/names/LowerCase.h>

namespace ScrollingCapture {
namespace {

TEST(LowerCase, ChangesTheLettersFromAToZAndNothingElse) {
  EXPECT_EQ(Program::LowerCase("AZaz.PNG@[`{09"), "azaz.png@[`{09");
  EXPECT_EQ(Program::LowerCase("SIDE Ä\xC4"), "side Ä\xC4");
}

}  // namespace
}  // namespace ScrollingCapture
