#include <cstring>
#include <exception>
#include <new>
#include <system_error>

#include <c/calls/Failures.h>
#include <opencv2/core.hpp>
#include <velscroll/terminal/Failure.h>

#include <VelScrollingCapture/session/SpillFileLost.h>

namespace ScrollingCapture::C {
namespace {

/// A result with its message.
struct Explanation {
  vel_result result;
  const char* message;
};

Explanation OutOfMemory() { return {VEL_OUT_OF_MEMORY, vel_result_text(VEL_OUT_OF_MEMORY)}; }

Explanation Explain(const Program::Failure& failure) {
  switch (failure.Status()) {
    case Program::WasCancelled:
      return {VEL_CANCELLED, vel_result_text(VEL_CANCELLED)};
    case Program::WrongUsage:
      return {VEL_FILE_UNUSABLE, failure.what()};
    default:
      return {VEL_FILE_FAILED, failure.what()};
  }
}

Explanation Explain(const cv::Exception& error) {
  return error.code == cv::Error::StsNoMem ? OutOfMemory()
                                           : Explanation{VEL_FAILURE, error.err.c_str()};
}

vel_result Tell(const Explanation& explanation, char* text, std::size_t size) {
  CopyMessage(explanation.message, text, size);
  return explanation.result;
}

/// Where to cut a text that is too long: not within a character.
std::size_t CutBefore(const char* message, std::size_t length) {
  constexpr unsigned int KindMask = 0xC0;
  constexpr unsigned int Continuation = 0x80;
  while (length > 0 && (static_cast<unsigned char>(message[length]) & KindMask) == Continuation) {
    --length;
  }
  return length;
}

}  // namespace

void CopyMessage(const char* message, char* text, std::size_t size) noexcept {
  if (text == nullptr || size == 0) {
    return;
  }
  const std::size_t whole = std::strlen(message);
  const std::size_t length = whole < size ? whole : CutBefore(message, size - 1);
  std::memcpy(text, message, length);
  text[length] = '\0';
}

vel_result ExplainException(char* text, std::size_t size) noexcept {
  try {
    throw;
  } catch (const CallFailure& failure) {
    return Tell({failure.Result(), failure.what()}, text, size);
  } catch (const Program::Failure& failure) {
    return Tell(Explain(failure), text, size);
  } catch (const SpillFileLost& lost) {
    return Tell({VEL_CAPTURE_LOST, lost.what()}, text, size);
  } catch (const cv::Exception& error) {
    return Tell(Explain(error), text, size);
  } catch (const std::bad_alloc&) {
    return Tell(OutOfMemory(), text, size);
  } catch (const std::invalid_argument& error) {
    return Tell({VEL_INVALID_ARGUMENT, error.what()}, text, size);
  } catch (const std::length_error& error) {
    return Tell({VEL_STITCH_FAILED, error.what()}, text, size);
  } catch (const std::exception& error) {
    return Tell({VEL_FAILURE, error.what()}, text, size);
  } catch (...) {
    return Tell({VEL_FAILURE, vel_result_text(VEL_FAILURE)}, text, size);
  }
}

}  // namespace ScrollingCapture::C
