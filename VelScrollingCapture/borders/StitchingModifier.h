#pragma once

#include <memory>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IStitcher.h>

namespace ScrollingCapture {

/// The base of stitchers that wrap another stitcher and work on its captures or its result.
class VEL_EXPORT StitchingModifier : public IStitcher {
 public:
  /// @param stitcher the wrapped stitcher, never null; ownership is shared
  explicit StitchingModifier(std::shared_ptr<IStitcher> stitcher);

 protected:
  std::shared_ptr<IStitcher> stitcher;  ///< The wrapped stitcher.
};

}  // namespace ScrollingCapture
