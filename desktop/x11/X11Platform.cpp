#include <memory>

#include <desktop/x11/X11Platform.h>
#include <live/x11/X11CaptureSource.h>
#include <live/x11/XPicker.h>
#include <live/x11/XStopKey.h>

namespace ScrollingCapture::Desktop {
namespace {

OpenSource SourceOf(const Live::XChoice& choice, bool showsPointer) {
  return [=] { return std::make_unique<Live::X11CaptureSource>(choice, showsPointer); };
}

}  // namespace

Platform X11Platform() {
  const PickSource pick = [](const RecordingOptions& options, const std::function<bool()>& goOn) {
    const std::optional<Live::XChoice> choice = Live::PickOnScreen(goOn);
    return choice ? SourceOf(*choice, options.showsPointer) : OpenSource();
  };
  const auto listen = [] {
    const auto key = std::make_shared<Live::XStopKey>("Ctrl+Shift+Return");
    return [key] { return key->WasPressed(); };
  };
  return {pick, "Ctrl+Shift+Enter", listen};
}

PickSource Chosen(const Live::XChoice& choice) {
  return [choice](const RecordingOptions& options, const std::function<bool()>& /*goOn*/) {
    return SourceOf(choice, options.showsPointer);
  };
}

}  // namespace ScrollingCapture::Desktop
