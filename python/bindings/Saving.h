#pragma once

#include <string>
#include <vector>

#include <python/bindings/Stitched.h>
#include <python/bindings/WatchedWork.h>
#include <velscroll/output/Outputs.h>

namespace ScrollingCapture::Python {

/// The results of a stitch on their way into files.
class Saving {
 public:
  /// Throws BadInput when the picture or the report cannot be written where they are asked for, or
  /// the format cannot hold the picture.
  Saving(const Stitched& stitched, const Program::OutputSettings& settings);

  /// Writes everything, but not yet under its name. Throws BadInput when that would replace a
  /// capture, Failed, Cancelled when it is told to stop, and what rendering throws.
  void Stage(const TellProgress& tell);

  /// Shows everything. Throws BadInput when the report has the name of a piece or part, and Failed.
  void Commit() { outputs.Commit(); }

  /// The files of the picture.
  std::vector<std::string> Files() const;

  /// One line that says what was made of how many captures.
  std::string Summary() const;

 private:
  const Stitched& stitched;
  Program::ReportContent content;
  Program::Outputs outputs;
};

}  // namespace ScrollingCapture::Python
