#include <exception>
#include <system_error>
#include <utility>

#include <opencv2/core.hpp>
#include <python/bindings/Errors.h>
#include <velscroll/terminal/Failure.h>

#include <VelScrollingCapture/session/SpillFileLost.h>

namespace ScrollingCapture::Python {
namespace {

namespace py = pybind11;

void Raise(PyObject* type, const std::string& text) { PyErr_SetObject(type, TextOf(text).ptr()); }

/// What pybind11 does not translate by itself in the way that is wanted here.
void Translate(std::exception_ptr exception) {
  try {
    std::rethrow_exception(std::move(exception));
  } catch (const Program::BadInput& error) {
    Raise(PyExc_ValueError, error.what());
  } catch (const Program::Failure& error) {
    Raise(PyExc_OSError, error.what());
  } catch (const SpillFileLost& error) {
    Raise(PyExc_OSError, error.what());
  } catch (const std::system_error& error) {
    Raise(PyExc_RuntimeError, error.what());
  } catch (const cv::Exception& error) {
    Raise(error.code == cv::Error::StsNoMem ? PyExc_MemoryError : PyExc_RuntimeError, error.err);
  }
}

}  // namespace

py::str TextOf(const std::string& text) {
  PyObject* const decoded =
      PyUnicode_DecodeFSDefaultAndSize(text.data(), static_cast<Py_ssize_t>(text.size()));
  if (decoded == nullptr) {
    throw py::error_already_set();
  }
  return py::reinterpret_steal<py::str>(decoded);
}

void TranslateExceptions() { py::register_exception_translator(&Translate); }

}  // namespace ScrollingCapture::Python
