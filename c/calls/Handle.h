#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <utility>

#include <VelScrollingCapture/c/results.h>

namespace ScrollingCapture::C {

/// Room for a message of any handle, always with a zero at its end.
using MessageText = std::array<char, VEL_MESSAGE_SIZE>;

/// What handles that share captures have in common: one call at a time gets through.
class Gate {
 public:
  bool TryEnter() { return !occupied.test_and_set(std::memory_order_acquire); }
  void Leave() { occupied.clear(std::memory_order_release); }

 private:
  std::atomic_flag occupied = ATOMIC_FLAG_INIT;
};

/// What a caller holds a pointer to. It counts its users, of whom the caller is the first, and the
/// last one frees it: a caller may let go of it while a call is at work with it.
class Handle {
 public:
  explicit Handle(std::shared_ptr<Gate> gate) : gate(std::move(gate)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  /// Counts its owner out.
  void Release() {
    if (users.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      delete this;
    }
  }

  /// Why the last call that failed did.
  const MessageText& LastMessage() const { return message; }
  MessageText& LastMessage() { return message; }

  const std::shared_ptr<Gate>& SharedGate() const { return gate; }

 protected:
  virtual ~Handle() = default;

 private:
  friend class HandleUse;

  std::atomic<std::size_t> users = 1;
  const std::shared_ptr<Gate> gate;
  MessageText message = {};
};

/// A call's turn with a handle, if it got one.
class HandleUse {
 public:
  explicit HandleUse(Handle& handle) : handle(handle) {
    handle.users.fetch_add(1, std::memory_order_relaxed);
    entered = handle.gate->TryEnter();
  }
  HandleUse(const HandleUse&) = delete;
  HandleUse& operator=(const HandleUse&) = delete;
  ~HandleUse() {
    if (entered) {
      handle.gate->Leave();
    }
    handle.Release();
  }

  /// Whether no other call is at work.
  bool HasEntered() const { return entered; }

 private:
  Handle& handle;
  bool entered;
};

}  // namespace ScrollingCapture::C
