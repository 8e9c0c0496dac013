#include <algorithm>
#include <cstring>

#include <VelScrollingCapture/detection/phase/internal/SharedSpectra.h>
#include <VelScrollingCapture/detection/phase/internal/SpectrumColumns.h>
#include <VelScrollingCapture/detection/phase/internal/Transforms.h>

namespace ScrollingCapture {
namespace {

cv::Size SpectrumSize(const cv::Size& dftSize) {
  return {dftSize.height, KeptColumns(dftSize.width)};
}

/// Both are continuous: they come from a grey conversion.
bool SamePixels(const cv::Mat& first, const cv::Mat& second) {
  return first.size() == second.size() &&
         std::memcmp(first.data, second.data, first.total() * first.elemSize()) == 0;
}

}  // namespace

/// The later capture comes first: the neighbouring pair that runs at the same time waits for it,
/// while the spectrum of the earlier one is that pair's own first work.
std::shared_ptr<const cv::Mat> SharedSpectra::CorrelateImages(const cv::Mat& firstGrey,
                                                              const cv::Mat& secondGrey,
                                                              const cv::Size& dftSize) {
  const Use second(*this, KeptSpectrum(secondGrey, dftSize));
  const Use first(*this, LastUseOfSpectrum(firstGrey, dftSize));
  Spectrum correlated = first.MemoryIfUnused();
  if (correlated == nullptr) {
    correlated = pool.Lend(SpectrumSize(dftSize), CV_32FC2);
  }
  CorrelateSpectra(*first, *second, *correlated);
  return correlated;
}

SharedSpectra::Use::~Use() {
  const std::lock_guard<std::mutex> lock(owner.mutex);
  spectrum.reset();
}

SharedSpectra::Spectrum SharedSpectra::Use::MemoryIfUnused() const {
  const std::lock_guard<std::mutex> lock(owner.mutex);
  return spectrum.use_count() == 1 ? spectrum : nullptr;
}

/// The spectrum of a capture that the next pair will ask for as well.
SharedSpectra::Spectrum SharedSpectra::KeptSpectrum(const cv::Mat& grey, const cv::Size& dftSize) {
  std::unique_lock<std::mutex> lock(mutex);
  if (Spectrum known = WaitFor(Find(grey), lock)) {
    return known;
  }
  const std::shared_ptr<Entry> entry = Keep(grey);
  lock.unlock();
  Spectrum spectrum;
  try {
    spectrum = NewSpectrum(grey, dftSize);
  } catch (...) {
    Finish(entry, nullptr);
    throw;
  }
  Finish(entry, spectrum);
  return spectrum;
}

/// The spectrum of a capture that no later pair will ask for.
SharedSpectra::Spectrum SharedSpectra::LastUseOfSpectrum(const cv::Mat& grey,
                                                         const cv::Size& dftSize) {
  std::unique_lock<std::mutex> lock(mutex);
  const std::shared_ptr<Entry> entry = Find(grey);
  entries.remove(entry);
  if (Spectrum known = WaitFor(entry, lock)) {
    return known;
  }
  lock.unlock();
  return NewSpectrum(grey, dftSize);
}

SharedSpectra::Spectrum SharedSpectra::NewSpectrum(const cv::Mat& grey, const cv::Size& dftSize) {
  Spectrum columns = pool.Lend(SpectrumSize(dftSize), CV_32FC2);
  TransformImage(grey, dftSize, *columns);
  return columns;
}

std::shared_ptr<SharedSpectra::Entry> SharedSpectra::Find(const cv::Mat& grey) const {
  const auto found = std::find_if(
      entries.begin(), entries.end(),
      [&](const std::shared_ptr<Entry>& entry) { return SamePixels(entry->grey, grey); });
  return found == entries.end() ? nullptr : *found;
}

/// Null when there is no entry, or when its transform has failed: then the caller makes its own
/// attempt.
SharedSpectra::Spectrum SharedSpectra::WaitFor(const std::shared_ptr<Entry>& entry,
                                               std::unique_lock<std::mutex>& lock) {
  if (entry == nullptr) {
    return nullptr;
  }
  made.wait(lock, [&] { return !entry->beingMade; });
  return entry->columns;
}

std::shared_ptr<SharedSpectra::Entry> SharedSpectra::Keep(const cv::Mat& grey) {
  if (entries.size() == capacity) {
    entries.pop_front();
  }
  return entries.emplace_back(std::make_shared<Entry>(grey));
}

/// Tells waiting threads how the making has ended.
void SharedSpectra::Finish(const std::shared_ptr<Entry>& entry, const Spectrum& columns) {
  const std::lock_guard<std::mutex> lock(mutex);
  entry->columns = columns;
  entry->beingMade = false;
  if (columns == nullptr) {
    entries.remove(entry);
  }
  made.notify_all();
}

}  // namespace ScrollingCapture
