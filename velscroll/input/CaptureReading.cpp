#include <exception>
#include <memory>

#include <velscroll/input/CaptureReading.h>
#include <velscroll/terminal/Interruption.h>
#include <velscroll/threads/OrderedWork.h>

namespace ScrollingCapture::Program {
namespace {

/// A failure waits for its turn, so that it is always the first file's that is told.
TakeCapture ReadAndPrepare(const std::string& file, size_t index, const PrepareCapture& prepare) {
  try {
    StopIfInterrupted();
    return prepare(index, ReadCapture(file));
  } catch (...) {
    return [failure = std::current_exception()] { std::rethrow_exception(failure); };
  }
}

}  // namespace

void ReadCaptures(const std::vector<std::string>& files, unsigned int threads,
                  const PrepareCapture& prepare) {
  OrderedWork work(threads);
  for (size_t i = 0; i < files.size(); ++i) {
    const auto take = std::make_shared<TakeCapture>();
    work.Add([&files, &prepare, i, take] { *take = ReadAndPrepare(files[i], i, prepare); },
             [take] { (*take)(); });
  }
  work.Finish();
}

}  // namespace ScrollingCapture::Program
