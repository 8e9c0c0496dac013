#include <algorithm>
#include <utility>

#include <VelScrollingCapture/mosaic/internal/SurroundingSums.h>

namespace ScrollingCapture {
namespace {

void AddTo(float* sums, const float* values, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    sums[i] += values[i];
  }
}

}  // namespace

SurroundingSums::SurroundingSums(std::vector<int> radii)
    : radii(std::move(radii)), sums(this->radii.size()) {}

void SurroundingSums::Find(const cv::Mat& values, int row, const cv::Range& columns) {
  const auto count = static_cast<size_t>(columns.size());
  ofColumns.assign(count + 2 * static_cast<size_t>(radii.back()), 0);
  ofTriples.resize(ofColumns.size() - 2);
  AddRow(values, row, columns);
  int reached = 0;
  for (size_t i = 0; i < radii.size(); ++i) {
    for (; reached < radii[i]; ++reached) {
      AddRow(values, row - reached - 1, columns);
      AddRow(values, row + reached + 1, columns);
    }
    sums[i].assign(count, 0);
    SumSideways(radii[i], sums[i]);
  }
}

void SurroundingSums::AddRow(const cv::Mat& values, int row, const cv::Range& columns) {
  if (row < 0 || row >= values.rows) {
    return;
  }
  const int first = columns.start - radii.back();
  const int begin = std::max(first, 0);
  const int end = std::min(columns.end + radii.back(), values.cols);
  AddTo(ofColumns.data() + (begin - first), values.ptr<float>(row, begin),
        static_cast<size_t>(end - begin));
}

/// Squares are summed up three columns at a time.
void SurroundingSums::SumSideways(int radius, std::vector<float>& ofRadius) {
  for (size_t i = 0; i < ofTriples.size(); ++i) {
    ofTriples[i] = ofColumns[i] + ofColumns[i + 1] + ofColumns[i + 2];
  }
  int column = radii.back() - radius;
  const int end = radii.back() + radius + 1;
  for (; column + 3 <= end; column += 3) {
    AddTo(ofRadius.data(), ofTriples.data() + column, ofRadius.size());
  }
  for (; column < end; ++column) {
    AddTo(ofRadius.data(), ofColumns.data() + column, ofRadius.size());
  }
}

}  // namespace ScrollingCapture
