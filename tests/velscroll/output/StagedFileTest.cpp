#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <testkit/TemporaryFolder.h>
#include <velscroll/output/staging/StagedFile.h>
#include <velscroll/terminal/Failure.h>

namespace {

int maskChanges = 0;

}  // namespace

/// The system's own, in the place of the C library's, so that calls can be counted.
extern "C" mode_t umask(mode_t mask) noexcept {
  ++maskChanges;
  return static_cast<mode_t>(syscall(SYS_umask, mask));
}

namespace ScrollingCapture {
namespace {

using Program::BadInput;
using Program::Failed;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

class StagedFile : public ::testing::Test {
 protected:
  std::string PathOf(const std::string& name) const { return folder.Prefix() + name; }

  static std::string Read(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
  }

  static void Write(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
  }

  static void Append(Program::StagedOutput& file, const std::string& text) {
    file.Append(text.data(), text.size());
  }

  void ExpectRefusal(const std::string& path, const std::string& complaint) const {
    try {
      const Program::StagedFile file(path);
      ADD_FAILURE() << path << " is not refused";
    } catch (const BadInput& failure) {
      EXPECT_THAT(failure.what(), AllOf(HasSubstr("'" + path + "'"), HasSubstr(complaint)));
    }
  }

  Testing::TemporaryFolder folder;
};

TEST_F(StagedFile, IsSeenOnlyOnceItIsCommitted) {
  Program::StagedFile file(PathOf("page.png"));
  Append(file, "some bytes");
  file.Close();
  EXPECT_FALSE(fs::exists(PathOf("page.png")));
  file.Commit();
  EXPECT_THAT(folder.Contents(), ElementsAre(PathOf("page.png")));
  EXPECT_EQ(Read(PathOf("page.png")), "some bytes");
}

TEST_F(StagedFile, WithNothingInItIsEmpty) {
  Program::StagedFile file(PathOf("page.png"));
  file.Close();
  file.Commit();
  EXPECT_EQ(Read(PathOf("page.png")), "");
}

TEST_F(StagedFile, TakesBytesInAnyOrder) {
  Program::StagedFile file(PathOf("page.png"));
  file.WriteAt(6, "behind", 6);
  file.WriteAt(0, "front,", 6);
  Append(file, ", end");
  file.WriteAt(0, "F", 1);
  EXPECT_EQ(file.Size(), 17U);
  file.Close();
  file.Commit();
  EXPECT_EQ(Read(PathOf("page.png")), "Front,behind, end");
}

TEST_F(StagedFile, LeavesNothingBehindWhenItIsNotCommitted) {
  Write(PathOf("page.png"), "the old file");
  {
    Program::StagedFile file(PathOf("page.png"));
    Append(file, "some bytes");
    file.Close();
  }
  EXPECT_THAT(folder.Contents(), ElementsAre(PathOf("page.png")));
  EXPECT_EQ(Read(PathOf("page.png")), "the old file");
}

TEST_F(StagedFile, MakesNoFileBeforeSomethingIsWritten) {
  const Program::StagedFile file(PathOf("page.png"));
  EXPECT_THAT(folder.Contents(), IsEmpty());
}

TEST_F(StagedFile, KeepsThePermissionsOfTheFileThatItReplaces) {
  Write(PathOf("page.png"), "the old file");
  fs::permissions(PathOf("page.png"), fs::perms(0640));
  Program::StagedFile file(PathOf("page.png"));
  file.Close();
  file.Commit();
  EXPECT_EQ(fs::status(PathOf("page.png")).permissions(), fs::perms(0640));
}

TEST_F(StagedFile, HasThePermissionsThatTheMaskLeaves) {
  const mode_t mask = umask(027);
  Program::StagedFile file(PathOf("page.png"));
  file.Close();
  file.Commit();
  umask(mask);
  EXPECT_EQ(fs::status(PathOf("page.png")).permissions(), fs::perms(0640));
}

TEST_F(StagedFile, LeavesTheMaskAloneWhichBelongsToAllThreads) {
  maskChanges = 0;
  Program::StagedFile(PathOf("page.png")).Close();
  EXPECT_EQ(maskChanges, 0);
}

TEST_F(StagedFile, ThroughALinkReplacesWhatTheLinkPointsTo) {
  fs::create_directory(PathOf("elsewhere"));
  Write(PathOf("elsewhere/real.png"), "the old file");
  fs::create_symlink("elsewhere/real.png", PathOf("page.png"));
  Program::StagedFile file(PathOf("page.png"));
  Append(file, "the new file");
  file.Close();
  file.Commit();
  EXPECT_TRUE(fs::is_symlink(PathOf("page.png")));
  EXPECT_EQ(Read(PathOf("elsewhere/real.png")), "the new file");
}

TEST_F(StagedFile, InAMissingFolderIsRefused) {
  ExpectRefusal(PathOf("missing/page.png"), "there is no folder");
}

TEST_F(StagedFile, CalledLikeAFolderIsRefused) { ExpectRefusal(folder.Path(), "it is a folder"); }

TEST_F(StagedFile, CalledLikeAPipeIsRefused) {
  ASSERT_EQ(mkfifo(PathOf("pipe.png").c_str(), 0600), 0);
  ExpectRefusal(PathOf("pipe.png"), "it is not a regular file");
}

/// Nobody can make files there, the superuser included.
TEST_F(StagedFile, InAFolderThatCannotBeWrittenToIsRefused) {
  ExpectRefusal("/proc/page.png", "choose a folder that you may write to");
}

/// Fails writes beyond a size, as a full disk does.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit = {bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
  }

 private:
  rlimit before = {};
  void (*handler)(int);
};

TEST_F(StagedFile, OnAFullDiskSaysSoAndLeavesTheOldOne) {
  Write(PathOf("page.png"), "the old file");
  {
    const FileSizeLimit limit(4096);
    Program::StagedFile file(PathOf("page.png"));
    try {
      Append(file, std::string(5000, 'x'));
      ADD_FAILURE() << "more was written than there is room for";
    } catch (const Failed& failure) {
      EXPECT_THAT(failure.what(), AllOf(HasSubstr("cannot write '" + PathOf("page.png") + "'"),
                                        HasSubstr("make room or choose another folder")));
    }
  }
  EXPECT_THAT(folder.Contents(), ElementsAre(PathOf("page.png")));
  EXPECT_EQ(Read(PathOf("page.png")), "the old file");
}

TEST_F(StagedFile, WhoseNameWasTakenByAFolderMeanwhileSaysSo) {
  Program::StagedFile file(PathOf("page.png"));
  Append(file, "some bytes");
  file.Close();
  fs::create_directory(PathOf("page.png"));
  EXPECT_THROW(file.Commit(), Failed);
}

}  // namespace
}  // namespace ScrollingCapture
