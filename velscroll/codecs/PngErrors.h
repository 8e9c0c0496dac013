#pragma once

#include <csetjmp>
#include <png.h>

namespace ScrollingCapture::Program {

// libpng leaves a call that fails by longjmp, which must not skip anything that has a destructor:
// calls are made through AttemptPng, and callbacks hold nothing but plain values when they fail.

/// Leaves the call of libpng that is being made.
[[noreturn]] inline void LeavePng(png_structp png, png_const_charp /*message*/) {
  png_longjmp(png, 1);
}

inline void IgnorePngWarning(png_structp /*png*/, png_const_charp /*message*/) {}

/// Calls libpng.
/// @param call makes no object with a destructor, nor does what it calls beside libpng
/// @return false when libpng has failed
template <typename Call>
bool AttemptPng(png_structp png, const Call& call) {
  if (setjmp(png_jmpbuf(png)) != 0) {  // NOLINT(bugprone-*): libpng's way of failing
    return false;
  }
  call();
  return true;
}

}  // namespace ScrollingCapture::Program
