#include <new>
#include <system_error>

#include <opencv2/core.hpp>
#include <velscroll/terminal/Explanation.h>

#include <VelScrollingCapture/session/SpillFileLost.h>

namespace ScrollingCapture::Program {
namespace {

using Kind = Explanation::Kind;

Explanation NoMemory() { return {Kind::NoMemory, "not enough memory"}; }

}  // namespace

Explanation ExplanationOf(const std::exception_ptr& exception) {
  try {
    std::rethrow_exception(exception);
  } catch (const SpillFileLost&) {
    return {Kind::SpillFileLost, "a capture that was spilled to a file cannot be read back"};
  } catch (const std::bad_alloc&) {
    return NoMemory();
  } catch (const cv::Exception& error) {
    return error.code == cv::Error::StsNoMem
               ? NoMemory()
               : Explanation{Kind::Unexpected,
                             "unexpected failure in image processing: " + error.err};
  } catch (const std::system_error& error) {
    return error.code() == std::errc::resource_unavailable_try_again
               ? Explanation{Kind::NoThread, "the system allows no further thread"}
               : Explanation{Kind::Told, error.what()};
  } catch (const std::exception& error) {
    return {Kind::Told, error.what()};
  } catch (...) {
    return {Kind::Unexpected, "unexpected failure"};
  }
}

}  // namespace ScrollingCapture::Program
