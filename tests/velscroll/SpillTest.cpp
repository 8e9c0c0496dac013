#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <unistd.h>

#include <gmock/gmock.h>
#include <opencv2/imgproc.hpp>
#include <sys/stat.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class Spill : public Testing::ProgramTest {
 protected:
  void SetUp() override {
    for (int i = 0; i < 6; ++i) {
      WriteCapture("capture-" + std::to_string(i) + ".png", 15 * i);
    }
    std::filesystem::create_directory(PathOf("spill"));
  }

  std::vector<std::string> SpillFolderContents() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(PathOf("spill"))) {
      names.push_back(entry.path().string());
    }
    return names;
  }

  std::vector<std::string> Arguments(const std::string& limit) const {
    return {"capture-*.png", "-o", "page.png", "--memory-limit", limit, "--spill-folder", "spill"};
  }

  /// Starts the program on the six captures and a pipe that stands for a seventh.
  std::unique_ptr<Testing::ProgramProcess> StartWithPipe() const {
    EXPECT_EQ(mkfifo(PathOf("pipe.png").c_str(), 0600), 0);
    auto arguments = Arguments("0");
    arguments.insert(arguments.begin() + 1, "pipe.png");
    arguments.insert(arguments.end(), {"--threads", "1"});  // so that the pipe is opened last
    Testing::ProgramSetting setting;
    setting.folder = folder.Prefix();
    return std::make_unique<Testing::ProgramProcess>(arguments, setting);
  }

  /// Returns when the program has read the six captures and waits for the pipe.
  int OpenPipe() const { return open(PathOf("pipe.png").c_str(), O_WRONLY); }
};

class SpillLimits : public Spill, public ::testing::WithParamInterface<std::string> {};

TEST_P(SpillLimits, GiveTheSameImage) {
  ASSERT_EQ(Run({"capture-*.png", "-o", "expected.png"}).status, 0);
  const auto result = Run(Arguments(GetParam()));
  EXPECT_EQ(result.status, 0) << result.standardError;
  EXPECT_EQ(ReadBytes("page.png"), ReadBytes("expected.png"));
  EXPECT_THAT(SpillFolderContents(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Sizes, SpillLimits,
                         ::testing::Values("0", "40000", "64K", "1MiB", "200mib", "1G"));

TEST_F(Spill, LimitIsInTheReport) {
  EXPECT_EQ(Report({"capture-*.png", "--memory-limit", "2K"}).at("settings").at("memoryLimit"),
            2048);
  EXPECT_EQ(Report({"capture-*.png"}).at("settings").at("memoryLimit"), nullptr);
}

TEST_F(Spill, WorksWithBorders) {
  const std::vector<std::string> borders = {"--engine", "phase-correlation", "--borders"};
  std::vector<std::string> expected = {"capture-*.png", "-o", "expected.png"};
  expected.insert(expected.end(), borders.begin(), borders.end());
  ASSERT_EQ(Run(expected).status, 0);
  auto arguments = Arguments("0");
  arguments.insert(arguments.end(), borders.begin(), borders.end());
  ASSERT_EQ(Run(arguments).status, 0);
  EXPECT_EQ(ReadBytes("page.png"), ReadBytes("expected.png"));
}

TEST_F(Spill, FolderIsPrivateAndGoesWhenInterrupted) {
  const auto program = StartWithPipe();
  const int pipe = OpenPipe();
  // Two of the six stay in memory.
  const auto contents = SpillFolderContents();
  EXPECT_THAT(contents, SizeIs(1 + 4));
  const auto permissions =
      std::filesystem::status(std::filesystem::path(contents.front())).permissions();
  EXPECT_EQ(permissions, std::filesystem::perms::owner_all);
  program->Signal(SIGTERM);
  close(pipe);
  EXPECT_EQ(program->Wait().status, 130);
  EXPECT_THAT(SpillFolderContents(), IsEmpty());
}

TEST_F(Spill, FileThatIsLostIsToldAndNothingIsWritten) {
  const auto program = StartWithPipe();
  const int pipe = OpenPipe();
  for (const auto& entry : std::filesystem::recursive_directory_iterator(PathOf("spill"))) {
    if (entry.is_regular_file()) {
      std::filesystem::remove(entry.path());
    }
  }
  WriteCapture("last.png", 120);
  const std::string last = ReadBytes("last.png");
  EXPECT_EQ(write(pipe, last.data(), last.size()), static_cast<ssize_t>(last.size()));
  close(pipe);
  const Testing::ProgramResult result = program->Wait();
  EXPECT_EQ(result.status, 1);
  Testing::ExpectOneLine(result);
  EXPECT_THAT(result.standardError, HasSubstr("cannot be read back"));
  EXPECT_FALSE(std::filesystem::exists(PathOf("page.png")));
  EXPECT_THAT(SpillFolderContents(), IsEmpty());
}

/// Captures of large squares, which take less room in a picture's file than in a spill file.
class FullSpillDisk : public Spill {
 protected:
  void SetUp() override {
    Spill::SetUp();
    cv::Mat squares;
    cv::resize(page(cv::Rect(0, 0, 12, 20)), squares, {}, 8, 8, cv::INTER_NEAREST);
    for (int i = 0; i < 3; ++i) {
      WriteImage("square-" + std::to_string(i) + ".png", squares.rowRange(24 * i, 24 * i + 80));
    }
    setting.fileSizeLimit = 20000;  // a capture has 30 kB of pixels
  }

  Testing::ProgramResult RunWith(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"square-*.png", "-o", "page.png", "--memory-limit", "0",
                                       "--spill-folder", "spill"});
    return Run(arguments, setting);
  }

  Testing::ProgramSetting setting;
};

TEST_F(FullSpillDisk, LeavesCapturesInMemoryAndIsToldOnce) {
  ASSERT_EQ(Run({"square-*.png", "-o", "expected.png"}).status, 0);
  const Testing::ProgramResult result = RunWith({});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(ReadBytes("page.png"), ReadBytes("expected.png"));
  EXPECT_THAT(result.standardError, HasSubstr("stay in memory beyond --memory-limit"));
  EXPECT_EQ(std::count(result.standardError.begin(), result.standardError.end(), '\n'), 1);
  EXPECT_THAT(SpillFolderContents(), IsEmpty());
}

TEST_F(FullSpillDisk, IsNotToldToWhoWantsNoWarnings) {
  EXPECT_EQ(RunWith({"-qq"}).standardError, "");
}

}  // namespace
}  // namespace ScrollingCapture
