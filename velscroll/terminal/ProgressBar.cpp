#include <algorithm>
#include <cstring>
#include <unistd.h>

#include <velscroll/terminal/ProgressBar.h>

namespace ScrollingCapture::Program {
namespace {

constexpr const char* ClearLine = "\r\033[K";
constexpr int Whole = 100;
constexpr int Width = 40;
constexpr size_t StageWidth = 11;

bool IsTerminal() { return ::isatty(STDERR_FILENO) == 1; }

/// Not through std::cerr, which is held back while the library works. A bar that cannot be written
/// is no reason to stop.
void Write(const char* text, size_t length) {
  [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, text, length);
}

std::string Line(std::string stage, int percent) {
  stage.resize(StageWidth, ' ');
  const auto filled = static_cast<size_t>(percent * Width / Whole);
  return stage + "[" + std::string(filled, '#') + std::string(Width - filled, '.') + "] " +
         std::to_string(percent) + "%";
}

}  // namespace

ProgressBar::ProgressBar(bool wanted) : visible(wanted && IsTerminal()) {}

ProgressBar::~ProgressBar() { Hide(); }

void ProgressBar::Show(const std::string& stage, int percent) {
  if (!visible) {
    return;
  }
  const std::string line = Line(stage, std::clamp(percent, 0, Whole));
  if (line != shown) {
    shown = line;
    const std::string text = ClearLine + line;
    Write(text.data(), text.size());
  }
}

void ProgressBar::Hide() {
  if (!shown.empty()) {
    shown.clear();
    ClearProgressLine();
  }
}

void ClearProgressLine() {
  if (IsTerminal()) {
    Write(ClearLine, std::strlen(ClearLine));
  }
}

}  // namespace ScrollingCapture::Program
