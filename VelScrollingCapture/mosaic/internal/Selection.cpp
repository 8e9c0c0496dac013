#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <unordered_map>

#include <VelScrollingCapture/mosaic/internal/Cells.h>
#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>
#include <VelScrollingCapture/mosaic/internal/Selection.h>

namespace ScrollingCapture {
namespace {

constexpr float Covered = 0.5F;
constexpr float Surely = 0.85;
constexpr float Close = 0.05;
constexpr float Clearly = 0.1F;
constexpr std::uint32_t Nobody = std::numeric_limits<std::uint32_t>::max();

struct Candidate {
  std::uint32_t capture;
  std::shared_ptr<const cv::Mat> pixels;
  cv::Point corner;
};

struct CellChoice {
  cv::Point cell;
  std::array<std::uint32_t, CellSize * CellSize> owners;
  std::vector<std::uint32_t> candidates;  ///< that show something of the cell uncovered
  std::vector<int> support;
  std::vector<float> doubt;  ///< suspicion, summed over those pixels
  std::vector<int> shown;    ///< pixels shown uncovered
  int open = 0;              ///< pixels at which uncovered captures disagree
  int contested = 0;         ///< those of them without a majority
  int component = -1;
};

class Selector {
 public:
  Selector(const CaptureSource& source, const CaptureLayout& layout, const DisputedCells& disputed,
           const Suspicion& suspicion)
      : source(source), layout(layout), disputed(disputed), suspicion(suspicion) {
    for (size_t i = 0; i < layout.Count(); ++i) {
      const cv::Point c = layout.CornerOf(i);
      highest.x = std::max(highest.x, c.x);
      highest.y = std::max(highest.y, c.y);
    }
  }

  std::vector<Run> Select() {
    for (const auto& row : disputed) {
      SelectRow(row.first, row.second);
    }
    JoinOwnParts();
    std::vector<Run> runs;
    for (const CellChoice& choice : choices) {
      AddRuns(choice, runs);
    }
    std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) {
      return a.row != b.row ? a.row < b.row : a.column < b.column;
    });
    std::vector<Run> merged;
    for (const Run& run : runs) {
      if (!merged.empty() && merged.back().row == run.row && merged.back().capture == run.capture &&
          merged.back().column + merged.back().length == run.column) {
        merged.back().length += run.length;
      } else {
        merged.push_back(run);
      }
    }
    return merged;
  }

 private:
  void SelectRow(int cellRow, const std::vector<std::uint8_t>& cells) {
    const cv::Rect picture({}, layout.PictureSize());
    const cv::Rect band = cv::Rect(0, cellRow * CellSize, picture.width,
                                   std::min(CellSize, picture.height - cellRow * CellSize));
    std::vector<Candidate> all;
    for (const size_t i : layout.CapturesIn(band)) {
      all.push_back({static_cast<std::uint32_t>(i), source.Get(i), layout.CornerOf(i)});
    }
    for (int x = 0; x < static_cast<int>(cells.size()); ++x) {
      if (cells[x]) {
        SelectCell({x, cellRow}, cv::Rect(x * CellSize, band.y, CellSize, band.height) & picture,
                   all);
      }
    }
  }

  void SelectCell(const cv::Point& cell, const cv::Rect& area, const std::vector<Candidate>& all) {
    std::vector<Candidate> candidates;
    for (const Candidate& c : all) {
      if (!(cv::Rect(c.corner, layout.CaptureSize()) & area).empty()) {
        candidates.push_back(c);
      }
    }
    CellChoice choice;
    choice.cell = cell;
    choice.owners.fill(Nobody);
    for (const Candidate& c : candidates) {
      choice.candidates.push_back(c.capture);
    }
    choice.support.assign(candidates.size(), 0);
    choice.shown.assign(candidates.size(), 0);
    choice.doubt.assign(candidates.size(), 0);
    const size_t bytes = candidates.empty() ? 1 : candidates.front().pixels->elemSize();
    // right[p][k]: candidate k shows what is right at pixel p
    std::vector<std::vector<char>> right(area.area(), std::vector<char>(candidates.size()));
    for (int p = 0; p < area.area(); ++p) {
      const cv::Point x(area.x + p % area.width, area.y + p / area.width);
      SelectPixel(x, candidates, bytes, choice, right[p]);
    }
    // One capture for the whole cell, if one is right everywhere in it; else for as much as
    // possible.
    std::vector<char> open(area.area(), 1);
    for (;;) {
      int best = 0;
      int bestCount = 0;
      for (int k = static_cast<int>(candidates.size()) - 1; k >= 0; --k) {
        int count = 0;
        for (int p = 0; p < area.area(); ++p) {
          count += open[p] && right[p][k];
        }
        if (count > bestCount) {
          bestCount = count;
          best = k;
        }
      }
      if (bestCount == 0) break;
      for (int p = 0; p < area.area(); ++p) {
        if (open[p] && right[p][best]) {
          open[p] = 0;
          choice.owners[(p / area.width) * CellSize + p % area.width] = candidates[best].capture;
        }
      }
    }
    choices.push_back(std::move(choice));
  }

  void SelectPixel(const cv::Point& x, const std::vector<Candidate>& candidates, size_t bytes,
                   CellChoice& choice, std::vector<char>& right) {
    struct Vote {
      int k;
      std::uint32_t value;
      float suspicion;
    };
    std::vector<Vote> votes;
    bool equal = true;
    for (int k = 0; k < static_cast<int>(candidates.size()); ++k) {
      const cv::Point w = x - candidates[k].corner;
      if (!cv::Rect({}, layout.CaptureSize()).contains(w)) continue;
      const std::uint32_t value =
          PixelValue(candidates[k].pixels->ptr(w.y) + static_cast<size_t>(w.x) * bytes, bytes);
      votes.push_back({k, value, suspicion.Of(candidates[k].capture, w)});
      equal = equal && value == votes.front().value;
    }
    std::vector<Vote> uncovered;
    float lowest = 1;
    for (const Vote& v : votes) lowest = std::min(lowest, v.suspicion);
    const float limit = lowest < Covered ? Covered : lowest < Surely ? lowest + Close : 0;
    for (const Vote& v : votes) {
      if (v.suspicion < limit) {
        uncovered.push_back(v);
        choice.shown[v.k]++;
        choice.doubt[v.k] += v.suspicion;
      }
    }
    if (equal) {
      for (const Vote& v : votes) {
        right[v.k] = 1;
      }
      for (const Vote& v : uncovered) choice.support[v.k]++;
      return;
    }
    if (!uncovered.empty()) {
      int best = 0;
      int second = 0;
      float bestSuspicion = 1;
      std::uint32_t value = uncovered.back().value;
      for (int i = static_cast<int>(uncovered.size()) - 1; i >= 0; --i) {
        int count = 0;
        bool counted = false;
        float least = 1;
        for (size_t j = 0; j < uncovered.size(); ++j) {
          if (uncovered[j].value == uncovered[i].value) {
            ++count;
            least = std::min(least, uncovered[j].suspicion);
            counted = counted || j > static_cast<size_t>(i);
          }
        }
        choice.support[uncovered[i].k] += count;
        if (counted) continue;
        if (count > best || (count == best && least < bestSuspicion - Clearly)) {
          second = best;
          best = count;
          bestSuspicion = least;
          value = uncovered[i].value;
        } else {
          second = std::max(second, count);
        }
      }
      if (second > 0) {
        ++choice.open;
        if (second == best) ++choice.contested;
      }
      for (const Vote& v : uncovered) {
        right[v.k] = v.value == value;
      }
      return;
    }
    // Only covered: what stands in the upper half where the first capture has it, and so on.
    int bestScore = -1;
    int bestK = 0;
    for (const Vote& v : votes) {
      const cv::Point w = x - candidates[v.k].corner;
      const int score = Legitimacy(candidates[v.k].corner, w) * 4 + IsPlain(candidates[v.k], w) * 5;
      if (score > bestScore ||
          (score == bestScore && Nearer(candidates[v.k], candidates[bestK], w))) {
        bestScore = score;
        bestK = v.k;
      }
    }
    right[bestK] = 1;
  }

  bool Nearer(const Candidate& a, const Candidate& b, const cv::Point& w) const {
    const bool upper = w.y < layout.CaptureSize().height / 2;
    return upper ? a.corner.y < b.corner.y : a.corner.y > b.corner.y;
  }

  int Legitimacy(const cv::Point& corner, const cv::Point& w) const {
    const bool upper = w.y < layout.CaptureSize().height / 2;
    const bool left = w.x < layout.CaptureSize().width / 2;
    const bool rows = highest.y == 0 || (upper ? corner.y == 0 : corner.y == highest.y);
    const bool columns = highest.x == 0 || (left ? corner.x == 0 : corner.x == highest.x);
    return rows + columns == 2 ? 2 : 0;
  }

  bool IsPlain(const Candidate& c, const cv::Point& w) const {
    const cv::Mat& m = *c.pixels;
    const size_t e = m.elemSize();
    const int reach = 12;
    if (highest.y > 0) {
      for (int x = std::max(0, w.x - reach); x < std::min(m.cols, w.x + reach + 1); ++x) {
        const uchar* row = m.ptr(w.y, x);
        for (int y = std::max(0, w.y - reach); y < std::min(m.rows, w.y + reach + 1); ++y) {
          if (memcmp(row, m.ptr(y, x), e) != 0) return false;
        }
      }
    }
    if (highest.x > 0) {
      for (int y = std::max(0, w.y - reach); y < std::min(m.rows, w.y + reach + 1); ++y) {
        for (int x = std::max(0, w.x - reach); x < std::min(m.cols, w.x + reach + 1); ++x) {
          if (memcmp(m.ptr(y, w.x), m.ptr(y, x), e) != 0) return false;
        }
      }
    }
    return true;
  }

  static std::int64_t Key(int x, int y) { return (std::int64_t{y} << 32) + x; }

  void JoinOwnParts() {
    std::unordered_map<std::int64_t, size_t> at;
    for (size_t i = 0; i < choices.size(); ++i) {
      if (choices[i].open > 0) at[Key(choices[i].cell.x, choices[i].cell.y)] = i;
    }
    for (size_t i = 0; i < choices.size(); ++i) {
      if (choices[i].open == 0 || choices[i].component >= 0) continue;
      std::vector<size_t> members = {i};
      choices[i].component = static_cast<int>(i);
      for (size_t k = 0; k < members.size(); ++k) {
        for (int dy = -2; dy <= 2; ++dy)
          for (int dx = -2; dx <= 2; ++dx) {
            const auto f =
                at.find(Key(choices[members[k]].cell.x + dx, choices[members[k]].cell.y + dy));
            if (f != at.end() && choices[f->second].component < 0) {
              choices[f->second].component = static_cast<int>(i);
              members.push_back(f->second);
            }
          }
      }
      DecideComponent(members);
    }
  }

  void DecideComponent(const std::vector<size_t>& members) {
    long open = 0;
    long contested = 0;
    std::map<std::uint32_t, std::pair<long, long>> captures;  // shown, support
    std::map<std::uint32_t, double> doubts;
    for (const size_t m : members) {
      open += choices[m].open;
      contested += choices[m].contested;
      for (size_t k = 0; k < choices[m].candidates.size(); ++k) {
        captures[choices[m].candidates[k]].first += choices[m].shown[k];
        captures[choices[m].candidates[k]].second += choices[m].support[k];
        doubts[choices[m].candidates[k]] += choices[m].doubt[k];
      }
    }
    if (contested * 4 < open) return;
    std::vector<std::uint32_t> order;
    for (const auto& c : captures) order.push_back(c.first);
    for (auto& d : doubts)
      d.second = std::floor(
          d.second / static_cast<double>(std::max(1L, captures[d.first].first)) * 5 + 0.5);
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
      if (captures[a].first != captures[b].first) return captures[a].first > captures[b].first;
      if (captures[a].second != captures[b].second) return captures[a].second > captures[b].second;
      if (doubts[a] != doubts[b]) return doubts[a] < doubts[b];
      return a > b;
    });
    for (const size_t m : members) {
      CellChoice& choice = choices[m];
      for (int p = 0; p < CellSize * CellSize; ++p) {
        const cv::Point x(choice.cell.x * CellSize + p % CellSize,
                          choice.cell.y * CellSize + p / CellSize);
        for (const std::uint32_t c : order) {
          const cv::Point w = x - layout.CornerOf(c);
          if (cv::Rect({}, layout.CaptureSize()).contains(w) && suspicion.Of(c, w) < Covered) {
            choice.owners[p] = c;
            break;
          }
        }
      }
    }
  }

  void AddRuns(const CellChoice& choice, std::vector<Run>& runs) const {
    for (int y = 0; y < CellSize; ++y) {
      for (int x = 0; x < CellSize; ++x) {
        const std::uint32_t owner = choice.owners[y * CellSize + x];
        if (owner == Nobody) continue;
        const int row = choice.cell.y * CellSize + y;
        const int column = choice.cell.x * CellSize + x;
        runs.push_back({row, column, 1, owner});
      }
    }
  }

  const CaptureSource& source;
  const CaptureLayout& layout;
  const DisputedCells& disputed;
  const Suspicion& suspicion;
  cv::Point highest;
  std::vector<CellChoice> choices;
};

}  // namespace

std::vector<Run> SelectCaptures(const CaptureSource& source, const CaptureLayout& layout,
                                const DisputedCells& disputed, const Suspicion& suspicion) {
  return Selector(source, layout, disputed, suspicion).Select();
}

}  // namespace ScrollingCapture
