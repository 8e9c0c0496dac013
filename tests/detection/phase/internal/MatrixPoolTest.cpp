#include <gtest/gtest.h>

#include <VelScrollingCapture/detection/phase/internal/MatrixPool.h>

namespace ScrollingCapture {
namespace {

const cv::Size Size(20, 10);

TEST(MatrixPool, LendsTheMemoryAgainThatCameBack) {
  MatrixPool pool;
  const uchar* const memory = pool.Lend(Size, CV_32FC2)->data;
  EXPECT_EQ(pool.Lend(Size, CV_32FC2)->data, memory);
}

TEST(MatrixPool, LendsMemoryToOneUserAtATime) {
  MatrixPool pool;
  const auto first = pool.Lend(Size, CV_32FC2);
  const auto second = pool.Lend(Size, CV_32FC2);
  EXPECT_NE(first->data, second->data);
}

TEST(MatrixPool, GivesTheSizeAndTypeAskedForWhateverCameBack) {
  MatrixPool pool;
  pool.Lend(Size, CV_32FC2);
  const auto other = pool.Lend({7, 3}, CV_8UC1);
  EXPECT_EQ(other->size(), cv::Size(7, 3));
  EXPECT_EQ(other->type(), CV_8UC1);
}

}  // namespace
}  // namespace ScrollingCapture
