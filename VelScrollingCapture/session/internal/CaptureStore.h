#pragma once

#include <memory>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture {

class MemoryEfficientImageProvider;

/// Where a session keeps its captures, within the settings' memory limit. A capture that cannot be
/// read back from its file is SpillFileLost.
class CaptureStore {
 public:
  explicit CaptureStore(const SessionSettings& settings);

  /// Results that need the captures keep them.
  const std::shared_ptr<IImageProvider>& Captures() const { return captures; }

  /// False without a limit.
  bool ExceedsMemoryLimit() const;

 private:
  std::shared_ptr<MemoryEfficientImageProvider> limited;  ///< null without a limit
  std::shared_ptr<IImageProvider> captures;
};

}  // namespace ScrollingCapture
