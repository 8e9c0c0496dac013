#include <gtest/gtest.h>
#include <velscroll/record/StatusLine.h>

namespace ScrollingCapture::Program {
namespace {

Live::RecordingStatus Status() {
  Live::RecordingStatus status;
  status.seen = {0, -100, 800, 1600};
  return status;
}

TEST(StatusLine, TellsTheSizeSoFar) {
  EXPECT_EQ(StatusLine(Status()), "1600 rows, 800 columns; Enter ends");
}

TEST(StatusLine, TellsWhichWayTheWindowWent) {
  Live::RecordingStatus status = Status();
  status.lastStep = Translation(-300, 0);
  EXPECT_EQ(StatusLine(status), "1600 rows, 800 columns, last step 300 rows down; Enter ends");
  status.lastStep = Translation(1, 20);
  EXPECT_EQ(StatusLine(status),
            "1600 rows, 800 columns, last step 1 row up, 20 columns left; Enter ends");
}

TEST(StatusLine, TellsTheWayBackWhenTheScrollingWasTooFast) {
  Live::RecordingStatus status = Status();
  status.tooFast = true;
  status.lastJoined = {900, 0};
  EXPECT_EQ(StatusLine(status),
            "1600 rows, 800 columns; too fast: scroll back a little, to where row 1000 of the "
            "picture was at the top");
  status.lastJoined = {-100, 7};
  EXPECT_EQ(StatusLine(status),
            "1600 rows, 800 columns; too fast: scroll back a little, to where row 0, column 7 of "
            "the picture was at the top");
}

TEST(StatusLine, TellsWhatIsInTheWayAndNothingElse) {
  Live::RecordingStatus status = Status();
  status.hindrance = "the window is hidden; show it again";
  EXPECT_EQ(StatusLine(status), status.hindrance);
}

}  // namespace
}  // namespace ScrollingCapture::Program
