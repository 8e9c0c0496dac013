#pragma once

#include <memory>
#include <utility>

#include <c/calls/Failures.h>
#include <c/calls/Handle.h>

/// \file
/// What every function of the interface does around its own work.

namespace ScrollingCapture::C {

/// Does the work of a call with a handle, when it is its turn. What the work throws becomes a
/// result and the handle's message.
template <typename AnyHandle, typename Work>
vel_result Call(AnyHandle* handle, const Work& work) noexcept {
  if (handle == nullptr) {
    return VEL_INVALID_ARGUMENT;
  }
  const HandleUse use(*handle);
  if (!use.HasEntered()) {
    return VEL_BUSY;
  }
  try {
    work(*handle);
    return VEL_OK;
  } catch (...) {
    return ExplainException(handle->LastMessage().data(), handle->LastMessage().size());
  }
}

/// Does the work of a call that makes a handle, and returns it.
template <typename AnyHandle, typename Work>
vel_result Create(AnyHandle** created, char* text, std::size_t size, const Work& work) noexcept {
  try {
    *Required(created, "where the handle goes") = nullptr;
    *created = work();
    return VEL_OK;
  } catch (...) {
    return ExplainException(text, size);
  }
}

/// Copies the message of a handle.
template <typename AnyHandle>
vel_result GiveMessage(AnyHandle* handle, char* text, std::size_t size) noexcept {
  if (text == nullptr || size == 0) {
    return VEL_INVALID_ARGUMENT;
  }
  return Call(handle, [=](const AnyHandle& called) {
    CopyMessage(called.LastMessage().data(), text, size);
  });
}

template <typename AnyHandle>
void Free(AnyHandle* handle) noexcept {
  if (handle != nullptr) {
    handle->Release();
  }
}

}  // namespace ScrollingCapture::C
