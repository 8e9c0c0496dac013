#include <filesystem>
#include <functional>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <sys/stat.h>

#include "ProgramTest.h"

namespace ScrollingCapture {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Matcher;

class BadInput : public Testing::ProgramTest {
 protected:
  /// Cuts a file down to a part of its length.
  void CutShort(const std::string& name, double part) const {
    const std::string bytes = ReadBytes(name);
    WriteBytes(name,
               bytes.substr(0, static_cast<size_t>(static_cast<double>(bytes.size()) * part)));
  }

  void ExpectRefusal(const std::vector<std::string>& captures,
                     const Matcher<std::string>& complaint) const {
    const auto before = Names();
    std::vector<std::string> arguments = captures;
    arguments.insert(arguments.end(), {"-o", "page.png", "--report", "page.json"});
    const Testing::ProgramResult result = Run(arguments);
    EXPECT_EQ(result.status, 2);
    Testing::ExpectOneLine(result);
    EXPECT_THAT(result.standardError, complaint);
    EXPECT_EQ(Names(), before);
  }
};

TEST_F(BadInput, MissingFileIsNamed) {
  WriteScroll();
  ExpectRefusal({"capture-1.png", "capture-7.png"}, HasSubstr("there is no file 'capture-7.png'"));
}

TEST_F(BadInput, GlobWithoutMatchIsNamed) {
  ExpectRefusal({"shot-*.png"}, HasSubstr("no file matches 'shot-*.png'"));
}

TEST_F(BadInput, FolderWithoutImagesIsNamed) {
  std::filesystem::create_directory(PathOf("empty"));
  WriteBytes("empty/notes.txt", "text");
  ExpectRefusal({"empty"}, HasSubstr("the folder 'empty' has no images"));
}

TEST_F(BadInput, FileBelowAFileIsNamed) {
  WriteScroll();
  ExpectRefusal({"capture-1.png/2.png"}, HasSubstr("'capture-1.png/2.png'"));
}

TEST_F(BadInput, EmptyFileIsNamed) {
  WriteScroll();
  WriteBytes("capture-2.png", "");
  ExpectRefusal({"capture-1.png", "capture-2.png"}, HasSubstr("'capture-2.png' is empty"));
}

TEST_F(BadInput, FileThatIsNoImageIsNamed) {
  WriteScroll();
  WriteBytes("capture-2.png", "Dear diary, today nothing scrolled.");
  ExpectRefusal({"capture-1.png", "capture-2.png"},
                HasSubstr("'capture-2.png' is not an image that can be read"));
}

TEST_F(BadInput, DamagedFileIsNamed) {
  WriteScroll();
  std::string bytes = ReadBytes("capture-2.png");
  bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 0x55);
  WriteBytes("capture-2.png", bytes);
  ExpectRefusal({"capture-1.png", "capture-2.png"}, HasSubstr("'capture-2.png' is damaged"));
}

TEST_F(BadInput, DamagedBigTiffFileIsNamed) {
  WriteBytes("a.tif", std::string("II+\0\x08\0\0\0", 8) + std::string(40, '\xAA'));
  ExpectRefusal({"a.tif"}, HasSubstr("'a.tif' is damaged or cut short"));
}

TEST_F(BadInput, ControlCharactersInANameDoNotBreakTheLine) {
  ExpectRefusal({"two\nlines\x1b.png"}, HasSubstr("'two?lines?.png'"));
}

TEST_F(BadInput, DifferentSizesAreTold) {
  WriteScroll();
  WriteImage("other.png", page(cv::Rect(0, 0, 96, 79)));
  ExpectRefusal(
      {"capture-1.png", "capture-2.png", "other.png"},
      HasSubstr("'other.png' has 96 x 79 pixels, but the captures before it have 96 x 80"));
}

TEST_F(BadInput, TooManyPixelsAreToldBeforeTheyAreDecoded) {
  std::string header = "P5\n1048577 1\n255\n";
  WriteBytes("wide.pgm", header + std::string(1048577, '\x7f'));
  ExpectRefusal({"wide.pgm"}, AllOf(HasSubstr("'wide.pgm'"), HasSubstr("1048576")));
}

struct Cut {
  std::string extension;
  double part;
};

void PrintTo(const Cut& cut, std::ostream* stream) {
  *stream << cut.extension << " cut at " << cut.part;
}

class CutShortFile : public BadInput, public ::testing::WithParamInterface<Cut> {};

TEST_P(CutShortFile, IsNamed) {
  const std::string name = "capture-2" + GetParam().extension;
  WriteCapture("capture-1.png", 0);
  WriteCapture(name, 30);
  CutShort(name, GetParam().part);
  ExpectRefusal({"capture-1.png", name}, HasSubstr("'" + name + "' is damaged or cut short"));
}

std::vector<Cut> Cuts() {
  std::vector<Cut> cuts;
  for (const char* const extension : {".png", ".jpg", ".webp", ".tif", ".bmp"}) {
    for (const double part : {0.01, 0.1, 0.5, 0.9, 0.9999}) {
      cuts.push_back({extension, part});
    }
  }
  return cuts;
}

INSTANTIATE_TEST_SUITE_P(Formats, CutShortFile, ::testing::ValuesIn(Cuts()), [](const auto& cut) {
  return cut.param.extension.substr(1) + "At" +
         std::to_string(static_cast<int>(cut.param.part * 10000));
});

TEST_F(BadInput, ProgressiveJpegIsCheckedToItsEnd) {
  const cv::Mat capture = page(cv::Rect({0, 0}, Testing::CaptureSize));
  std::vector<unsigned char> bytes;
  ASSERT_TRUE(cv::imencode(".jpg", capture, bytes, {cv::IMWRITE_JPEG_PROGRESSIVE, 1}));
  WriteBytes("whole.jpg", std::string(bytes.begin(), bytes.end()));
  WriteBytes("trailer.jpg", std::string(bytes.begin(), bytes.end()) + "camera data");
  EXPECT_EQ(Run({"whole.jpg", "trailer.jpg", "-o", "page.png"}).status, 0);
  CutShort("whole.jpg", 0.6);
  ExpectRefusal({"trailer.jpg", "whole.jpg"}, HasSubstr("'whole.jpg' is damaged or cut short"));
}

}  // namespace
}  // namespace ScrollingCapture
