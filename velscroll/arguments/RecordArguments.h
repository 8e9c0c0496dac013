#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <live/ICaptureSource.h>
#include <opencv2/core.hpp>
#include <velscroll/arguments/ResultArguments.h>

namespace ScrollingCapture::Program {

/// What the command line of velscroll record asks for.
struct RecordArguments : ResultArguments {
  std::optional<std::uint32_t> window;  ///< a window's number
  std::string windowName;               ///< a part of a window's title; empty: none
  std::optional<cv::Rect> region;       ///< of the screen, in pixels
  std::optional<Live::ScrollDirection> autoScroll;
  int limit = 0;              ///< rows or columns after which scrolling ends; 0: none
  std::string stopKey;        ///< ends the recording; empty: none
  double delaySeconds = 0;    ///< to wait before the recording begins
  bool showsPointer = false;  ///< whether the mouse pointer is drawn in
  bool toClipboard = false;   ///< whether the picture is put there
  std::string captureFolder;  ///< where captures are kept; empty: nowhere
};

/// Reads the command line, from the word "record" on. Throws BadInput for wrong usage.
/// @return nothing when help was asked for; it has then been printed
std::optional<RecordArguments> ParseRecordArguments(int argc, const char* const* argv);

}  // namespace ScrollingCapture::Program
