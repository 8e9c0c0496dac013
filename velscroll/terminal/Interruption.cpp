#include <atomic>
#include <csignal>

#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

std::atomic<bool> requested{false};
std::atomic<bool> firstFinishes{false};
std::atomic<bool> finishing{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets the flags");

void Request(int signal) {
  if (!firstFinishes) {
    requested = true;
  } else if (finishing.exchange(true) && signal == SIGINT) {
    requested = true;
  }
}

void Listen(int signal) {
  struct sigaction inherited = {};
  sigaction(signal, nullptr, &inherited);
  if (inherited.sa_handler == SIG_IGN) {
    return;
  }
  // Without SA_RESTART, so that a read that waits for a pipe returns.
  struct sigaction action = {};
  action.sa_handler = Request;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

}  // namespace

void ListenForInterruption() {
  Listen(SIGINT);
  Listen(SIGTERM);
  Listen(SIGHUP);
}

void LetFirstSignalFinish() { firstFinishes = true; }

bool FinishRequested() { return finishing; }

bool InterruptionRequested() { return requested; }

void StopIfInterrupted() {
  if (requested) {
    throw Cancelled();
  }
}

}  // namespace ScrollingCapture::Program
