#include <VelScrollingCapture/session/internal/PhaseCorrelationEngine.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {

std::unique_ptr<SessionEngine> MakeSessionEngine(const SessionSettings& settings) {
  return std::make_unique<PhaseCorrelationEngine>(settings);
}

}  // namespace ScrollingCapture
