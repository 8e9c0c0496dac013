#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace ScrollingCapture::Testing {

/// Takes what is written to a stream while it lives, and gives the stream back afterwards.
class StreamCapture {
 public:
  explicit StreamCapture(std::ostream& stream) : stream(stream), original(stream.rdbuf()) {
    stream.rdbuf(buffer.rdbuf());
  }
  StreamCapture(const StreamCapture&) = delete;
  StreamCapture& operator=(const StreamCapture&) = delete;
  ~StreamCapture() { stream.rdbuf(original); }

  std::string Text() const { return buffer.str(); }

 private:
  std::ostream& stream;
  std::streambuf* original;
  std::ostringstream buffer;
};

}  // namespace ScrollingCapture::Testing
