#include <pybind11/stl.h>
#include <python/bindings/Errors.h>
#include <python/bindings/Values.h>
#include <velscroll/names/SettingNames.h>

namespace ScrollingCapture::Python {
namespace {

namespace py = pybind11;

const char* NameOf(CaptureOutcome::State state) {
  switch (state) {
    case CaptureOutcome::State::Repeated:
      return "repeated";
    case CaptureOutcome::State::Doubtful:
      return "doubtful";
    case CaptureOutcome::State::TooFast:
      return "too fast";
    default:
      return "placed";
  }
}

const char* NameOf(Program::ReportedCapture::State state) {
  switch (state) {
    case Program::ReportedCapture::Repeated:
      return "repeated";
    case Program::ReportedCapture::LeftOut:
      return "left out";
    default:
      return "kept";
  }
}

}  // namespace

SessionSettings SettingsOf(const py::dict& options) {
  SessionSettings settings;
  settings.engine = Program::ParseEngine(options["engine"].cast<std::string>());
  settings.orientation = Program::ParseOrientation(options["orientation"].cast<std::string>());
  settings.fixedParts = Program::ParseFixedParts(options["fixed"].cast<std::string>());
  settings.expectConsistentTranslations = options["consistent"].cast<bool>();
  settings.threadCount = options["threads"].cast<unsigned int>();
  settings.keepRepeats = options["keep_repeats"].cast<bool>();
  settings.memoryLimit = options["memory_limit"].cast<std::optional<std::uint64_t>>();
  settings.spillFolder = options["spill_folder"].cast<std::string>();
  using Pair = std::optional<std::pair<unsigned int, unsigned int>>;
  if (const auto thresholds = options["borders"].cast<Pair>()) {
    settings.borders = BorderThresholds{thresholds->first, thresholds->second};
  }
  if (const auto box = options["preview"].cast<Pair>()) {
    settings.previewBox = cv::Size(static_cast<int>(box->first), static_cast<int>(box->second));
  }
  return settings;
}

py::tuple ValueOf(const Join& join) {
  py::list alternatives;
  for (const Translation& motion : join.alternatives) {
    alternatives.append(py::make_tuple(motion.GetRows(), motion.GetCols()));
  }
  return py::make_tuple(Program::NameOf(join.verdict), join.motion.GetRows(), join.motion.GetCols(),
                        join.compared, join.equal, py::tuple(alternatives));
}

py::tuple ValueOf(const CaptureOutcome& outcome) {
  if (!outcome.placed) {
    return py::make_tuple(NameOf(outcome.state), py::none(), py::none(), py::none(), py::none(),
                          py::none());
  }
  const PlacedCapture& placed = *outcome.placed;
  return py::make_tuple(NameOf(outcome.state), placed.part - 1, placed.place.row,
                        placed.place.column, ValueOf(placed.join), placed.joinedTo);
}

py::tuple ValueOf(const Program::ReportedCapture& capture) {
  const py::object join = capture.join ? py::object(ValueOf(*capture.join)) : py::none();
  return py::make_tuple(TextOf(capture.file), NameOf(capture.state), capture.part,
                        capture.place.row, capture.place.column, join);
}

py::object ValueOf(const std::optional<FixedBorders>& borders) {
  if (!borders) {
    return py::none();
  }
  return py::make_tuple(borders->top, borders->bottom, borders->left, borders->right);
}

}  // namespace ScrollingCapture::Python
