#include <QSignalSpy>
#include <QThread>

#include <desktop/support/Errand.h>
#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include "Waiting.h"

namespace ScrollingCapture::Desktop {
namespace {

/// Throws in the work of an errand.
struct FailureCase {
  const char* name;
  std::function<void()> work;
  const char* line;
};

void PrintTo(const FailureCase& tested, std::ostream* out) { *out << tested.name; }

class ErrandFailureTest : public testing::TestWithParam<FailureCase> {};

TEST_P(ErrandFailureTest, IsToldInOneLine) {
  Errand errand;
  QSignalSpy failed(&errand, &Errand::failed);
  errand.start(GetParam().work);
  ASSERT_TRUE(WaitUntil([&] { return failed.count() == 1; }));
  EXPECT_EQ(failed[0][0].toString(), GetParam().line);
  EXPECT_FALSE(errand.isBusy());
}

INSTANTIATE_TEST_SUITE_P(
    Exceptions, ErrandFailureTest,
    testing::Values(
        FailureCase{"OfMemory", [] { throw std::bad_alloc(); }, "Not enough memory"},
        FailureCase{"OfMemoryInOpenCV",
                    [] { throw cv::Exception(cv::Error::StsNoMem, "no", "f", "f.cpp", 1); },
                    "Not enough memory"},
        FailureCase{"OfAnyKind", [] { throw std::runtime_error("two\nlines"); }, "Two lines"},
        FailureCase{"WithoutWords", [] { throw 5; }, "Unexpected failure"}),
    [](const auto& tested) { return tested.param.name; });

TEST(ErrandTest, IsDoneOnAnotherThreadAndToldOnThisOne) {
  Errand errand;
  const QThread* worker = nullptr;
  const QThread* teller = nullptr;
  QObject::connect(&errand, &Errand::done, [&] { teller = QThread::currentThread(); });
  errand.start([&] { worker = QThread::currentThread(); });
  EXPECT_TRUE(errand.isBusy());
  ASSERT_TRUE(WaitUntil([&] { return !errand.isBusy(); }));
  EXPECT_NE(worker, nullptr);
  EXPECT_NE(worker, teller);
  EXPECT_EQ(teller, QThread::currentThread());
}

TEST(ErrandTest, StopsWhenItIsAsked) {
  Errand errand;
  QSignalSpy stopped(&errand, &Errand::stopped);
  errand.start([&] {
    for (;;) {
      errand.requireGoingOn();
    }
  });
  errand.stop();
  EXPECT_TRUE(WaitUntil([&] { return stopped.count() == 1; }));
}

TEST(ErrandTest, GoesOnlyAfterItsWorkHasStopped) {
  bool hasEnded = false;
  {
    Errand errand;
    errand.start([&] {
      while (errand.goesOn()) {
      }
      hasEnded = true;
    });
  }
  EXPECT_TRUE(hasEnded);
}

TEST(ErrandTest, CanBeStartedAgain) {
  Errand errand;
  QSignalSpy done(&errand, &Errand::done);
  for (int run = 1; run <= 2; ++run) {
    errand.start([] {});
    EXPECT_TRUE(WaitUntil([&] { return done.count() == run; }));
  }
}

}  // namespace
}  // namespace ScrollingCapture::Desktop
