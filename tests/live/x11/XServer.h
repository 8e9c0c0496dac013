#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace ScrollingCapture::Testing {

/// An X server without a screen, for as long as this lives. DISPLAY names it meanwhile.
class XServer {
 public:
  /// @param options after the display's, such as {"-screen", "0", "800x600x24"}
  explicit XServer(const std::vector<std::string>& options);
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;
  ~XServer();

  /// Ends the server at once, without a farewell.
  void Kill();

  /// Lets DISPLAY name another one of its screens.
  void UseScreen(int number) const;

 private:
  void End(int signal);

  std::string display;
  pid_t process = -1;
};

}  // namespace ScrollingCapture::Testing
