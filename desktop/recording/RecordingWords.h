#pragma once

#include <QString>
#include <QStringList>

#include <live/Recorder.h>
#include <live/RecordingStatus.h>

namespace ScrollingCapture::Desktop {

/// How large the picture is so far.
QString SizeWords(const Live::RecordingStatus& status);

/// What is wrong just now, and what the user can do about it; mostly empty.
QString WarningWords(const Live::RecordingStatus& status);

/// What the user should know of the picture after a recording.
/// @param parts how many it has
QStringList NotesOn(const Live::RecordingEnd& end, std::size_t parts);

}  // namespace ScrollingCapture::Desktop
