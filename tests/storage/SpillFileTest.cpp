#include <cstdint>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>

namespace ScrollingCapture {
namespace {

using Testing::NoiseCapture;
using Testing::OpenProvider;
using Testing::ReadFile;
using Testing::SameBits;
using Testing::TemporaryFolder;
using Testing::WriteFile;

template <typename Field>
std::string BytesOf(Field field) {
  return {reinterpret_cast<const char*>(&field), sizeof(field)};
}

std::string Header(std::int32_t columns, std::int32_t rows, std::uint64_t elementSize,
                   std::int32_t type) {
  return BytesOf(columns) + BytesOf(rows) + BytesOf(elementSize) + BytesOf(type);
}

class SpillFileTest : public testing::Test {
 protected:
  void ExpectUnreadable(const std::string& unreadable) {
    cv::Mat image;
    try {
      provider.LoadMat(image, unreadable);
      ADD_FAILURE() << "was read";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "Could not open or read file.");
    }
  }

  TemporaryFolder folder;
  std::string path = folder.Prefix() + "file";
  OpenProvider provider{folder.Prefix()};
};

TEST_F(SpillFileTest, HoldsColumnsRowsElementSizeTypeAndPixels) {
  cv::Mat image(3, 2, CV_8UC4);
  for (int i = 0; i < 24; ++i) {
    image.data[i] = static_cast<unsigned char>(100 + i);
  }
  ASSERT_TRUE(provider.SaveMat(image, path));
  const std::string expected(
      "\x02\0\0\0"
      "\x03\0\0\0"
      "\x04\0\0\0\0\0\0\0"
      "\x18\0\0\0"
      "defghijklmnopqrstuvwxyz{",
      44);
  EXPECT_EQ(ReadFile(path), expected);
}

TEST_F(SpillFileTest, OfAnEmptyMatrixIsAHeaderOfZeros) {
  cv::Mat image;
  ASSERT_TRUE(provider.SaveMat(image, path));
  EXPECT_EQ(ReadFile(path), std::string(20, '\0'));

  cv::Mat read = NoiseCapture({4, 4}, 1);
  provider.LoadMat(read, path);
  EXPECT_TRUE(read.empty());
  EXPECT_EQ(read.size(), cv::Size(0, 0));
  EXPECT_EQ(read.type(), CV_8UC1);
}

struct Kind {
  const char* name;
  int type;
  std::uint64_t elementSize;
};

void PrintTo(const Kind& kind, std::ostream* stream) { *stream << kind.name; }

class SpillFileOfKindTest : public SpillFileTest, public testing::WithParamInterface<Kind> {};

TEST_P(SpillFileOfKindTest, GivesBackWhatWasSaved) {
  cv::Mat image(5, 7, GetParam().type);
  cv::RNG(3).fill(image, cv::RNG::UNIFORM, cv::Scalar::all(0), cv::Scalar::all(255));
  ASSERT_TRUE(provider.SaveMat(image, path));
  EXPECT_EQ(ReadFile(path).substr(0, 20), Header(7, 5, GetParam().elementSize, GetParam().type));

  cv::Mat read;
  provider.LoadMat(read, path);
  EXPECT_TRUE(SameBits(read, image));
}

INSTANTIATE_TEST_SUITE_P(Kinds, SpillFileOfKindTest,
                         testing::Values(Kind{"Capture", CV_8UC4, 4}, Kind{"Grey", CV_8UC1, 1},
                                         Kind{"Signed", CV_16SC3, 6}, Kind{"Float", CV_32FC2, 8},
                                         Kind{"Double", CV_64FC1, 8}),
                         [](const auto& param) { return param.param.name; });

TEST_F(SpillFileTest, ReplacesALongerFile) {
  WriteFile(path, std::string(1000, 'x'));
  cv::Mat image = NoiseCapture({2, 3}, 1);
  ASSERT_TRUE(provider.SaveMat(image, path));
  EXPECT_EQ(std::filesystem::file_size(path), 44U);
}

TEST_F(SpillFileTest, TakesThePixelsAsTheyLieInTheBuffer) {
  const cv::Mat whole = NoiseCapture({4, 4}, 1);
  cv::Mat region = whole(cv::Rect(1, 1, 2, 2));
  ASSERT_TRUE(provider.SaveMat(region, path));
  EXPECT_EQ(ReadFile(path).substr(20), std::string(reinterpret_cast<const char*>(region.data), 16));
}

TEST_F(SpillFileTest, IsNotMadeInAFolderThatDoesNotExist) {
  cv::Mat image = NoiseCapture({2, 3}, 1);
  EXPECT_FALSE(provider.SaveMat(image, folder.Prefix() + "missing/file"));
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(SpillFileTest, IsDeletedWhenItCannotBeWrittenWhole) {
  cv::Mat image = NoiseCapture({64, 64}, 1);
  const Testing::FileSizeLimit limit(4096);
  EXPECT_FALSE(provider.SaveMat(image, path));
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(SpillFileTest, NeedsItsLastByteOnTheDisk) {
  cv::Mat image = NoiseCapture({2, 3}, 1);
  {
    const Testing::FileSizeLimit limit(43);
    EXPECT_FALSE(provider.SaveMat(image, path));
  }
  const Testing::FileSizeLimit limit(44);
  EXPECT_TRUE(provider.SaveMat(image, path));
}

TEST_F(SpillFileTest, LeavesADeviceInPlaceWhenItIsFull) {
  ASSERT_TRUE(std::filesystem::is_character_file("/dev/full"));
  std::filesystem::create_symlink("/dev/full", path);
  cv::Mat image = NoiseCapture({64, 64}, 1);
  EXPECT_FALSE(provider.SaveMat(image, path));
  EXPECT_TRUE(std::filesystem::is_symlink(path));
}

TEST_F(SpillFileTest, IsReadIntoTheBufferOfAMatrixOfTheSameSizeAndType) {
  cv::Mat image = NoiseCapture({2, 3}, 1);
  provider.SaveMat(image, path);
  cv::Mat read(3, 2, CV_8UC4);
  const cv::Mat sameBuffer = read;
  provider.LoadMat(read, path);
  EXPECT_EQ(read.data, sameBuffer.data);
  EXPECT_TRUE(SameBits(sameBuffer, image));
}

TEST_F(SpillFileTest, IsReadIntoANewBufferOtherwise) {
  cv::Mat image = NoiseCapture({2, 3}, 1);
  provider.SaveMat(image, path);
  cv::Mat read = NoiseCapture({3, 2}, 2);
  const cv::Mat other = read;
  const cv::Mat otherPixels = other.clone();
  provider.LoadMat(read, path);
  EXPECT_TRUE(SameBits(read, image));
  EXPECT_TRUE(SameBits(other, otherPixels));
}

TEST_F(SpillFileTest, MayBeLongerThanItsPixels) {
  cv::Mat image = NoiseCapture({2, 3}, 1);
  provider.SaveMat(image, path);
  WriteFile(path, ReadFile(path) + "more");
  cv::Mat read;
  provider.LoadMat(read, path);
  EXPECT_TRUE(SameBits(read, image));
}

TEST_F(SpillFileTest, IsReadByItsElementSizeAlsoWhereThatIsLessThanTheTypes) {
  WriteFile(path, Header(2, 3, 1, CV_8UC4) + "abcdef");
  cv::Mat read;
  provider.LoadMat(read, path);
  ASSERT_EQ(read.size(), cv::Size(2, 3));
  ASSERT_EQ(read.type(), CV_8UC4);
  EXPECT_EQ(std::memcmp(read.data, "abcdef", 6), 0);
}

TEST_F(SpillFileTest, IsUnreadableWhereThereIsNone) {
  ExpectUnreadable(path);
  ExpectUnreadable(folder.Prefix());
  ExpectUnreadable(folder.Prefix() + "missing/file");
  ExpectUnreadable("");
}

TEST_F(SpillFileTest, IsUnreadableWhereverItIsCutShort) {
  cv::Mat image = NoiseCapture({2, 3}, 1);
  provider.SaveMat(image, path);
  const std::string whole = ReadFile(path);
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    WriteFile(path, whole.substr(0, length));
    ExpectUnreadable(path);
  }
}

constexpr std::int32_t Largest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t Smallest = std::numeric_limits<std::int32_t>::min();

struct DamagedHeader {
  const char* name;
  std::int32_t columns;
  std::int32_t rows;
  std::uint64_t elementSize;
};

void PrintTo(const DamagedHeader& header, std::ostream* stream) { *stream << header.name; }

class DamagedSpillFileTest : public SpillFileTest,
                             public testing::WithParamInterface<DamagedHeader> {};

TEST_P(DamagedSpillFileTest, IsUnreadable) {
  const DamagedHeader& header = GetParam();
  WriteFile(path, Header(header.columns, header.rows, header.elementSize, CV_8UC4) +
                      std::string(4096, 'x'));
  ExpectUnreadable(path);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, DamagedSpillFileTest,
    testing::Values(
        DamagedHeader{"NegativeColumns", -2, 3, 4}, DamagedHeader{"NegativeRows", 2, -3, 4},
        DamagedHeader{"NegativeBoth", -2, -3, 4},
        DamagedHeader{"SmallestBoth", Smallest, Smallest, 4},
        DamagedHeader{"LargestBoth", Largest, Largest, 4},
        DamagedHeader{"LargestBothWithoutElementSize", Largest, Largest, 0},
        DamagedHeader{"ProductThatWrapsToZero", 65536, 65536, 4},
        DamagedHeader{"ProductThatWrapsToLittle", 65536, 65537, 1},
        DamagedHeader{"ProductThatWrapsToNegative", 65536, 32768, 1},
        DamagedHeader{"NegativeProductWithoutElementSize", 65536, 32768, 0},
        DamagedHeader{"MoreThanTheFileHolds", 1000, 1000, 4},
        DamagedHeader{"ElementSizeBeyondTheType", 2, 3, 5},
        DamagedHeader{"LargestElementSize", 2, 3, std::numeric_limits<std::uint64_t>::max()},
        DamagedHeader{"ElementSizeThatWrapsToFour", 4, 4, (std::uint64_t{1} << 60) + 4}),
    [](const auto& param) { return param.param.name; });

TEST_F(SpillFileTest, IsUnreadableBeyondTheElementsThatAreReadBack) {
  WriteFile(path, Header(65536, 32768, 1, CV_8UC1));
  std::filesystem::resize_file(path, 20 + (std::uintmax_t{1} << 31));
  ExpectUnreadable(path);
}

TEST_F(SpillFileTest, IsNamedByTheFolderPathAndRandomCharacters) {
  const std::string name = provider.GetTempFileName();
  ASSERT_EQ(name.size(), folder.Prefix().size() + 24);
  EXPECT_EQ(name.substr(0, folder.Prefix().size()), folder.Prefix());
  EXPECT_EQ(name.find_first_not_of(Utilities::ALPHANUMERIC_CHARSET, folder.Prefix().size()),
            std::string::npos);
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(SpillFileTest, IsNamedWithoutASeparatorOfItsOwn) {
  OpenProvider prefixed(folder.Prefix() + "page-");
  const std::string expected = folder.Prefix() + "page-" + Testing::NextNames(1, 24)[0];
  EXPECT_EQ(prefixed.GetTempFileName(), expected);
}

TEST_F(SpillFileTest, TakesTheFirstNameThatIsFree) {
  const std::vector<std::string> names = Testing::NextNames(4, 24);
  WriteFile(folder.Prefix() + names[0], "taken");
  std::filesystem::create_directory(folder.Prefix() + names[1]);
  std::filesystem::create_symlink("nowhere", folder.Prefix() + names[2]);
  EXPECT_EQ(provider.GetTempFileName(), folder.Prefix() + names[3]);
  EXPECT_EQ(ReadFile(folder.Prefix() + names[0]), "taken");
}

}  // namespace
}  // namespace ScrollingCapture
