#pragma once

#include <functional>
#include <string>
#include <vector>

#include <velscroll/input/ImageFile.h>

namespace ScrollingCapture::Program {

/// What is done with a capture once all those before it have been taken, on one thread at a time.
using TakeCapture = std::function<void()>;

/// What is done with a capture beforehand, on any thread.
/// @param index of its file, from 0
using PrepareCapture = std::function<TakeCapture(size_t index, CaptureImage image)>;

/// Reads capture files, as ReadCapture does, on some threads, and hands them over in their order.
/// At most twice as many captures as threads are in memory at once.
///
/// Throws what reading, preparing and taking throw, the first one in the order of the files.
/// @param threads at least 1
void ReadCaptures(const std::vector<std::string>& files, unsigned int threads,
                  const PrepareCapture& prepare);

}  // namespace ScrollingCapture::Program
