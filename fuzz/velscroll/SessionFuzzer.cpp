// Runs whole sessions over any small captures, damaged files among them. A session writes all that
// it was asked for, or nothing, and leaves no other file behind.

#include <set>
#include <string>
#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Messages.h>
#include <fuzz/support/Quiet.h>
#include <fuzz/support/RandomCaptures.h>
#include <fuzz/velscroll/ToldReport.h>
#include <opencv2/imgcodecs.hpp>
#include <testkit/SpillTesting.h>
#include <testkit/TemporaryFolder.h>
#include <velscroll/arguments/Arguments.h>
#include <velscroll/stitch/StitchCommand.h>
#include <velscroll/terminal/Silence.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr int LongestSide = 32;

using Paths = std::set<std::string>;

Paths FilesIn(const Testing::TemporaryFolder& folder) {
  const std::vector<std::string> files = folder.Contents();
  return {files.begin(), files.end()};
}

void WriteCapture(FuzzedDataProvider& data, const cv::Mat& page, const cv::Size& size,
                  const std::string& path) {
  if (data.ConsumeIntegralInRange(0, 31) == 0) {
    Testing::WriteFile(path, data.ConsumeRandomLengthString(64));
    return;
  }
  const cv::Point corner(data.ConsumeIntegralInRange(0, page.cols - size.width),
                         data.ConsumeIntegralInRange(0, page.rows - size.height));
  cv::imwrite(path, page(cv::Rect(corner, size)));
}

void WriteCaptures(FuzzedDataProvider& data, const Testing::TemporaryFolder& folder,
                   Program::Arguments& arguments) {
  const cv::Size size = AnySize(data, LongestSide);
  const int type = data.PickValueInArray({CV_8UC1, CV_8UC3, CV_8UC4, CV_16UC4});
  const cv::Mat page = AnyPixels(data, {size.width * 2, size.height * 2}, type);
  const int count = data.ConsumeIntegralInRange(1, 4);
  for (int i = 0; i < count; ++i) {
    arguments.captures.push_back(folder.Prefix() + "capture-" + std::to_string(i) + ".png");
    const bool fits = data.ConsumeIntegralInRange(0, 31) != 0;
    WriteCapture(data, page, fits ? size : cv::Size(1, 1), arguments.captures.back());
  }
}

/// @return the files that the session is asked for besides the picture
Paths ChooseSettings(FuzzedDataProvider& data, const Testing::TemporaryFolder& folder,
                     Program::Arguments& arguments) {
  arguments.loudness = Program::Loudness::Nothing;
  arguments.session.engine = data.PickValueInArray({Engine::Exact, Engine::PhaseCorrelation});
  arguments.session.fixedParts = data.PickValueInArray({FixedParts::Once, FixedParts::Keep});
  arguments.session.threadCount = data.ConsumeIntegralInRange(1U, 3U);
  arguments.strict = data.ConsumeIntegralInRange(0, 7) == 0;
  arguments.session.orientation = data.PickValueInArray(
      {ScrollOrientation::Vertical, ScrollOrientation::Horizontal, ScrollOrientation::Both});
  arguments.session.expectConsistentTranslations = data.ConsumeBool();
  arguments.session.keepRepeats = data.ConsumeBool();
  arguments.outputs.image =
      folder.Prefix() + "page" + data.PickValueInArray({".png", ".jpg", ".bmp", ".webp", ".tiff"});
  arguments.outputs.report = folder.Prefix() + "report.json";
  Paths asked = {arguments.outputs.report};
  if (data.ConsumeIntegralInRange(0, 3) == 0) {
    arguments.outputs.mostRowsPerFile = data.ConsumeIntegralInRange(1, LongestSide);
  }
  if (arguments.session.engine == Engine::PhaseCorrelation && data.ConsumeBool()) {
    arguments.session.borders = BorderThresholds{data.ConsumeIntegralInRange(0U, 255U),
                                                 data.ConsumeIntegralInRange(0U, 8U)};
  }
  if (data.ConsumeBool()) {
    arguments.session.memoryLimit = data.ConsumeIntegralInRange(0U, 8192U);
    arguments.session.spillFolder = folder.Path().string();
  }
  if (data.ConsumeIntegralInRange(0, 7) == 0) {
    arguments.outputs.preview = folder.Prefix() + "preview.png";
    arguments.session.previewBox = AnySize(data, 300);
    asked.insert(arguments.outputs.preview);
  }
  return asked;
}

/// @return the files of a part
Paths ExpectPartIsWritten(const ToldPart& part) {
  const std::vector<std::string> files =
      part.pieces.empty() ? std::vector<std::string>{part.file} : part.pieces;
  int rows = 0;
  for (const std::string& file : files) {
    const cv::Mat piece = cv::imread(file, cv::IMREAD_UNCHANGED);
    Expect(piece.cols == part.size.width, "a piece is as wide as its part");
    rows += piece.rows;
  }
  Expect(rows == part.size.height, "the pieces are as high as their part");
  return {files.begin(), files.end()};
}

/// @return the files of the picture
Paths ExpectReportTellsOfTheResult(const Program::Arguments& arguments,
                                   Program::ExitStatus status) {
  const ToldReport report = ReadReport(Testing::ReadFile(arguments.outputs.report));
  Expect(report.captures.size() == arguments.captures.size(), "every capture is told of");
  Expect((report.parts.size() == 1) == (status == Program::Done), "the status tells of parts");
  Paths written;
  for (const ToldPart& part : report.parts) {
    written.merge(ExpectPartIsWritten(part));
  }
  return written;
}

void RunAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  const Testing::TemporaryFolder folder;
  Program::Arguments arguments;
  Paths expected = ChooseSettings(data, folder, arguments);
  WriteCaptures(data, folder, arguments);
  const Paths before = FilesIn(folder);
  Program::ExitStatus status = Program::Done;
  try {
    status = Program::RunStitchCommand(arguments);
  } catch (const Program::Failure& failure) {
    ExpectOneLine(failure);
    Expect(FilesIn(folder) == before, "a session that fails leaves nothing behind");
    return;
  }
  expected.insert(before.begin(), before.end());
  expected.merge(ExpectReportTellsOfTheResult(arguments, status));
  Expect(FilesIn(folder) == expected, "a session writes what it was asked for and nothing else");
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  ScrollingCapture::Program::OwnStandardError();
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::RunAny(data);
  return 0;
}
