#include <utility>

#include <VelScrollingCapture/frontend/StitcherAdapter.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>

using ScrollingCapture::ScrollOrientation;
using ScrollingCapture::StitcherFactory;

StitcherAdapter::StitcherAdapter() : StitcherAdapter(ScrollOrientation::Both, false, 1) {}

StitcherAdapter::StitcherAdapter(ScrollOrientation orientation, bool expectConsistentTranslations,
                                 int threadCount)
    : stitcher(StitcherFactory::CreateBasicStitcher(orientation, expectConsistentTranslations,
                                                    static_cast<unsigned int>(threadCount))) {}

void StitcherAdapter::setProgressListener(ScrollingCapture::IStitcherListener* listener) {
  this->listener = listener;
}

ScrollingCapture::IStitcherListener* StitcherAdapter::progressListener() const { return listener; }

bool StitcherAdapter::stitchImages() {
  return stitcher->Stitch(*this, result, listener, 0, 100, true);
}

cv::Mat StitcherAdapter::getResult() { return result; }

void StitcherAdapter::useStitcher(std::shared_ptr<ScrollingCapture::IStitcher> other) {
  stitcher = std::move(other);
}
