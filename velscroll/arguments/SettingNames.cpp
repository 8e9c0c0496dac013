#include <algorithm>
#include <array>
#include <utility>

#include <velscroll/arguments/SettingNames.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

const std::array<std::pair<const char*, ScrollOrientation>, 3> Orientations = {{
    {"vertical", ScrollOrientation::Vertical},
    {"horizontal", ScrollOrientation::Horizontal},
    {"both", ScrollOrientation::Both},
}};

}  // namespace

std::string NameOf(ScrollOrientation orientation) {
  const auto* const found =
      std::find_if(Orientations.begin(), Orientations.end(),
                   [orientation](const auto& entry) { return entry.second == orientation; });
  return found->first;
}

ScrollOrientation ParseOrientation(const std::string& name) {
  for (const auto& [known, orientation] : Orientations) {
    if (name == known) {
      return orientation;
    }
  }
  throw BadInput("--orientation does not know " + Quoted(name) +
                 "; use vertical, horizontal or both");
}

}  // namespace ScrollingCapture::Program
