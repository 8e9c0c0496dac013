#pragma once

namespace ScrollingCapture {

/// The scroll directions in which a detector looks for motion.
///
/// Any integer can be carried. A value outside the list looks in no direction at all: every
/// detected offset is then (0, 0).
enum ScrollOrientation : int {
  Vertical = 0,    ///< Content moves along rows only.
  Horizontal = 1,  ///< Content moves along columns only.
  Both = 2,        ///< Content may move along rows and columns; the default everywhere.
};

}  // namespace ScrollingCapture
