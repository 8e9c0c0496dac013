#include <utility>

#include <VelScrollingCapture/preview/PreviewImage.h>
#include <VelScrollingCapture/session/CaptureIntake.h>
#include <VelScrollingCapture/session/CaptureSession.h>
#include <VelScrollingCapture/session/internal/CaptureStore.h>
#include <VelScrollingCapture/session/internal/HostPreview.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {

class CaptureSession::State {
 public:
  explicit State(const SessionSettings& settings)
      : settings(settings),
        engine(MakeSessionEngine(settings)),
        captures(MakeCaptureStore(settings)),
        preview(settings.previewBox ? MakeHostPreview(*settings.previewBox) : nullptr) {}

  const SessionSettings settings;
  const std::unique_ptr<SessionEngine> engine;
  const std::shared_ptr<IImageProvider> captures;
  const std::unique_ptr<PreviewImage> preview;
};

CaptureSession::CaptureSession(const SessionSettings& settings)
    : state(std::make_unique<State>(settings)) {}

CaptureSession::~CaptureSession() = default;

CaptureOutcome CaptureSession::Add(const cv::Mat& capture) {
  std::string reason = WhyUnusable(capture);
  if (!reason.empty()) {
    return {CaptureOutcome::State::Unusable, std::move(reason)};
  }
  return CaptureIntake(*state->captures, state->preview.get(), state->settings.keepRepeats)
      .Add(capture);
}

IImageProvider& CaptureSession::Captures() { return *state->captures; }

cv::Mat CaptureSession::Preview() try {
  if (!state->preview) {
    return {};
  }
  const cv::Size box = *state->settings.previewBox;
  return state->preview->GetPreview(box.width, box.height);
} catch (const cv::Exception& error) {
  if (error.code == cv::Error::StsNoMem) {
    throw;
  }
  return {};
}

std::optional<SessionResult> CaptureSession::Stitch(IStitcherListener* listener) {
  return state->engine->Stitch(state->captures, listener);
}

}  // namespace ScrollingCapture
