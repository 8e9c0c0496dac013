// Options that every sanitized test program starts with, and velscroll when it is tested. An
// allocation that cannot be made must fail as it does without a sanitizer, since the library has an
// answer to that.

#include <VelScrollingCapture/core/Export.h>

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" {

VEL_EXPORT const char* __asan_default_options();
VEL_EXPORT const char* __tsan_default_options();
VEL_EXPORT const char* __tsan_default_suppressions();

const char* __asan_default_options() { return "allocator_may_return_null=1"; }
const char* __tsan_default_options() { return "allocator_may_return_null=1"; }

// OpenCV is built without the sanitizer, which therefore cannot see that the reference count of a
// matrix's pixels orders every use of them before their release, nor how the first matrix
// expression makes what all others share, nor how its image processing hands work to threads of its
// own and waits for them. The order in which GNUstep, and a library behind OpenCV's image decoders,
// take their own locks is no fault of ours.
const char* __tsan_default_suppressions() {
  return "race:cv::Mat::deallocate\nrace:cv::Mat::release\nrace:libopencv_imgproc\n"
         "race:cv::MatExpr::operator cv::Mat\n"
         "deadlock:libgnustep-\ndeadlock:libgdal";
}
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
