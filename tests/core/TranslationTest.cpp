#include <cstddef>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {
namespace {

TEST(Translation, IsZeroByDefault) {
  EXPECT_EQ(Translation().GetRows(), 0);
  EXPECT_EQ(Translation().GetCols(), 0);
}

TEST(Translation, TakesRowsBeforeColumns) {
  const Translation translation(12, -3);
  EXPECT_EQ(translation.GetRows(), 12);
  EXPECT_EQ(translation.GetCols(), -3);
}

TEST(Translation, EqualsAnotherWhenBothFieldsAreEqual) {
  const std::vector<Translation> translations = {{0, 0}, {1, 2}, {2, 1}, {1, 3}, {0, 2}, {-1, -2}};
  for (size_t i = 0; i < translations.size(); ++i) {
    for (size_t k = 0; k < translations.size(); ++k) {
      EXPECT_EQ(translations[i] == translations[k], i == k) << i << ", " << k;
      EXPECT_EQ(translations[i] != translations[k], i != k) << i << ", " << k;
    }
  }
}

TEST(Translation, KeepsItsValueWhenACopyChanges) {
  const Translation original(4, 5);
  Translation copy(original);
  EXPECT_EQ(copy.GetRows(), 4);
  EXPECT_EQ(copy.GetCols(), 5);
  copy = Translation(-6, 7);
  EXPECT_EQ(copy.GetRows(), -6);
  EXPECT_EQ(copy.GetCols(), 7);
  EXPECT_EQ(original.GetRows(), 4);
  EXPECT_EQ(original.GetCols(), 5);
}

TEST(Translation, KeepsItsValueWhenItIsAssignedToItself) {
  Translation translation(4, 5);
  const Translation& same = translation;
  translation = same;
  EXPECT_EQ(translation.GetRows(), 4);
  EXPECT_EQ(translation.GetCols(), 5);
}

TEST(Translation, PrintsRowsAndColumnsWithoutEndOfLine) {
  std::ostringstream stream;
  stream << Translation(-5, 0);
  EXPECT_EQ(stream.str(), "(-5, 0)");
}

}  // namespace
}  // namespace ScrollingCapture
