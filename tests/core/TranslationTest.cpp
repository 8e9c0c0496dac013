#include <sstream>

#include <gtest/gtest.h>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {
namespace {

TEST(Translation, IsZeroByDefault) { EXPECT_EQ(Translation(), Translation(0, 0)); }

TEST(Translation, TakesRowsBeforeColumns) {
  const Translation translation(12, -3);
  EXPECT_EQ(translation.GetRows(), 12);
  EXPECT_EQ(translation.GetCols(), -3);
}

TEST(Translation, DiffersWhenEitherFieldDiffers) {
  EXPECT_TRUE(Translation(1, 2) != Translation(1, 3));
  EXPECT_TRUE(Translation(1, 2) != Translation(0, 2));
  EXPECT_FALSE(Translation(1, 2) != Translation(1, 2));
}

TEST(Translation, StaysTheSameWhenAssignedToItself) {
  Translation translation(4, 5);
  const Translation& same = translation;
  translation = same;
  EXPECT_EQ(translation, Translation(4, 5));
}

TEST(Translation, PrintsRowsAndColumnsWithoutEndOfLine) {
  std::ostringstream stream;
  stream << Translation(-5, 0);
  EXPECT_EQ(stream.str(), "(-5, 0)");
}

}  // namespace
}  // namespace ScrollingCapture
