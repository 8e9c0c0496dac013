#include <csignal>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>
#include <velscroll/arguments/Arguments.h>
#include <velscroll/arguments/RecordArguments.h>
#include <velscroll/record/RecordCommand.h>
#include <velscroll/stitch/SpillFolder.h>
#include <velscroll/stitch/StitchCommand.h>
#include <velscroll/terminal/Explanation.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>
#include <velscroll/terminal/ProgressBar.h>
#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Program {
namespace {

int Complain(const Failure& failure) {
  const std::string line = std::string("velscroll: ") + failure.what() + "\n";
  TellUser(line.data(), line.size());
  return failure.Status();
}

/// Lets the memory of captures go back to the system as soon as they are released. Otherwise the C
/// library comes to keep it, in pieces, and --memory-limit says little about the process.
void ReleaseLargeBlocksAtOnce() {
#ifdef __GLIBC__
  constexpr int LargeBlock = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, LargeBlock);
#endif
}

/// In words for whoever has typed a command line.
std::string WithAdvice(const Explanation& explanation) {
  switch (explanation.kind) {
    case Explanation::Kind::SpillFileLost:
      return explanation.words +
             "; leave the spill folder alone, or choose another with --spill-folder";
    case Explanation::Kind::NoMemory:
      return explanation.words + "; use fewer --threads or stitch fewer captures at a time";
    case Explanation::Kind::NoThread:
      return explanation.words + "; stitch fewer captures at a time";
    case Explanation::Kind::Unexpected:
      return explanation.words;
    default:
      return "unexpected failure: " + explanation.words;
  }
}

/// What an exception means to the user.
Failure Explain(const std::exception_ptr& exception) {
  try {
    std::rethrow_exception(exception);
  } catch (const Failure& failure) {
    return failure;
  } catch (...) {
    return Failed(WithAdvice(ExplanationOf(exception)));
  }
}

/// An exception that leaves one of the library's worker threads ends the process; captures are
/// checked before, so that it can hardly be anything but a lack of memory. Nothing has been written
/// by then.
[[noreturn]] void EndAfterWorkerFailure() {
  ClearProgressLine();
  SpillFolder::RemoveCurrent();
  const std::exception_ptr exception = std::current_exception();
  if (exception != nullptr) {
    std::_Exit(Complain(Explain(exception)));
  }
  std::abort();
}

template <typename Asked>
int RunCommand(const std::optional<Asked>& arguments, ExitStatus (*command)(const Asked&)) {
  if (!arguments) {
    return Done;
  }
  cv::setNumThreads(static_cast<int>(arguments->session.threadCount));
  return command(*arguments);
}

int Run(int argc, char** argv) {
  try {
    constexpr std::string_view Record = "record";
    return argc > 1 && argv[1] == Record
               ? RunCommand(ParseRecordArguments(argc - 1, argv + 1), RunRecordCommand)
               : RunCommand(ParseArguments(argc, argv), RunStitchCommand);
  } catch (...) {
    return Complain(Explain(std::current_exception()));
  }
}

}  // namespace
}  // namespace ScrollingCapture::Program

int main(int argc, char** argv) {
  using namespace ScrollingCapture::Program;
  std::set_terminate(EndAfterWorkerFailure);
  std::signal(SIGXFSZ, SIG_IGN);  // writing then fails like on a full disk
  std::signal(SIGPIPE, SIG_IGN);  // writing then fails, and what was staged is removed
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  OwnStandardError();
  ReleaseLargeBlocksAtOnce();
  ListenForInterruption();
  return Run(argc, argv);
}
