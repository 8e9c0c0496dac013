#include "ProgramTest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>

namespace ScrollingCapture::Testing {

namespace fs = std::filesystem;

ProgramTest::ProgramTest() : page(400, 300, CV_8UC3) {
  cv::RNG random(1);
  random.fill(page, cv::RNG::UNIFORM, 0, 256);
}

std::string ProgramTest::PathOf(const std::string& name) const { return folder.Prefix() + name; }

std::vector<std::string> ProgramTest::Names() const {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder.Path())) {
    names.push_back(fs::relative(entry.path(), folder.Path()).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void ProgramTest::WriteBytes(const std::string& name, const std::string& bytes) const {
  std::ofstream(PathOf(name), std::ios::binary) << bytes;
}

std::string ProgramTest::ReadBytes(const std::string& name) const {
  std::ostringstream bytes;
  bytes << std::ifstream(PathOf(name), std::ios::binary).rdbuf();
  return bytes.str();
}

void ProgramTest::WriteImage(const std::string& name, const cv::Mat& image) const {
  fs::create_directories(fs::path(PathOf(name)).parent_path());
  ASSERT_TRUE(cv::imwrite(PathOf(name), image)) << name;
}

cv::Mat ProgramTest::ReadImage(const std::string& name) const {
  return cv::imread(PathOf(name), cv::IMREAD_UNCHANGED);
}

void ProgramTest::WriteCapture(const std::string& name, int row, int column) const {
  WriteImage(name, page(cv::Rect(cv::Point(column, row), CaptureSize)));
}

void ProgramTest::WriteScroll() const {
  WriteCapture("capture-1.png", 0);
  WriteCapture("capture-2.png", 30);
  WriteCapture("capture-3.png", 60);
}

ProgramResult ProgramTest::Run(const std::vector<std::string>& arguments) const {
  return Run(arguments, {});
}

ProgramResult ProgramTest::Run(const std::vector<std::string>& arguments,
                               ProgramSetting setting) const {
  setting.folder = folder.Prefix();
  return ProgramProcess(arguments, setting).Wait();
}

nlohmann::json ProgramTest::Report(std::vector<std::string> arguments) const {
  arguments.insert(arguments.end(), {"-o", "page.png", "--report", "page.json"});
  const ProgramResult result = Run(arguments);
  EXPECT_EQ(result.status, 0) << result.standardError;
  return nlohmann::json::parse(ReadBytes("page.json"), nullptr, false);
}

std::vector<std::string> ProgramTest::FilesIn(const nlohmann::json& report) {
  std::vector<std::string> files;
  for (const nlohmann::json& capture : report.at("captures")) {
    files.push_back(capture.at("file"));
  }
  return files;
}

void ExpectOneLine(const ProgramResult& result) {
  EXPECT_THAT(result.standardError, ::testing::StartsWith("velscroll: "));
  EXPECT_EQ(std::count(result.standardError.begin(), result.standardError.end(), '\n'), 1)
      << result.standardError;
  EXPECT_THAT(result.standardError, ::testing::EndsWith("\n"));
  EXPECT_EQ(result.standardOutput, "");
}

}  // namespace ScrollingCapture::Testing
