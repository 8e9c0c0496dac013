#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

#include <VelScrollingCapture/mosaic/internal/OwnParts.h>

namespace ScrollingCapture {
namespace {

/// Cells that are this far apart belong together.
constexpr int Closeness = 2;

/// A part is an own one when captures have no majority at one in so many of its open pixels.
constexpr long ContestedShare = 4;

/// Suspicions are told apart in so many steps.
constexpr float SuspicionSteps = 5;

/// What a capture has to say about a part.
struct PartTestimony {
  long shown = 0;
  double support = 0;
  double suspicion = 0;
};

using PartTestimonies = std::map<std::uint32_t, PartTestimony>;

/// The captures, the best ones for a part first.
std::vector<std::uint32_t> Ranked(const PartTestimonies& testimonies) {
  std::vector<std::uint32_t> captures;
  for (const auto& testimony : testimonies) {
    captures.push_back(testimony.first);
  }
  const auto rank = [&](std::uint32_t capture) {
    const PartTestimony& testimony = testimonies.at(capture);
    const double mean = testimony.suspicion / static_cast<double>(std::max(1L, testimony.shown));
    return std::make_tuple(-testimony.shown, std::lround(-testimony.support),
                           std::lround(mean * SuspicionSteps), -std::int64_t{capture});
  };
  std::sort(captures.begin(), captures.end(),
            [&](std::uint32_t left, std::uint32_t right) { return rank(left) < rank(right); });
  return captures;
}

}  // namespace

void OwnParts::Add(CellDecision decision) {
  const Position position(decision.owners.cell.y, decision.owners.cell.x);
  open.emplace(position, std::move(decision));
}

std::vector<CellOwners> OwnParts::TakeDoneAbove(int cellRow) {
  const int highest = layout.CaptureSize().height / CellSize;
  std::vector<CellOwners> taken;
  std::set<Position> waiting;
  for (auto cell = open.begin(); cell != open.end();) {
    if (waiting.count(cell->first) != 0) {
      ++cell;
      continue;
    }
    const std::vector<Position> part = PartAt(cell->first);
    const int last = std::max_element(part.begin(), part.end())->first;
    if (last + Closeness >= cellRow && last - cell->first.first < highest) {
      waiting.insert(part.begin(), part.end());
      ++cell;
      continue;
    }
    Decide(part);
    for (const Position& position : part) {
      taken.push_back(open.at(position).owners);
      if (position != cell->first) {
        open.erase(position);
      }
    }
    cell = open.erase(cell);
  }
  return taken;
}

std::vector<CellOwners> OwnParts::TakeAll() {
  return open.empty() ? std::vector<CellOwners>()
                      : TakeDoneAbove(open.rbegin()->first.first + Closeness + 1);
}

std::vector<OwnParts::Position> OwnParts::PartAt(const Position& start) const {
  std::vector<Position> part = {start};
  std::set<Position> seen = {start};
  for (size_t i = 0; i < part.size(); ++i) {
    const Position position = part[i];
    for (int row = position.first - Closeness; row <= position.first + Closeness; ++row) {
      const auto last = open.upper_bound({row, position.second + Closeness});
      for (auto cell = open.lower_bound({row, position.second - Closeness}); cell != last; ++cell) {
        if (seen.insert(cell->first).second) {
          part.push_back(cell->first);
        }
      }
    }
  }
  return part;
}

void OwnParts::Decide(const std::vector<Position>& part) {
  long openPixels = 0;
  long contested = 0;
  PartTestimonies testimonies;
  for (const Position& position : part) {
    const CellDecision& decision = open.at(position);
    openPixels += decision.open;
    contested += decision.contested;
    for (const Testimony& testimony : decision.testimonies) {
      PartTestimony& sum = testimonies[testimony.capture];
      sum.shown += testimony.shown;
      sum.support += testimony.support;
      sum.suspicion += testimony.suspicion;
    }
  }
  if (contested * ContestedShare < openPixels) {
    return;
  }
  const std::vector<std::uint32_t> captures = Ranked(testimonies);
  for (const Position& position : part) {
    CellOwners& owners = open.at(position).owners;
    for (int row = 0; row < CellSize; ++row) {
      for (int column = 0; column < CellSize; ++column) {
        const cv::Point pixel = owners.cell * CellSize + cv::Point(column, row);
        const auto best =
            std::find_if(captures.begin(), captures.end(), [&](std::uint32_t capture) {
              return layout.RectOf(capture).contains(pixel) &&
                     suspicion.Of(capture, pixel - layout.CornerOf(capture)) < SurelyCovered;
            });
        if (best != captures.end()) {
          owners.At(row, column) = *best;
        }
      }
    }
  }
}

}  // namespace ScrollingCapture
