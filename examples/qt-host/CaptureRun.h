#pragma once

#include <QImage>
#include <QObject>
#include <atomic>
#include <thread>

#include <VelScrollingCapture/ScrollingCapture.h>

/// One scrolling capture: takes grabs on the thread of the user interface, and stitches them on a
/// thread of its own. All operations belong to the thread of the user interface, where the signals
/// arrive as well.
class CaptureRun : public QObject, private ScrollingCapture::IStitcherListener {
  Q_OBJECT

 public:
  explicit CaptureRun(QObject* parent = nullptr);

  /// Stops a stitch that still runs, and waits for it.
  ~CaptureRun() override;

  /// @return what to tell the user of the grab; empty when it is as it should be
  QString add(const QImage& grab);

  /// The live preview; null before the first grab.
  QImage preview() const;

  /// Starts the stitch, once; it ends with one of the signals stitched and stopped.
  void stitch();

  /// Asks a running stitch to stop.
  void cancel();

 signals:
  void progressed(int percent);
  void stitched(const QImage& image);
  /// The stitch was cancelled or failed.
  void stopped();

 private:
  void stitchOnWorker();

  // Called by the library while it stitches: signals cross over to the user interface by
  // themselves.
  bool ProgressCallback(int progress) override;
  void StitchingComplete(bool success) override;
  bool StitchingError(StitcherErrorCodes code, bool fatal) override;

  ScrollingCapture::CaptureSession session;
  std::atomic<bool> cancelled{false};
  std::thread worker;
};
