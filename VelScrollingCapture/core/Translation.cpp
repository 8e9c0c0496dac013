#include <ostream>

#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

Translation::Translation(int rows, int cols) : rows(rows), cols(cols) {}

int Translation::GetRows() const { return rows; }

int Translation::GetCols() const { return cols; }

bool Translation::operator==(const Translation& other) const {
  return rows == other.rows && cols == other.cols;
}

bool Translation::operator!=(const Translation& other) const { return !(*this == other); }

std::ostream& operator<<(std::ostream& stream, const Translation& translation) {
  return stream << "(" << translation.GetRows() << ", " << translation.GetCols() << ")";
}

}  // namespace ScrollingCapture
