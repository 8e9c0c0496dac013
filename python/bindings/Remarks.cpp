#include <python/bindings/Remarks.h>

#include <VelScrollingCapture/core/Messages.h>

namespace ScrollingCapture::Python {
namespace {

/// Of the Remarks that lives on this thread, if any.
thread_local std::vector<std::string>* current = nullptr;

}  // namespace

void TakeMessages() {
  SetMessageHandler([](MessageKind /*kind*/, const std::string& text) {
    if (current != nullptr) {
      current->push_back(text);
    }
  });
}

Remarks::Remarks() { current = &lines; }

Remarks::~Remarks() { current = nullptr; }

}  // namespace ScrollingCapture::Python
