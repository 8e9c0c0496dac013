// Files of pictures: what is in them, and that a failure leaves none.

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Testing::Owned;
using Testing::SameBits;
using ::testing::UnorderedElementsAre;

class PictureFiles : public testing::Test {
 protected:
  static Owned<vel_stitched> StitchAt(const cv::Mat& page, const std::vector<int>& rows) {
    const auto session = Testing::MakeSession();
    for (const int row : rows) {
      Testing::Add(session.get(), page.rowRange(row, row + 100).clone());
    }
    return Testing::Stitch(session.get());
  }

  static vel_file_settings DefaultSettings() {
    vel_file_settings settings;
    vel_file_settings_init(&settings, sizeof settings);
    return settings;
  }

  static cv::Mat Read(const std::string& path) {
    cv::Mat file = cv::imread(path, cv::IMREAD_UNCHANGED);
    cv::cvtColor(file, file, file.channels() == 4 ? cv::COLOR_BGRA2RGBA : cv::COLOR_BGR2RGBA);
    return file;
  }

  vel_result Write(const std::string& name, const vel_file_settings* settings = nullptr,
                   vel_progress progress = nullptr, void* user = nullptr) const {
    return vel_stitched_write(stitched.get(), (folder.Prefix() + name).c_str(), settings, progress,
                              user);
  }

  std::string Message() const {
    std::string text(VEL_MESSAGE_SIZE, '\0');
    EXPECT_EQ(vel_stitched_message(stitched.get(), text.data(), text.size()), VEL_OK);
    text.resize(text.find('\0'));
    return text;
  }

  const Testing::TemporaryFolder folder;
  const cv::Mat page = Testing::NoiseCapture({120, 700}, 3);
  const Owned<vel_stitched> stitched = StitchAt(page, {0, 60, 120});
  const cv::Mat whole = page.rowRange(0, 220);
};

TEST_F(PictureFiles, HoldThePictureInEveryLosslessFormat) {
  for (const char* const name : {"page.png", "page.tiff", "page.bmp", "page.webp"}) {
    ASSERT_EQ(Write(name), VEL_OK) << name;
    EXPECT_TRUE(SameBits(Read(folder.Prefix() + name), whole)) << name;
  }
}

TEST_F(PictureFiles, AreWrittenOfAPictureAlone) {
  const std::string path = folder.Prefix() + "part.png";
  const auto part = Testing::PartOf(stitched.get());
  ASSERT_EQ(vel_picture_write(part.get(), path.c_str(), nullptr, nullptr, nullptr), VEL_OK);
  EXPECT_TRUE(SameBits(Read(path), whole));
}

TEST_F(PictureFiles, ObeyTheSettings) {
  vel_file_settings settings = DefaultSettings();
  settings.jpeg_quality = 10;
  settings.thread_count = 2;
  ASSERT_EQ(Write("coarse.jpg", &settings), VEL_OK);
  ASSERT_EQ(Write("fine.jpg"), VEL_OK);
  EXPECT_LT(std::filesystem::file_size(folder.Path() / "coarse.jpg"),
            std::filesystem::file_size(folder.Path() / "fine.jpg"));
}

TEST_F(PictureFiles, ShowTheBackgroundWhereNoCaptureShowsAnything) {
  const auto session = Testing::MakeSession();
  Testing::AddAll(session.get(),
                  {page(cv::Rect(0, 0, 80, 100)).clone(), page(cv::Rect(40, 50, 80, 100)).clone()});
  const auto corner = Testing::PartOf(Testing::Stitch(session.get()).get());
  vel_file_settings settings = DefaultSettings();
  settings.has_background = 1;
  settings.background_red = 10;
  settings.background_green = 20;
  settings.background_blue = 30;
  const std::string path = folder.Prefix() + "corner.png";
  ASSERT_EQ(vel_picture_write(corner.get(), path.c_str(), &settings, nullptr, nullptr), VEL_OK);
  EXPECT_EQ(Read(path).at<cv::Vec4b>(0, 119), cv::Vec4b(10, 20, 30, 255));
}

TEST_F(PictureFiles, AreSeveralWhenThePictureIsCut) {
  vel_file_settings settings = DefaultSettings();
  settings.rows_per_file = 100;
  ASSERT_EQ(Write("page.png", &settings), VEL_OK);
  EXPECT_THAT(folder.Contents(),
              UnorderedElementsAre(folder.Prefix() + "page-1.png", folder.Prefix() + "page-2.png",
                                   folder.Prefix() + "page-3.png"));
  EXPECT_TRUE(SameBits(Read(folder.Prefix() + "page-2.png"), whole.rowRange(100, 200)));
}

TEST_F(PictureFiles, AreNotWrittenOverOneAnother) {
  std::filesystem::create_symlink("page-2.png", folder.Prefix() + "page-1.png");
  Testing::WriteFile(folder.Prefix() + "page-2.png", "before");
  vel_file_settings settings = DefaultSettings();
  settings.rows_per_file = 100;
  EXPECT_EQ(Write("page.png", &settings), VEL_FILE_UNUSABLE);
  EXPECT_THAT(Message(), HasSubstr("page-2.png'; choose different names"));
  EXPECT_EQ(Testing::ReadFile(folder.Prefix() + "page-2.png"), "before");
  EXPECT_EQ(folder.Contents().size(), 2U);
}

TEST_F(PictureFiles, AreOneForEachPart) {
  const auto parts = StitchAt(page, {0, 40, 500, 540});
  const std::string path = folder.Prefix() + "page.png";
  ASSERT_EQ(vel_stitched_write(parts.get(), path.c_str(), nullptr, nullptr, nullptr), VEL_OK);
  EXPECT_TRUE(SameBits(Read(folder.Prefix() + "page-1.png"), page.rowRange(0, 140)));
  EXPECT_TRUE(SameBits(Read(folder.Prefix() + "page-2.png"), page.rowRange(500, 640)));
  EXPECT_EQ(folder.Contents().size(), 2U);
}

TEST_F(PictureFiles, AreWrittenWithProgressToTheEnd) {
  std::vector<int> told;
  const vel_progress note = [](int32_t percent, void* user) -> int32_t {
    static_cast<std::vector<int>*>(user)->push_back(percent);
    return 0;
  };
  ASSERT_EQ(Write("page.png", nullptr, note, &told), VEL_OK);
  ASSERT_THAT(told, testing::Not(IsEmpty()));
  EXPECT_EQ(told.back(), 100);
}

TEST_F(PictureFiles, AreNotWrittenWhenCancelled) {
  const vel_progress stop = [](int32_t /*percent*/, void* /*user*/) -> int32_t { return 1; };
  EXPECT_EQ(Write("page.png", nullptr, stop), VEL_CANCELLED);
  EXPECT_THAT(folder.Contents(), IsEmpty());
}

TEST_F(PictureFiles, AreNotWrittenWithoutAFolderOrAFormat) {
  EXPECT_EQ(Write("missing/page.png"), VEL_FILE_UNUSABLE);
  EXPECT_THAT(Message(), HasSubstr("there is no folder"));
  EXPECT_EQ(Write("page.gif"), VEL_FILE_UNUSABLE);
  EXPECT_THAT(Message(), HasSubstr("no known format"));
  EXPECT_EQ(Write(""), VEL_FILE_UNUSABLE);
  EXPECT_EQ(vel_stitched_write(stitched.get(), "-", nullptr, nullptr, nullptr), VEL_FILE_UNUSABLE);
  EXPECT_EQ(vel_stitched_write(stitched.get(), nullptr, nullptr, nullptr, nullptr),
            VEL_INVALID_ARGUMENT);
  EXPECT_THAT(folder.Contents(), IsEmpty());
}

TEST_F(PictureFiles, AreNotWrittenToAFullDisk) {
  Testing::WriteFile(folder.Prefix() + "page.bmp", "before");
  {
    const Testing::FileSizeLimit limit(1000);
    EXPECT_EQ(Write("page.bmp"), VEL_FILE_FAILED);
  }
  EXPECT_THAT(Message(), HasSubstr("make room"));
  EXPECT_THAT(folder.Contents(), UnorderedElementsAre(folder.Prefix() + "page.bmp"));
  EXPECT_EQ(Testing::ReadFile(folder.Prefix() + "page.bmp"), "before");
}

struct Excess {
  const char* name;
  cv::Size size;
  std::string message;
};

void PrintTo(const Excess& excess, std::ostream* stream) { *stream << excess.name; }

class PictureFilesTooLarge : public PictureFiles, public testing::WithParamInterface<Excess> {};

TEST_P(PictureFilesTooLarge, AreNotWrittenAndTheCallerHearsWhatWouldDo) {
  const auto session = Testing::MakeSession();
  Testing::Add(session.get(), cv::Mat(GetParam().size, CV_8UC4, cv::Scalar::all(255)));
  const auto tooLarge = Testing::PartOf(Testing::Stitch(session.get()).get());
  const std::string path = folder.Prefix() + "page.webp";
  EXPECT_EQ(vel_picture_write(tooLarge.get(), path.c_str(), nullptr, nullptr, nullptr),
            VEL_FILE_UNUSABLE);
  EXPECT_EQ(Testing::MessageOf(tooLarge.get()), GetParam().message);
  EXPECT_THAT(folder.Contents(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    WebP, PictureFilesTooLarge,
    testing::Values(Excess{"Columns",
                           {16384, 2},
                           "an image of 16384 x 2 pixels is too large for WebP, which holds at "
                           "most 16383 rows or columns; write a PNG file"},
                    Excess{"Rows",
                           {2, 16384},
                           "an image of 2 x 16384 pixels is too large for WebP, which holds at "
                           "most 16383 rows or columns; set rows_per_file, or write a PNG file"}),
    [](const auto& excess) { return std::string(excess.param.name); });

TEST_F(PictureFiles, AreNotWrittenWithSettingsOutOfRange) {
  const auto refuses = [this](void (*spoil)(vel_file_settings&)) {
    vel_file_settings settings = DefaultSettings();
    spoil(settings);
    return Write("page.png", &settings) == VEL_INVALID_ARGUMENT;
  };
  EXPECT_TRUE(refuses([](auto& settings) { settings.jpeg_quality = 0; }));
  EXPECT_TRUE(refuses([](auto& settings) { settings.png_level = 10; }));
  EXPECT_TRUE(refuses([](auto& settings) { settings.rows_per_file = -1; }));
  EXPECT_TRUE(refuses([](auto& settings) { settings.thread_count = 1025; }));
  EXPECT_TRUE(refuses([](auto& settings) { settings.struct_size = 1; }));
  EXPECT_THAT(folder.Contents(), IsEmpty());
}

/// The standard error of the process in a file while it lives.
class StandardErrorInto {
 public:
  explicit StandardErrorInto(const std::string& path) : original(::dup(STDERR_FILENO)) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    ::dup2(file, STDERR_FILENO);
    ::close(file);
  }
  StandardErrorInto(const StandardErrorInto&) = delete;
  StandardErrorInto& operator=(const StandardErrorInto&) = delete;
  ~StandardErrorInto() {
    ::dup2(original, STDERR_FILENO);
    ::close(original);
  }

 private:
  const int original;
};

TEST_F(PictureFiles, AreReadWithoutTouchingTheHostsStandardError) {
  ASSERT_EQ(Write("page.png"), VEL_OK);
  std::string damaged = Testing::ReadFile(folder.Prefix() + "page.png");
  damaged.resize(damaged.size() / 2);
  Testing::WriteFile(folder.Prefix() + "damaged.png", damaged);
  const auto session = Testing::MakeSession();
  {
    // What the decoder says would not get here if anything else were done to the stream meanwhile.
    const StandardErrorInto file(folder.Prefix() + "messages");
    EXPECT_EQ(vel_session_add_file(session.get(), (folder.Prefix() + "damaged.png").c_str(),
                                   nullptr, nullptr),
              VEL_FILE_UNUSABLE);
  }
  EXPECT_NE(Testing::ReadFile(folder.Prefix() + "messages"), "");
}

TEST_F(PictureFiles, CarryTheResolutionOfTheFirstCapture) {
  const std::string first = folder.Prefix() + "capture.jpg";
  cv::Mat capture;
  cv::cvtColor(whole, capture, cv::COLOR_RGBA2BGR);
  ASSERT_TRUE(cv::imwrite(first, capture));
  std::string bytes = Testing::ReadFile(first);
  ASSERT_EQ(bytes.substr(6, 4), "JFIF");
  bytes[13] = 1;  // pixels per inch
  bytes[14] = 0;
  bytes[15] = static_cast<char>(144);
  bytes[16] = 0;
  bytes[17] = static_cast<char>(144);
  Testing::WriteFile(first, bytes);
  const auto session = Testing::MakeSession();
  ASSERT_EQ(vel_session_add_file(session.get(), first.c_str(), nullptr, nullptr), VEL_OK);
  const std::string path = folder.Prefix() + "page.png";
  ASSERT_EQ(vel_stitched_write(Testing::Stitch(session.get()).get(), path.c_str(), nullptr, nullptr,
                               nullptr),
            VEL_OK);
  EXPECT_THAT(Testing::ReadFile(path), HasSubstr("pHYs"));
}

}  // namespace
}  // namespace ScrollingCapture
