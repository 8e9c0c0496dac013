#include <algorithm>
#include <cstdint>
#include <numeric>

#include <velscroll/files/SameFile.h>
#include <velscroll/stitch/PictureStaging.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture::Program {
namespace {

std::vector<cv::Size> SizesOf(const PictureParts& parts) {
  std::vector<cv::Size> sizes;
  for (const auto& part : parts) {
    sizes.push_back(part->Size());
  }
  return sizes;
}

std::int64_t RowsOf(const std::vector<cv::Size>& sizes) {
  return std::accumulate(
      sizes.begin(), sizes.end(), std::int64_t{0},
      [](std::int64_t rows, const cv::Size& size) { return rows + size.height; });
}

}  // namespace

void RequireWritable(const PictureParts& parts, const Outputs& outputs) {
  outputs.RequireWritable(SizesOf(parts));
}

std::vector<ReportedPart> StageParts(const PictureParts& parts, const ImageMetadata& metadata,
                                     Outputs& outputs, const std::function<void(int)>& tell) {
  constexpr int Whole = 100;
  const std::vector<cv::Size> sizes = SizesOf(parts);
  const std::int64_t rows = RowsOf(sizes);
  std::int64_t rowsBefore = 0;
  std::vector<ReportedPart> staged;
  for (size_t i = 0; i < parts.size(); ++i) {
    const auto tellRows = [&](int rowsOfPart) {
      tell(static_cast<int>(Whole * (rowsBefore + rowsOfPart) / rows));
    };
    const std::string name = outputs.NameOfPart(i, parts.size());
    staged.push_back(
        {name, sizes[i], outputs.StagePart(name, PictureOf(*parts[i]), metadata, tellRows)});
    rowsBefore += sizes[i].height;
  }
  return staged;
}

std::vector<std::string> FilesOf(const std::vector<ReportedPart>& parts) {
  std::vector<std::string> files;
  for (const ReportedPart& part : parts) {
    files.insert(files.end(), part.pieces.begin(), part.pieces.end());
  }
  return files;
}

std::optional<std::string> OverwriteComplaint(const ReportContent& content) {
  const auto isCapture = [&content](const std::string& file) {
    return std::any_of(content.captures.begin(), content.captures.end(),
                       [&file](const auto& capture) { return IsSameFile(capture.file, file); });
  };
  const std::vector<std::string> files = FilesOf(content.parts);
  const auto overwritten = std::find_if(files.begin(), files.end(), isCapture);
  if (overwritten == files.end()) {
    return std::nullopt;
  }
  return "the result would be written over the capture " + Quoted(*overwritten) +
         "; choose another name to write to";
}

}  // namespace ScrollingCapture::Program
