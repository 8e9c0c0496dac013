#pragma once

#include <memory>

#include <VelScrollingCapture/c/velscrollingcapture.h>

namespace ScrollingCapture::Testing {

struct FreesHandles {
  void operator()(vel_session* session) const { vel_session_free(session); }
  void operator()(vel_stitched* stitched) const { vel_stitched_free(stitched); }
  void operator()(vel_picture* picture) const { vel_picture_free(picture); }
  void operator()(vel_stitcher* stitcher) const { vel_stitcher_free(stitcher); }
};

/// A handle of the interface for C that frees itself.
template <typename Handle>
using Owned = std::unique_ptr<Handle, FreesHandles>;

}  // namespace ScrollingCapture::Testing
