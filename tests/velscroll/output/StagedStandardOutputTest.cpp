#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

#include <gmock/gmock.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/output/Redirection.h>
#include <velscroll/files/FileDescriptor.h>
#include <velscroll/output/staging/StagedOutput.h>
#include <velscroll/output/staging/StagedStandardOutput.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture {
namespace {

using Program::BadInput;
using Program::Failed;
using Program::FileDescriptor;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Testing::Redirection;
using ::testing::StartsWith;

class StagedStandardOutput : public ::testing::Test {
 protected:
  StagedStandardOutput() { ::setenv("TMPDIR", folder.Path().c_str(), 1); }
  ~StagedStandardOutput() override { ::unsetenv("TMPDIR"); }

  std::string Written() const {
    std::string text(200, '\0');
    text.resize(static_cast<size_t>(::pread(output.Number(), text.data(), text.size(), 0)));
    return text;
  }

  Testing::TemporaryFolder elsewhere;
  Testing::TemporaryFolder folder;
  FileDescriptor output{
      ::open((elsewhere.Prefix() + "output").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)};
};

TEST_F(StagedStandardOutput, GetsEverythingWhenAllHasBeenWritten) {
  const Redirection redirection(output.Number());
  {
    const auto staged = Program::MakeStagedOutput("-");
    staged->WriteAt(4, "after", 5);
    staged->WriteAt(0, "first", 4);
    staged->Close();
    EXPECT_EQ(Written(), "");
    staged->Commit();
    EXPECT_EQ(staged->Name(), "-");
  }
  EXPECT_EQ(Written(), "firsafter");
  EXPECT_THAT(folder.Contents(), IsEmpty());
}

TEST_F(StagedStandardOutput, GetsNothingWhenNotAllHasBeenWritten) {
  const Redirection redirection(output.Number());
  Program::MakeStagedOutput("-")->Append("some", 4);
  EXPECT_EQ(Written(), "");
  EXPECT_THAT(folder.Contents(), IsEmpty());
}

TEST_F(StagedStandardOutput, ThatIsATerminalIsRefused) {
  const Testing::TerminalOutput terminal;
  try {
    Program::MakeStagedOutput("-", "the report");
    ADD_FAILURE() << "written to a terminal";
  } catch (const BadInput& failure) {
    EXPECT_THAT(failure.what(), StartsWith("the report would be written to the terminal"));
  }
}

TEST_F(StagedStandardOutput, ThatIsFullIsTold) {
  const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  const Redirection redirection(full.Number());
  const auto staged = Program::MakeStagedOutput("-");
  staged->Append("some", 4);
  staged->Close();
  try {
    staged->Commit();
    ADD_FAILURE() << "written to a full device";
  } catch (const Failed& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("cannot write to standard output"));
  }
}

/// The number by which this process knows a file in a folder.
int DescriptorOfFileIn(const std::string& folder) {
  namespace fs = std::filesystem;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code ignored;
    if (fs::read_symlink(entry.path(), ignored).parent_path() == folder) {
      return std::stoi(entry.path().filename());
    }
  }
  return -1;
}

TEST_F(StagedStandardOutput, WhoseWaitingBytesCannotBeReadIsTold) {
  const Redirection redirection(output.Number());
  const auto staged = Program::MakeStagedOutput("-");
  staged->Append("some", 4);
  staged->Close();
  const FileDescriptor unreadable(::open("/", O_PATH | O_CLOEXEC));
  ASSERT_GE(::dup2(unreadable.Number(), DescriptorOfFileIn(folder.Path())), 0);
  try {
    staged->Commit();
    ADD_FAILURE() << "read what cannot be read";
  } catch (const Failed& failure) {
    EXPECT_THAT(failure.what(), AllOf(HasSubstr("cannot read"), HasSubstr(folder.Path().string()),
                                      HasSubstr("Bad file descriptor")));
  }
  EXPECT_EQ(Written(), "");
}

TEST_F(StagedStandardOutput, WithoutATemporaryFolderToWriteToIsRefused) {
  ::setenv("TMPDIR", "/proc", 1);
  const Redirection redirection(output.Number());
  EXPECT_THROW(Program::MakeStagedOutput("-"), BadInput);
}

}  // namespace
}  // namespace ScrollingCapture
