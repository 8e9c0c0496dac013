#include <VelScrollingCapture/session/internal/Placement.h>

namespace ScrollingCapture {
namespace {

/// How far from the image's edge the first capture lies along one axis. A capture that passes the
/// edge moves it by its whole step.
class FirstOffset {
 public:
  void Move(int translation) {
    position -= translation;
    if (translation > 0 && position < edge) {
      edge -= translation;
    }
  }

  int Value() const { return -edge; }

 private:
  int position = 0;
  int edge = 0;
};

}  // namespace

std::vector<Place> PlacesOf(const std::vector<Translation>& translations) {
  FirstOffset row;
  FirstOffset column;
  for (const Translation& translation : translations) {
    row.Move(translation.GetRows());
    column.Move(translation.GetCols());
  }
  std::vector<Place> places = {{row.Value(), column.Value()}};
  for (const Translation& translation : translations) {
    const Place& previous = places.back();
    places.push_back(
        {previous.row - translation.GetRows(), previous.column - translation.GetCols()});
  }
  return places;
}

}  // namespace ScrollingCapture
