#pragma once

#include <string>

#include <velscroll/report/Report.h>

namespace ScrollingCapture::Program {

/// The line that says what was made of how many captures, without its end.
std::string SummaryOf(const ReportContent& content);

}  // namespace ScrollingCapture::Program
