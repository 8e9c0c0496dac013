#include <algorithm>

#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/internal/SeenAnchors.h>

namespace ScrollingCapture {
namespace {

using namespace Testing;

class SeenAnchorsOfAPhoto : public testing::Test {
 protected:
  CaptureAnchors At(const cv::Point& place) const {
    return FindAnchors(Window(photo, {300, 200}, place));
  }

  cv::Mat photo = DrawPhoto({900, 900}, 1);
  PictureParts parts;
  SeenAnchors seen{parts};
  int part = parts.Add();
};

TEST_F(SeenAnchorsOfAPhoto, TellWhereACaptureLies) {
  seen.Add(At({100, 100}), part, {0, 0});
  const std::vector<SeenAnchors::Vote> votes = seen.PlacesOf(At({130, 160}));
  ASSERT_FALSE(votes.empty());
  EXPECT_EQ(votes[0].part, part);
  EXPECT_EQ(votes[0].place, cv::Point(30, 60));
  EXPECT_GT(votes[0].votes, 100);
  EXPECT_TRUE(seen.PlacesOf(At({500, 500})).empty());
}

TEST_F(SeenAnchorsOfAPhoto, TellInWhichPart) {
  const int other = parts.Add();
  seen.Add(At({0, 0}), part, {0, 0});
  seen.Add(At({500, 500}), other, {7, 7});
  EXPECT_EQ(seen.PlacesOf(At({500, 510}))[0].part, other);
  parts.Join({part, {500, 500}}, {other, {7, 7}});
  EXPECT_EQ(seen.PlacesOf(At({500, 510}))[0].part, part);
  EXPECT_EQ(seen.PlacesOf(At({500, 510}))[0].place, cv::Point(500, 510));
}

TEST_F(SeenAnchorsOfAPhoto, DoNotVoteOnceTheyWereSeenTwice) {
  const CaptureAnchors capture = At({0, 0});
  const auto remembered = std::find_if(
      capture.anchors.begin(), capture.anchors.end(),
      [&](const Anchor& anchor) { return SeenAnchors::IsRemembered(anchor.hash, capture); });
  seen.Add(capture, part, {0, 0});
  seen.Add(capture, part, {1, 0});
  EXPECT_FALSE(seen.IsRepeated(remembered->hash)) << "as good as the same place";
  seen.Add(capture, part, {0, 400});
  EXPECT_TRUE(seen.IsRepeated(remembered->hash));
  EXPECT_TRUE(seen.PlacesOf(capture).empty());
}

TEST_F(SeenAnchorsOfAPhoto, TakeABoundedMemory) {
  for (std::uint64_t film = 0; film < 60; ++film) {
    seen.Add(FindAnchors(DrawPhoto({300, 200}, 10 + film)), part, {-40, -40});
  }
  // The least that a table has, and one byte a pixel.
  EXPECT_LE(seen.Bytes(), 4096U * 17 + 300U * 200U * 2);
}

}  // namespace
}  // namespace ScrollingCapture
