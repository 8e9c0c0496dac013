#include <algorithm>

#include <velscroll/output/PictureWriting.h>
#include <velscroll/output/Pieces.h>
#include <velscroll/output/Strips.h>
#include <velscroll/output/staging/StagedStandardOutput.h>
#include <velscroll/pixels/Premultiplication.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

using StagedOutputs = std::vector<std::unique_ptr<StagedOutput>>;

int MostRows(const PictureOutput& output, const cv::Size& size) {
  return std::min(output.mostRowsPerFile.value_or(size.height), size.height);
}

std::vector<cv::Range> PiecesOf(const Picture& picture, const PictureOutput& output) {
  return CutIntoPieces(picture, MostRows(output, picture.size));
}

/// All of them before the first one is written, since one may not be allowed.
StagedOutputs MakeOutputs(const std::string& path, size_t count) {
  StagedOutputs outputs;
  for (size_t i = 0; i < count; ++i) {
    outputs.push_back(MakeStagedOutput(count == 1 ? path : PieceName(path, i + 1)));
  }
  return outputs;
}

/// Renders and writes the rows of a piece, strip by strip.
void WriteRows(const Picture& picture, const cv::Range& piece, RowWriter& writer,
               const RowProgress& progress) {
  const int stripRows = RowsPerStrip(picture.size);
  for (int row = piece.start; row < piece.end;) {
    StopIfInterrupted();
    const int count = std::min(stripRows, piece.end - row);
    writer.Write(picture.render({0, row, picture.size.width, count}));
    row += count;
    progress(row);
  }
}

void WritePiece(const Picture& picture, const cv::Range& piece, const PictureOutput& output,
                StagedOutput& file, const RowProgress& progress) {
  const PictureHeader header = {
      file.Name(), {picture.size.width, piece.size()}, picture.opaque, output.metadata};
  const std::unique_ptr<RowWriter> writer =
      MakeRowWriter(PictureFormatOf(output.path), header, output.settings, file);
  WriteRows(picture, piece, *writer, progress);
  writer->Finish();
  file.Close();
}

}  // namespace

void RequireWritable(const PictureOutput& output, const cv::Size& size) {
  const int mostRows = MostRows(output, size);
  RequireHolds(PictureFormatOf(output.path), {size.width, mostRows}, output.path);
  if (mostRows < size.height && output.path == StagedStandardOutput::Argument) {
    throw BadInput("pieces cannot all go to standard output; name a file with -o FILE");
  }
}

StagedOutputs StagePicture(const Picture& picture, const PictureOutput& output,
                           const RowProgress& progress) {
  RequireWritable(output, picture.size);
  const std::vector<cv::Range> pieces = PiecesOf(picture, output);
  StagedOutputs files = MakeOutputs(output.path, pieces.size());
  for (size_t i = 0; i < pieces.size(); ++i) {
    WritePiece(picture, pieces[i], output, *files[i], progress);
  }
  return files;
}

Picture PictureOf(const cv::Mat& image) {
  return {image.size(), IsOpaque(image), [image](const cv::Rect& area) { return image(area); }};
}

Picture PictureOf(const StitchedPicture& picture) {
  return {picture.Size(), picture.IsOpaque(),
          [&picture](const cv::Rect& area) { return picture.Area(area); }};
}

}  // namespace ScrollingCapture::Program
