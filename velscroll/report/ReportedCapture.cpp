#include <velscroll/report/ReportedCapture.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {

std::vector<ReportedCapture> DescribeCaptures(const std::vector<CaptureFile>& files,
                                              IImageProvider& captures,
                                              const std::vector<CaptureInPicture>& placed) {
  std::vector<ReportedCapture> described;
  size_t kept = 0;
  for (const CaptureFile& file : files) {
    if (file.repeated) {
      described.push_back({file.path, ReportedCapture::Repeated, placed[kept - 1].place, {}, {}});
      continue;
    }
    const CaptureInPicture& capture = placed[kept];
    described.push_back({file.path,
                         capture.leftOut ? ReportedCapture::LeftOut : ReportedCapture::Kept,
                         capture.place,
                         capture.translation,
                         {}});
    if (kept > 0) {
      described.back().overlap = CompareOverlap(*captures.GetImageAt(kept - 1),
                                                *captures.GetImageAt(kept), capture.translation);
    }
    ++kept;
  }
  return described;
}

std::vector<std::string> WarningsAbout(const std::vector<ReportedCapture>& captures) {
  std::vector<std::string> warnings;
  std::string previous;
  for (const ReportedCapture& capture : captures) {
    if (capture.overlap && !capture.overlap->Agrees()) {
      warnings.push_back(Quoted(previous) + " and " + Quoted(capture.file) +
                         " do not seem to overlap; capture with smaller steps");
    }
    if (capture.state != ReportedCapture::Repeated) {
      previous = capture.file;
    }
  }
  return warnings;
}

}  // namespace ScrollingCapture::Program
