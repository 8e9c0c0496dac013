#pragma once

#include <QImage>
#include <QObject>
#include <memory>
#include <thread>

#include <VelScrollingCapture/ScrollingCapture.h>

class StitchProgress;

/// One scrolling capture: takes grabs on the thread of the user interface, and stitches them on a
/// thread of its own. All operations belong to the thread of the user interface, where the signals
/// arrive as well.
class CaptureSession : public QObject {
  Q_OBJECT

 public:
  explicit CaptureSession(QObject* parent = nullptr);

  /// Stops a stitch that still runs, and waits for it.
  ~CaptureSession() override;

  void add(const QImage& grab);

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

  std::shared_ptr<ScrollingCapture::VelScrollingCapture> capture;
  std::shared_ptr<StitchProgress> progress;
  std::thread worker;
};
