#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/TemporaryFolder.h>
#include <testkit/faults/FailingAllocator.h>
#include <testkit/output/DrawnPicture.h>
#include <velscroll/output/PictureWriting.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture {
namespace {

using Program::BadInput;
using Program::Cancelled;
using Program::Failed;
using Program::Picture;
using Program::PictureOf;
using Program::PictureOutput;
using Program::RequireWritable;
using Program::StagePicture;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

const cv::Size Size(1000, 1300);

void Ignore(int /*rows*/) {}

class PictureWriting : public ::testing::Test {
 protected:
  PictureOutput OutputTo(const std::string& name, unsigned int threads = 2) const {
    PictureOutput output;
    output.path = folder.Prefix() + name;
    output.settings.threads = threads;
    return output;
  }

  void ExpectOnlyTheOldFile() const {
    EXPECT_THAT(folder.Contents(), ElementsAre(folder.Prefix() + "page.png"));
    std::ifstream file(folder.Prefix() + "page.png");
    std::string text;
    std::getline(file, text);
    EXPECT_EQ(text, "the old file");
  }

  void WriteOldFile() const { std::ofstream(folder.Prefix() + "page.png") << "the old file"; }

  const Testing::TemporaryFolder folder;
  const cv::Mat pixels = Testing::DrawnPicture(Size);
};

cv::Mat ReadRgb(const std::string& path) {
  cv::Mat picture = cv::imread(path);
  cv::cvtColor(picture, picture, cv::COLOR_BGR2RGBA);
  return picture;
}

TEST_F(PictureWriting, MakesOneFileOfAPicture) {
  const auto files = StagePicture(PictureOf(pixels), OutputTo("page.png"), Ignore);
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files.front()->Name(), folder.Prefix() + "page.png");
  files.front()->Commit();
  EXPECT_THAT(folder.Contents(), ElementsAre(folder.Prefix() + "page.png"));
  EXPECT_TRUE(Testing::SameBits(ReadRgb(folder.Prefix() + "page.png"), pixels));
}

TEST_F(PictureWriting, MakesAFileOfEveryPiece) {
  PictureOutput output = OutputTo("page.png");
  output.mostRowsPerFile = 500;
  const auto files = StagePicture(PictureOf(pixels), output, Ignore);
  cv::Mat together;
  for (const auto& file : files) {
    file->Commit();
    const cv::Mat piece = ReadRgb(file->Name());
    EXPECT_LE(piece.rows, 500);
    together.push_back(piece);
  }
  EXPECT_THAT(folder.Contents(),
              UnorderedElementsAre(folder.Prefix() + "page-1.png", folder.Prefix() + "page-2.png",
                                   folder.Prefix() + "page-3.png"));
  EXPECT_TRUE(Testing::SameBits(together, pixels));
}

TEST_F(PictureWriting, KeepsTheNameWhenNoCutIsNeeded) {
  PictureOutput output = OutputTo("page.png");
  output.mostRowsPerFile = Size.height;
  const auto files = StagePicture(PictureOf(pixels), output, Ignore);
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files.front()->Name(), output.path);
}

TEST_F(PictureWriting, WritesNoPieceWhenOneIsNotAllowed) {
  std::filesystem::create_directory(folder.Prefix() + "page-3.png");
  PictureOutput output = OutputTo("page.png");
  output.mostRowsPerFile = 500;
  EXPECT_THROW(StagePicture(PictureOf(pixels), output, Ignore), BadInput);
  EXPECT_THAT(folder.Contents(), ElementsAre(folder.Prefix() + "page-3.png"));
}

TEST_F(PictureWriting, AsksForEveryRowOnceFromTopToBottom) {
  int next = 0;
  const Picture picture = {Size, true, [&](const cv::Rect& area) {
                             EXPECT_EQ(area.x, 0);
                             EXPECT_EQ(area.y, next);
                             EXPECT_EQ(area.width, Size.width);
                             next += area.height;
                             return pixels(area);
                           }};
  std::vector<int> told;
  StagePicture(picture, OutputTo("page.png"), [&told](int rows) { told.push_back(rows); });
  EXPECT_EQ(next, Size.height);
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_EQ(told.back(), Size.height);
}

class Abandoned : public PictureWriting, public ::testing::WithParamInterface<unsigned int> {};

INSTANTIATE_TEST_SUITE_P(PictureWriting, Abandoned, ::testing::Values(1U, 2U, 4U),
                         [](const auto& threads) { return std::to_string(threads.param); });

TEST_P(Abandoned, ByItsSourceLeavesTheOldFileAndNothingElse) {
  WriteOldFile();
  const Picture picture = {Size, true, [this](const cv::Rect& area) {
                             if (area.y > Size.height / 2) {
                               throw std::runtime_error("a capture is gone");
                             }
                             return pixels(area);
                           }};
  EXPECT_THROW(StagePicture(picture, OutputTo("page.png", GetParam()), Ignore), std::runtime_error);
  ExpectOnlyTheOldFile();
}

TEST_P(Abandoned, ByItsProgressLeavesTheOldFileAndNothingElse) {
  WriteOldFile();
  EXPECT_THROW(StagePicture(PictureOf(pixels), OutputTo("page.png", GetParam()),
                            [](int) { throw Cancelled(); }),
               Cancelled);
  ExpectOnlyTheOldFile();
}

/// In a process and a folder of its own, since a request for the end is never taken back.
TEST_P(Abandoned, ByTheUserLeavesTheOldFileAndNothingElse) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto writeAndInterrupt = [this] {
    WriteOldFile();
    Program::ListenForInterruption();
    try {
      StagePicture(PictureOf(pixels), OutputTo("page.png", GetParam()),
                   [](int) { std::raise(SIGINT); });
    } catch (const Cancelled&) {
      ExpectOnlyTheOldFile();
      std::filesystem::remove_all(folder.Path());
      std::exit(HasFailure() ? 1 : 0);
    }
    std::exit(2);
  };
  EXPECT_EXIT(writeAndInterrupt(), ::testing::ExitedWithCode(0), "");
}

TEST_F(PictureWriting, TellsBeforeItStartsThatAFormatCannotHoldThePicture) {
  const Picture picture = {{100, 70000}, true, [](const cv::Rect& area) {
                             ADD_FAILURE() << "rendered";
                             return cv::Mat(area.size(), CV_8UC4);
                           }};
  try {
    StagePicture(picture, OutputTo("page.jpg"), Ignore);
    ADD_FAILURE() << "written";
  } catch (const Failed& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("--split 65500"));
  }
}

TEST_F(PictureWriting, AllowsTallPicturesInPieces) {
  PictureOutput output = OutputTo("page.jpg");
  EXPECT_THROW(RequireWritable(output, {100, 70000}), Failed);
  output.mostRowsPerFile = 65500;
  EXPECT_NO_THROW(RequireWritable(output, {100, 70000}));
  output.mostRowsPerFile = 65501;
  EXPECT_THROW(RequireWritable(output, {100, 70000}), Failed);
}

TEST_F(PictureWriting, SendsNoPiecesToStandardOutput) {
  PictureOutput output;
  output.path = "-";
  output.mostRowsPerFile = 500;
  EXPECT_THROW(RequireWritable(output, {100, 501}), BadInput);
  EXPECT_NO_THROW(RequireWritable(output, {100, 500}));
}

class WithoutMemory : public PictureWriting, public ::testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(PictureWriting, WithoutMemory,
                         ::testing::Values("p.png", "p.tif", "p.bmp", "p.webp", "p.jpg"),
                         [](const auto& name) { return std::string(name.param + 2); });

TEST_P(WithoutMemory, ForAnyMatrixFailsAndLeavesNothing) {
  const cv::Mat small = Testing::DrawnPictureWithHoles({300, 400});
  const size_t failing = Testing::CountFailingAttempts([&](size_t passing) {
    const Testing::FailingAllocator allocator(passing, Testing::FailingAllocator::First);
    try {
      StagePicture(PictureOf(small), OutputTo(GetParam(), 1), Ignore);
    } catch (const cv::Exception& failure) {
      EXPECT_EQ(failure.code, cv::Error::StsNoMem);
    }
    return allocator.HasFailed();
  });
  EXPECT_GT(failing, 0U);
  EXPECT_THAT(folder.Contents(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace ScrollingCapture
