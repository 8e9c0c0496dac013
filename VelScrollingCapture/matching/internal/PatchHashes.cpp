#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include <VelScrollingCapture/matching/internal/PatchHashes.h>
#include <VelScrollingCapture/matching/internal/PixelKeys.h>

namespace ScrollingCapture {
namespace {

/// Patches are hashed in strips of so many columns, whose rows stay in the nearest cache.
constexpr int StripColumns = 496;

/// One more patch to the left, for comparison, and the pixels of the last patch.
constexpr int StripPatches = StripColumns + 1;
constexpr int StripPixels = StripPatches + PatchSide - 1;

/// Selections are looked through eight at a time.
constexpr int SelectionsAtOnce = 8;
constexpr int Selections =
    (StripPatches + SelectionsAtOnce - 1) / SelectionsAtOnce * SelectionsAtOnce;

/// Odd numbers with their bits well spread.
constexpr std::array<std::uint32_t, 4> ColumnFactors = {0x85EBCA77U, 0xC2B2AE3DU, 0x27D4EB2FU,
                                                        0x165667B1U};
constexpr std::uint32_t RowFactor = 0x2C1B3C6DU;
constexpr std::uint32_t SpreadHash = 0x297A2D39U;

constexpr std::uint32_t Power(std::uint32_t base, int exponent) {
  return exponent == 0 ? 1U : base * Power(base, exponent - 1);
}

constexpr std::uint32_t LeavingRowFactor = Power(RowFactor, PatchSide);

/// Where the hashes of one row of patches after the other are made.
struct Strip {
  std::array<std::uint32_t, StripPixels> row;  ///< keys, then hashes of ever more columns
  std::array<std::array<std::uint32_t, StripPatches>, PatchSide> lastRows;
  std::array<std::uint32_t, StripPatches> hashes;
  std::array<std::uint8_t, Selections> selected;
  std::uint32_t hidden;  ///< not 0 once a transparent pixel had a colour
};

/// A row of pixels, for so many patches.
struct PixelRow {
  const unsigned char* pixels;
  int channels;
  int patches;
};

/// Lets the upper bits of a key, such as those of one colour, count as much as the lower ones,
/// which reach further in products.
[[gnu::always_inline]] inline std::uint32_t Folded(std::uint32_t key) { return key ^ key >> 13; }

/// row[i] becomes the hash of twice as many pixels from i on, by joining two halves.
[[gnu::always_inline]] inline void DoubleColumns(std::uint32_t* row, int count, int half,
                                                 std::uint32_t factor) {
  for (int i = 0; i < count; ++i) {
    row[i] = row[i] * factor + row[i + half];
  }
}

/// Takes in one row of pixels: the hashes become those of the patches that end with it.
[[gnu::always_inline]] inline void AddRow(Strip& strip, const PixelRow& added, int ringRow,
                                          std::uint32_t limit) {
  std::uint32_t* const row = strip.row.data();
  const int patches = added.patches;
  const int pixels = patches + PatchSide - 1;
  strip.hidden |= WritePixelKeys(added.pixels, added.channels, pixels, row);
  for (int i = 0; i < pixels - 1; ++i) {
    row[i] = Folded(row[i]) * ColumnFactors[0] + Folded(row[i + 1]);
  }
  DoubleColumns(row, pixels - 3, 2, ColumnFactors[1]);
  DoubleColumns(row, pixels - 7, 4, ColumnFactors[2]);
  DoubleColumns(row, patches, 8, ColumnFactors[3]);

  std::uint32_t* const last = strip.lastRows[static_cast<std::size_t>(ringRow)].data();
  std::uint32_t* const hashes = strip.hashes.data();
  std::uint8_t* const selected = strip.selected.data();
  for (int i = 0; i < patches; ++i) {
    const std::uint32_t above = hashes[i];
    const std::uint32_t hash = above * RowFactor + row[i] - last[i] * LeavingRowFactor;
    last[i] = row[i];
    hashes[i] = hash;
    row[i] = hash ^ above;
  }
  for (int i = 1; i < patches; ++i) {
    const std::uint32_t hash = hashes[i];
    const bool isChosen = hash * SpreadHash <= limit;
    const bool differs = static_cast<int>(row[i] != 0) & static_cast<int>(hash != hashes[i - 1]);
    selected[i] = static_cast<std::uint8_t>(static_cast<int>(isChosen) & static_cast<int>(differs));
  }
}

using RowAdder = void (*)(Strip&, const PixelRow&, int ringRow, std::uint32_t limit);

void AddRowPlainly(Strip& strip, const PixelRow& added, int ringRow, std::uint32_t limit) {
  AddRow(strip, added, ringRow, limit);
}

SCROLLING_CAPTURE_WIDE_TARGET void AddRowWidely(Strip& strip, const PixelRow& added, int ringRow,
                                                std::uint32_t limit) {
  AddRow(strip, added, ringRow, limit);
}

/// Calls take(patch) for each selected patch of the strip but the first.
template <typename Take>
void ForEachSelected(const Strip& strip, int patches, Take take) {
  for (int first = 0; first < patches; first += SelectionsAtOnce) {
    std::uint64_t any = 0;
    std::memcpy(&any, strip.selected.data() + first, sizeof any);
    if (any != 0) {
      for (int i = first; i < std::min(first + SelectionsAtOnce, patches); ++i) {
        if (strip.selected[static_cast<std::size_t>(i)] != 0) {
          take(i);
        }
      }
    }
  }
}

}  // namespace

Selection SelectPatches(const cv::Mat& capture, int zeroBits, Vectors vectors) {
  Selection selection;
  const RowAdder addRow =
      vectors == Vectors::Widest && HasWideVectors() ? AddRowWidely : AddRowPlainly;
  const std::uint32_t limit = ~std::uint32_t{0} >> zeroBits;
  const int patchColumns = capture.cols - PatchSide + 1;
  for (int left = 0; left + 1 < patchColumns; left += StripColumns) {
    Strip strip{};
    const int patches = std::min(StripPatches, patchColumns - left);
    for (int row = 0; row < capture.rows; ++row) {
      const auto* const pixels =
          capture.ptr<unsigned char>(row) + static_cast<std::size_t>(left) * capture.elemSize();
      addRow(strip, {pixels, capture.channels(), patches}, row % PatchSide, limit);
      const int top = row - PatchSide + 1;
      if (top > 0) {
        const std::uint32_t start =
            static_cast<std::uint32_t>(top) * static_cast<std::uint32_t>(capture.cols) +
            static_cast<std::uint32_t>(left);
        ForEachSelected(strip, patches, [&](int patch) {
          selection.anchors.push_back({strip.hashes[static_cast<std::size_t>(patch)],
                                       start + static_cast<std::uint32_t>(patch)});
        });
      }
    }
    selection.hasColouredTransparentPixels |= strip.hidden != 0;
  }
  return selection;
}

}  // namespace ScrollingCapture
