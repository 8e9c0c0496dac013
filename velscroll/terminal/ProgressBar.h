#pragma once

#include <string>

namespace ScrollingCapture::Program {

/// One line on standard error that shows how far the work has come, and disappears at the end.
/// Shows nothing unless standard error is a terminal. Calls may come from any thread, one at a
/// time.
class ProgressBar {
 public:
  /// @param wanted false to show nothing on a terminal either
  explicit ProgressBar(bool wanted);

  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  ~ProgressBar();

  /// @param stage   what is being done, such as "Reading"
  /// @param percent how much of it is done, from 0 to 100
  void Show(const std::string& stage, int percent);

  /// Shows a line of text in the place of the bar.
  void ShowText(const std::string& line);

  /// Clears the line until the next Show.
  void Hide();

 private:
  bool visible;
  std::string shown;
};

/// Clears what a progress bar has left on the current line when standard error is a terminal. Safe
/// where no memory can be allocated.
void ClearProgressLine();

}  // namespace ScrollingCapture::Program
