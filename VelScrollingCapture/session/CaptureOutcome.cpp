#include <VelScrollingCapture/session/CaptureOutcome.h>

namespace ScrollingCapture {
namespace {

CaptureOutcome::State StateOf(const Join& join) {
  switch (join.verdict) {
    case Verdict::Doubtful:
      return CaptureOutcome::State::Doubtful;
    case Verdict::None:
      return CaptureOutcome::State::TooFast;
    default:
      return CaptureOutcome::State::Placed;
  }
}

}  // namespace

CaptureOutcome OutcomeOf(const PlacedCapture& placed, bool isFirst) {
  return {isFirst ? CaptureOutcome::State::Placed : StateOf(placed.join), {}, placed};
}

}  // namespace ScrollingCapture
