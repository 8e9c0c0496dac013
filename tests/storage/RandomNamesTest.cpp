#include <cstdlib>
#include <iostream>
#include <mutex>
#include <set>
#include <sstream>
#include <thread>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

static_assert(std::is_same_v<decltype(Utilities::RANDOM_ENGINE), std::minstd_rand>);

const std::minstd_rand engineAtStart = Utilities::RANDOM_ENGINE;
const std::string nameDrawnBeforeMain = Utilities::GenerateRandomAlphanumericString(24);

std::string StateOf(const std::minstd_rand& engine) {
  std::ostringstream text;
  text << "state " << engine << ";";
  return text.str();
}

bool IsAlphanumeric(const std::string& name) {
  return name.find_first_not_of(Utilities::ALPHANUMERIC_CHARSET) == std::string::npos;
}

TEST(RandomNames, AreMadeOfDigitsThenUpperThenLowerCaseLetters) {
  EXPECT_EQ(Utilities::ALPHANUMERIC_CHARSET,
            "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
}

TEST(RandomNames, HaveTheLengthAskedFor) {
  for (const unsigned int length : {0U, 1U, 24U, 1000U}) {
    const std::string name = Utilities::GenerateRandomAlphanumericString(length);
    EXPECT_EQ(name.size(), length);
    EXPECT_TRUE(IsAlphanumeric(name)) << name;
  }
}

TEST(RandomNames, UseEveryCharacter) {
  const std::string name = Utilities::GenerateRandomAlphanumericString(10000);
  EXPECT_EQ(std::set<char>(name.begin(), name.end()).size(), 62U);
}

TEST(RandomNames, AreDrawnCharacterByCharacterFromTheSharedEngine) {
  Utilities::RANDOM_ENGINE.seed(12345);
  std::minstd_rand engine(12345);
  std::uniform_int_distribution<int> indices(0, 61);
  std::string expected;
  for (int i = 0; i < 24; ++i) {
    expected += Utilities::ALPHANUMERIC_CHARSET[static_cast<size_t>(indices(engine))];
  }
  EXPECT_EQ(Utilities::GenerateRandomAlphanumericString(24), expected);
  EXPECT_EQ(Utilities::RANDOM_ENGINE, engine);
}

TEST(RandomNames, CanBeDrawnBeforeMain) {
  EXPECT_EQ(nameDrawnBeforeMain.size(), 24U);
  EXPECT_TRUE(IsAlphanumeric(nameDrawnBeforeMain)) << nameDrawnBeforeMain;
}

TEST(RandomNamesDeathTest, DifferFromOneRunOfTheProgramToTheNext) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        std::cerr << StateOf(engineAtStart);
        std::exit(0);
      },
      testing::ExitedWithCode(0),
      testing::AllOf(testing::HasSubstr("state "),
                     testing::Not(testing::HasSubstr(StateOf(engineAtStart)))));
}

TEST(RandomNames, OfManyThreadsAreThoseThatOneThreadWouldDraw) {
  constexpr size_t threadCount = 8;
  constexpr size_t namesPerThread = 500;
  Utilities::RANDOM_ENGINE.seed(99);
  std::multiset<std::string> expected;
  for (size_t i = 0; i < threadCount * namesPerThread; ++i) {
    expected.insert(Utilities::GenerateRandomAlphanumericString(24));
  }

  Utilities::RANDOM_ENGINE.seed(99);
  std::vector<std::vector<std::string>> drawn(threadCount);
  std::vector<std::thread> threads;
  threads.reserve(threadCount);
  for (std::vector<std::string>& names : drawn) {
    threads.emplace_back([&names] {
      for (size_t i = 0; i < namesPerThread; ++i) {
        names.push_back(Utilities::GenerateRandomAlphanumericString(24));
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  std::multiset<std::string> all;
  for (const std::vector<std::string>& names : drawn) {
    all.insert(names.begin(), names.end());
  }
  EXPECT_EQ(all, expected);
}

}  // namespace
}  // namespace ScrollingCapture
