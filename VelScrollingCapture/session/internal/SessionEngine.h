#pragma once

#include <memory>
#include <optional>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/session/IncomingCapture.h>
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

  /// Whether Join finds out where a capture lies, for which captures are worth preparing.
  virtual bool JoinsAtOnce() const = 0;

  /// Looks at a capture that has just become the last one of the engine's captures.
  virtual std::optional<PlacedCapture> Join(const IncomingCapture& capture) = 0;

  /// As CaptureSession::Stitch tells.
  virtual std::optional<SessionResult> Stitch(IStitcherListener* listener) = 0;
};

/// The engine that the settings ask for. Throws std::invalid_argument when they do not go together.
/// @param captures where captures are added before Join is called
std::unique_ptr<SessionEngine> MakeSessionEngine(const SessionSettings& settings,
                                                 const std::shared_ptr<IImageProvider>& captures);

}  // namespace ScrollingCapture
