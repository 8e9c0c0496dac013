#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <jerror.h>
#include <jpeglib.h>

namespace ScrollingCapture::Program {

/// How libjpeg tells of errors. It cannot return from a call that fails, so the call is left by
/// longjmp, which must not skip anything that has a destructor: calls are made through Attempt, and
/// callbacks hold nothing but plain values when they fail.
class JpegErrors : private jpeg_error_mgr {
 public:
  JpegErrors() : jpeg_error_mgr() {
    jpeg_std_error(this);
    error_exit = Leave;
    emit_message = IgnoreMessage;
  }
  JpegErrors(const JpegErrors&) = delete;
  JpegErrors& operator=(const JpegErrors&) = delete;

  /// For the field `err`.
  jpeg_error_mgr* Manager() { return this; }

  /// Calls libjpeg.
  /// @param call makes no object with a destructor, nor does what it calls beside libjpeg
  /// @return false when libjpeg has failed
  template <typename Call>
  bool Attempt(const Call& call) {
    if (setjmp(escape) != 0) {
      return false;
    }
    call();
    return true;
  }

  /// Whether it was for a lack of memory that the last call failed.
  bool IsOutOfMemory() const { return msg_code == JERR_OUT_OF_MEMORY; }

  /// Leaves the call of libjpeg that is being made.
  [[noreturn]] static void Leave(j_common_ptr info) {
    std::longjmp(static_cast<JpegErrors*>(info->err)->escape, 1);
  }

 private:
  static void IgnoreMessage(j_common_ptr /*info*/, int /*level*/) {}

  std::jmp_buf escape = {};
};

}  // namespace ScrollingCapture::Program
