#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/storage/MemoryEfficientImageProvider.h>
#include <VelScrollingCapture/storage/internal/SpillFile.h>

namespace ScrollingCapture {
namespace {

constexpr unsigned long DefaultMemoryLimit = 200UL * 1024 * 1024;

using Guard = std::lock_guard<std::recursive_mutex>;

/// The same pixels without gaps between the rows; nothing when there is no memory for a copy.
std::optional<cv::Mat> MakeContinuous(const cv::Mat& image) {
  try {
    return image.isContinuous() ? image : image.clone();
  } catch (const cv::Exception&) {
    return std::nullopt;
  }
}

/// Whether there is anything of that name, be it a link that leads nowhere or a file that may not
/// be read.
bool HasName(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::exists(std::filesystem::symlink_status(path, ignored));
}

void RemoveAll(std::deque<unsigned long>& queue, size_t index) {
  queue.erase(std::remove(queue.begin(), queue.end(), index), queue.end());
}

}  // namespace

MemoryEfficientImageProvider::MemoryEfficientImageProvider(const std::string& folderPath)
    : MemoryEfficientImageProvider(folderPath, DefaultMemoryLimit) {}

// NOLINTNEXTLINE(modernize-pass-by-value): the signature is part of the interface.
MemoryEfficientImageProvider::MemoryEfficientImageProvider(const std::string& folderPath,
                                                           unsigned long memoryLimit)
    : memoryLimit(memoryLimit), folderPath(folderPath) {}

MemoryEfficientImageProvider::~MemoryEfficientImageProvider() {
  MemoryEfficientImageProvider::Clear();
}

size_t MemoryEfficientImageProvider::Count() {
  const Guard guard(lock);
  return entries.size();
}

bool MemoryEfficientImageProvider::IsEmpty() {
  const Guard guard(lock);
  return entries.empty();
}

std::shared_ptr<cv::Mat> MemoryEfficientImageProvider::GetImageAt(size_t index) {
  const Guard guard(lock);
  if (!IsMatLoaded(index)) {
    const auto image = std::make_shared<cv::Mat>();
    LoadMat(*image, entries[index].filePath);
    MakeRoomFor(*image);
    entries[index].image = image;
  }
  RemoveAll(loadedQueue, index);
  loadedQueue.push_back(index);
  return entries[index].image;
}

void MemoryEfficientImageProvider::SetImageAt(size_t index, cv::Mat& image) {
  const Guard guard(lock);
  // Made first: the caller's matrix may be the very one that is about to be dropped.
  const auto replacement = std::make_shared<cv::Mat>(image);
  Entry& entry = entries[index];
  if (IsMatSaved(index)) {
    std::remove(entry.filePath.c_str());
    entry.filePath.clear();
  }
  entry.image.reset();
  RemoveAll(loadedQueue, index);
  MakeRoomFor(*replacement);
  entry.image = replacement;
  loadedQueue.push_back(index);
}

void MemoryEfficientImageProvider::Clear() {
  const Guard guard(lock);
  for (const Entry& entry : entries) {
    if (!entry.filePath.empty()) {
      std::remove(entry.filePath.c_str());
    }
  }
  while (!entries.empty()) {
    entries.pop_back();
  }
  loadedQueue.clear();
}

void MemoryEfficientImageProvider::Add(cv::Mat& image) {
  const Guard guard(lock);
  const auto added = std::make_shared<cv::Mat>(image);
  MakeRoomFor(*added);
  entries.push_back({std::string(), added});
  loadedQueue.push_back(entries.size() - 1);
}

std::shared_ptr<cv::Mat> MemoryEfficientImageProvider::GetLastImage() {
  const Guard guard(lock);
  return GetImageAt(Count() - 1);
}

std::string MemoryEfficientImageProvider::GetFolderPath() { return folderPath; }

size_t MemoryEfficientImageProvider::GetMemoryUsage() const {
  const Guard guard(lock);
  size_t usage = 0;
  for (const Entry& entry : entries) {
    if (entry.image != nullptr) {
      usage += GetMatrixMemory(*entry.image);
    }
  }
  return usage;
}

bool MemoryEfficientImageProvider::ExceedsMemoryLimit() const {
  const Guard guard(lock);
  return loadedQueue.size() > MINIMUM_LOADED_IMAGES && GetMemoryUsage() > memoryLimit;
}

size_t MemoryEfficientImageProvider::GetMatrixMemory(const cv::Mat& image) const {
  return PixelBytesOf(image);
}

bool MemoryEfficientImageProvider::IsMatLoaded(size_t index) {
  const Guard guard(lock);
  return entries[index].image != nullptr;
}

bool MemoryEfficientImageProvider::IsMatSaved(size_t index) {
  const Guard guard(lock);
  return !entries[index].filePath.empty();
}

bool MemoryEfficientImageProvider::UnloadMat() {
  const Guard guard(lock);
  const auto leastRecent =
      std::find_if(loadedQueue.begin(), loadedQueue.end(),
                   [this](size_t index) { return CanLeaveMemory(entries[index]); });
  if (leastRecent == loadedQueue.end()) {
    return false;
  }
  Entry& entry = entries[*leastRecent];
  if (entry.filePath.empty() && !Spill(entry)) {
    return false;
  }
  entry.image.reset();
  loadedQueue.erase(leastRecent);
  return true;
}

bool MemoryEfficientImageProvider::SaveMat(cv::Mat& image, const std::string& path) {
  return WriteSpillFile(image, path, Existing::Replaced);
}

void MemoryEfficientImageProvider::LoadMat(cv::Mat& image, const std::string& path) {
  ReadSpillFile(image, path);
}

std::string MemoryEfficientImageProvider::GetTempFileName() {
  std::string path;
  do {
    path = folderPath + Utilities::GenerateRandomAlphanumericString(fileNameLength);
  } while (HasName(path));
  return path;
}

void MemoryEfficientImageProvider::MakeRoomFor(const cv::Mat& image) {
  const bool exceeds = GetMemoryUsage() + GetMatrixMemory(image) > memoryLimit;
  if (exceeds && loadedQueue.size() >= MINIMUM_LOADED_IMAGES) {
    UnloadMat();
  }
}

/// What no file could give back has to stay.
bool MemoryEfficientImageProvider::CanLeaveMemory(const Entry& entry) {
  return !entry.filePath.empty() || CanBeReadBack(*entry.image);
}

/// Writes the entry's file; false leaves the entry without one.
bool MemoryEfficientImageProvider::Spill(Entry& entry) {
  const std::optional<cv::Mat> pixels = MakeContinuous(*entry.image);
  std::string path = GetTempFileName();
  if (!pixels || !WriteSpillFile(*pixels, path, Existing::Refused)) {
    return false;
  }
  entry.filePath = std::move(path);
  return true;
}

}  // namespace ScrollingCapture
