#pragma once

#include <QImage>
#include <QObject>
#include <QRect>
#include <QString>
#include <atomic>
#include <chrono>
#include <memory>

#include <desktop/picture/RecordedPicture.h>
#include <desktop/recording/CaptureChoice.h>
#include <desktop/support/Errand.h>
#include <live/Recorder.h>

#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/session/CaptureSession.h>

namespace ScrollingCapture::Desktop {

/// One recording, from the choice to the stitched picture, on a thread of its own. It belongs to
/// the thread of the user interface, where its signals arrive as well; it ends with one of
/// finished, discarded and failed.
class Recording : public QObject, private Live::IRecordingListener, private IStitcherListener {
  Q_OBJECT

 public:
  Recording(PickSource picking, const RecordingOptions& options, QObject* parent = nullptr);

  /// The box that previews fit into, in pixels.
  static cv::Size PreviewBox() { return {250, 280}; }

  /// Lets the user choose; opened tells of the choice.
  void start();

  /// Begins to record what is open.
  void begin();

  /// Has a key finish the recording as well; to be called before it begins.
  void listenTo(const KeyWasPressed& pressed) { key = pressed; }

  /// Ends the recording, and stitches what was captured.
  void finish() { isFinishing = true; }

  /// Drops everything.
  void discard() { errand.stop(); }

 signals:
  /// It is known where captures come from, in pixels of the screen. Nothing is captured before
  /// begin is called.
  void opened(const QRect& region);

  /// @param size    how large the picture is so far
  /// @param warning what is wrong just now; mostly empty
  void progressed(const QString& size, const QString& warning);

  void grown(const QImage& preview);
  void stitching(int percent);
  void finished(const Recorded& recorded);
  void discarded();
  void failed(const QString& line);

 private:
  using Clock = std::chrono::steady_clock;

  // On threads of the recording.
  void work();
  void waitForBegin() const;
  Live::RecordingEnd record(Live::ICaptureSource& source);
  Recorded stitch(const Live::RecordingEnd& end);
  void showPreview();

  bool GoOn(const Live::RecordingStatus& status) override;
  void CaptureKept(const cv::Mat& pixels) override;
  bool ProgressCallback(int progress) override;
  void StitchingComplete(bool success) override;
  bool StitchingError(StitcherErrorCodes code, bool fatal) override;

  const PickSource pick;
  const RecordingOptions options;
  KeyWasPressed key;
  std::atomic<bool> mayBegin{false};
  std::atomic<bool> isFinishing{false};
  std::shared_ptr<RecordingStore> store;
  std::unique_ptr<CaptureSession> session;  ///< goes before the files of its captures
  Live::RecordingStatus lastStatus;
  Clock::time_point nextPreview;
  QString toldSize;
  QString toldWarning;
  Errand errand;  ///< goes first, since it uses the others
};

}  // namespace ScrollingCapture::Desktop
