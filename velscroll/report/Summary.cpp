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

}  // namespace

std::string SummaryOf(const ReportContent& content) {
  const auto& captures = content.captures;
  return content.resultFile + ": " + std::to_string(content.resultSize.width) + " x " +
         std::to_string(content.resultSize.height) + " pixels from " +
         std::to_string(captures.size()) + (captures.size() == 1 ? " capture" : " captures") +
         CountOf(captures, ReportedCapture::Repeated, " repeated") +
         CountOf(captures, ReportedCapture::LeftOut, " left out (not moved)") +
         (content.settings.borders && !content.borders ? ", no borders found" : "");
}

}  // namespace ScrollingCapture::Program
