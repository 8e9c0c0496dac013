#include <new>
#include <system_error>

#include <desktop/support/Explanation.h>
#include <opencv2/core.hpp>

#include <VelScrollingCapture/session/SpillFileLost.h>

namespace ScrollingCapture::Desktop {
namespace {

constexpr const char* NoMemory = "there is not enough memory";

std::string WordsFor(const std::exception_ptr& exception) {
  try {
    std::rethrow_exception(exception);
  } catch (const SpillFileLost&) {
    return "a capture that waited in a temporary file cannot be read back";
  } catch (const std::bad_alloc&) {
    return NoMemory;
  } catch (const cv::Exception& error) {
    return error.code == cv::Error::StsNoMem
               ? NoMemory
               : "unexpected failure in image processing: " + error.err;
  } catch (const std::system_error& error) {
    return error.code() == std::errc::resource_unavailable_try_again
               ? "the system allows no further thread"
               : error.what();
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "unexpected failure";
  }
}

}  // namespace

QString Explain(const std::exception_ptr& exception) { return AsLine(WordsFor(exception)); }

QString AsLine(const std::string& words) {
  QString line = QString::fromStdString(words).simplified();
  if (!line.isEmpty()) {
    line[0] = line[0].toUpper();
  }
  return line;
}

}  // namespace ScrollingCapture::Desktop
