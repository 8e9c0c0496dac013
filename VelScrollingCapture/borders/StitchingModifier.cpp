#include <utility>

#include <VelScrollingCapture/borders/StitchingModifier.h>

namespace ScrollingCapture {

StitchingModifier::StitchingModifier(std::shared_ptr<IStitcher> stitcher)
    : stitcher(std::move(stitcher)) {}

}  // namespace ScrollingCapture
