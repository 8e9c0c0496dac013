#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/internal/PixelComparison.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>

namespace ScrollingCapture {
namespace {

constexpr int Rounds = 10;
constexpr float Plain = 0.25F;
constexpr float Floor = 0.1F;
constexpr float Power = 2;
constexpr float Near = 0.49F;
constexpr float Far = 0.4F;
constexpr float Strength = 64;
constexpr float Moving = 0.6;
constexpr float Neutral = 0.85;
const float Weights[3] = {Moving, Neutral, 1};
constexpr float Rho = 0.1;
constexpr int RhoRounds = 8;
constexpr float Strength2 = 64;
constexpr float Location = 0.3;

struct Pair {
  size_t first;
  size_t second;
};

/// Evidence of one capture, a cell each.
struct Evidence {
  cv::Mat blame;     // float
  cv::Mat innocent;  // float
};

class SuspicionSearch {
 public:
  SuspicionSearch(const CaptureSource& source, const CaptureLayout& layout)
      : source(source), layout(layout), cells(CellsOver(layout.CaptureSize())) {}

  std::vector<cv::Mat> Find() {
    const size_t n = layout.Count();
    ChoosePairs();
    ChooseTimeNeighbours();
    FindStanding();
    for (size_t i = 0; i < n; ++i) MarkPlain(i);
    maps.assign(n, cv::Mat());
    for (auto& map : maps) {
      map = cv::Mat(cells, CV_32F, cv::Scalar(0.5));
    }
    base.assign(n, cv::Mat());
    for (auto& m : base) m = cv::Mat::zeros(cells, CV_32F);
    for (const Pair& pair : pairs) {
      Gather(pair);
    }
    for (int round = 0; round < Rounds; ++round) {
      currentRound = round;
      evidence.assign(n, {});
      for (size_t i = 0; i < n; ++i) {
        evidence[i].blame = cv::Mat::zeros(cells, CV_32F);
        evidence[i].innocent = base[i].clone();
      }
      for (const Block& block : blocks) Weigh(block);
      ConcludeLocation();
      AddUpRuns();
      for (size_t i = 0; i < n; ++i) {
        Conclude(i);
      }
    }
    for (auto& map : maps) {
      cv::Mat near, far;
      cv::dilate(map, near, cv::Mat::ones(3, 3, CV_8U));
      cv::dilate(map, far, cv::Mat::ones(5, 5, CV_8U));
      near *= Near;
      far *= Far;
      cv::max(map, near, map);
      cv::max(map, far, map);
    }
    return maps;
  }

 private:
  void ChoosePairs() {
    for (size_t i = 0; i < layout.Count(); ++i) {
      std::vector<std::pair<int, size_t>> later;
      for (const size_t j : layout.CapturesIn(layout.RectOf(i))) {
        const cv::Point d = layout.CornerOf(j) - layout.CornerOf(i);
        if (j > i && d != cv::Point()) {
          later.emplace_back(std::abs(d.x) + std::abs(d.y), j);
        }
      }
      std::sort(later.begin(), later.end());
      for (size_t k = 0; k < later.size(); k = k < 3 ? k + 1 : k * 3 / 2) {
        pairs.push_back({i, later[k].second});
      }
    }
  }

  void ChooseTimeNeighbours() {
    const size_t n = layout.Count();
    next.assign(n, n);
    for (size_t i = 0; i < n; ++i) {
      for (size_t j = i + 1; j < n && j < i + 8; ++j) {
        if (layout.CornerOf(j) != layout.CornerOf(i)) {
          next[i] = j;
          break;
        }
      }
    }
  }

  /// Which pixels show the same as the capture after or before does at the same place of the window
  void FindStanding() {
    const size_t n = layout.Count();
    const int w = layout.CaptureSize().width;
    const int h = layout.CaptureSize().height;
    standing.assign(n, cv::Mat());
    standsWithNext.assign(n, cv::Mat());
    for (auto& s : standing) {
      s = cv::Mat::zeros(h, w, CV_8U);
    }
    std::vector<std::uint8_t> differs(w);
    for (size_t i = 0; i < n; ++i) {
      standsWithNext[i] = cv::Mat::zeros(cells, CV_8U);
      if (next[i] == n) {
        continue;
      }
      const auto a = source.Get(i);
      const auto b = source.Get(next[i]);
      cv::Mat count = cv::Mat::zeros(cells, CV_8U);
      for (int y = 0; y < h; ++y) {
        MarkDifferences(a->ptr(y), b->ptr(y), w, a->elemSize(), differs.data());
        for (int x = 0; x < w; ++x) {
          if (!differs[x]) {
            standing[i].at<uchar>(y, x) = 2;
            standing[next[i]].at<uchar>(y, x) = 2;
            ++count.at<uchar>(y / CellSize, x / CellSize);
          }
        }
      }
      for (int y = 0; y < cells.height; ++y)
        for (int x = 0; x < cells.width; ++x) {
          const int area =
              std::min(CellSize, h - y * CellSize) * std::min(CellSize, w - x * CellSize);
          standsWithNext[i].at<uchar>(y, x) = count.at<uchar>(y, x) * 8 >= area * 7;
        }
    }
  }

  struct Block {
    std::uint32_t first, second;
    std::uint32_t firstCell, secondCell;
    std::uint8_t counts[9];
  };

  void Weigh(const Block& k) {
    float& blameA = reinterpret_cast<float*>(evidence[k.first].blame.data)[k.firstCell];
    float& blameB = reinterpret_cast<float*>(evidence[k.second].blame.data)[k.secondCell];
    float& innocentA = reinterpret_cast<float*>(evidence[k.first].innocent.data)[k.firstCell];
    float& innocentB = reinterpret_cast<float*>(evidence[k.second].innocent.data)[k.secondCell];
    const float rho = currentRound < RhoRounds ? 1 : Rho;
    const float ta = reinterpret_cast<float*>(maps[k.first].data)[k.firstCell];
    const float tb = reinterpret_cast<float*>(maps[k.second].data)[k.secondCell];
    for (int c = 0; c < 9; ++c) {
      if (!k.counts[c]) continue;
      const float pa = ta * Weights[c % 3];
      const float pb = tb * Weights[c / 3];
      const float qa = std::pow(pa, Power);
      const float qb = std::pow(pb, Power);
      const float any = qa + qb + 1e-9F;
      const float ra = qa / any;
      const float rb = qb / any;
      const float n = k.counts[c] * (Floor + (1 - Floor) * std::abs(ra - rb));
      blameA += n * ra;
      innocentA += rho * n * (1 - ra);
      blameB += n * rb;
      innocentB += rho * n * (1 - rb);
    }
  }

  void MarkPlain(size_t i) {
    const auto a = source.Get(i);
    const size_t e = a->elemSize();
    const int reach = 4;
    for (int y = 0; y < a->rows; ++y) {
      const int up = std::max(0, y - reach);
      const int down = std::min(a->rows - 1, y + reach);
      for (int x = 0; x < a->cols; ++x) {
        const std::uint32_t v = PixelValue(a->ptr(y, x), e);
        const int left = std::max(0, x - reach);
        const int right = std::min(a->cols - 1, x + reach);
        if (v == PixelValue(a->ptr(up, x), e) && v == PixelValue(a->ptr(down, x), e) &&
            v == PixelValue(a->ptr(y, left), e) && v == PixelValue(a->ptr(y, right), e)) {
          standing[i].at<uchar>(y, x) = std::min<uchar>(standing[i].at<uchar>(y, x), 1);
        }
      }
    }
  }

  void Gather(const Pair& pair) {
    const cv::Point d = layout.CornerOf(pair.first) - layout.CornerOf(pair.second);
    const cv::Rect common = layout.RectOf(pair.first) & layout.RectOf(pair.second);
    const cv::Rect in = common - layout.CornerOf(pair.first);
    const auto a = source.Get(pair.first);
    const auto b = source.Get(pair.second);
    const size_t e = a->elemSize();
    const size_t w = in.width;
    std::vector<std::uint8_t> c(w), ea(w), eb(w);
    std::map<std::pair<std::uint32_t, std::uint32_t>, size_t> open;
    for (int y = in.y; y < in.br().y; ++y) {
      const int by = y + d.y;
      MarkDifferences(a->ptr(y, in.x), b->ptr(by, in.x + d.x), w, e, c.data());
      MarkDifferences(a->ptr(y, in.x), b->ptr(y, in.x), w, e, ea.data());
      MarkDifferences(a->ptr(by, in.x + d.x), b->ptr(by, in.x + d.x), w, e, eb.data());
      const uchar* sa = standing[pair.first].ptr(y);
      const uchar* sb = standing[pair.second].ptr(by);
      float* baseA = base[pair.first].ptr<float>(y / CellSize);
      float* baseB = base[pair.second].ptr<float>(by / CellSize);
      if (y % CellSize == 0 || by % CellSize == 0) open.clear();
      for (size_t k = 0; k < w; ++k) {
        const int xa = in.x + int(k);
        const int xb = xa + d.x;
        const int qa = xa / CellSize;
        const int qb = xb / CellSize;
        if (c[k]) {
          const std::uint32_t ka = (y / CellSize) * cells.width + qa;
          const std::uint32_t kb = (by / CellSize) * cells.width + qb;
          const auto at = open.emplace(std::make_pair(ka, kb), blocks.size());
          if (at.second) {
            blocks.push_back({std::uint32_t(pair.first), std::uint32_t(pair.second), ka, kb, {}});
          }
          ++blocks[at.first->second].counts[sa[xa] + 3 * sb[xb]];
        } else {
          baseA[qa] += ea[k] ? 1.0F : Plain;
          baseB[qb] += eb[k] ? 1.0F : Plain;
        }
      }
    }
  }

  /// Cells that stay the same from capture to capture share their evidence.
  void AddUpRuns() {
    const size_t n = layout.Count();
    for (int y = 0; y < cells.height; ++y) {
      for (int x = 0; x < cells.width; ++x) {
        std::vector<bool> done(n);
        for (size_t i = 0; i < n; ++i) {
          if (done[i]) continue;
          float blame = 0;
          float innocent = 0;
          std::vector<size_t> members;
          for (size_t k = i;;) {
            members.push_back(k);
            done[k] = true;
            blame += evidence[k].blame.at<float>(y, x);
            innocent += evidence[k].innocent.at<float>(y, x);
            if (next[k] == n || !standsWithNext[k].at<uchar>(y, x)) break;
            k = next[k];
          }
          for (const size_t k : members) {
            evidence[k].blame.at<float>(y, x) = blame;
            evidence[k].innocent.at<float>(y, x) = innocent;
          }
        }
      }
    }
  }

  void Conclude(size_t i) {
    cv::Mat theta(cells, CV_32F, cv::Scalar(0.2));
    for (const int radius : {8, 4, 2, 1, 0}) {
      if (radius == 0) {
        theta = (1 - Location) * theta + Location * atLocation;
      }
      const float strength = radius == 0 ? Strength : Strength2;
      cv::Mat b;
      cv::Mat g;
      const cv::Size k(2 * radius + 1, 2 * radius + 1);
      cv::boxFilter(evidence[i].blame, b, -1, k, {-1, -1}, false, cv::BORDER_CONSTANT);
      cv::boxFilter(evidence[i].innocent, g, -1, k, {-1, -1}, false, cv::BORDER_CONSTANT);
      cv::Mat num = b + strength * theta;
      cv::Mat den = b + g + strength;
      theta = num / den;
    }
    maps[i] = theta;
  }

  /// What all captures together say of each place of the window.
  void ConcludeLocation() {
    cv::Mat b = cv::Mat::zeros(cells, CV_32F);
    cv::Mat g = b.clone();
    for (const Evidence& e : evidence) {
      b += e.blame;
      g += e.innocent;
    }
    cv::boxFilter(b, b, -1, {3, 3}, {-1, -1}, false, cv::BORDER_CONSTANT);
    cv::boxFilter(g, g, -1, {3, 3}, {-1, -1}, false, cv::BORDER_CONSTANT);
    cv::Mat num = b + 0.2 * Strength2;
    cv::Mat den = b + g + Strength2;
    atLocation = num / den;
  }

  const CaptureSource& source;
  const CaptureLayout& layout;
  cv::Size cells;
  std::vector<Pair> pairs;
  std::vector<size_t> next;
  std::vector<cv::Mat> standing;
  std::vector<cv::Mat> standsWithNext;
  std::vector<Evidence> evidence;
  std::vector<Block> blocks;
  std::vector<cv::Mat> base;
  int currentRound = 0;
  cv::Mat atLocation;
  std::vector<cv::Mat> maps;
};

}  // namespace

Suspicion::Suspicion(const CaptureSource& source, const CaptureLayout& layout)
    : maps(SuspicionSearch(source, layout).Find()) {}

}  // namespace ScrollingCapture
