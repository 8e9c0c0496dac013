#include <algorithm>
#include <cstddef>

#include <VelScrollingCapture/matching/internal/PictureParts.h>

namespace ScrollingCapture {

int PictureParts::Add() {
  const int part = static_cast<int>(parents.size());
  parents.push_back({part, {}});
  return part;
}

bool PictureParts::AreSeveral() const {
  int roots = 0;
  for (std::size_t part = 0; part < parents.size(); ++part) {
    roots += static_cast<int>(parents[part].part == static_cast<int>(part));
  }
  return roots > 1;
}

PartPlace PictureParts::Resolve(const PartPlace& place) const {
  PartPlace resolved = place;
  for (Parent parent = parents[static_cast<std::size_t>(resolved.part)];
       parent.part != resolved.part; parent = parents[static_cast<std::size_t>(resolved.part)]) {
    resolved = {parent.part, resolved.place + parent.offset};
  }
  return resolved;
}

void PictureParts::Join(const PartPlace& one, const PartPlace& other) {
  PartPlace older = Resolve(one);
  PartPlace younger = Resolve(other);
  if (older.part == younger.part) {
    return;
  }
  if (older.part > younger.part) {
    std::swap(older, younger);
  }
  parents[static_cast<std::size_t>(younger.part)] = {older.part, older.place - younger.place};
}

}  // namespace ScrollingCapture
