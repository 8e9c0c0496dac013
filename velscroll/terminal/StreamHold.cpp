#include <sstream>

#include <velscroll/terminal/StreamHold.h>

namespace ScrollingCapture::Program {

StreamHold::StreamHold(std::ostream& stream) : stream(stream), original(stream.rdbuf(&buffer)) {}

StreamHold::~StreamHold() { stream.rdbuf(original); }

std::vector<std::string> StreamHold::Lines() {
  std::istringstream text(buffer.Text());
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(text, line)) {
    if (!line.empty()) {
      lines.push_back(line);
    }
  }
  return lines;
}

std::string StreamHold::Buffer::Text() {
  const std::lock_guard<std::mutex> lock(mutex);
  return text;
}

StreamHold::Buffer::int_type StreamHold::Buffer::overflow(int_type character) {
  if (!traits_type::eq_int_type(character, traits_type::eof())) {
    const std::lock_guard<std::mutex> lock(mutex);
    text.push_back(traits_type::to_char_type(character));
  }
  return traits_type::not_eof(character);
}

std::streamsize StreamHold::Buffer::xsputn(const char* characters, std::streamsize count) {
  const std::lock_guard<std::mutex> lock(mutex);
  text.append(characters, static_cast<size_t>(count));
  return count;
}

}  // namespace ScrollingCapture::Program
