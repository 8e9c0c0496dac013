#include <filesystem>

#include <gmock/gmock.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class InputFiles : public Testing::ProgramTest {
 protected:
  /// Captures whose natural order is not their alphabetical one.
  void WriteNumbered(const std::string& prefix) const {
    WriteCapture(prefix + "10.png", 60);
    WriteCapture(prefix + "2.png", 30);
    WriteCapture(prefix + "1.png", 0);
  }
};

TEST_F(InputFiles, OfAFolderAreReadInNaturalOrder) {
  WriteNumbered("captures/shot ");
  const auto report = Report({"captures"});
  EXPECT_THAT(FilesIn(report),
              ElementsAre("captures/shot 1.png", "captures/shot 2.png", "captures/shot 10.png"));
  EXPECT_EQ(report.at("result").at("height"), 140);
}

TEST_F(InputFiles, OfAQuotedGlobAreReadInNaturalOrder) {
  WriteNumbered("shot");
  EXPECT_THAT(FilesIn(Report({"shot*.png"})), ElementsAre("shot1.png", "shot2.png", "shot10.png"));
}

TEST_F(InputFiles, NamedOneByOneKeepTheirOrder) {
  WriteNumbered("shot");
  EXPECT_THAT(FilesIn(Report({"shot10.png", "shot2.png", "shot1.png"})),
              ElementsAre("shot10.png", "shot2.png", "shot1.png"));
}

TEST_F(InputFiles, OfSeveralArgumentsFollowOneAnother) {
  WriteNumbered("captures/");
  WriteCapture("z.png", 90);
  WriteCapture("a1.png", 120);
  WriteCapture("a2.png", 150);
  EXPECT_THAT(FilesIn(Report({"captures/", "z.png", "a*.png"})),
              ElementsAre("captures/1.png", "captures/2.png", "captures/10.png", "z.png", "a1.png",
                          "a2.png"));
}

TEST_F(InputFiles, WithLongNumbersAndLeadingZerosAreReadInNaturalOrder) {
  for (const char* const name : {"9", "010", "8", "00000000000000000000011", "12a", "12",
                                 "99999999999999999999998", "99999999999999999999999"}) {
    WriteCapture(std::string("c/") + name + ".png", std::string(name) == "9" ? 30 : 0);
  }
  EXPECT_THAT(
      FilesIn(Report({"c"})),
      ElementsAre("c/8.png", "c/9.png", "c/010.png", "c/00000000000000000000011.png", "c/12.png",
                  "c/12a.png", "c/99999999999999999999998.png", "c/99999999999999999999999.png"));
}

TEST_F(InputFiles, OfEqualNumbersTheShorterComesFirst) {
  WriteCapture("c/01.png", 30);
  WriteCapture("c/1.png", 0);
  WriteCapture("c/001.png", 60);
  EXPECT_THAT(FilesIn(Report({"c"})), ElementsAre("c/1.png", "c/01.png", "c/001.png"));
}

TEST_F(InputFiles, OfAFolderAreItsVisibleImagesOnly) {
  WriteCapture("captures/1.png", 0);
  WriteCapture("captures/2.PNG", 30);
  WriteCapture("captures/.3.png", 60);
  WriteCapture("captures/below/4.png", 90);
  std::filesystem::create_directory(PathOf("captures/5.png"));
  WriteBytes("captures/notes.txt", "no image");
  EXPECT_THAT(FilesIn(Report({"captures"})), ElementsAre("captures/1.png", "captures/2.PNG"));
}

TEST_F(InputFiles, OfFoldersThatAGlobMatchesAreRead) {
  WriteCapture("run2/1.png", 30);
  WriteCapture("run1/1.png", 0);
  EXPECT_THAT(FilesIn(Report({"run*"})), ElementsAre("run1/1.png", "run2/1.png"));
}

TEST_F(InputFiles, MayBeCalledLikeAGlob) {
  WriteCapture("[1].png", 0);
  WriteCapture("1.png", 30);
  EXPECT_THAT(FilesIn(Report({"[1].png"})), ElementsAre("[1].png"));
}

TEST_F(InputFiles, DoNotTakeInWhatAnEarlierRunWrote) {
  WriteScroll();
  const auto captures = ElementsAre("./capture-1.png", "./capture-2.png", "./capture-3.png");
  EXPECT_THAT(FilesIn(Report({"."})), captures);
  EXPECT_THAT(FilesIn(Report({"."})), captures);
  EXPECT_THAT(FilesIn(Report({"*.png"})),
              ElementsAre("capture-1.png", "capture-2.png", "capture-3.png"));
}

/// They may as well be captures: nothing but a name speaks for pieces.
TEST_F(InputFiles, TakeInPiecesThatAnEarlierRunWroteAndKeepThem) {
  WriteScroll();
  const std::vector<std::string> arguments = {".", "-o", "page.png", "--split", "80"};
  ASSERT_EQ(Run(arguments).status, 0);
  ASSERT_EQ(ReadImage("page-1.png").rows, 80);
  std::filesystem::remove(PathOf("page-2.png"));  // of another size than the captures
  const std::string before = ReadBytes("page-1.png");
  const Testing::ProgramResult result = Run(arguments);
  EXPECT_EQ(result.status, 1);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("over the capture 'page-1.png'"));
  EXPECT_TRUE(ReadBytes("page-1.png") == before);
}

TEST_F(InputFiles, CalledLikePiecesOfTheResultAreTakenIn) {
  WriteCapture("page-1.png", 0);
  WriteCapture("page-2.png", 30);
  EXPECT_THAT(FilesIn(Report({"."})), ElementsAre("./page-1.png", "./page-2.png"));
  EXPECT_EQ(ReadImage("page.png").rows, 110);
}

TEST_F(InputFiles, AreNeverOverwritten) {
  WriteScroll();
  const std::string before = ReadBytes("capture-3.png");
  const Testing::ProgramResult result =
      Run({"capture-1.png", "capture-2.png", "capture-3.png", "-o", "./capture-3.png"});
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("'capture-3.png' is both a capture and"));
  EXPECT_EQ(ReadBytes("capture-3.png"), before);
}

}  // namespace
}  // namespace ScrollingCapture
