#include <algorithm>
#include <optional>

#include <VelScrollingCapture/core/internal/Completion.h>
#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/frontend/ExactStitcherAdapter.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {
namespace {

SessionSettings ExactSettings(int threadCount) {
  SessionSettings settings;
  settings.engine = Engine::Exact;
  settings.threadCount = static_cast<unsigned int>(std::max(threadCount, 1));
  return settings;
}

std::shared_ptr<const StitchedPicture> LargestPart(const SessionResult& result) {
  if (result.parts.size() > 1) {
    TellError("Error: Captures are missing in between; the largest part is given.");
  }
  return *std::max_element(result.parts.begin(), result.parts.end(),
                           [](const auto& first, const auto& second) {
                             return first->Size().area() < second->Size().area();
                           });
}

/// Has an engine stitch its captures, which are those of the adapter, with progress from 0 to 100.
class EngineStitcher : public IStitcher {
 public:
  /// @param engine may be replaced between stitches
  explicit EngineStitcher(const std::unique_ptr<SessionEngine>& engine) : engine(engine) {}

  bool Stitch(IImageProvider& /*images*/, cv::Mat& result, IStitcherListener* listener,
              int /*progressStart*/, int /*progressEnd*/, bool notifyCompletion) override {
    return AnnounceCompletion(listener, notifyCompletion,
                              [&] { return Compose(result, listener); });
  }

  std::vector<Translation> GetTranslations() const override { return translations; }

 private:
  bool Compose(cv::Mat& result, IStitcherListener* listener) {
    const std::optional<SessionResult> stitched = engine->Stitch(listener);
    if (!stitched) {
      return false;
    }
    translations.clear();
    for (std::size_t i = 1; i < stitched->captures.size(); ++i) {
      translations.push_back(stitched->captures[i].join.motion);
    }
    const auto picture = LargestPart(*stitched);
    result = picture->Area({{0, 0}, picture->Size()});
    return true;
  }

  const std::unique_ptr<SessionEngine>& engine;
  std::vector<Translation> translations;
};

}  // namespace

ExactStitcherAdapter::ExactStitcherAdapter(int threadCount) : threadCount(threadCount) {
  ExactStitcherAdapter::Clear();
  useStitcher(std::make_shared<EngineStitcher>(engine));
}

ExactStitcherAdapter::~ExactStitcherAdapter() = default;

void ExactStitcherAdapter::Clear() {
  StitcherAdapter::Clear();
  // This adapter owns the engine, which must not own it back.
  const std::shared_ptr<IImageProvider> captures(std::shared_ptr<void>(), this);
  engine = MakeSessionEngine(ExactSettings(threadCount), captures);
}

PlacedCapture ExactStitcherAdapter::PlaceLast() { return *engine->Join({*GetLastImage(), {}, {}}); }

}  // namespace ScrollingCapture
