#pragma once

#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace ScrollingCapture::Program {

/// Holds back what is written to a stream while it lives, and gives the stream back afterwards. Any
/// number of threads may write.
///
/// The library tells of faults on the standard streams; the program has lines of its own for them.
class StreamHold {
 public:
  explicit StreamHold(std::ostream& stream);
  StreamHold(const StreamHold&) = delete;
  StreamHold& operator=(const StreamHold&) = delete;
  ~StreamHold();

  /// What was written so far, line by line, empty lines aside.
  std::vector<std::string> Lines();

 private:
  class Buffer : public std::streambuf {
   public:
    std::string Text();

   protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* characters, std::streamsize count) override;

   private:
    std::mutex mutex;
    std::string text;
  };

  std::ostream& stream;
  Buffer buffer;
  std::streambuf* original;
};

}  // namespace ScrollingCapture::Program
