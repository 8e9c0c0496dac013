#pragma once

#include <VelScrollingCapture/core/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/// The version of the library: 1.0.
VEL_EXPORT extern const double VelScrollingCaptureVersionNumber;

/// The version as a line of text that ends with a zero and that tools find in the binary by its
/// mark "@(#)".
VEL_EXPORT extern const unsigned char VelScrollingCaptureVersionString[];

#ifdef __cplusplus
}  // extern "C"
#endif
