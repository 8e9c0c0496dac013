#include <algorithm>
#include <exception>
#include <utility>

#include <desktop/picture/TileLoader.h>
#include <desktop/support/Explanation.h>

namespace ScrollingCapture::Desktop {
namespace {

bool AreSame(const Tile& left, const Tile& right) { return !(left < right) && !(right < left); }

}  // namespace

TileLoader::TileLoader(SharedPicture shown, QObject* parent)
    : QObject(parent), picture(std::move(shown)) {
  qRegisterMetaType<Tile>("Tile");
  connect(this, &TileLoader::drawn, this, &TileLoader::loaded, Qt::QueuedConnection);
  connect(this, &TileLoader::lost, this, &TileLoader::failed, Qt::QueuedConnection);
  thread = std::thread([this] { run(); });
}

TileLoader::~TileLoader() {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    isOver = true;
  }
  changed.notify_one();
  thread.join();
}

void TileLoader::want(const std::vector<Tile>& tiles) {
  {
    const std::lock_guard<std::mutex> lock(mutex);
    wanted.assign(tiles.rbegin(), tiles.rend());
    const auto same = std::find_if(wanted.begin(), wanted.end(),
                                   [this](const Tile& tile) { return AreSame(tile, current); });
    isStale = same == wanted.end();
    if (isDrawing && !isStale) {
      wanted.erase(same);
    }
  }
  changed.notify_one();
}

void TileLoader::run() {
  while (takeNext()) {
    draw();
  }
}

bool TileLoader::takeNext() {
  std::unique_lock<std::mutex> lock(mutex);
  isDrawing = false;
  changed.wait(lock, [this] { return isOver || !wanted.empty(); });
  if (isOver) {
    return false;
  }
  current = wanted.back();
  wanted.pop_back();
  isStale = false;
  isDrawing = true;
  return true;
}

void TileLoader::draw() {
  const Tile tile = current;
  try {
    const QImage image = DrawTile(*picture, tile, [this] { return isWanted(); });
    if (!image.isNull()) {
      emit drawn(tile, image);
    }
  } catch (...) {
    const QString line = Explain(std::current_exception());
    emit lost(tile, line);
  }
}

bool TileLoader::isWanted() {
  const std::lock_guard<std::mutex> lock(mutex);
  return !isOver && !isStale;
}

}  // namespace ScrollingCapture::Desktop
