#include <cstdlib>
#include <utility>

#include <velscroll/input/CaptureReading.h>
#include <velscroll/stitch/SessionReading.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/HeldMessages.h>

namespace ScrollingCapture::Program {
namespace {

bool Overlaps(const Translation& motion, const cv::Size& size) {
  return std::abs(motion.GetRows()) < size.height && std::abs(motion.GetCols()) < size.width;
}

/// Adds what is read, file by file.
class Reader {
 public:
  Reader(CaptureSession& session, const CaptureFiles& captures, Console& console)
      : session(session), captures(captures), console(console) {}

  /// Also used by several threads at once.
  IncomingCapture Prepare(size_t index, const cv::Mat& pixels) const {
    IncomingCapture capture = session.Prepare(pixels);
    if (!captures.motions.empty()) {
      capture.motion = captures.motions[index];
    }
    return capture;
  }

  void Add(size_t index, const IncomingCapture& capture) {
    const std::string& file = captures.paths[index];
    const CaptureOutcome outcome = session.Add(capture);
    if (outcome.state == CaptureOutcome::State::Unusable) {
      throw BadInput(Quoted(file) + " " + outcome.reason);
    }
    RequireOverlap(file, capture, outcome);
    const bool repeats = outcome.state == CaptureOutcome::State::Repeated;
    read.files.push_back(
        {file, repeats ? std::make_optional(JoinOfRepeat(kept, capture.pixels)) : std::nullopt});
    if (!repeats) {
      kept = capture.pixels;
    }
    warned = warned || WarnOfFullDisk(session, console);
    console.ShowProgress("Reading",
                         static_cast<int>(100 * read.files.size() / captures.paths.size()));
  }

  ReadFiles read;

 private:
  /// Exact joins know of every capture that may lie there, phase correlation of the one before.
  static void RequireOverlap(const std::string& file, const IncomingCapture& capture,
                             const CaptureOutcome& outcome) {
    const bool overlaps = !capture.motion || Overlaps(*capture.motion, capture.pixels.size()) ||
                          (outcome.placed && outcome.placed->join.compared > 0);
    if (!overlaps) {
      throw BadInput("the motion that --joins gives for " + Quoted(file) +
                     " leaves nothing in common with the captures before; correct it");
    }
  }

  CaptureSession& session;
  const CaptureFiles& captures;
  Console& console;
  cv::Mat kept;
  bool warned = false;
};

}  // namespace

bool WarnOfFullDisk(const CaptureSession& session, Console& console) {
  if (!session.ExceedsMemoryLimit()) {
    return false;
  }
  console.Warn(
      "captures stay in memory beyond --memory-limit, since they cannot be written to the spill "
      "folder; make room or choose another with --spill-folder");
  return true;
}

ReadFiles ReadInto(CaptureSession& session, const CaptureFiles& captures, unsigned int threads,
                   Console& console) {
  Reader reader(session, captures, console);
  const HeldMessages messages;
  console.ShowProgress("Reading", 0);
  ReadCaptures(captures.paths, threads, [&reader](size_t index, CaptureImage image) {
    if (index == 0) {
      reader.read.metadata = std::move(image.metadata);
    }
    return [&reader, index, capture = reader.Prepare(index, image.pixels)] {
      reader.Add(index, capture);
    };
  });
  reader.read.remarks = messages.Lines();
  return std::move(reader.read);
}

}  // namespace ScrollingCapture::Program
