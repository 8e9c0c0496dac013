#pragma once

#include <optional>
#include <string>

#include <pybind11/pybind11.h>
#include <velscroll/report/ReportedCapture.h>

#include <VelScrollingCapture/session/CaptureOutcome.h>
#include <VelScrollingCapture/session/SessionResult.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture::Python {

/// The settings that a dictionary holds, with the names and types of the package's SessionOptions,
/// all of them there. Throws BadInput for a name that stands for nothing.
SessionSettings SettingsOf(const pybind11::dict& options);

// Values as the tuples that the package makes its own values of.

/// (verdict, rows, columns, compared, equal, alternatives)
pybind11::tuple ValueOf(const Join& join);

/// (state, part, row, column, join, joined to); None for what is not known yet
pybind11::tuple ValueOf(const CaptureOutcome& outcome);

/// (name, state, part, row, column, join)
pybind11::tuple ValueOf(const Program::ReportedCapture& capture);

/// (top, bottom, left, right), or None
pybind11::object ValueOf(const std::optional<FixedBorders>& borders);

}  // namespace ScrollingCapture::Python
