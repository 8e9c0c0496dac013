#include <desktop/recording/RecordingWords.h>
#include <gtest/gtest.h>

namespace ScrollingCapture::Desktop {
namespace {

Live::RecordingStatus Status() {
  Live::RecordingStatus status;
  status.captures = 3;
  status.seen = {0, -20, 640, 900};
  return status;
}

TEST(RecordingWordsTest, TellHowLargeThePictureIs) {
  EXPECT_EQ(SizeWords(Status()), "900 rows × 640 columns");
}

TEST(RecordingWordsTest, WarnOfNothingWhenAllIsWell) { EXPECT_EQ(WarningWords(Status()), ""); }

TEST(RecordingWordsTest, TellTheWayBackInRowsOfThePicture) {
  Live::RecordingStatus status = Status();
  status.tooFast = true;
  status.lastJoined = {100, 0};
  EXPECT_EQ(WarningWords(status),
            "Too fast: scroll back to where row 120 of the picture was at the top");
}

TEST(RecordingWordsTest, TellTheWayBackInColumnsWhereThatHelps) {
  Live::RecordingStatus status = Status();
  status.tooFast = true;
  status.lastJoined = {-20, 7};
  EXPECT_EQ(WarningWords(status),
            "Too fast: scroll back to where row 0, column 7 of the picture was at the top");
}

TEST(RecordingWordsTest, TellWhatIsInTheWayFirst) {
  Live::RecordingStatus status = Status();
  status.tooFast = true;
  status.hindrance = "another window is in the way";
  EXPECT_EQ(WarningWords(status), "Another window is in the way");
}

TEST(RecordingWordsTest, TellOfDoubt) {
  Live::RecordingStatus status = Status();
  status.doubtful = 1;
  EXPECT_EQ(WarningWords(status), "One capture is in doubt: it fits in several places");
  status.doubtful = 2;
  EXPECT_EQ(WarningWords(status), "2 captures are in doubt: they fit in several places");
}

TEST(RecordingWordsTest, NoteNothingAfterAGoodRecording) {
  Live::RecordingEnd end;
  end.status = Status();
  EXPECT_TRUE(NotesOn(end, 1).isEmpty());
}

TEST(RecordingWordsTest, NoteEverythingThatIsWrong) {
  Live::RecordingEnd end;
  end.line = "the window was closed";
  end.status = Status();
  end.status.doubtful = 1;
  EXPECT_EQ(NotesOn(end, 3),
            QStringList({"The window was closed; this is what was captured until then",
                         "Captures are missing in between: the picture comes in 3 parts",
                         "One capture is in doubt: it fits in several places"}));
}

}  // namespace
}  // namespace ScrollingCapture::Desktop
