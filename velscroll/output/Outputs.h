#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/output/PictureWriting.h>

namespace ScrollingCapture::Program {

/// Where results go, and how; "-" is standard output.
struct OutputSettings {
  std::string image;
  std::string preview;  ///< empty: no preview
  std::string report;   ///< empty: no report
  EncodingSettings encoding;
  std::optional<int> mostRowsPerFile;  ///< cut the picture into pieces that have no more
};

/// The results that a run writes. They appear after everything has been written.
class Outputs {
 public:
  /// Throws BadInput when a file cannot be written where it is asked for, has an extension without
  /// a format, or is asked for twice.
  explicit Outputs(const OutputSettings& asked);

  /// The paths of all files, as they are asked for.
  std::vector<std::string> Names() const;

  bool TakesPreview() const { return !settings.preview.empty(); }
  bool TakesReport() const { return !settings.report.empty(); }

  /// Whether one of the results goes to standard output.
  bool UseStandardOutput() const;

  /// The name under which a part of the picture is staged.
  /// @param part  from 0
  /// @param count how many parts there are
  std::string NameOfPart(size_t part, size_t count) const;

  /// Throws Failed when the parts of the picture cannot be written in the format that was asked
  /// for, and BadInput when several parts or pieces would go to standard output: to be called as
  /// soon as their sizes are known.
  void RequireWritable(const std::vector<cv::Size>& parts) const;

  /// Writes a part of the picture, but not yet under its name.
  ///
  /// Throws Failed, Cancelled, and what rendering throws.
  /// @return the names of the files: several when it is cut into pieces
  std::vector<std::string> StagePart(const std::string& name, const Picture& picture,
                                     const ImageMetadata& metadata, const RowProgress& progress);

  /// The same for the preview; only when TakesPreview().
  /// @param picture CV_8UC4: red, green, blue, premultiplied alpha
  void StagePreview(const cv::Mat& picture);

  /// The same for the report's text; only when TakesReport().
  void StageReport(const std::string& text);

  /// Shows everything that was staged, as CommitAll does. Throws BadInput when a piece or part has
  /// the name of another result, Failed and Cancelled.
  void Commit();

 private:
  const OutputSettings settings;
  std::vector<std::unique_ptr<StagedOutput>> staged;
};

}  // namespace ScrollingCapture::Program
