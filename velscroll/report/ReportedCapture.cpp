#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

#include <velscroll/report/ReportedCapture.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

/// A warning names so many alternatives; the report has them all.
constexpr std::size_t MostNamedAlternatives = 3;

ReportedCapture Describe(const std::string& file, const CaptureInPicture& placed, bool isFirst,
                         std::size_t partsBefore) {
  ReportedCapture described;
  described.file = file;
  described.state = placed.leftOut ? ReportedCapture::LeftOut : ReportedCapture::Kept;
  described.part = placed.part;
  described.place = placed.place;
  if (!isFirst) {
    described.join = placed.join;
    described.beginsPart = placed.part >= partsBefore;
    described.contradicted = placed.joinedTo && placed.join.verdict == Verdict::None;
  }
  return described;
}

ReportedCapture DescribeRepeat(const CaptureFile& file, const CaptureInPicture& last) {
  ReportedCapture described;
  described.file = file.path;
  described.state = ReportedCapture::Repeated;
  described.part = last.part;
  described.place = last.place;
  described.join = file.repeat;
  return described;
}

std::string MotionText(const Translation& motion) {
  return std::to_string(motion.GetRows()) + " rows, " + std::to_string(motion.GetCols()) +
         " columns";
}

/// The nearest of a join's alternatives, and how many more there are.
std::string AlternativesText(const Join& join) {
  const auto distance = [&join](const Translation& motion) {
    return std::abs(motion.GetRows() - join.motion.GetRows()) +
           std::abs(motion.GetCols() - join.motion.GetCols());
  };
  std::vector<Translation> others = join.alternatives;
  std::stable_sort(others.begin(), others.end(), [&](const auto& left, const auto& right) {
    return distance(left) < distance(right);
  });
  std::string text;
  for (std::size_t i = 0; i < std::min(others.size(), MostNamedAlternatives); ++i) {
    text += (text.empty() ? "" : "; ") + MotionText(others[i]);
  }
  if (others.size() > MostNamedAlternatives) {
    text += "; and " + std::to_string(others.size() - MostNamedAlternatives) + " more";
  }
  return text;
}

std::string DoubtAbout(const std::string& previous, const ReportedCapture& capture) {
  const std::string others = AlternativesText(*capture.join);
  return "it is in doubt how " + Quoted(capture.file) + " joins " + Quoted(previous) +
         ": a motion of " + MotionText(capture.join->motion) + " was taken" +
         (others.empty() ? "" : ", but these explain both as well: " + others);
}

std::string WarningAbout(const std::string& previous, const ReportedCapture& capture) {
  if (capture.beginsPart) {
    return "nothing joins " + Quoted(capture.file) + " to " + Quoted(previous) +
           " or to what came before; the scrolling was too fast there, and a new part begins";
  }
  if (capture.contradicted) {
    return Quoted(previous) + " and " + Quoted(capture.file) +
           " do not seem to overlap; capture with smaller steps";
  }
  if (capture.join && capture.join->verdict == Verdict::Doubtful) {
    return DoubtAbout(previous, capture);
  }
  return {};
}

}  // namespace

Join JoinOfRepeat(const cv::Mat& kept, const cv::Mat& repeat) {
  const auto pixels = [](const cv::Mat& capture) {
    return cv::Mat(capture.size(), CV_32SC1, capture.data, capture.step);
  };
  Join join;
  join.compared = static_cast<std::int64_t>(kept.total());
  join.equal = cv::countNonZero(pixels(kept) == pixels(repeat));
  join.verdict = join.equal == join.compared ? Verdict::Proven : Verdict::Likely;
  return join;
}

std::vector<ReportedCapture> DescribeCaptures(const std::vector<CaptureFile>& files,
                                              const std::vector<CaptureInPicture>& placed) {
  std::vector<ReportedCapture> described;
  std::size_t kept = 0;
  std::size_t parts = 0;
  for (const CaptureFile& file : files) {
    if (file.repeat) {
      described.push_back(DescribeRepeat(file, placed[kept - 1]));
      continue;
    }
    described.push_back(Describe(file.path, placed[kept], kept == 0, parts));
    parts = std::max(parts, placed[kept].part + 1);
    ++kept;
  }
  return described;
}

std::vector<std::string> WarningsAbout(const std::vector<ReportedCapture>& captures) {
  std::vector<std::string> warnings;
  std::string previous;
  for (const ReportedCapture& capture : captures) {
    const std::string warning = WarningAbout(previous, capture);
    if (!warning.empty()) {
      warnings.push_back(warning);
    }
    if (capture.state != ReportedCapture::Repeated) {
      previous = capture.file;
    }
  }
  return warnings;
}

}  // namespace ScrollingCapture::Program
