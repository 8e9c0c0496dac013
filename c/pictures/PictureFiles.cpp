#include <cstdint>
#include <iterator>
#include <numeric>
#include <string>
#include <utility>

#include <c/calls/ProgressRelay.h>
#include <c/calls/SizedStruct.h>
#include <c/calls/ThreadCount.h>
#include <c/pictures/PictureFiles.h>
#include <velscroll/output/PictureWriting.h>
#include <velscroll/output/Pieces.h>
#include <velscroll/output/staging/CommitAll.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::C {
namespace {

using Program::PictureOutput;
using StagedOutputs = std::vector<std::unique_ptr<Program::StagedOutput>>;

constexpr vel_file_settings DefaultSettings = {
    sizeof(vel_file_settings), 95, 3, 1, 0, 0, 255, 255, 255, 0};

Program::EncodingSettings EncodingOf(const vel_file_settings& settings) {
  Program::EncodingSettings encoding;
  encoding.jpegQuality = InRange(settings.jpeg_quality, 1, 100, "jpeg_quality");
  encoding.pngLevel = InRange(settings.png_level, 0, 9, "png_level");
  encoding.threads = ThreadCountOf(settings.thread_count);
  if (settings.has_background != 0) {
    encoding.background = Program::Colour{settings.background_red, settings.background_green,
                                          settings.background_blue};
  }
  return encoding;
}

PictureOutput OutputOf(const char* path, const vel_file_settings* given,
                       const Program::ImageMetadata& metadata) {
  const vel_file_settings settings =
      given == nullptr ? DefaultSettings : Taken(given, DefaultSettings, "vel_file_settings");
  PictureOutput output = {Required(path, "the path"), EncodingOf(settings), metadata, {}};
  if (output.path == "-") {
    output.path = "./-";  // a file of that name
  }
  constexpr int MostRows = std::numeric_limits<int>::max();
  if (InRange(settings.rows_per_file, 0, MostRows, "rows_per_file") > 0) {
    output.mostRowsPerFile = settings.rows_per_file;
  }
  return output;
}

/// In words of this interface: the program's advice names options of its own.
void RequireRoom(const PictureOutput& output, const cv::Size& size) {
  try {
    Program::RequireWritable(output, size);
  } catch (const Program::TooLargeForFormat& tooLarge) {
    const std::string cut = tooLarge.HoldsPieces() ? "set rows_per_file, or " : "";
    throw CallFailure(VEL_FILE_UNUSABLE, tooLarge.Reason() + "; " + cut + "write a PNG file");
  }
}

/// Tells of the rows of all parts together.
class RowsWritten {
 public:
  RowsWritten(const Parts& parts, vel_progress progress, void* user)
      : relay(progress, user),
        all(std::accumulate(
            parts.begin(), parts.end(), std::int64_t{0},
            [](std::int64_t rows, const auto& part) { return rows + part->Size().height; })) {}

  /// @param rows of the part that is being written
  void Tell(int rows) {
    constexpr int WholeProgress = 100;
    if (!relay.ProgressCallback(static_cast<int>(WholeProgress * (before + rows) / all))) {
      throw Program::Cancelled();
    }
  }

  void EndPart(int rows) { before += rows; }

 private:
  ProgressRelay relay;
  const std::int64_t all;
  std::int64_t before = 0;
};

/// Each part is hidden until all are complete.
StagedOutputs StageParts(const Parts& parts, const PictureOutput& output, RowsWritten& written) {
  StagedOutputs staged;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    PictureOutput part = output;
    if (parts.size() > 1) {
      part.path = Program::PieceName(output.path, i + 1);
    }
    StagedOutputs files = Program::StagePicture(Program::PictureOf(*parts[i]), part,
                                                [&written](int rows) { written.Tell(rows); });
    std::move(files.begin(), files.end(), std::back_inserter(staged));
    written.EndPart(parts[i]->Size().height);
  }
  return staged;
}

}  // namespace

void WriteParts(const Parts& parts, const Program::ImageMetadata& metadata, const char* path,
                const vel_file_settings* settings, vel_progress progress, void* user) {
  const PictureOutput output = OutputOf(path, settings, metadata);
  for (const auto& part : parts) {
    RequireRoom(output, part->Size());
  }
  RowsWritten written(parts, progress, user);
  Program::CommitAll(StageParts(parts, output, written));
}

}  // namespace ScrollingCapture::C

void vel_file_settings_init(vel_file_settings* settings, size_t struct_size) {
  ScrollingCapture::C::Initialise(settings, struct_size, ScrollingCapture::C::DefaultSettings);
}
