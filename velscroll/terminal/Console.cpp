#include <iostream>

#include <velscroll/terminal/Console.h>
#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Program {

Console::Console(Loudness loudness, bool usesStandardOutput)
    : loudness(loudness),
      usesStandardOutput(usesStandardOutput),
      progress(loudness == Loudness::All) {}

void Console::ShowProgress(const std::string& stage, int percent) { progress.Show(stage, percent); }

void Console::ShowStatus(const std::string& line) { progress.ShowText(line); }

void Console::Warn(const std::string& warning) {
  if (loudness != Loudness::Nothing) {
    progress.Hide();
    const std::string line = "velscroll: warning: " + warning + "\n";
    TellUser(line.data(), line.size());
  }
}

void Console::Summarize(const std::string& summary) {
  if (loudness == Loudness::All) {
    progress.Hide();
    const std::string line = summary + "\n";
    if (usesStandardOutput) {
      std::cout << line;
    } else {
      TellUser(line.data(), line.size());
    }
  }
}

}  // namespace ScrollingCapture::Program
