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

/// Loops run over whole vectors of so many numbers. Lines have room for what is read beyond, and
/// begin where no vector straddles two lines of the cache.
constexpr int VectorLength = 8;
constexpr int LineLength = StripPixels + 2 * VectorLength;
constexpr int CacheLine = 64;

constexpr int InWholeVectors(int count) {
  return (count + VectorLength - 1) / VectorLength * VectorLength;
}

/// So many rows before they are needed, pixels are asked for.
constexpr int RowsAhead = 2;

/// Selections are looked through eight at a time.
constexpr std::size_t SelectionsAtOnce = 8;

/// Odd numbers with their bits well spread.
constexpr std::array<std::uint32_t, 4> ColumnFactors = {0x85EBCA77U, 0xC2B2AE3DU, 0x27D4EB2FU,
                                                        0x165667B1U};
constexpr std::uint32_t RowFactor = 0x2C1B3C6DU;
constexpr std::uint32_t SpreadHash = 0x297A2D39U;

constexpr std::uint32_t Power(std::uint32_t base, int exponent) {
  return exponent == 0 ? 1U : base * Power(base, exponent - 1);
}

constexpr std::uint32_t LeavingRowFactor = Power(RowFactor, PatchSide);

template <typename Number>
using Line = std::array<Number, LineLength>;

/// Where the hashes of one row of patches after the other are made.
struct Strip {
  alignas(CacheLine) Line<std::uint32_t> row;  ///< folded keys, then hashes of ever more columns
  alignas(CacheLine) std::array<Line<std::uint32_t>, PatchSide> lastRows;
  alignas(CacheLine) Line<std::uint32_t> hashes;
  alignas(CacheLine) Line<std::uint8_t> selected;  ///< 1 or 0
  std::uint32_t hidden;                            ///< not 0 once a transparent pixel had a colour
};

/// A row of pixels, for so many patches.
struct PixelRow {
  const unsigned char* pixels;
  int channels;
  int patches;
};

/// Has the beginning of a row of pixels brought into the cache: the processor foresees what comes
/// after it, but not the way from one row of a strip to the next.
void FetchAhead(const PixelRow& row) {
  constexpr int Fetched = 512;
  for (int i = 0; i < std::min(Fetched, row.patches * row.channels); i += CacheLine) {
    __builtin_prefetch(row.pixels + i);
  }
}

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

/// Writes pixels, folded, as if they were keys.
/// @return whether they are, since none is transparent; otherwise some may be none
[[gnu::always_inline]] inline bool WriteFoldedPixels(const unsigned char* pixels, int count,
                                                     std::uint32_t* folded) {
  std::uint32_t common = AlphaMask;
  for (int i = 0; i < count; ++i) {
    const std::uint32_t pixel = LoadPixel(pixels + std::size_t{4} * static_cast<std::size_t>(i));
    common &= pixel;
    folded[i] = Folded(pixel);
  }
  return common != 0;
}

/// Writes the folded keys of a row of pixels. Nearly all captures are opaque.
[[gnu::always_inline]] inline void WriteFoldedKeys(Strip& strip, const PixelRow& read, int count) {
  std::uint32_t* const row = strip.row.data();
  if (read.channels == 4 && WriteFoldedPixels(read.pixels, count, row)) {
    return;
  }
  strip.hidden |= WritePixelKeys(read.pixels, read.channels, count, row);
  for (int i = 0; i < count; ++i) {
    row[i] = Folded(row[i]);
  }
}

/// All bits, or none when two numbers differ.
[[gnu::always_inline]] inline std::uint32_t AllIfEqual(std::uint32_t one, std::uint32_t other) {
  return one == other ? ~std::uint32_t{0} : 0;
}

/// Takes in one row of pixels: the hashes become those of the patches that end with it, and those
/// are selected whose hash, once spread, has none of some bits.
[[gnu::always_inline]] inline void AddRow(Strip& strip, const PixelRow& read, int ringRow,
                                          std::uint32_t unwanted) {
  const int patches = read.patches;  // a copy, which the compiler knows that no loop changes
  const int pixels = patches + PatchSide - 1;
  WriteFoldedKeys(strip, read, pixels);
  std::uint32_t* const row = strip.row.data();
  DoubleColumns(row, InWholeVectors(pixels - 1), 1, ColumnFactors[0]);
  DoubleColumns(row, InWholeVectors(pixels - 3), 2, ColumnFactors[1]);
  DoubleColumns(row, InWholeVectors(pixels - 7), 4, ColumnFactors[2]);

  std::uint32_t* const last = strip.lastRows[static_cast<std::size_t>(ringRow)].data();
  std::uint32_t* const hashes = strip.hashes.data();
  for (int i = 0; i < InWholeVectors(patches); ++i) {
    const std::uint32_t entering = row[i] * ColumnFactors[3] + row[i + 8];
    const std::uint32_t above = hashes[i];
    const std::uint32_t hash = above * RowFactor + entering - last[i] * LeavingRowFactor;
    last[i] = entering;
    hashes[i] = hash;
    row[i] = (hash * SpreadHash & unwanted) | AllIfEqual(hash, above);
  }
  std::uint8_t* const selected = strip.selected.data();
  for (int i = 1; i < patches; ++i) {
    const std::uint32_t against = row[i] | AllIfEqual(hashes[i], hashes[i - 1]);
    selected[i] = static_cast<std::uint8_t>(against == 0);
  }
}

using RowAdder = void (*)(Strip&, const PixelRow&, int ringRow, std::uint32_t unwanted);

void AddRowPlainly(Strip& strip, const PixelRow& read, int ringRow, std::uint32_t unwanted) {
  AddRow(strip, read, ringRow, unwanted);
}

SCROLLING_CAPTURE_WIDE_TARGET void AddRowWidely(Strip& strip, const PixelRow& read, int ringRow,
                                                std::uint32_t unwanted) {
  AddRow(strip, read, ringRow, unwanted);
}

/// Adds the selected patches of a strip, the first of which begins at a position.
void AddSelected(const Strip& strip, int patches, std::uint32_t position,
                 std::vector<Anchor>& anchors) {
  // Which of them are selected can not be foreseen: each one is written, and over it the next
  // unless it is.
  std::array<Anchor, LineLength> written;
  std::size_t count = 0;
  for (std::size_t first = 0; first < static_cast<std::size_t>(patches);
       first += SelectionsAtOnce) {
    std::uint64_t any = 0;
    std::memcpy(&any, strip.selected.data() + first, sizeof any);
    if (any != 0) {
      for (std::size_t i = first; i < first + SelectionsAtOnce; ++i) {
        written[count] = {strip.hashes[i], position + static_cast<std::uint32_t>(i)};
        count += strip.selected[i];
      }
    }
  }
  anchors.insert(anchors.end(), written.data(), written.data() + count);
}

}  // namespace

Selection SelectPatches(const cv::Mat& capture, int zeroBits, Vectors vectors) {
  Selection selection;
  const RowAdder addRow =
      vectors == Vectors::Widest && HasWideVectors() ? AddRowWidely : AddRowPlainly;
  const std::uint32_t unwanted = ~(~std::uint32_t{0} >> zeroBits);
  const int patchColumns = capture.cols - PatchSide + 1;
  for (int left = 0; left + 1 < patchColumns; left += StripColumns) {
    Strip strip{};
    const int patches = std::min(StripPatches, patchColumns - left);
    const auto rowAt = [&](int row) {
      const std::size_t before = static_cast<std::size_t>(left) * capture.elemSize();
      return PixelRow{capture.ptr<unsigned char>(row) + before, capture.channels(), patches};
    };
    for (int row = 0; row < capture.rows; ++row) {
      FetchAhead(rowAt(std::min(row + RowsAhead, capture.rows - 1)));
      addRow(strip, rowAt(row), row % PatchSide, unwanted);
      const int top = row - PatchSide + 1;
      if (top > 0) {
        const std::uint32_t position =
            static_cast<std::uint32_t>(top) * static_cast<std::uint32_t>(capture.cols) +
            static_cast<std::uint32_t>(left);
        AddSelected(strip, patches, position, selection.anchors);
      }
    }
    selection.hasColouredTransparentPixels |= strip.hidden != 0;
  }
  return selection;
}

}  // namespace ScrollingCapture
