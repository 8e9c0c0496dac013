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
  return first.size() == second.size() && first.type() == second.type() &&
         std::memcmp(first.data, second.data, first.total() * first.elemSize()) == 0;
}

}  // namespace

/// The later capture comes first: the neighbouring pair that runs at the same time waits for it,
/// while the spectrum of the earlier one is that pair's own first work.
std::shared_ptr<const cv::Mat> SharedSpectra::CorrelatePair(size_t pair, const cv::Mat& firstGrey,
                                                            const cv::Mat& secondGrey,
                                                            const cv::Size& dftSize) {
  const Use second(*this, KeptSpectrum(pair + 1, secondGrey, dftSize));
  const Use first(*this, LastUseOfSpectrum(pair, firstGrey, dftSize));
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
SharedSpectra::Spectrum SharedSpectra::KeptSpectrum(size_t capture, const cv::Mat& grey,
                                                    const cv::Size& dftSize) {
  const std::shared_ptr<Entry> entry = Keep(capture, grey);
  try {
    Spectrum spectrum = NewSpectrum(grey, dftSize);
    Finish(*entry, spectrum);
    return spectrum;
  } catch (...) {
    Finish(*entry, nullptr);
    throw;
  }
}

/// The spectrum of a capture that no later pair will ask for. Images are compared without the lock,
/// which others need meanwhile.
SharedSpectra::Spectrum SharedSpectra::LastUseOfSpectrum(size_t capture, const cv::Mat& grey,
                                                         const cv::Size& dftSize) {
  const std::shared_ptr<const Entry> entry = Take(capture);
  if (entry != nullptr && SamePixels(entry->grey, grey)) {
    if (Spectrum known = WaitFor(*entry)) {
      return known;
    }
  }
  return NewSpectrum(grey, dftSize);
}

SharedSpectra::Spectrum SharedSpectra::NewSpectrum(const cv::Mat& grey, const cv::Size& dftSize) {
  Spectrum columns = pool.Lend(SpectrumSize(dftSize), CV_32FC2);
  TransformImage(grey, dftSize, *columns);
  return columns;
}

std::shared_ptr<SharedSpectra::Entry> SharedSpectra::Keep(size_t capture, const cv::Mat& grey) {
  auto entry = std::make_shared<Entry>(grey);
  const std::lock_guard<std::mutex> lock(mutex);
  if (entries.size() == capacity) {
    entries.erase(entries.begin());
  }
  entries[capture] = entry;
  return entry;
}

/// The entry of a capture, which is then kept no longer; null when there is none.
std::shared_ptr<SharedSpectra::Entry> SharedSpectra::Take(size_t capture) {
  const std::lock_guard<std::mutex> lock(mutex);
  const auto node = entries.extract(capture);
  return node.empty() ? nullptr : node.mapped();
}

/// Null when the transform has failed: then the caller makes its own attempt.
SharedSpectra::Spectrum SharedSpectra::WaitFor(const Entry& entry) {
  std::unique_lock<std::mutex> lock(mutex);
  made.wait(lock, [&] { return !entry.beingMade; });
  return entry.columns;
}

/// Tells waiting threads how the making has ended.
void SharedSpectra::Finish(Entry& entry, const Spectrum& columns) {
  const std::lock_guard<std::mutex> lock(mutex);
  entry.columns = columns;
  entry.beingMade = false;
  made.notify_all();
}

}  // namespace ScrollingCapture
