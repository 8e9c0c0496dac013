#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/storage/MemoryEfficientImageProvider.h>

namespace ScrollingCapture {
namespace {

constexpr unsigned long DefaultMemoryLimit = 200UL * 1024 * 1024;

using Guard = std::lock_guard<std::recursive_mutex>;

/// What a spill file begins with; the fields follow one another without the gaps of a struct.
struct SpillHeader {
  std::int32_t columns = 0;
  std::int32_t rows = 0;
  std::uint64_t elementSize = 0;
  std::int32_t type = 0;
};

size_t ElementSizeOf(const cv::Mat& image) {
  return image.dims > 0 ? image.step[image.dims - 1] : 0;
}

size_t PixelBytesOf(const cv::Mat& image) {
  return static_cast<size_t>(image.rows) * static_cast<size_t>(image.cols) * ElementSizeOf(image);
}

template <typename Field>
void WriteField(std::ostream& stream, const Field& field) {
  stream.write(reinterpret_cast<const char*>(&field), sizeof(field));
}

template <typename Field>
void ReadField(std::istream& stream, Field& field) {
  stream.read(reinterpret_cast<char*>(&field), sizeof(field));
}

void WriteHeader(std::ostream& stream, const SpillHeader& header) {
  WriteField(stream, header.columns);
  WriteField(stream, header.rows);
  WriteField(stream, header.elementSize);
  WriteField(stream, header.type);
}

SpillHeader ReadHeader(std::istream& stream) {
  SpillHeader header;
  ReadField(stream, header.columns);
  ReadField(stream, header.rows);
  ReadField(stream, header.elementSize);
  ReadField(stream, header.type);
  return header;
}

std::uint64_t BytesLeftIn(std::ifstream& file) {
  const std::streamoff position = file.tellg();
  file.seekg(0, std::ios::end);
  const std::streamoff end = file.tellg();
  file.seekg(position);
  return file && end > position ? static_cast<std::uint64_t>(end - position) : 0;
}

/// Whether the pixels that a header announces can lie in that many bytes. Asked before any memory
/// is taken on a damaged header's word.
bool FitsInto(std::uint64_t bytes, const SpillHeader& header) {
  if (header.rows < 0 || header.columns < 0) {
    return false;
  }
  const std::uint64_t elements =
      static_cast<std::uint64_t>(header.rows) * static_cast<std::uint64_t>(header.columns);
  return header.elementSize == 0 || elements <= bytes / header.elementSize;
}

/// The number of elements to read, in 32 bits with a sign: that is the limit for captures that are
/// read back. A product that does not fit wraps around.
std::int32_t ElementsToRead(const SpillHeader& header) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(header.rows) *
                                   static_cast<std::uint32_t>(header.columns));
}

/// Reads what follows the header; false when the header announces more than there is, or more than
/// the matrix can take.
bool ReadPixels(std::ifstream& file, const SpillHeader& header, cv::Mat& image) {
  const std::int32_t elements = ElementsToRead(header);
  if (elements < 0 || !FitsInto(BytesLeftIn(file), header)) {
    return false;
  }
  try {
    image.create(header.rows, header.columns, header.type);
  } catch (const cv::Exception&) {
    return false;
  }
  const std::uint64_t bytes = static_cast<std::uint64_t>(elements) * header.elementSize;
  if (bytes > image.total() * image.elemSize()) {
    return false;
  }
  file.read(reinterpret_cast<char*>(image.data), static_cast<std::streamsize>(bytes));
  return file.good();
}

/// Whether a spill file can give all of the capture back.
bool CanBeReadBack(const cv::Mat& image) {
  return image.dims <= 2 && image.total() <= std::numeric_limits<std::int32_t>::max();
}

/// The same pixels without gaps between the rows; nothing when there is no memory for a copy.
std::optional<cv::Mat> MakeContinuous(const cv::Mat& image) {
  try {
    return image.isContinuous() ? image : image.clone();
  } catch (const cv::Exception&) {
    return std::nullopt;
  }
}

void RemoveAll(std::deque<unsigned long>& queue, size_t index) {
  queue.erase(std::remove(queue.begin(), queue.end(), index), queue.end());
}

/// Leaves devices and the like alone, which a path may name as well.
void RemovePartialFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_regular_file(std::filesystem::symlink_status(path, ignored))) {
    std::filesystem::remove(path, ignored);
  }
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
  if (loadedQueue.empty()) {
    return false;
  }
  const size_t index = loadedQueue.front();
  Entry& entry = entries[index];
  if (entry.image == nullptr) {
    loadedQueue.pop_front();
    return false;
  }
  if (!IsMatSaved(index) && !Spill(entry)) {
    return false;
  }
  entry.image.reset();
  loadedQueue.pop_front();
  return true;
}

bool MemoryEfficientImageProvider::SaveMat(cv::Mat& image, const std::string& path) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) {
    return false;
  }
  WriteHeader(file, {image.cols, image.rows, ElementSizeOf(image), image.type()});
  file.write(reinterpret_cast<const char*>(image.data),
             static_cast<std::streamsize>(PixelBytesOf(image)));
  file.close();
  if (!file) {
    RemovePartialFile(path);
  }
  return file.good();
}

void MemoryEfficientImageProvider::LoadMat(cv::Mat& image, const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const SpillHeader header = ReadHeader(file);
  if (!file || !ReadPixels(file, header, image)) {
    throw std::runtime_error("Could not open or read file.");
  }
}

std::string MemoryEfficientImageProvider::GetTempFileName() {
  std::string path;
  do {
    path = folderPath + Utilities::GenerateRandomAlphanumericString(fileNameLength);
  } while (std::ifstream(path).is_open());
  return path;
}

void MemoryEfficientImageProvider::MakeRoomFor(const cv::Mat& image) {
  const bool exceeds = GetMemoryUsage() + GetMatrixMemory(image) > memoryLimit;
  if (exceeds && loadedQueue.size() >= MINIMUM_LOADED_IMAGES) {
    UnloadMat();
  }
}

/// Writes the entry's file; false leaves the entry without one.
bool MemoryEfficientImageProvider::Spill(Entry& entry) {
  if (!CanBeReadBack(*entry.image)) {
    return false;
  }
  std::optional<cv::Mat> pixels = MakeContinuous(*entry.image);
  std::string path = GetTempFileName();
  if (!pixels || !SaveMat(*pixels, path)) {
    return false;
  }
  entry.filePath = std::move(path);
  return true;
}

}  // namespace ScrollingCapture
