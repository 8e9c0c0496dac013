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

const std::array<std::pair<const char*, Verdict>, 4> Verdicts = {{
    {"proven", Verdict::Proven},
    {"likely", Verdict::Likely},
    {"doubtful", Verdict::Doubtful},
    {"none", Verdict::None},
}};

/// Every value is in its table.
template <typename Names, typename Value>
std::string NameIn(const Names& names, Value value) {
  return std::find_if(names.begin(), names.end(),
                      [value](const auto& entry) { return entry.second == value; })
      ->first;
}

}  // namespace

std::string NameOf(ScrollOrientation orientation) { return NameIn(Orientations, orientation); }

std::string NameOf(Verdict verdict) { return NameIn(Verdicts, verdict); }

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
