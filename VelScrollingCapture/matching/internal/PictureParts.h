#pragma once

#include <vector>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// A place in one of the parts of a picture.
struct PartPlace {
  int part;
  cv::Point place;
};

/// Parts of a picture, each with coordinates of its own, that may turn out to be one (a
/// disjoint-set forest whose edges carry offsets).
class PictureParts {
 public:
  /// Begins a new part.
  int Add();

  /// Whether there are parts that have not turned out to be one.
  bool AreSeveral() const;

  /// The same place in the part that now stands for it.
  PartPlace Resolve(const PartPlace& place) const;

  /// Makes two parts one, of which both places are the same place. Of two parts the older one
  /// stands for both.
  void Join(const PartPlace& one, const PartPlace& other);

 private:
  struct Parent {
    int part;
    cv::Point offset;  ///< adds to a place to give the parent's
  };
  std::vector<Parent> parents;
};

}  // namespace ScrollingCapture
