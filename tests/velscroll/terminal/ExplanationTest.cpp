#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <velscroll/terminal/Explanation.h>

#include <VelScrollingCapture/session/SpillFileLost.h>

namespace ScrollingCapture {
namespace {

using Program::Explanation;
using Kind = Explanation::Kind;

struct Thrown {
  const char* name;
  std::function<void()> action;
  Kind kind;
  const char* words;
};

void PrintTo(const Thrown& thrown, std::ostream* out) { *out << thrown.name; }

class ExplanationTest : public ::testing::TestWithParam<Thrown> {};

TEST_P(ExplanationTest, TellsUsersWhatHappened) {
  Explanation explanation;
  try {
    GetParam().action();
  } catch (...) {
    explanation = Program::ExplanationOf(std::current_exception());
  }
  EXPECT_EQ(explanation.kind, GetParam().kind);
  EXPECT_EQ(explanation.words, GetParam().words);
}

[[noreturn]] void ThrowInOpenCV(int code) {
  throw cv::Exception(code, "what failed", "function", "file.cpp", 1);
}

INSTANTIATE_TEST_SUITE_P(
    Exceptions, ExplanationTest,
    ::testing::Values(
        Thrown{"SpillFileLost", [] { throw SpillFileLost("No such file"); }, Kind::SpillFileLost,
               "a capture that was spilled to a file cannot be read back"},
        Thrown{"Memory", [] { throw std::bad_alloc(); }, Kind::NoMemory, "not enough memory"},
        Thrown{"MemoryInOpenCV", [] { ThrowInOpenCV(cv::Error::StsNoMem); }, Kind::NoMemory,
               "not enough memory"},
        Thrown{"OpenCV", [] { ThrowInOpenCV(cv::Error::StsAssert); }, Kind::Unexpected,
               "unexpected failure in image processing: what failed"},
        Thrown{"Thread",
               [] {
                 throw std::system_error(
                     std::make_error_code(std::errc::resource_unavailable_try_again));
               },
               Kind::NoThread, "the system allows no further thread"},
        Thrown{"Words", [] { throw std::runtime_error("the disk is full"); }, Kind::Told,
               "the disk is full"},
        Thrown{"NoException", [] { throw 5; }, Kind::Unexpected, "unexpected failure"}),
    [](const auto& thrown) { return std::string(thrown.param.name); });

}  // namespace
}  // namespace ScrollingCapture
