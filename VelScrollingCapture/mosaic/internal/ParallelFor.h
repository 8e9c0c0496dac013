#pragma once

#include <cstddef>
#include <functional>

namespace ScrollingCapture {

/// Calls `work(0)` to `work(count - 1)`, each once, on up to `threadCount` threads, the calling one
/// among them.
///
/// When a call throws, no further one is started, and the first exception passes to the caller once
/// all threads have ended. Where a thread cannot be started, those that there are do the work.
void ParallelFor(size_t count, unsigned threadCount, const std::function<void(size_t)>& work);

}  // namespace ScrollingCapture
