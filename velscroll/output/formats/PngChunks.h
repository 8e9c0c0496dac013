#pragma once

#include <string>

#include <velscroll/codecs/PngErrors.h>
#include <velscroll/output/FilePixels.h>
#include <velscroll/output/RowWriter.h>
#include <velscroll/output/staging/GuardedSink.h>

namespace ScrollingCapture::Program {

/// Writes a PNG file's chunks by libpng; the pixels come compressed. libpng's limit of a million
/// rows and columns is raised to that of the format, 2^31 - 1: readers that keep theirs refuse
/// larger pictures.
class PngChunks {
 public:
  /// Writes everything up to the pixels. Throws Failed or Cancelled, as the others do.
  PngChunks(const PictureFormat& format, const PictureHeader& header, const FilePixels& pixels,
            OutputSink& sink);
  PngChunks(const PngChunks&) = delete;
  PngChunks& operator=(const PngChunks&) = delete;
  ~PngChunks();

  /// @param bytes the next ones of the compressed stream
  void WritePixels(const std::vector<unsigned char>& bytes);

  /// Writes what follows the pixels.
  void End();

 private:
  void Start(const PictureHeader& header, const FilePixels& pixels);
  void WriteChunk(const char* type, const std::vector<unsigned char>& bytes);

  template <typename Call>
  void Attempt(const Call& call);

  static void Store(png_structp png, png_bytep bytes, size_t length);

  const PictureFormat& format;
  const std::string name;
  GuardedSink sink;
  png_structp png;
  png_infop info;
};

}  // namespace ScrollingCapture::Program
