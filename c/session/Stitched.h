#pragma once

#include <memory>
#include <utility>

#include <c/calls/Handle.h>
#include <velscroll/metadata/ImageMetadata.h>

#include <VelScrollingCapture/c/stitched.h>
#include <VelScrollingCapture/session/SessionResult.h>

/// A stitch's result that a caller holds.
struct vel_stitched : ScrollingCapture::C::Handle {
  /// @param gate     the session's
  /// @param metadata for files
  vel_stitched(std::shared_ptr<ScrollingCapture::C::Gate> gate,
               ScrollingCapture::SessionResult result,
               ScrollingCapture::Program::ImageMetadata metadata)
      : Handle(std::move(gate)), result(std::move(result)), metadata(std::move(metadata)) {}

  const ScrollingCapture::SessionResult result;
  const ScrollingCapture::Program::ImageMetadata metadata;
};
