#pragma once

#include <optional>
#include <string>
#include <vector>

#include <velscroll/metadata/ImageMetadata.h>
#include <velscroll/report/ReportedCapture.h>
#include <velscroll/terminal/Console.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Program {

/// The captures that a run is about.
struct CaptureFiles {
  std::vector<std::string> paths;

  /// Prescribed motions, one element a path; empty when there are none.
  std::vector<std::optional<Translation>> motions;
};

/// What was read.
struct ReadFiles {
  std::vector<CaptureFile> files;
  ImageMetadata metadata;            ///< of the first one
  std::vector<std::string> remarks;  ///< what the library said meanwhile
};

/// Reads files and adds them to a session, on some threads. Warns once when captures have to stay
/// in memory that were to be spilled.
///
/// Throws BadInput when a file is no usable capture, Failed, and Cancelled.
ReadFiles ReadInto(CaptureSession& session, const CaptureFiles& captures, unsigned int threads,
                   Console& console);

/// Warns when captures have to stay in memory that were to be spilled.
/// @return whether that is so
bool WarnOfFullDisk(const CaptureSession& session, Console& console);

}  // namespace ScrollingCapture::Program
