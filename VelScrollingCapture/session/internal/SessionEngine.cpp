#include <VelScrollingCapture/session/internal/PhaseCorrelationEngine.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {

std::unique_ptr<SessionEngine> MakeSessionEngine(const SessionSettings& settings,
                                                 const std::shared_ptr<IImageProvider>& captures) {
  return std::make_unique<PhaseCorrelationEngine>(settings, captures);
}

}  // namespace ScrollingCapture
