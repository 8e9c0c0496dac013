// What GNUstep and its runtime allocate once and keep until the process ends is no leak of ours.

#include <VelScrollingCapture/core/Export.h>

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" {

VEL_EXPORT const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() { return "leak:libobjc.so\nleak:libgnustep-\n"; }
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
