#include <filesystem>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

namespace fs = std::filesystem;

class OutputFile : public Testing::ProgramTest {
 protected:
  void ExpectRefusal(const std::string& output, const std::string& complaint) const {
    WriteScroll();
    const auto before = Names();
    const Testing::ProgramResult result = Run({"capture-*.png", "-o", output});
    EXPECT_EQ(result.status, 2);
    Testing::ExpectOneLine(result);
    EXPECT_THAT(result.standardError, AllOf(HasSubstr("'" + output + "'"), HasSubstr(complaint)));
    EXPECT_EQ(Names(), before);
  }
};

TEST_F(OutputFile, InAMissingFolderIsRefused) {
  ExpectRefusal("missing/page.png", "there is no folder 'missing'");
}

TEST_F(OutputFile, BelowAFileIsRefused) {
  ExpectRefusal("capture-1.png/page.png", "there is no folder 'capture-1.png'");
}

TEST_F(OutputFile, CalledLikeAFolderIsRefused) {
  fs::create_directory(PathOf("page.png"));
  ExpectRefusal("page.png", "it is a folder");
}

/// Nobody can make files there, the superuser included.
TEST_F(OutputFile, InAFolderThatCannotBeWrittenToIsRefused) {
  ExpectRefusal("/proc/page.png", "choose a folder that you may write to");
}

TEST_F(OutputFile, CalledLikeAPipeIsRefusedAndThePipeStays) {
  ASSERT_EQ(mkfifo(PathOf("page.png").c_str(), 0600), 0);
  ExpectRefusal("page.png", "it is not a regular file");
  EXPECT_TRUE(fs::is_fifo(PathOf("page.png")));
}

TEST_F(OutputFile, ReplacesTheOldOneAndKeepsItsPermissions) {
  WriteScroll();
  WriteBytes("page.png", "the old file");
  fs::permissions(PathOf("page.png"), fs::perms(0640));
  EXPECT_EQ(Run({"capture-*.png", "-o", "page.png"}).status, 0);
  EXPECT_EQ(ReadImage("page.png").rows, 140);
  EXPECT_EQ(fs::status(PathOf("page.png")).permissions(), fs::perms(0640));
}

TEST_F(OutputFile, GetsThePermissionsThatTheMaskLeaves) {
  WriteScroll();
  const mode_t mask = umask(027);
  EXPECT_EQ(Run({"capture-*.png", "-o", "page.png"}).status, 0);
  umask(mask);
  EXPECT_EQ(fs::status(PathOf("page.png")).permissions(), fs::perms(0640));
}

TEST_F(OutputFile, ThroughALinkReplacesWhatTheLinkPointsTo) {
  WriteScroll();
  fs::create_directory(PathOf("elsewhere"));
  WriteBytes("elsewhere/real.png", "the old file");
  fs::create_symlink("elsewhere/real.png", PathOf("page.png"));
  EXPECT_EQ(Run({"capture-*.png", "-o", "page.png"}).status, 0);
  EXPECT_TRUE(fs::is_symlink(PathOf("page.png")));
  EXPECT_EQ(ReadImage("elsewhere/real.png").rows, 140);
}

class FullDisk : public OutputFile, public ::testing::WithParamInterface<const char*> {};

/// A limit on the size of files fails a write like a full disk does, at the same place.
TEST_P(FullDisk, LeavesTheOldFileAndNothingElse) {
  WriteScroll();
  const std::string output = std::string("page.") + GetParam();
  WriteBytes(output, "the old file");
  const auto before = Names();
  Testing::ProgramSetting setting;
  setting.fileSizeLimit = 4096;
  const Testing::ProgramResult result =
      Run({"capture-*.png", "-o", output, "--report", "page.json"}, setting);
  EXPECT_EQ(result.status, 1);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, AllOf(HasSubstr("cannot write '" + output + "'"),
                                          HasSubstr("choose another folder")));
  EXPECT_EQ(ReadBytes(output), "the old file");
  EXPECT_EQ(Names(), before);
}

INSTANTIATE_TEST_SUITE_P(Formats, FullDisk, ::testing::Values("png", "bmp", "tif", "webp", "jpg"),
                         [](const auto& extension) { return std::string(extension.param); });

TEST_F(OutputFile, AppearsOnlyWithItsReport) {
  WriteCapture("a.png", 0);
  cv::Mat flat(Testing::CaptureSize, CV_8UC3, cv::Scalar::all(90));
  WriteImage("a.png", flat);
  const auto before = Names();
  // The image of one colour fits, the report on so many repeats does not.
  std::vector<std::string> arguments(100, "a.png");
  arguments.insert(arguments.end(), {"-o", "page.png", "--report", "page.json"});
  Testing::ProgramSetting setting;
  setting.fileSizeLimit = 4096;
  const Testing::ProgramResult result = Run(arguments, setting);
  EXPECT_EQ(result.status, 1);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("cannot write 'page.json'"));
  EXPECT_EQ(Names(), before);
}

struct SharedName {
  const char* name;
  std::vector<std::string> arguments;
};
void PrintTo(const SharedName& shared, std::ostream* stream) { *stream << shared.name; }

class OutputFileOfTwoResults : public OutputFile,
                               public ::testing::WithParamInterface<SharedName> {};

/// The program makes names as well, of which the user has typed none.
TEST_P(OutputFileOfTwoResults, IsRefusedAndNothingIsWritten) {
  WriteScroll();
  WriteCapture("far.png", 250);
  WriteBytes("page-1.png", "the old file");
  const auto before = Names();
  std::vector<std::string> arguments = {"capture-1.png", "capture-2.png", "-o", "page.png"};
  arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
  const Testing::ProgramResult result = Run(arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.standardError, HasSubstr("two results would both be written to"));
  EXPECT_EQ(Names(), before);
  EXPECT_EQ(ReadBytes("page-1.png"), "the old file");
}

INSTANTIATE_TEST_SUITE_P(
    Names, OutputFileOfTwoResults,
    ::testing::Values(SharedName{"PieceAndPreview", {"--split", "60", "--preview", "page-1.png"}},
                      SharedName{"PieceAndReport", {"--split", "60", "--report", "page-2.png"}},
                      SharedName{"PartAndPreview", {"far.png", "--preview", "./page-1.png"}},
                      SharedName{"PartAndReport", {"far.png", "--report", "page-2.png"}}),
    [](const auto& shared) { return shared.param.name; });

TEST_F(OutputFile, MayBeCalledLikeAPieceThatThereIsNot) {
  WriteScroll();
  EXPECT_EQ(Run({"capture-*.png", "-o", "page.png", "--report", "page-1.png"}).status, 0);
  EXPECT_EQ(ReadImage("page.png").rows, 140);
}

TEST_F(OutputFile, IsNotWrittenWhenTheReportCannotBe) {
  WriteScroll();
  const auto before = Names();
  const Testing::ProgramResult result =
      Run({"capture-*.png", "-o", "page.png", "--report", "missing/page.json"});
  EXPECT_EQ(result.status, 2);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("'missing/page.json'"));
  EXPECT_EQ(Names(), before);
}

}  // namespace
}  // namespace ScrollingCapture
