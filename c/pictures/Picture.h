#pragma once

#include <memory>

#include <c/calls/Handle.h>
#include <opencv2/core.hpp>
#include <velscroll/metadata/ImageMetadata.h>

#include <VelScrollingCapture/c/picture.h>
#include <VelScrollingCapture/session/StitchedPicture.h>

/// A picture that a caller holds.
struct vel_picture : ScrollingCapture::C::Handle {
  /// @param gate that of the handles whose captures it shows
  vel_picture(std::shared_ptr<ScrollingCapture::C::Gate> gate,
              std::shared_ptr<const ScrollingCapture::StitchedPicture> picture,
              ScrollingCapture::Program::ImageMetadata metadata)
      : Handle(std::move(gate)), picture(std::move(picture)), metadata(std::move(metadata)) {}

  /// A picture in memory.
  /// @param pixels CV_8UC4: red, green, blue, premultiplied alpha; nobody changes them afterwards
  explicit vel_picture(cv::Mat pixels);

  const std::shared_ptr<const ScrollingCapture::StitchedPicture> picture;
  const ScrollingCapture::Program::ImageMetadata metadata;  ///< for files
};
