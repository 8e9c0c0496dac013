#include <cstdint>
#include <numeric>

#include <velscroll/stitch/PictureStaging.h>

namespace ScrollingCapture::Program {
namespace {

using Parts = std::vector<std::shared_ptr<const StitchedPicture>>;

std::vector<cv::Size> SizesOf(const Parts& parts) {
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

std::vector<ReportedPart> StageParts(const Parts& parts, const ImageMetadata& metadata,
                                     Outputs& outputs, Console& console) {
  const std::vector<cv::Size> sizes = SizesOf(parts);
  outputs.RequireWritable(sizes);
  const std::int64_t rows = RowsOf(sizes);
  std::int64_t rowsBefore = 0;
  std::vector<ReportedPart> staged;
  for (size_t i = 0; i < parts.size(); ++i) {
    const auto show = [&](int rowsOfPart) {
      console.ShowProgress("Writing", static_cast<int>(100 * (rowsBefore + rowsOfPart) / rows));
    };
    const std::string name = outputs.NameOfPart(i, parts.size());
    staged.push_back(
        {name, sizes[i], outputs.StagePart(name, PictureOf(*parts[i]), metadata, show)});
    rowsBefore += sizes[i].height;
  }
  return staged;
}

}  // namespace ScrollingCapture::Program
