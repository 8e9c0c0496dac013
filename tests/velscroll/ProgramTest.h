#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <testkit/TemporaryFolder.h>

#include "ProgramProcess.h"

namespace ScrollingCapture::Testing {

/// The size of the captures that the fixture makes.
const cv::Size CaptureSize(96, 80);

/// Runs velscroll in a fresh folder; file names are relative to it.
class ProgramTest : public ::testing::Test {
 protected:
  ProgramTest();

  std::string PathOf(const std::string& name) const;

  /// The names of all that is in the folder and below it, sorted.
  std::vector<std::string> Names() const;

  void WriteBytes(const std::string& name, const std::string& bytes) const;
  std::string ReadBytes(const std::string& name) const;

  /// Blue, green, red and perhaps alpha, as OpenCV has it in files.
  void WriteImage(const std::string& name, const cv::Mat& image) const;
  cv::Mat ReadImage(const std::string& name) const;

  /// Writes the part of the page that starts at a row and column, and is as large as a capture.
  void WriteCapture(const std::string& name, int row, int column = 0) const;

  /// Writes capture-1.png to capture-3.png, each 30 rows further down the page.
  void WriteScroll() const;

  ProgramResult Run(const std::vector<std::string>& arguments) const;

  /// The given circumstances, in the test's folder.
  ProgramResult Run(const std::vector<std::string>& arguments, ProgramSetting setting) const;

  /// Runs the program with a report and gives the report; a failing run fails the test.
  nlohmann::json Report(std::vector<std::string> arguments) const;

  /// The names of the report's captures, one after the other.
  static std::vector<std::string> FilesIn(const nlohmann::json& report);

  TemporaryFolder folder;
  cv::Mat page;  ///< random colours, larger than a capture
};

/// One line that starts with the program's name, and nothing on standard output.
void ExpectOneLine(const ProgramResult& result);

}  // namespace ScrollingCapture::Testing
