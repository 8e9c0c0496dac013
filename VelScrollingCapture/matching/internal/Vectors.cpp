#include <opencv2/core/utility.hpp>

#include <VelScrollingCapture/matching/internal/Vectors.h>

namespace ScrollingCapture {

bool HasWideVectors() {
#if defined(__x86_64__) && defined(__GNUC__)
  static const bool has = cv::checkHardwareSupport(CV_CPU_AVX2);
  return has;
#else
  return false;
#endif
}

}  // namespace ScrollingCapture
