#pragma once

#include <QStringList>
#include <functional>
#include <string>

#include <desktop/picture/RecordedPicture.h>

namespace ScrollingCapture::Desktop {

/// Told, after every some rows, how much is written. May throw, which ends the writing.
using HearOfProgress = std::function<void(int percent)>;

/// How small a PNG file is made, for how much time.
enum class Compression { Fast, Usual };

/// Writes a picture into a file, which comes into being as a whole or not at all. What was there
/// under its name stays until then.
///
/// Throws Failure when the file cannot be written, and what the picture and the listener throw.
/// @param path its extension tells the format
void WritePictureFile(const RecordedPicture& picture, const std::string& path,
                      Compression compression, const HearOfProgress& progress);

/// The formats, for a file dialog: PNG first.
QStringList FormatFilters();

}  // namespace ScrollingCapture::Desktop
