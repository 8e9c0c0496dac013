#pragma once

#include <memory>
#include <optional>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/session/SessionResult.h>
#include <VelScrollingCapture/session/SessionSettings.h>

namespace ScrollingCapture {

/// How a session joins its captures.
class SessionEngine {
 public:
  SessionEngine() = default;
  SessionEngine(const SessionEngine&) = delete;
  SessionEngine& operator=(const SessionEngine&) = delete;
  virtual ~SessionEngine() = default;

  /// As CaptureSession::Stitch tells.
  /// @param captures all captures that were added; a result that needs them keeps them
  virtual std::optional<SessionResult> Stitch(const std::shared_ptr<IImageProvider>& captures,
                                              IStitcherListener* listener) = 0;
};

/// The engine that the settings ask for. Throws std::invalid_argument when they do not go together.
std::unique_ptr<SessionEngine> MakeSessionEngine(const SessionSettings& settings);

}  // namespace ScrollingCapture
