// Two thousand random pairs of windows on drawn pages, whose motion is known.

#include <array>
#include <iomanip>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <testkit/pages/Scenes.h>

#include <VelScrollingCapture/matching/PairMatcher.h>

#include "Jpeg.h"

namespace ScrollingCapture {
namespace {

using namespace Testing;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(NDEBUG)
constexpr int Pairs = 60;
#else
constexpr int Pairs = 2000;
#endif

const cv::Size Size(320, 240);

struct Subject {
  const char* name;
  cv::Mat page;
};

std::vector<Subject> Subjects() {
  const cv::Size page(700, 900);
  return {{"article", DrawArticle(page, 51)},
          {"photo", DrawPhoto(page, 52)},
          {"log", DrawLog(page, 53)},
          {"equal rows", DrawEqualRows(page, 27)}};
}

/// Verdicts with the right motion, and verdicts with a wrong one.
struct Outcomes {
  std::array<int, 4> right{};
  std::array<int, 4> wrong{};
};

/// What happens to captures before they are matched.
enum Treatment { Untouched, WithHeader, Jpeg, Noise, Treatments };
constexpr std::array<const char*, Treatments> TreatmentNames = {"untouched", "fixed header",
                                                                "JPEG 60 to 95", "noise"};

/// One to three in four steps go along one axis, the others along both.
cv::Point AnyStep(cv::RNG& random) {
  const cv::Point longest(Size.width * 97 / 100, Size.height * 97 / 100);
  const cv::Point step(random.uniform(0, longest.x + 1), random.uniform(0, longest.y + 1));
  const int axes = random.uniform(0, 4);
  return {axes == 0 || axes == 3 ? step.x : 0, axes != 0 ? step.y : 0};
}

struct Crops {
  cv::Mat first;
  cv::Mat second;
  cv::Point motion;
};

Crops AnyCrops(const cv::Mat& page, Treatment treatment, cv::RNG& random) {
  const cv::Point step = AnyStep(random);
  cv::Point from(random.uniform(0, page.cols - Size.width - step.x + 1),
                 random.uniform(0, page.rows - Size.height - step.y + 1));
  cv::Point to = from + step;
  if (random.uniform(0, 2) == 0) {
    std::swap(from, to);
  }
  Crops crops = {Window(page, Size, from), Window(page, Size, to), from - to};
  switch (treatment) {
    case WithHeader: {
      const cv::Mat header = DrawBar({Size.width, random.uniform(24, 60)}, 54);
      Lay(header, crops.first, {0, 0});
      Lay(header, crops.second, {0, 0});
      break;
    }
    case Jpeg: {
      const int quality = random.uniform(60, 96);
      crops.first = ThroughJpeg(crops.first, quality);
      crops.second = ThroughJpeg(crops.second, quality);
      break;
    }
    case Noise:
      crops.first = WithNoise(crops.first, random.next());
      crops.second = WithNoise(crops.second, random.next());
      break;
    default:
      break;
  }
  return crops;
}

using Table = std::map<std::pair<std::string, std::string>, Outcomes>;

void Print(const Table& table) {
  std::cout << std::left << std::setw(28) << "right (wrong)";
  for (const char* const verdict : {"proven", "likely", "doubtful", "none"}) {
    std::cout << std::setw(12) << verdict;
  }
  std::cout << '\n';
  for (const auto& [subject, outcomes] : table) {
    std::cout << std::setw(28) << subject.first + ", " + subject.second;
    for (std::size_t verdict = 0; verdict < 4; ++verdict) {
      std::cout << std::setw(12)
                << std::to_string(outcomes.right[verdict]) + " (" +
                       std::to_string(outcomes.wrong[verdict]) + ")";
    }
    std::cout << '\n';
  }
}

TEST(RandomCrops, AreNeverProvenWrongly) {
  const std::vector<Subject> subjects = Subjects();
  cv::RNG random(55);
  Table table;
  int wrongProven = 0;
  int wrongLikely = 0;
  int sure = 0;
  for (int pair = 0; pair < Pairs; ++pair) {
    const Subject& subject = subjects[static_cast<std::size_t>(pair) % subjects.size()];
    const auto treatment = static_cast<Treatment>(random.uniform(0, Treatments));
    const Crops crops = AnyCrops(subject.page, treatment, random);
    const Join join = MatchPair(crops.first, crops.second, {});
    const bool isRight = join.motion == Translation(crops.motion.y, crops.motion.x);
    Outcomes& outcomes = table[{subject.name, TreatmentNames.at(treatment)}];
    ++(isRight ? outcomes.right : outcomes.wrong).at(static_cast<std::size_t>(join.verdict));
    wrongProven += static_cast<int>(!isRight && join.verdict == Verdict::Proven);
    wrongLikely += static_cast<int>(!isRight && join.verdict == Verdict::Likely);
    sure += static_cast<int>(isRight && join.verdict <= Verdict::Likely);
    if (!isRight && join.verdict <= Verdict::Likely) {
      std::cout << subject.name << ' ' << TreatmentNames.at(treatment) << " pair " << pair << ": "
                << join.motion << " instead of " << Translation(crops.motion.y, crops.motion.x)
                << '\n';
    }
  }
  Print(table);
  EXPECT_EQ(wrongProven, 0);
  EXPECT_LE(wrongLikely * 100, Pairs);
  EXPECT_GE(sure * 2, Pairs);
}

}  // namespace
}  // namespace ScrollingCapture
