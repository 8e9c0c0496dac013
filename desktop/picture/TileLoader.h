#pragma once

#include <QImage>
#include <QMetaType>
#include <QObject>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include <desktop/picture/RecordedPicture.h>
#include <desktop/picture/Tile.h>

namespace ScrollingCapture::Desktop {

/// Draws tiles of a picture on a thread of its own. It belongs to the thread of the user interface,
/// where its signals arrive as well.
class TileLoader : public QObject {
  Q_OBJECT

 public:
  /// Throws std::system_error when no thread can be started.
  explicit TileLoader(SharedPicture shown, QObject* parent = nullptr);
  ~TileLoader() override;

  /// Says what is wanted now, the most urgent tile first. What was wanted before, and is not drawn
  /// yet, is not wanted any more.
  void want(const std::vector<Tile>& tiles);

 signals:
  void loaded(const Tile& tile, const QImage& image);
  /// @param line why the tile could not be drawn, for the user
  void failed(const Tile& tile, const QString& line);

  // On its way from the other thread.
  void drawn(const Tile& tile, const QImage& image);
  void lost(const Tile& tile, const QString& line);

 private:
  void run();
  bool takeNext();
  void draw();
  bool isWanted();

  const SharedPicture picture;
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<Tile> wanted;  ///< the most urgent one last
  Tile current;              ///< the thread's
  bool isDrawing = false;    ///< that one
  bool isOver = false;
  bool isStale = false;  ///< whether the current one is not wanted any more
  std::thread thread;
};

}  // namespace ScrollingCapture::Desktop

Q_DECLARE_METATYPE(ScrollingCapture::Desktop::Tile)
