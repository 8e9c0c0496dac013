#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include <desktop/recording/CaptureChoice.h>
#include <live/x11/XChoice.h>

namespace ScrollingCapture::Desktop {

/// What the command line asks for.
struct Arguments {
  QString text;  ///< to be printed, and nothing else to be done; mostly empty
  std::optional<Live::XChoice> choice;  ///< to be recorded at once
  RecordingOptions options;             ///< then
};

/// Throws BadInput.
/// @param words the program's name first
Arguments ParseArguments(const QStringList& words);

}  // namespace ScrollingCapture::Desktop
