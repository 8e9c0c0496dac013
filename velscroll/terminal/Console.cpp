#include <iostream>

#include <velscroll/terminal/Console.h>

namespace ScrollingCapture::Program {

Console::Console(Loudness loudness, bool usesStandardOutput)
    : loudness(loudness),
      usesStandardOutput(usesStandardOutput),
      progress(loudness == Loudness::All) {}

void Console::ShowProgress(const std::string& stage, int percent) { progress.Show(stage, percent); }

void Console::Warn(const std::string& warning) {
  if (loudness != Loudness::Nothing) {
    progress.Hide();
    std::cerr << "velscroll: warning: " << warning << "\n" << std::flush;
  }
}

void Console::Summarize(const std::string& summary) {
  if (loudness == Loudness::All) {
    progress.Hide();
    (usesStandardOutput ? std::cout : std::cerr) << summary << "\n";
  }
}

}  // namespace ScrollingCapture::Program
