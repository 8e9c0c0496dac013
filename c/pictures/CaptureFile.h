#pragma once

#include <velscroll/input/ImageFile.h>

namespace ScrollingCapture::C {

/// Reads an image file as a capture. Throws CallFailure, and what Program::ReadCapture throws.
/// @param path may be null, which is InvalidArgument
Program::CaptureImage ReadCaptureFile(const char* path);

}  // namespace ScrollingCapture::C
