#pragma once

#include <memory>
#include <string>

#include <velscroll/output/staging/OutputSink.h>

namespace ScrollingCapture::Program {

/// A result that comes into being as a whole, or not at all: it is written out of sight first.
class StagedOutput : public OutputSink {
 public:
  /// What the user calls it.
  virtual const std::string& Name() const = 0;

  /// Says that everything has been written. Throws Failed.
  virtual void Close() = 0;

  /// Shows what was written. Throws Failed or Cancelled.
  virtual void Commit() = 0;
};

/// The output of a name: a StagedFile, or StagedStandardOutput for "-". Throws BadInput when it
/// cannot be written.
/// @param content what is going to be written, for messages
std::unique_ptr<StagedOutput> MakeStagedOutput(const std::string& name,
                                               const std::string& content = "the image");

}  // namespace ScrollingCapture::Program
