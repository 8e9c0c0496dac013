#include <algorithm>
#include <exception>
#include <thread>
#include <utility>

#include <desktop/recording/Recording.h>
#include <desktop/recording/RecordingWords.h>
#include <desktop/support/Explanation.h>
#include <desktop/support/Pixels.h>
#include <desktop/support/TemporaryFolder.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {
namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t BytesInMemory = std::uint64_t{512} << 20;

SessionSettings Settings(const RecordingStore& store) {
  SessionSettings settings;
  settings.threadCount = std::max(1U, std::thread::hardware_concurrency());
  settings.memoryLimit = BytesInMemory;
  settings.spillFolder = store.spillFolder->path().toStdString();
  settings.previewBox = Recording::PreviewBox();
  return settings;
}

}  // namespace

Recording::Recording(PickSource picking, const RecordingOptions& options, QObject* parent)
    : QObject(parent), pick(std::move(picking)), options(options) {
  connect(&errand, &Errand::stopped, this, &Recording::discarded);
  connect(&errand, &Errand::failed, this, &Recording::failed);
}

void Recording::start() {
  errand.start([this] { work(); });
}

void Recording::begin() { mayBegin = true; }

void Recording::work() {
  const OpenSource open = pick(options, [this] { return errand.goesOn(); });
  if (!open) {
    throw Program::Cancelled();
  }
  const std::unique_ptr<Live::ICaptureSource> source = open();
  const QRect region = RectangleOf(source->Region());
  errand.post([this, region] { emit opened(region); });
  waitForBegin();
  store = std::make_shared<RecordingStore>();
  store->spillFolder = MakeTemporaryFolder();
  session = std::make_unique<CaptureSession>(Settings(*store));
  const Live::RecordingEnd end = record(*source);
  errand.requireGoingOn();
  const Recorded recorded = stitch(end);
  errand.requireGoingOn();
  errand.post([this, recorded] { emit finished(recorded); });
}

void Recording::waitForBegin() const {
  constexpr milliseconds Moment(10);
  while (!mayBegin) {
    errand.requireGoingOn();
    std::this_thread::sleep_for(Moment);
  }
}

/// What was captured until something went wrong is still good.
Live::RecordingEnd Recording::record(Live::ICaptureSource& source) {
  Live::Recorder recorder(source, *session, *this, {Both, false});
  if (options.scrollsByItself) {
    constexpr int NoLimit = 0;
    recorder.ScrollBy({*options.scrollsByItself, NoLimit, source.Region().size()});
  }
  Live::RecordingEnd end;
  try {
    end = recorder.Run();
  } catch (const std::exception&) {
    end.line = Explain(std::current_exception()).toStdString();
    end.status = lastStatus;
  }
  if (const auto nothing = end.NothingCaptured()) {
    throw Program::Failed(*nothing);
  }
  return end;
}

Recorded Recording::stitch(const Live::RecordingEnd& end) {
  showPreview();
  const std::optional<SessionResult> result = session->Stitch(this);
  errand.requireGoingOn();
  if (!result) {
    throw Program::Failed("the captures could not be stitched");
  }
  Recorded recorded;
  for (const auto& part : result->parts) {
    recorded.parts.push_back(std::make_shared<RecordedPicture>(part, store));
  }
  recorded.notes = NotesOn(end, recorded.parts.size());
  return recorded;
}

bool Recording::GoOn(const Live::RecordingStatus& status) {
  lastStatus = status;
  const QString size = SizeWords(status);
  const QString warning = WarningWords(status);
  if (size != toldSize || warning != toldWarning) {
    toldSize = size;
    toldWarning = warning;
    errand.post([this, size, warning] { emit progressed(size, warning); });
  }
  return errand.goesOn() && !isFinishing && !(key && key());
}

void Recording::CaptureKept(const cv::Mat& /*pixels*/) {
  if (Clock::now() >= nextPreview) {
    showPreview();
  }
}

/// Previews of long pages take their time: no more than a part of the time is spent on them.
void Recording::showPreview() {
  constexpr int PartsOfTime = 5;
  const Clock::time_point start = Clock::now();
  const QImage preview = ImageOf(session->Preview());
  errand.post([this, preview] { emit grown(preview); });
  nextPreview = start + PartsOfTime * (Clock::now() - start);
}

bool Recording::ProgressCallback(int progress) {
  errand.post([this, progress] { emit stitching(progress); });
  return errand.goesOn();
}

void Recording::StitchingComplete(bool /*success*/) {}

bool Recording::StitchingError(StitcherErrorCodes /*code*/, bool /*fatal*/) { return false; }

}  // namespace ScrollingCapture::Desktop
