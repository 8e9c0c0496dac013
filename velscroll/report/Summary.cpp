#include <algorithm>

#include <velscroll/report/Summary.h>

namespace ScrollingCapture::Program {
namespace {

std::string CountOf(const std::vector<ReportedCapture>& captures, ReportedCapture::State state,
                    const std::string& remark) {
  const auto count =
      std::count_if(captures.begin(), captures.end(),
                    [state](const ReportedCapture& capture) { return capture.state == state; });
  return count == 0 ? std::string() : ", " + std::to_string(count) + remark;
}

std::string RangeOfFiles(const ReportedPart& part) {
  return part.pieces.size() == 1 ? part.pieces.front()
                                 : part.pieces.front() + " to " + part.pieces.back();
}

std::string PartsOf(const ReportContent& content) {
  std::string parts;
  for (const ReportedPart& part : content.parts) {
    parts += (parts.empty() ? "" : ", ") + RangeOfFiles(part) + ": " +
             std::to_string(part.size.width) + " x " + std::to_string(part.size.height) + " pixels";
  }
  return parts;
}

}  // namespace

std::string SummaryOf(const ReportContent& content) {
  const auto& captures = content.captures;
  return PartsOf(content) + " from " + std::to_string(captures.size()) +
         (captures.size() == 1 ? " capture" : " captures") +
         CountOf(captures, ReportedCapture::Repeated, " repeated") +
         CountOf(captures, ReportedCapture::LeftOut, " left out (not moved)") +
         (content.settings.borders && !content.borders ? ", no borders found" : "");
}

}  // namespace ScrollingCapture::Program
