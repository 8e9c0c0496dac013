#include <memory>
#include <utility>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <python/bindings/Arrays.h>
#include <python/bindings/Errors.h>
#include <python/bindings/Remarks.h>
#include <python/bindings/Saving.h>
#include <python/bindings/Session.h>
#include <python/bindings/Values.h>
#include <velscroll/input/CaptureDecoding.h>
#include <velscroll/input/InputFiles.h>
#include <velscroll/terminal/Failure.h>

// The module that the package is made of: what takes time, with arguments that the package has
// checked already.

namespace ScrollingCapture::Python {
namespace {

namespace py = pybind11;
using Program::CaptureImage;

using WithoutGil = py::call_guard<py::gil_scoped_release>;

CaptureImage CaptureOfArray(const py::array& array) { return {CaptureOf(array), {}}; }

CaptureImage CaptureOfFile(const std::string& name, const py::bytes& content) {
  const auto bytes = static_cast<std::string_view>(content);
  const py::gil_scoped_release released;
  const std::vector<unsigned char> file(bytes.begin(), bytes.end());
  try {
    return {Program::DecodeCapture(file), Program::MetadataOf(file)};
  } catch (const Program::UnusableImage& unusable) {
    throw Program::BadInput(Program::Quoted(name) + " " + unusable.what());
  }
}

py::list TextsOf(const std::vector<std::string>& texts) {
  py::list list;
  for (const std::string& text : texts) {
    list.append(TextOf(text));
  }
  return list;
}

py::tuple AddTo(Session& session, const std::string& name, const PreparedImage& image) {
  const CaptureOutcome outcome = [&] {
    const py::gil_scoped_release released;
    return session.Add(name, image);
  }();
  return ValueOf(outcome);
}

py::object PreviewOf(Session& session) {
  cv::Mat preview = [&session] {
    const py::gil_scoped_release released;
    return session.Preview();
  }();
  return preview.empty() ? py::object(py::none()) : ArrayOf(std::move(preview), true);
}

Stitched StitchWatched(Session& session, const py::object& listener) {
  Stitched stitched;
  RunWatched([&](const TellProgress& tell) { stitched = session.Stitch(tell); }, listener);
  return stitched;
}

py::array AreaOf(const LockedPicture& picture, int x, int y, int width, int height) {
  cv::Mat pixels = [&] {
    const py::gil_scoped_release released;
    return picture.Area({x, y, width, height});
  }();
  return ArrayOf(std::move(pixels), picture.IsOpaque());
}

Program::OutputSettings OutputSettingsOf(const py::dict& options) {
  Program::OutputSettings settings;
  settings.image = options["path"].cast<std::string>();
  settings.report = options["report"].cast<std::string>();
  settings.encoding.jpegQuality = options["jpeg_quality"].cast<int>();
  settings.encoding.pngLevel = options["png_level"].cast<int>();
  settings.encoding.threads = options["threads"].cast<unsigned int>();
  settings.mostRowsPerFile = options["split"].cast<std::optional<int>>();
  if (const auto colour = options["background"].cast<std::optional<std::string>>()) {
    settings.encoding.background = Program::ParseColour("background", *colour);
  }
  return settings;
}

py::tuple Save(const Stitched& stitched, const py::dict& options, const py::object& listener) {
  Saving saving(stitched, OutputSettingsOf(options));
  RunWatched([&saving](const TellProgress& tell) { saving.Stage(tell); }, listener);
  saving.Commit();
  return py::make_tuple(TextsOf(saving.Files()), TextOf(saving.Summary()));
}

template <typename Values>
py::list ValuesOf(const Values& values) {
  py::list list;
  for (const auto& value : values) {
    list.append(ValueOf(value));
  }
  return list;
}

void DefineCaptures(py::module_& module) {
  py::class_<CaptureImage>(module, "Capture")
      .def_static("of_array", &CaptureOfArray)
      .def_static("of_file", &CaptureOfFile);
  const py::class_<PreparedImage> prepared(module, "PreparedCapture");
  module.def("find_captures",
             [](const std::vector<std::string>& names, const std::vector<std::string>& outputs) {
               return TextsOf(Program::FindCaptureFiles(names, outputs));
             });
}

void DefineSession(py::module_& module) {
  py::class_<Session>(module, "Session")
      .def(py::init(
          [](const py::dict& options) { return std::make_unique<Session>(SettingsOf(options)); }))
      .def("prepare", &Session::Prepare, WithoutGil())
      .def("add", &AddTo)
      .def("preview", &PreviewOf)
      .def("exceeds_memory_limit", &Session::ExceedsMemoryLimit, WithoutGil())
      .def("stitch", &StitchWatched);
}

void CheckOutputs(const py::dict& options) {
  const Program::Outputs checked(OutputSettingsOf(options));
}

void DefineResult(py::module_& module) {
  py::class_<LockedPicture, std::shared_ptr<LockedPicture>>(module, "Picture")
      .def_property_readonly("width", [](const LockedPicture& self) { return self.Size().width; })
      .def_property_readonly("height", [](const LockedPicture& self) { return self.Size().height; })
      .def_property_readonly("is_opaque", &LockedPicture::IsOpaque)
      .def("area", &AreaOf);
  py::class_<Stitched>(module, "Stitched")
      .def_property_readonly("parts", [](const Stitched& self) { return self.parts; })
      .def_property_readonly("captures",
                             [](const Stitched& self) { return ValuesOf(self.content.captures); })
      .def_property_readonly("borders",
                             [](const Stitched& self) { return ValueOf(self.content.borders); })
      .def_property_readonly("warnings",
                             [](const Stitched& self) { return TextsOf(self.content.warnings); })
      .def("save", &Save);
  module.def("check_outputs", &CheckOutputs);
}

}  // namespace
}  // namespace ScrollingCapture::Python

PYBIND11_MODULE(_core, module) {
  using namespace ScrollingCapture::Python;
  TakeMessages();
  TranslateExceptions();
  DefineCaptures(module);
  DefineSession(module);
  DefineResult(module);
  module.attr("__version__") = VEL_PYTHON_VERSION;
}
