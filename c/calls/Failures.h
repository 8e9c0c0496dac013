#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include <VelScrollingCapture/c/results.h>

namespace ScrollingCapture::C {

/// Ends a call with a result other than VEL_OK.
class CallFailure : public std::runtime_error {
 public:
  CallFailure(vel_result result, const std::string& line)
      : std::runtime_error(line), result(result) {}

  vel_result Result() const { return result; }

 private:
  vel_result result;
};

/// An argument cannot be used.
class InvalidArgument : public CallFailure {
 public:
  explicit InvalidArgument(const std::string& line) : CallFailure(VEL_INVALID_ARGUMENT, line) {}
};

/// What the exception that is being handled means to the caller. Allocates nothing.
/// @param text receives what there is to say, cut off between characters of UTF-8 where there is no
///             room; may be null
/// @param size the bytes that there is room for
vel_result ExplainException(char* text, std::size_t size) noexcept;

/// Copies a message, cut off where there is no room.
/// @param text may be null
void CopyMessage(const char* message, char* text, std::size_t size) noexcept;

/// Throws InvalidArgument unless there is something behind a pointer.
/// @param name what the argument is called
template <typename Pointer>
Pointer Required(Pointer pointer, const char* name) {
  if (pointer == nullptr) {
    throw InvalidArgument(std::string(name) + " is NULL");
  }
  return pointer;
}

/// Throws InvalidArgument unless a number is in a range.
/// @param name what the field or argument is called
template <typename Number>
Number InRange(Number number, Number least, Number most, const char* name) {
  if (number < least || number > most) {
    throw InvalidArgument(std::string(name) + " is " + std::to_string(number) + ", but must be " +
                          std::to_string(least) + " to " + std::to_string(most));
  }
  return number;
}

/// The element of a list that an argument counts to. Throws InvalidArgument when there is none.
template <typename List>
auto& ElementOf(List& list, std::size_t index, const char* name) {
  if (index >= list.size()) {
    throw InvalidArgument(std::string(name) + " is " + std::to_string(index) + ", but there are " +
                          std::to_string(list.size()));
  }
  return list[index];
}

}  // namespace ScrollingCapture::C
