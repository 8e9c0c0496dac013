#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <testkit/TemporaryFolder.h>
#include <velscroll/output/staging/CommitAll.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture {
namespace {

using Program::BadInput;
using Program::CommitAll;
using Program::Failed;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace fs = std::filesystem;

/// Standard output that is full.
class FullOutput : public Program::StagedOutput {
 public:
  const std::string& Name() const override { return name; }
  void Close() override {}
  void Commit() override { throw Failed("cannot write to standard output"); }

 private:
  void Store(std::uint64_t /*offset*/, const void* /*bytes*/, size_t /*length*/) override {}

  const std::string name = "-";
};

class CommittingAll : public ::testing::Test {
 protected:
  std::string PathOf(const std::string& name) const { return folder.Prefix() + name; }

  /// Stages a file that holds its own name.
  void Stage(const std::string& name) {
    staged.push_back(Program::MakeStagedOutput(PathOf(name)));
    staged.back()->Append(name.data(), name.size());
    staged.back()->Close();
  }

  void WriteOldFile(const std::string& name) const { std::ofstream(PathOf(name)) << "old"; }

  std::string Read(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(PathOf(name)).rdbuf();
    return text.str();
  }

  template <typename Exception>
  std::string Complaint() const {
    try {
      CommitAll(staged);
      ADD_FAILURE() << "committed";
      return "";
    } catch (const Exception& failure) {
      return failure.what();
    }
  }

  const Testing::TemporaryFolder folder;
  std::vector<std::unique_ptr<Program::StagedOutput>> staged;
};

TEST_F(CommittingAll, GivesEveryFileItsName) {
  WriteOldFile("page-2.png");
  Stage("page-1.png");
  Stage("page-2.png");
  CommitAll(staged);
  EXPECT_EQ(Read("page-1.png"), "page-1.png");
  EXPECT_EQ(Read("page-2.png"), "page-2.png");
}

TEST_F(CommittingAll, RefusesTwoFilesOfOneNameAndReplacesNone) {
  WriteOldFile("page-1.png");
  Stage("page-1.png");
  Stage("page-2.png");
  Stage("./page-1.png");
  EXPECT_THAT(Complaint<BadInput>(),
              AllOf(HasSubstr("two results would both be written to"), HasSubstr("./page-1.png'")));
  EXPECT_EQ(Read("page-1.png"), "old");
  EXPECT_FALSE(fs::exists(PathOf("page-2.png")));
}

TEST_F(CommittingAll, RefusesAFileAndALinkToItAndReplacesNone) {
  WriteOldFile("page-1.png");
  fs::create_symlink("page-1.png", PathOf("page-2.png"));
  Stage("page-1.png");
  Stage("page-2.png");
  EXPECT_THAT(Complaint<BadInput>(), HasSubstr("page-2.png'; choose different names"));
  EXPECT_EQ(Read("page-1.png"), "old");
}

TEST_F(CommittingAll, GivesHardLinksFilesOfTheirOwn) {
  WriteOldFile("page-1.png");
  fs::create_hard_link(PathOf("page-1.png"), PathOf("page-2.png"));
  Stage("page-1.png");
  Stage("page-2.png");
  CommitAll(staged);
  EXPECT_EQ(Read("page-1.png"), "page-1.png");
  EXPECT_EQ(Read("page-2.png"), "page-2.png");
}

TEST_F(CommittingAll, ReplacesNoFileWhenStandardOutputFails) {
  WriteOldFile("page.png");
  Stage("page.png");
  staged.push_back(std::make_unique<FullOutput>());
  EXPECT_EQ(Complaint<Failed>(), "cannot write to standard output");
  EXPECT_EQ(Read("page.png"), "old");
}

TEST_F(CommittingAll, SaysWhatWasWrittenBeforeAFileThatCannotBe) {
  WriteOldFile("page-4.png");
  for (const char* const name : {"page-1.png", "page-2.png", "page-3.png", "page-4.png"}) {
    Stage(name);
  }
  fs::create_directory(PathOf("page-3.png"));
  EXPECT_THAT(Complaint<Failed>(),
              AllOf(HasSubstr("cannot write '" + PathOf("page-3.png") + "'"),
                    HasSubstr("; written before that: '" + PathOf("page-1.png") + "', '" +
                              PathOf("page-2.png") + "'"),
                    Not(HasSubstr("page-4.png"))));
  EXPECT_EQ(Read("page-2.png"), "page-2.png");
  EXPECT_EQ(Read("page-4.png"), "old");
}

TEST_F(CommittingAll, SaysNothingMoreWhenTheFirstFileCannotBeWritten) {
  Stage("page-1.png");
  Stage("page-2.png");
  fs::create_directory(PathOf("page-1.png"));
  EXPECT_THAT(Complaint<Failed>(), Not(HasSubstr("before")));
  EXPECT_FALSE(fs::exists(PathOf("page-2.png")));
}

}  // namespace
}  // namespace ScrollingCapture
