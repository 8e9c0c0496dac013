#include <VelScrollingCapture/borders/BorderDetection.h>
#include <VelScrollingCapture/core/internal/Completion.h>
#include <VelScrollingCapture/core/internal/Messages.h>

namespace ScrollingCapture {

bool BorderDetection::Stitch(IImageProvider& images, cv::Mat& result, IStitcherListener* listener,
                             int progressStart, int progressEnd, bool notifyCompletion) {
  return AnnounceCompletion(listener, notifyCompletion, [&] {
    const bool bordersFound = ExtractBorders(images);
    if (!stitcher->Stitch(images, result, listener, progressStart, progressEnd, false)) {
      TellError("Error: Failed to stitch images.");
      return false;
    }
    if (bordersFound && !ApplyBorders(result)) {
      TellError("Error: Found borders, but failed to apply them to result image.");
      return listener != nullptr &&
             listener->StitchingError(IStitcherListener::BorderApplicationFailed, true);
    }
    return true;
  });
}

std::vector<Translation> BorderDetection::GetTranslations() const {
  return stitcher->GetTranslations();
}

}  // namespace ScrollingCapture
