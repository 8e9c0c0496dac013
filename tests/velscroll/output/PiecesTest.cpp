#include <gmock/gmock.h>
#include <testkit/MatrixTesting.h>
#include <velscroll/output/PictureWriting.h>
#include <velscroll/output/Pieces.h>

namespace ScrollingCapture {
namespace {

using Program::CutIntoPieces;
using Program::Picture;
using Program::PictureOf;
using Program::PieceName;
using ::testing::ElementsAre;

constexpr int Width = 40;

/// No row of it is of one colour.
cv::Mat Text(int rows) { return Testing::NoiseCapture({Width, rows}, 3); }

void Blank(cv::Mat& picture, int firstRow, int rows) {
  picture.rowRange(firstRow, firstRow + rows).setTo(cv::Scalar(200, 200, 210, 255));
}

std::vector<int> EndsOf(const cv::Mat& picture, int mostRows) {
  std::vector<int> ends;
  int start = 0;
  for (const cv::Range& piece : CutIntoPieces(PictureOf(picture), mostRows)) {
    EXPECT_EQ(piece.start, start);
    EXPECT_LE(piece.size(), mostRows);
    ends.push_back(start = piece.end);
  }
  return ends;
}

TEST(Pieces, OfASmallPictureAreOne) {
  EXPECT_THAT(EndsOf(Text(100), 100), ElementsAre(100));
  EXPECT_THAT(EndsOf(Text(100), 1000), ElementsAre(100));
}

TEST(Pieces, WithoutARowOfOneColourAreAsTallAsAllowed) {
  EXPECT_THAT(EndsOf(Text(250), 100), ElementsAre(100, 200, 250));
}

TEST(Pieces, OfOneRowEach) { EXPECT_THAT(EndsOf(Text(3), 1), ElementsAre(1, 2, 3)); }

TEST(Pieces, EndAtTheLowestRowOfOneColourThatIsNear) {
  cv::Mat picture = Text(150);
  Blank(picture, 78, 2);
  Blank(picture, 90, 3);
  EXPECT_THAT(EndsOf(picture, 100), ElementsAre(93, 150));
}

TEST(Pieces, MayEndDirectlyAboveARowOfOneColour) {
  cv::Mat picture = Text(150);
  Blank(picture, 90, 3);
  Blank(picture, 100, 1);
  EXPECT_THAT(EndsOf(picture, 100), ElementsAre(100, 150));
}

TEST(Pieces, DoNotEndAtARowOfOneColourAboveTheirLastQuarter) {
  cv::Mat picture = Text(150);
  Blank(picture, 60, 14);
  EXPECT_THAT(EndsOf(picture, 100), ElementsAre(100, 150));
  Blank(picture, 74, 1);
  EXPECT_THAT(EndsOf(picture, 100), ElementsAre(75, 150));
}

TEST(Pieces, AreCountedFromWhereTheOneBeforeEnds) {
  cv::Mat picture = Text(260);
  Blank(picture, 80, 1);
  EXPECT_THAT(EndsOf(picture, 100), ElementsAre(81, 181, 260));
}

TEST(Pieces, SeeARowOfOneTransparentColour) {
  cv::Mat picture = Text(150);
  picture.row(85).setTo(cv::Scalar::all(0));
  EXPECT_THAT(EndsOf(picture, 100), ElementsAre(86, 150));
}

TEST(Pieces, AreFoundByRenderingOnlyAFewRowsAtATime) {
  constexpr int Rows = 40000;
  const cv::Mat row = Text(1);
  int most = 0;
  int rendered = 0;
  const Picture picture = {{Width, Rows}, true, [&](const cv::Rect& area) {
                             EXPECT_EQ(area & cv::Rect(0, 0, Width, Rows), area);
                             most = std::max(most, area.height);
                             rendered += area.height;
                             return cv::repeat(row, area.height, 1);
                           }};
  EXPECT_EQ(CutIntoPieces(picture, 30000).size(), 2U);
  EXPECT_LE(most * Width, 262144);
  EXPECT_LE(rendered, 30000 / 4 + 2);
}

TEST(Pieces, AreNumberedInFrontOfTheExtension) {
  EXPECT_EQ(PieceName("page.png", 1), "page-1.png");
  EXPECT_EQ(PieceName("some.folder/my.page.tiff", 12), "some.folder/my.page-12.tiff");
  EXPECT_EQ(PieceName("../page.jpg", 3), "../page-3.jpg");
}

}  // namespace
}  // namespace ScrollingCapture
