#pragma once

#include <string>

#include <VelScrollingCapture/core/ScrollOrientation.h>
#include <VelScrollingCapture/matching/Join.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture::Program {

/// The name of an orientation on the command line and in the report.
std::string NameOf(ScrollOrientation orientation);

/// The name of a verdict in the report.
std::string NameOf(Verdict verdict);

/// The name of an engine on the command line and in the report.
std::string NameOf(Engine engine);

/// The same for what becomes of fixed parts.
std::string NameOf(FixedParts fixedParts);

// What a name stands for. All throw BadInput when it stands for nothing.
ScrollOrientation ParseOrientation(const std::string& name);
Engine ParseEngine(const std::string& name);
FixedParts ParseFixedParts(const std::string& name);

}  // namespace ScrollingCapture::Program
