#pragma once

#include <optional>
#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <velscroll/output/OutputFile.h>
#include <velscroll/output/OutputFormat.h>

namespace ScrollingCapture::Program {

/// Where results go.
struct OutputPaths {
  std::string image;
  std::string preview;  ///< empty: no preview
  std::string report;   ///< empty: no report
};

/// The files that a run writes. They appear after everything has been written, or not at all.
class Outputs {
 public:
  /// Throws BadInput when a file cannot be written where it is asked for, has an extension without
  /// a format, or is asked for twice.
  explicit Outputs(const OutputPaths& paths);

  /// The paths of all files.
  std::vector<std::string> Names() const;

  /// Whether there is a path for a preview.
  bool TakesPreview() const { return preview.has_value(); }

  /// Writes the stitched image, but not yet under its name. Throws Failed.
  /// @param picture CV_8UC4: red, green, blue, premultiplied alpha; used as a workspace
  void StageImage(cv::Mat picture);

  /// The same for the preview; only when TakesPreview().
  void StagePreview(cv::Mat picture);

  /// The same for the report's text, which is dropped when there is no path for a report.
  void StageReport(const std::string& text);

  /// Gives every staged file its name. Throws Failed or Cancelled.
  void Commit();

 private:
  /// An image file and how it is encoded.
  struct ImageOutput {
    explicit ImageOutput(const std::string& path);
    void Stage(cv::Mat& image);

    std::string path;
    const OutputFormat& format;
    OutputFile file;
  };

  ImageOutput image;
  std::optional<ImageOutput> preview;
  std::string reportPath;
  std::optional<OutputFile> report;
};

}  // namespace ScrollingCapture::Program
