#pragma once

#include <memory>
#include <vector>

#include <velscroll/metadata/ImageMetadata.h>

#include <VelScrollingCapture/c/picture.h>
#include <VelScrollingCapture/session/StitchedPicture.h>

namespace ScrollingCapture::C {

/// The parts of a picture.
using Parts = std::vector<std::shared_ptr<const StitchedPicture>>;

/// Writes the parts of a picture into files of their own, as vel_stitched_write tells. Throws what
/// writing and rendering throw, and CallFailure.
void WriteParts(const Parts& parts, const Program::ImageMetadata& metadata, const char* path,
                const vel_file_settings* settings, vel_progress progress, void* user);

}  // namespace ScrollingCapture::C
