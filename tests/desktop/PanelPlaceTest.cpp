#include <desktop/windows/PanelPlace.h>
#include <gtest/gtest.h>

namespace ScrollingCapture::Desktop {
namespace {

struct PlaceCase {
  const char* name;
  QRect region;
  QVector<QRect> screens;
  std::optional<QPoint> place;
};

void PrintTo(const PlaceCase& tested, std::ostream* out) { *out << tested.name; }

class PanelPlaceTest : public testing::TestWithParam<PlaceCase> {};

const QSize PanelSize(200, 300);
const QRect Screen(0, 0, 1000, 800);
const QRect Second(1000, 0, 1000, 800);

TEST_P(PanelPlaceTest, IsOnAScreenAndOutsideOfTheRegion) {
  const auto place = PlaceOutside(GetParam().region, PanelSize, GetParam().screens);
  EXPECT_EQ(place, GetParam().place);
}

INSTANTIATE_TEST_SUITE_P(
    Regions, PanelPlaceTest,
    testing::Values(
        PlaceCase{"Right", {100, 100, 400, 400}, {Screen}, QPoint(508, 100)},
        PlaceCase{"Left", {500, 100, 450, 400}, {Screen}, QPoint(292, 100)},
        PlaceCase{"Below", {10, 10, 980, 400}, {Screen}, QPoint(10, 418)},
        PlaceCase{"Above", {10, 400, 980, 390}, {Screen}, QPoint(10, 92)},
        PlaceCase{"WithinTheScreen", {100, 700, 400, 100}, {Screen}, QPoint(508, 500)},
        PlaceCase{"BesideWhatIsPartlyOffTheScreen", {-50, -20, 400, 400}, {Screen}, QPoint(358, 0)},
        PlaceCase{"OnTheOtherScreen", {0, 0, 1000, 800}, {Screen, Second}, QPoint(1008, 0)},
        PlaceCase{
            "OnTheSameScreenIfItHasRoom", {1100, 0, 400, 400}, {Screen, Second}, QPoint(1508, 0)},
        PlaceCase{"NowhereWhereTheRegionFillsAll", {0, 0, 2000, 800}, {Screen, Second}, {}},
        PlaceCase{"NowhereWhereTheScreenIsTooSmall", {0, 0, 50, 50}, {QRect(0, 0, 150, 150)}, {}}),
    [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace ScrollingCapture::Desktop
