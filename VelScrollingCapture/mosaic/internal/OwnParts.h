#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CellDecision.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>

namespace ScrollingCapture {

/// Gathers the cells at which uncovered captures disagree, and takes parts that change by
/// themselves from one capture as a whole.
///
/// Cells close to each other make a part. Where captures mostly have no majority in it, it is an
/// own part of the page, such as a video. It then comes from the capture that shows most of it, or
/// else agrees with most others, or is less suspect, or is the latest. Parts that are higher than a
/// capture are cut.
class OwnParts {
 public:
  OwnParts(const CaptureLayout& layout, const Suspicion& suspicion)
      : layout(layout), suspicion(suspicion) {}

  /// Cells come row by row.
  void Add(CellDecision decision);

  /// Decides the parts that end above a row of cells, or are too high.
  /// @return their cells
  std::vector<CellOwners> TakeDoneAbove(int cellRow);

  /// Decides all parts that are left.
  std::vector<CellOwners> TakeAll();

 private:
  using Position = std::pair<int, int>;  ///< row and column of a cell

  std::vector<Position> PartAt(const Position& start) const;
  void Decide(const std::vector<Position>& part);

  const CaptureLayout& layout;
  const Suspicion& suspicion;
  std::map<Position, CellDecision> open;
};

}  // namespace ScrollingCapture
