#include <algorithm>
#include <cstring>

#include <velscroll/terminal/ProgressBar.h>
#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Program {
namespace {

constexpr const char* ClearLine = "\r\033[K";
constexpr int Whole = 100;
constexpr int Width = 40;
constexpr size_t StageWidth = 11;

std::string Line(std::string stage, int percent) {
  stage.resize(StageWidth, ' ');
  const auto filled = static_cast<size_t>(percent * Width / Whole);
  return stage + "[" + std::string(filled, '#') + std::string(Width - filled, '.') + "] " +
         std::to_string(percent) + "%";
}

}  // namespace

ProgressBar::ProgressBar(bool wanted) : visible(wanted && UserHasTerminal()) {}

ProgressBar::~ProgressBar() { Hide(); }

void ProgressBar::Show(const std::string& stage, int percent) {
  if (visible) {
    ShowText(Line(stage, std::clamp(percent, 0, Whole)));
  }
}

void ProgressBar::ShowText(const std::string& line) {
  if (visible && line != shown) {
    shown = line;
    const std::string text = ClearLine + line;
    TellUser(text.data(), text.size());
  }
}

void ProgressBar::Hide() {
  if (!shown.empty()) {
    shown.clear();
    ClearProgressLine();
  }
}

void ClearProgressLine() {
  if (UserHasTerminal()) {
    TellUser(ClearLine, std::strlen(ClearLine));
  }
}

}  // namespace ScrollingCapture::Program
