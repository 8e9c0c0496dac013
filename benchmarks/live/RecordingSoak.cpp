// Records a window of 1920 x 1080 pixels that shows something else 60 times a second, on one core,
// and tells each second how many frames were taken, how many captures wait to be joined, how much
// of the core that took, and how much memory.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sched.h>
#include <thread>
#include <unistd.h>

#include <live/Recorder.h>
#include <sys/resource.h>
#include <testkit/pages/Scenes.h>

namespace ScrollingCapture::Live {
namespace {

using Clock = std::chrono::steady_clock;

const cv::Size Window(1920, 1080);
constexpr int RowsOfPage = 12000;
constexpr int RowsOfStep = 40;  // 2400 rows a second
constexpr std::chrono::microseconds OfFrame(16667);

/// A window that scrolls down a page and up again, for good.
class ScrollingWindow : public ICaptureSource {
 public:
  cv::Rect Region() const override { return {{}, Window}; }

  bool WaitForChange(std::chrono::milliseconds timeout) override {
    std::this_thread::sleep_until(std::min(nextFrame, Clock::now() + timeout));
    return Clock::now() >= nextFrame;
  }

  Frame Grab() override {
    const Clock::time_point now = Clock::now();
    nextFrame += (std::max(Clock::duration(), now - nextFrame) / OfFrame + 1) * OfFrame;
    constexpr int LastRow = RowsOfPage - 1080;
    const int way = frames++ * RowsOfStep % (2 * LastRow);
    const int row = way < LastRow ? way : 2 * LastRow - way;
    return {page({{0, row}, Window}).clone(), {}};
  }

  std::string Scroll(ScrollDirection /*direction*/, int /*steps*/) override { return {}; }

  int frames = 0;

 private:
  const cv::Mat page = Testing::DrawArticle({Window.width, RowsOfPage}, 1);
  Clock::time_point nextFrame = Clock::now();
};

double ProcessorSeconds() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double MebibytesInUse() {
  std::ifstream file("/proc/self/statm");
  double pages = 0;
  file >> pages >> pages;
  return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

class SecondBySecond : public IRecordingListener {
 public:
  SecondBySecond(const ScrollingWindow& window, int seconds) : window(window), left(seconds) {}

  bool GoOn(const RecordingStatus& status) override {
    if (Clock::now() >= next) {
      Tell(status);
      next += std::chrono::seconds(1);
      --left;
    }
    return left > 0;
  }

  void CaptureKept(const cv::Mat& /*pixels*/) override {}

 private:
  void Tell(const RecordingStatus& status) {
    const double processor = ProcessorSeconds();
    std::cout << window.frames - frames << " frames, " << status.captures << " captures kept, "
              << status.waiting << " wait, " << std::lround(100 * (processor - spent))
              << " % of the core, " << std::lround(MebibytesInUse()) << " MiB"
              << (status.tooFast ? ", lost" : "") << std::endl;
    spent = processor;
    frames = window.frames;
  }

  const ScrollingWindow& window;
  int left;
  int frames = 0;
  double spent = ProcessorSeconds();
  Clock::time_point next = Clock::now() + std::chrono::seconds(1);
};

void UseOneCore() {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  CPU_SET(0, &cores);
  sched_setaffinity(0, sizeof(cores), &cores);
  cv::setNumThreads(1);
}

int Run(int seconds) {
  UseOneCore();
  ScrollingWindow window;
  CaptureSession session{SessionSettings()};
  SecondBySecond listener(window, seconds);
  Recorder recorder(window, session, listener, {});
  const RecordingEnd end = recorder.Run();
  std::cout << end.status.seen.height << " rows seen" << std::endl;
  return end.status.tooFast ? EXIT_FAILURE : EXIT_SUCCESS;
}

}  // namespace
}  // namespace ScrollingCapture::Live

int main(int argc, char** argv) {
  constexpr int Minute = 60;
  return ScrollingCapture::Live::Run(argc > 1 ? std::max(1, std::atoi(argv[1])) : Minute);
}
