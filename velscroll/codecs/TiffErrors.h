#pragma once

#include <cstdarg>
#include <memory>
#include <tiffio.h>

namespace ScrollingCapture::Program {

using TiffOptions = std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)>;

/// Takes a message of libtiff, which would otherwise go to standard error.
inline int IgnoreTiffMessage(TIFF* /*tiff*/, void* /*user*/, const char* /*module*/,
                             const char* /*format*/, va_list /*arguments*/) {
  return 1;
}

/// How to open a file so that libtiff says nothing; null when there is no memory. What fails is
/// seen by what its functions return.
inline TiffOptions QuietTiffOptions() {
  TiffOptions options(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
  if (options) {
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), IgnoreTiffMessage, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), IgnoreTiffMessage, nullptr);
  }
  return options;
}

}  // namespace ScrollingCapture::Program
