#include <utility>

#include <VelScrollingCapture/session/CaptureIntake.h>
#include <VelScrollingCapture/session/CaptureSession.h>
#include <VelScrollingCapture/session/internal/CaptureStore.h>
#include <VelScrollingCapture/session/internal/HostPreview.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {
namespace {

bool IsSame(const cv::Mat& one, const cv::Mat& other) {
  return one.size() == other.size() && cv::norm(one, other, cv::NORM_INF) == 0;
}

}  // namespace

class CaptureSession::State {
 public:
  explicit State(const SessionSettings& settings)
      : settings(settings),
        store(settings),
        engine(MakeSessionEngine(settings, store.Captures())),
        preview(settings.previewBox ? MakeHostPreview(*settings.previewBox) : nullptr) {}

  CaptureOutcome Add(const IncomingCapture& capture) {
    CaptureOutcome outcome;
    if (!IsLeftOver(capture.pixels)) {
      outcome =
          CaptureIntake(*store.Captures(), preview.get(), settings.keepRepeats).Add(capture.pixels);
    }
    if (outcome.state != CaptureOutcome::State::Placed) {
      return outcome;
    }
    const std::optional<PlacedCapture> placed = engine->Join(capture);
    joined = store.Captures()->Count();
    return placed ? OutcomeOf(*placed, joined == 1) : outcome;
  }

  const SessionSettings settings;
  const CaptureStore store;
  const std::unique_ptr<SessionEngine> engine;
  const std::unique_ptr<PreviewImage> preview;

 private:
  /// Whether the capture has been stored already, when there was no memory to join it.
  bool IsLeftOver(const cv::Mat& capture) const {
    IImageProvider& captures = *store.Captures();
    return captures.Count() > joined && IsSame(*captures.GetLastImage(), capture);
  }

  std::size_t joined = 0;  ///< of the captures in the store
};

CaptureSession::CaptureSession(const SessionSettings& settings)
    : state(std::make_unique<State>(settings)) {}

CaptureSession::~CaptureSession() = default;

IncomingCapture CaptureSession::Prepare(const cv::Mat& capture) const {
  IncomingCapture incoming = {capture, {}, {}};
  if (state->engine->JoinsAtOnce() && WhyUnusable(capture).empty()) {
    incoming.prepared = PreparedCapture(capture);
  }
  return incoming;
}

CaptureOutcome CaptureSession::Add(const IncomingCapture& capture) {
  std::string reason = WhyUnusable(capture.pixels);
  if (!reason.empty()) {
    return {CaptureOutcome::State::Unusable, std::move(reason), {}};
  }
  if (capture.motion) {
    CapturePlacer::RequirePrescribable(*capture.motion);
  }
  return state->Add(capture);
}

CaptureOutcome CaptureSession::Add(const cv::Mat& capture) {
  return Add(IncomingCapture{capture, {}, {}});
}

bool CaptureSession::ExceedsMemoryLimit() const { return state->store.ExceedsMemoryLimit(); }

cv::Mat CaptureSession::Preview() const try {
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
  return state->engine->Stitch(listener);
}

}  // namespace ScrollingCapture
