#pragma once

#include <vector>

namespace ScrollingCapture::Program {

/// Whether these are the bytes of a JPEG file (ITU-T T.81, annex B) that stops before its
/// end-of-image marker. Decoders paint what is missing grey and go on, so nobody else tells. Bytes
/// after the marker do not matter.
bool IsJpegCutShort(const std::vector<unsigned char>& file);

}  // namespace ScrollingCapture::Program
