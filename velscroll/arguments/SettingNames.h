#pragma once

#include <string>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/matching/Join.h>

namespace ScrollingCapture::Program {

/// The name of an orientation on the command line and in the report.
std::string NameOf(ScrollOrientation orientation);

/// The name of a verdict in the report.
std::string NameOf(Verdict verdict);

/// The orientation of a name. Throws BadInput.
ScrollOrientation ParseOrientation(const std::string& name);

}  // namespace ScrollingCapture::Program
