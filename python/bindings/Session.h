#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <python/bindings/Stitched.h>
#include <python/bindings/WatchedWork.h>
#include <velscroll/input/ImageFile.h>
#include <velscroll/report/ReportedCapture.h>
#include <velscroll/stitch/StageClock.h>

#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Python {

/// A capture that has been looked at already, and can be added.
struct PreparedImage {
  IncomingCapture capture;
  Program::ImageMetadata metadata;
};

/// A capture session for any number of threads, one of which works at a time while the others wait.
/// To be called without the GIL.
class Session {
 public:
  /// Throws what CaptureSession's constructor throws.
  explicit Session(const SessionSettings& settings);

  /// As CaptureSession::Prepare; nobody waits.
  PreparedImage Prepare(const Program::CaptureImage& image) const;

  /// Adds a capture. Throws BadInput when it is unusable, and std::logic_error when the session is
  /// over: phase correlation has stitched, or memory ran out before.
  /// @param name of the capture in messages and in the report
  CaptureOutcome Add(const std::string& name, const PreparedImage& image);

  /// As CaptureSession::Preview.
  cv::Mat Preview();

  bool ExceedsMemoryLimit();

  /// Stitches what was added. Throws BadInput when there is nothing, std::bad_alloc,
  /// std::runtime_error when that fails, std::logic_error as Add does, and Cancelled when it is
  /// told to stop.
  Stitched Stitch(const TellProgress& tell);

 private:
  void RequireOngoing() const;
  void Remember(const std::string& name, const PreparedImage& image, bool repeats);
  Stitched Describe(const SessionResult& result) const;

  const SessionSettings settings;
  const std::shared_ptr<std::mutex> mutex = std::make_shared<std::mutex>();
  CaptureSession session;
  Program::StageClock clock;
  std::vector<Program::CaptureFile> files;
  Program::ImageMetadata metadata;
  cv::Mat kept;     ///< the last capture that is no repeat
  std::string end;  ///< why nothing can be done any more; empty before
};

}  // namespace ScrollingCapture::Python
