#pragma once

#include <string>

#include <velscroll/terminal/ProgressBar.h>

namespace ScrollingCapture::Program {

/// How much the program says besides what ends it.
enum class Loudness {
  All,
  Warnings,  ///< warnings, but neither progress nor a summary
  Nothing,
};

/// What the program says while it works and when it is done. Calls may come from any thread, one at
/// a time.
class Console {
 public:
  /// @param usesStandardOutput false when standard output carries a result: everything then goes to
  ///                           standard error
  Console(Loudness loudness, bool usesStandardOutput);

  /// Shows how far the work has come, see ProgressBar::Show.
  void ShowProgress(const std::string& stage, int percent);

  /// Shows how things stand in one line, see ProgressBar::ShowText.
  void ShowStatus(const std::string& line);

  /// One line on standard error.
  void Warn(const std::string& warning);

  /// One line that says what was done.
  void Summarize(const std::string& summary);

 private:
  Loudness loudness;
  bool usesStandardOutput;
  ProgressBar progress;
};

}  // namespace ScrollingCapture::Program
