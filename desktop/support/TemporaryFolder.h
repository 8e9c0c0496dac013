#pragma once

#include <QTemporaryDir>
#include <memory>

namespace ScrollingCapture::Desktop {

/// A folder in the system's temporary folder that nobody else may look into, and that goes with the
/// object, whatever it holds. Throws Failed when it cannot be made.
std::unique_ptr<QTemporaryDir> MakeTemporaryFolder();

}  // namespace ScrollingCapture::Desktop
