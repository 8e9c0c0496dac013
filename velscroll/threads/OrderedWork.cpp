#include <algorithm>
#include <utility>

#include <velscroll/threads/OrderedWork.h>

namespace ScrollingCapture::Program {
namespace {

constexpr size_t MostThreads = 16;

}  // namespace

OrderedWork::OrderedWork(unsigned int threads)
    : mostItems(threads > 1 ? 2 * std::min(size_t{threads}, MostThreads) : 1) {
  try {
    while (helpers.size() + 1 < std::min(size_t{threads}, MostThreads)) {
      helpers.emplace_back([this] { Help(); });
    }
  } catch (...) {
    Stop();
    throw;
  }
}

OrderedWork::~OrderedWork() { Stop(); }

void OrderedWork::Stop() {
  {
    const Lock lock(mutex);
    stopped = true;
  }
  changed.notify_all();
  for (std::thread& helper : helpers) {
    helper.join();
  }
}

void OrderedWork::Add(std::function<void()> first, std::function<void()> second) {
  Lock lock(mutex);
  WorkUntilFewerThan(lock, mostItems);
  items.push_back({std::move(first), std::move(second)});
  changed.notify_one();
}

void OrderedWork::Finish() {
  Lock lock(mutex);
  WorkUntilFewerThan(lock, 1);
}

void OrderedWork::WorkUntilFewerThan(Lock& lock, size_t count) {
  while (items.size() >= count && !stopped) {
    if (!RunOneStep(lock)) {
      changed.wait(lock);
    }
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
}

void OrderedWork::Help() {
  Lock lock(mutex);
  while (!stopped) {
    if (!RunOneStep(lock)) {
      changed.wait(lock);
    }
  }
}

bool OrderedWork::RunOneStep(Lock& lock) {
  if (!inSecond && !items.empty() && items.front().state == State::Ready) {
    RunSecond(lock);
    return true;
  }
  const auto waiting = std::find_if(items.begin(), items.end(),
                                    [](const Item& item) { return item.state == State::Waiting; });
  if (waiting == items.end()) {
    return false;
  }
  RunFirst(lock, *waiting);
  return true;
}

void OrderedWork::RunFirst(Lock& lock, Item& item) {
  item.state = State::Running;
  Run(lock, item.first);
  item.state = State::Ready;
  changed.notify_all();
}

void OrderedWork::RunSecond(Lock& lock) {
  inSecond = true;
  Run(lock, items.front().second);
  items.pop_front();
  inSecond = false;
  changed.notify_all();
}

void OrderedWork::Run(Lock& lock, const std::function<void()>& step) {
  lock.unlock();
  std::exception_ptr thrown;
  try {
    step();
  } catch (...) {
    thrown = std::current_exception();
  }
  lock.lock();
  if (thrown && !failure) {
    failure = thrown;
    stopped = true;
  }
}

}  // namespace ScrollingCapture::Program
