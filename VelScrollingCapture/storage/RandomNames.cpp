#include <chrono>
#include <cstdint>
#include <mutex>

#include <VelScrollingCapture/core/Utilities.h>

namespace ScrollingCapture {
namespace {

std::mutex engineMutex;

std::uint32_t SeedFromClock() {
  return static_cast<std::uint32_t>(std::chrono::system_clock::now().time_since_epoch().count());
}

}  // namespace

// In a static build other units' initialisers may draw names before main, in any order; these two
// have to be ready before all of them. The mutex needs no initialiser.
[[gnu::init_priority(101)]] const std::string Utilities::ALPHANUMERIC_CHARSET =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
[[gnu::init_priority(101)]] std::minstd_rand Utilities::RANDOM_ENGINE(SeedFromClock());

std::string Utilities::GenerateRandomAlphanumericString(unsigned int length) {
  std::uniform_int_distribution<size_t> indices(0, ALPHANUMERIC_CHARSET.size() - 1);
  std::string characters(length, '\0');
  const std::lock_guard<std::mutex> guard(engineMutex);
  for (char& character : characters) {
    character = ALPHANUMERIC_CHARSET[indices(RANDOM_ENGINE)];
  }
  return characters;
}

}  // namespace ScrollingCapture
