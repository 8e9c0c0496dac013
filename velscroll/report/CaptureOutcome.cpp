#include <velscroll/report/CaptureOutcome.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

CaptureOutcome DescribeFollower(const std::string& file, const Place& place,
                                const Translation& translation, const cv::Mat& previous,
                                const cv::Mat& current) {
  CaptureOutcome outcome;
  outcome.file = file;
  outcome.state = translation == Translation() ? CaptureOutcome::LeftOut : CaptureOutcome::Kept;
  outcome.place = place;
  outcome.translation = translation;
  outcome.overlap = CompareOverlap(previous, current, translation);
  return outcome;
}

}  // namespace

std::vector<CaptureOutcome> DescribeCaptures(const std::vector<CaptureFile>& files,
                                             IImageProvider& captures,
                                             const std::vector<Translation>& translations) {
  const std::vector<Place> places = PlacesOf(translations);
  std::vector<CaptureOutcome> outcomes;
  size_t index = 0;
  for (const CaptureFile& file : files) {
    if (outcomes.empty()) {
      outcomes.push_back({file.path, CaptureOutcome::Kept, places.front(), {}, {}});
    } else if (file.repeated) {
      outcomes.push_back({file.path, CaptureOutcome::Repeated, places[index], {}, {}});
    } else {
      ++index;
      outcomes.push_back(DescribeFollower(file.path, places[index], translations[index - 1],
                                          *captures.GetImageAt(index - 1),
                                          *captures.GetImageAt(index)));
    }
  }
  return outcomes;
}

std::vector<std::string> WarningsAbout(const std::vector<CaptureOutcome>& outcomes) {
  std::vector<std::string> warnings;
  std::string previous;
  for (const CaptureOutcome& outcome : outcomes) {
    if (outcome.overlap && !outcome.overlap->Agrees()) {
      warnings.push_back(Quoted(previous) + " and " + Quoted(outcome.file) +
                         " do not seem to overlap; capture with smaller steps");
    }
    if (outcome.state != CaptureOutcome::Repeated) {
      previous = outcome.file;
    }
  }
  return warnings;
}

}  // namespace ScrollingCapture::Program
