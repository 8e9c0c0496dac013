// Sequences of which every second or every third capture was left out, so that steps become as
// long as the window and longer.

#include <array>
#include <cstdint>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

#include "Jpeg.h"

namespace ScrollingCapture {
namespace {

using namespace Testing;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(NDEBUG)
constexpr std::uint64_t Journeys = 1;
#else
constexpr std::uint64_t Journeys = 4;
#endif

const cv::Size Size(320, 240);
constexpr int Steps = 11;

/// What happens to a capture before it is placed.
struct Treatment {
  std::string name;
  std::function<cv::Mat(cv::Mat capture)> apply;
};

cv::Mat WithHeader(cv::Mat capture) {
  Lay(DrawBar({Size.width, 32}, 54), capture, {0, 0});
  return capture;
}

const std::vector<Treatment>& Treatments() {
  static const std::vector<Treatment> all = {
      {"untouched", [](const cv::Mat& capture) { return capture; }},
      {"fixed header", WithHeader},
      {"JPEG", [](const cv::Mat& capture) { return ThroughJpeg(capture, 80); }}};
  return all;
}

struct Page {
  std::string name;
  cv::Mat pixels;
};

std::vector<Page> PagesOf(std::uint64_t seed) {
  const cv::Size page(Size.width, 1600);
  return {{"article", DrawArticle(page, seed)},
          {"photo", DrawPhoto(page, seed)},
          {"log", DrawLog(page, seed)},
          {"equal rows", DrawEqualRows(page, 24 + static_cast<int>(seed))}};
}

/// Where the window stands in the captures that are left.
std::vector<int> RowsOf(std::uint64_t seed, int leftOut) {
  cv::RNG random(seed);
  std::vector<int> rows;
  int row = 0;
  for (int i = 0; i <= Steps; ++i) {
    if (i % leftOut != leftOut - 1) {
      rows.push_back(row);
    }
    row += random.uniform(40, 120);
  }
  return rows;
}

/// How many captures were joined, and how many of them wrongly, for each verdict.
struct Counts {
  std::array<int, 4> joined{};
  std::array<int, 4> wrong{};
};

void Count(const std::string& name, const CapturePlacer& placer, const std::vector<int>& rows,
           Counts& counts) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const PlacedCapture capture = placer.At(i);
    if (capture.joinedTo) {
      const Place other = placer.At(*capture.joinedTo).place;
      const bool isRight = capture.place.column == other.column &&
                           capture.place.row - other.row == rows[i] - rows[*capture.joinedTo];
      const auto verdict = static_cast<std::size_t>(capture.join.verdict);
      ++counts.joined.at(verdict);
      counts.wrong.at(verdict) += static_cast<int>(!isRight);
      if (!isRight && capture.join.verdict <= Verdict::Likely) {
        std::cout << name << ": " << other.row - capture.place.row << " rows instead of "
                  << rows[*capture.joinedTo] - rows[i] << '\n';
      }
    }
  }
}

void PlaceAll(const Page& page, const std::vector<int>& rows, const Treatment& treatment,
              Counts& counts) {
  BasicImageProvider captures;
  CapturePlacer placer(captures, {});
  for (std::size_t i = 0; i < rows.size(); ++i) {
    cv::Mat capture = treatment.apply(Window(page.pixels, Size, {0, rows[i]}));
    captures.Add(capture);
    placer.Place(i, PreparedCapture(capture));
  }
  Count(page.name + ", " + treatment.name, placer, rows, counts);
}

class SparseSequences : public testing::TestWithParam<int> {};

TEST_P(SparseSequences, AreNeverProvenWrongly) {
  Counts counts;
  for (std::uint64_t seed = 1; seed <= Journeys; ++seed) {
    for (const Page& page : PagesOf(seed)) {
      for (const Treatment& treatment : Treatments()) {
        PlaceAll(page, RowsOf(seed, GetParam()), treatment, counts);
      }
    }
  }
  int joined = 0;
  for (std::size_t verdict = 0; verdict < 3; ++verdict) {
    std::cout << std::array{"proven", "likely", "doubtful"}.at(verdict) << ' '
              << counts.joined.at(verdict) << ", wrong " << counts.wrong.at(verdict) << '\n';
    joined += counts.joined.at(verdict);
  }
  EXPECT_GT(joined, 0);
  EXPECT_GT(counts.joined[0], joined / 3);
  EXPECT_EQ(counts.wrong[0], 0);
  EXPECT_LE(counts.wrong[1] * 100, joined);
}

INSTANTIATE_TEST_SUITE_P(WithoutEvery, SparseSequences, testing::Values(2, 3),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace ScrollingCapture
