#include <stdexcept>

#include <VelScrollingCapture/session/internal/ExactEngine.h>
#include <VelScrollingCapture/session/internal/PhaseCorrelationEngine.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {

std::unique_ptr<SessionEngine> MakeSessionEngine(const SessionSettings& settings,
                                                 const std::shared_ptr<IImageProvider>& captures) {
  if (settings.engine == Engine::PhaseCorrelation) {
    return std::make_unique<PhaseCorrelationEngine>(settings, captures);
  }
  if (settings.borders) {
    throw std::invalid_argument("Borders are found with phase correlation only.");
  }
  return std::make_unique<ExactEngine>(settings, captures);
}

}  // namespace ScrollingCapture
