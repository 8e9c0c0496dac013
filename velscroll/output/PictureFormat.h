#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {

/// A file format that a picture can be written in.
struct PictureFormat {
  enum Kind { Png, Tiff, Bmp, WebP, Jpeg };

  Kind kind;
  const char* name;
  std::vector<const char*> extensions;  ///< with the dot, the usual one first
  int longestSide;                      ///< the most rows and the most columns
  std::int64_t mostBytes;               ///< the most bytes of pixels before compression
  bool hasAlpha;
};

/// The format that a path's extension stands for; PNG for "-", standard output. Throws BadInput
/// when there is none.
const PictureFormat& PictureFormatOf(const std::string& path);

/// The extensions that PictureFormatOf knows, for messages.
std::string PictureFormatList();

/// A format cannot hold a picture. The message has the program's advice: --split, where fewer rows
/// in a file would do, and a format that can hold the picture.
class TooLargeForFormat : public Failed {
 public:
  TooLargeForFormat(const std::string& message, std::string why, bool piecesWouldDo)
      : Failed(message), reason(std::move(why)), holdsPieces(piecesWouldDo) {}

  /// What is too large for what, for interfaces that give advice in words of their own.
  const std::string& Reason() const { return reason; }

  /// Whether fewer rows in a file would do.
  bool HoldsPieces() const { return holdsPieces; }

 private:
  std::string reason;
  bool holdsPieces;
};

/// Throws TooLargeForFormat when a picture of this size cannot be written in the format.
void RequireHolds(const PictureFormat& format, const cv::Size& size, const std::string& path);

}  // namespace ScrollingCapture::Program
