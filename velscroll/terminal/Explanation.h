#pragma once

#include <exception>
#include <string>

namespace ScrollingCapture::Program {

/// What an exception means to the user.
struct Explanation {
  enum class Kind {
    SpillFileLost,
    NoMemory,
    NoThread,    ///< the system allows no further one
    Unexpected,  ///< of a kind that says nothing to users, as the words tell
    Told         ///< the words are the exception's own
  };

  Kind kind = Kind::Told;
  std::string words;  ///< without advice, which depends on what the user can do
};

/// Explains an exception of any kind.
/// @param exception not null
Explanation ExplanationOf(const std::exception_ptr& exception);

}  // namespace ScrollingCapture::Program
