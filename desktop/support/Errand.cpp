#include <exception>

#include <desktop/support/Errand.h>
#include <desktop/support/Explanation.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Desktop {

Errand::Errand(QObject* parent) : QObject(parent) {
  qRegisterMetaType<Deed>("Deed");
  connect(
      this, &Errand::posted, this, [](const Deed& deed) { deed(); }, Qt::QueuedConnection);
}

Errand::~Errand() {
  stop();
  if (thread.joinable()) {
    thread.join();
  }
}

void Errand::start(const std::function<void()>& work) {
  isAskedToStop = false;
  busy = true;
  try {
    thread = std::thread([this, work] { run(work); });
  } catch (const std::exception&) {
    const QString line = Explain(std::current_exception());
    post([this, line] { finish(End::Failed, line); });
  }
}

void Errand::requireGoingOn() const {
  if (!goesOn()) {
    throw Program::Cancelled();
  }
}

/// An exception on its way out of the thread would end the process.
void Errand::run(const std::function<void()>& work) {
  End end = End::Done;
  QString line;
  try {
    work();
  } catch (const Program::Cancelled&) {
    end = End::Stopped;
  } catch (...) {
    end = End::Failed;
    line = Explain(std::current_exception());
  }
  post([this, end, line] { finish(end, line); });
}

void Errand::finish(End end, const QString& line) {
  if (thread.joinable()) {
    thread.join();
  }
  busy = false;
  switch (end) {
    case End::Done:
      emit done();
      break;
    case End::Stopped:
      emit stopped();
      break;
    case End::Failed:
      emit failed(line);
      break;
  }
}

}  // namespace ScrollingCapture::Desktop
