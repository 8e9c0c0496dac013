#include <VelScrollingCapture/borders/BorderDetection.h>
#include <VelScrollingCapture/core/internal/Messages.h>

namespace ScrollingCapture {

bool BorderDetection::Stitch(IImageProvider& images, cv::Mat& result, IStitcherListener* listener,
                             int progressStart, int progressEnd, bool notifyCompletion) {
  const auto complete = [listener, notifyCompletion](bool success) {
    if (listener != nullptr && notifyCompletion) {
      listener->StitchingComplete(success);
    }
    return success;
  };

  const bool bordersFound = ExtractBorders(images);
  if (!stitcher->Stitch(images, result, listener, progressStart, progressEnd, false)) {
    TellError("Error: Failed to stitch images.");
    return complete(false);
  }
  if (bordersFound && !ApplyBorders(result)) {
    TellError("Error: Found borders, but failed to apply them to result image.");
    return listener != nullptr &&
           complete(listener->StitchingError(IStitcherListener::BorderApplicationFailed, true));
  }
  return complete(true);
}

std::vector<Translation> BorderDetection::GetTranslations() const {
  return stitcher->GetTranslations();
}

}  // namespace ScrollingCapture
