#pragma once

#include <stdexcept>

namespace ScrollingCapture {

/// \file
/// What a mosaic refuses is told apart from what a provider or a listener may throw.

/// A capture has no pixels, pixels of a type that no mosaic takes, or is unlike the first one.
class UnusableCapture : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// An int cannot hold the rows or columns of the picture, or a place in it.
class PictureTooLarge : public std::length_error {
 public:
  using std::length_error::length_error;
};

}  // namespace ScrollingCapture
