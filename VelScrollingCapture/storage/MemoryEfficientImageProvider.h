#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/Export.h>
#include <VelScrollingCapture/core/IImageProvider.h>

namespace ScrollingCapture {

/// Keeps the captures that were used last in memory, and the others in files.
///
/// When a capture that comes into memory would exceed the budget, the one that was used least
/// recently is spilled to a file in the given folder; it is read back when somebody asks for it.
/// The budget is a target: one capture is spilled for one that comes in, two captures may always be
/// loaded whatever their size, what callers still hold takes memory although it is not counted, and
/// a capture whose file cannot be written stays loaded, so that none is ever lost.
///
/// A file holds what the capture looked like when it was first spilled. Whoever writes into the
/// pixels of a capture later on changes what is in memory, but not the file: hand the capture to
/// SetImageAt to make the change last. The same is true of the seams that a stitch cuts.
///
/// Safe from any number of threads at once: one recursive lock is held through every operation.
/// Indices are not checked.
///
/// Files hold what was on a screen: they are made with mode 0600, under a name at which there is
/// nothing, and never through a link that somebody has put there.
class VEL_EXPORT MemoryEfficientImageProvider : public IImageProvider {
 public:
  /// No capture is spilled while fewer captures than this are loaded.
  static constexpr size_t MINIMUM_LOADED_IMAGES = 2;

  /// Takes a budget of 200 MiB.
  /// @param folderPath where spill files go: an existing folder, with the path separator at its end
  explicit MemoryEfficientImageProvider(const std::string& folderPath);

  /// @param folderPath  where spill files go: an existing folder, with the path separator at its
  ///                    end; what follows the last separator becomes a prefix of the files' names
  /// @param memoryLimit the budget for loaded pixels, in bytes
  MemoryEfficientImageProvider(const std::string& folderPath, unsigned long memoryLimit);

  MemoryEfficientImageProvider(const MemoryEfficientImageProvider&) = delete;
  MemoryEfficientImageProvider& operator=(const MemoryEfficientImageProvider&) = delete;

  /// Deletes every spill file; the folder stays.
  ~MemoryEfficientImageProvider() override;

  size_t Count() override;
  bool IsEmpty() override;

  /// The capture at `index`, which becomes the most recently used one.
  ///
  /// Throws std::runtime_error when the capture's spill file cannot be read back, and cv::Exception
  /// (StsNoMem) when there is no memory for the capture; the provider is then as it was before.
  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override;

  /// Replaces a capture and deletes the spill file of the one that was there.
  void SetImageAt(size_t index, cv::Mat& image) override;

  /// Removes all captures and deletes their spill files. Captures that were handed out before stay
  /// valid.
  void Clear() override;

  void Add(cv::Mat& image) override;

  /// What GetImageAt gives for the last index, with everything that comes with it. Not guarded
  /// against an empty provider.
  std::shared_ptr<cv::Mat> GetLastImage() override;

  /// The folder path as it was given.
  std::string GetFolderPath();

  /// The bytes of pixels of all loaded captures, as GetMatrixMemory counts them.
  size_t GetMemoryUsage() const;

  /// Whether more is loaded than the budget allows, beyond the captures that may always be.
  ///
  /// With captures of one size, that is so when one of them could not be spilled: the disk is full,
  /// or the folder cannot be written. Nothing is lost then, but a host that has promised a limit
  /// wants to say so; ask after Add and GetImageAt. It ends as soon as enough has been spilled
  /// after all.
  bool ExceedsMemoryLimit() const;

  /// Rows times columns times the size of an element, in bytes; 0 for a matrix without dimensions.
  /// Takes no lock.
  size_t GetMatrixMemory(const cv::Mat& image) const;

  /// Whether the capture is in memory.
  bool IsMatLoaded(size_t index);

  /// Whether the capture has a spill file. It may be loaded as well.
  bool IsMatSaved(size_t index);

  /// Spills the capture that was used least recently; one that already has a file is only dropped
  /// from memory. A matrix that no spill file can give back (one of more than two dimensions, or of
  /// 2^31 elements or more) is passed over.
  /// @return false when there is nothing to spill or the file could not be written; nothing has
  ///         changed then
  bool UnloadMat();

 protected:
  /// Writes a matrix to a file, which is created (with mode 0600) or overwritten.
  ///
  /// The file holds, without gaps and in the machine's byte order, the numbers of columns and of
  /// rows (32 bits each), the size of an element in bytes (64 bits) and OpenCV's type code
  /// (32 bits), then the pixels. The pixels are taken from the matrix's buffer as they lie there:
  /// hand over a continuous matrix.
  /// @return false when the file could not be opened, or not written whole; a partial file has then
  ///         been deleted
  bool SaveMat(cv::Mat& image, const std::string& path);

  /// Reads a matrix that SaveMat wrote. A matrix that already has the size and type of the file's
  /// keeps its buffer.
  ///
  /// Throws std::runtime_error when the file cannot be opened, is cut short or makes no sense, and
  /// cv::Exception (StsNoMem) when there is no memory for the matrix; the matrix may have been
  /// resized and partly filled by then.
  void LoadMat(cv::Mat& image, const std::string& path);

  /// A path for a new spill file, at which there is nothing. The file is not created.
  std::string GetTempFileName();

 private:
  struct Entry {
    std::string filePath;            ///< empty when there is no spill file
    std::shared_ptr<cv::Mat> image;  ///< null when the capture is not in memory
  };

  [[gnu::visibility("hidden")]] void MakeRoomFor(const cv::Mat& image);
  [[gnu::visibility("hidden")]] static bool CanLeaveMemory(const Entry& entry);
  [[gnu::visibility("hidden")]] bool Spill(Entry& entry);

  std::uint64_t memoryLimit;
  unsigned int fileNameLength = 24;
  std::string folderPath;
  std::deque<unsigned long> loadedQueue;  ///< the least recently used capture comes first
  std::vector<Entry> entries;
  mutable std::recursive_mutex lock;
};

}  // namespace ScrollingCapture
