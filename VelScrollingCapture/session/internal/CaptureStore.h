#pragma once

#include <memory>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture {

/// A provider without captures that keeps within the settings' memory limit. A capture that it
/// cannot read back from its file is SpillFileLost.
std::shared_ptr<IImageProvider> MakeCaptureStore(const SessionSettings& settings);

}  // namespace ScrollingCapture
