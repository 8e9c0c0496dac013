#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

#include <VelScrollingCapture/storage/internal/SpillFile.h>

namespace ScrollingCapture {
namespace {

/// What a spill file begins with; the fields follow one another without the gaps of a struct.
struct SpillHeader {
  std::int32_t columns = 0;
  std::int32_t rows = 0;
  std::uint64_t elementSize = 0;
  std::int32_t type = 0;
};

template <typename Field>
void ReadField(std::istream& stream, Field& field) {
  stream.read(reinterpret_cast<char*>(&field), sizeof(field));
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

/// Whether the file holds all of the matrix, given that what its header announces fits into it.
bool IsWhole(const SpillHeader& header) {
  return header.elementSize == static_cast<std::uint64_t>(CV_ELEM_SIZE(header.type));
}

/// Gives the matrix the size and type that a header announces; false when that makes no sense.
/// Throws cv::Exception when there is no memory for what the file holds.
bool Create(cv::Mat& image, const SpillHeader& header) {
  try {
    image.create(header.rows, header.columns, header.type);
    return true;
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem && IsWhole(header)) {
      throw;
    }
    return false;
  }
}

/// Reads what follows the header; false when the header announces more than there is, or more than
/// the matrix can take.
bool ReadPixels(std::ifstream& file, const SpillHeader& header, cv::Mat& image) {
  const std::int32_t elements = ElementsToRead(header);
  if (elements < 0 || !FitsInto(BytesLeftIn(file), header)) {
    return false;
  }
  if (!Create(image, header)) {
    return false;
  }
  const std::uint64_t bytes = static_cast<std::uint64_t>(elements) * header.elementSize;
  if (bytes > image.total() * image.elemSize()) {
    return false;
  }
  file.read(reinterpret_cast<char*>(image.data), static_cast<std::streamsize>(bytes));
  return file.good();
}

/// Leaves devices and the like alone, which a path may name as well.
void RemovePartialFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_regular_file(std::filesystem::symlink_status(path, ignored))) {
    std::filesystem::remove(path, ignored);
  }
}

/// A file that is open for writing; null when it cannot be opened, and none is made then.
std::FILE* OpenForWriting(const std::string& path, Existing existing) {
  constexpr mode_t OwnerOnly = S_IRUSR | S_IWUSR;
  const int answer = existing == Existing::Refused ? O_EXCL | O_NOFOLLOW : O_TRUNC;
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | answer, OwnerOnly);
  if (descriptor < 0) {
    return nullptr;
  }
  std::FILE* const file = fdopen(descriptor, "wb");
  if (file == nullptr) {
    close(descriptor);
    RemovePartialFile(path);
  }
  return file;
}

bool Write(std::FILE* file, const void* bytes, size_t count) {
  return count == 0 || std::fwrite(bytes, 1, count, file) == count;
}

bool WriteMatrix(std::FILE* file, const cv::Mat& image) {
  const SpillHeader header{image.cols, image.rows, ElementSizeOf(image), image.type()};
  return Write(file, &header.columns, sizeof(header.columns)) &&
         Write(file, &header.rows, sizeof(header.rows)) &&
         Write(file, &header.elementSize, sizeof(header.elementSize)) &&
         Write(file, &header.type, sizeof(header.type)) &&
         Write(file, image.data, PixelBytesOf(image));
}

}  // namespace

size_t ElementSizeOf(const cv::Mat& image) {
  return image.dims > 0 ? image.step[image.dims - 1] : 0;
}

size_t PixelBytesOf(const cv::Mat& image) {
  return static_cast<size_t>(image.rows) * static_cast<size_t>(image.cols) * ElementSizeOf(image);
}

bool CanBeReadBack(const cv::Mat& image) {
  return image.dims <= 2 && image.total() <= std::numeric_limits<std::int32_t>::max();
}

bool WriteSpillFile(const cv::Mat& image, const std::string& path, Existing existing) {
  std::FILE* const file = OpenForWriting(path, existing);
  if (file == nullptr) {
    return false;
  }
  const bool isWritten = WriteMatrix(file, image);
  const bool isWhole = std::fclose(file) == 0 && isWritten;
  if (!isWhole) {
    RemovePartialFile(path);
  }
  return isWhole;
}

void ReadSpillFile(cv::Mat& image, const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const SpillHeader header = ReadHeader(file);
  if (!file || !ReadPixels(file, header, image)) {
    throw std::runtime_error("Could not open or read file.");
  }
}

}  // namespace ScrollingCapture
