#include <iostream>
#include <memory>
#include <optional>

#include <velscroll/CaptureOutcome.h>
#include <velscroll/CaptureSequence.h>
#include <velscroll/Failure.h>
#include <velscroll/InputFiles.h>
#include <velscroll/Interruption.h>
#include <velscroll/OutputFile.h>
#include <velscroll/OutputFormat.h>
#include <velscroll/ProgressBar.h>
#include <velscroll/Report.h>
#include <velscroll/Session.h>
#include <velscroll/StageClock.h>
#include <velscroll/StitchRun.h>

#include <VelScrollingCapture/core/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture::Program {
namespace {

/// The files that the session writes. They appear together, after everything has been written.
class Outputs {
 public:
  explicit Outputs(const Arguments& arguments) : image(arguments.output) {
    if (arguments.report.empty()) {
      return;
    }
    if (IsSameFile(arguments.output, arguments.report)) {
      throw BadInput("the image and the report would both be written to " +
                     Quoted(arguments.output) + "; choose two names");
    }
    report.emplace(arguments.report);
  }

  void StageImage(const std::vector<unsigned char>& file) { image.Stage(file.data(), file.size()); }

  void StageReport(const std::string& text) { report->Stage(text.data(), text.size()); }

  bool WantsReport() const { return report.has_value(); }

  void Commit() {
    StopIfInterrupted();
    image.Commit();
    if (report) {
      report->Commit();
    }
  }

 private:
  OutputFile image;
  std::optional<OutputFile> report;
};

std::vector<std::string> OutputNames(const Arguments& arguments) {
  std::vector<std::string> names = {arguments.output};
  if (!arguments.report.empty()) {
    names.push_back(arguments.report);
  }
  return names;
}

std::unique_ptr<IImageProvider> MakeProvider() { return std::make_unique<BasicImageProvider>(); }

std::shared_ptr<IStitcher> MakeStitcher(const Arguments& arguments) {
  return StitcherFactory::CreateBasicStitcher(
      arguments.orientation, arguments.expectConsistentTranslations, arguments.threadCount);
}

std::string CountOf(const std::vector<CaptureOutcome>& captures, CaptureOutcome::State state,
                    const std::string& remark) {
  int count = 0;
  for (const CaptureOutcome& capture : captures) {
    count += static_cast<int>(capture.state == state);
  }
  return count == 0 ? std::string() : ", " + std::to_string(count) + remark;
}

void PrintSummary(const Arguments& arguments, const ReportContent& content) {
  for (const std::string& warning : content.warnings) {
    std::cerr << "velscroll: warning: " << warning << "\n";
  }
  const auto& captures = content.captures;
  std::cout << arguments.output << ": " << content.resultSize.width << " x "
            << content.resultSize.height << " pixels from " << captures.size()
            << (captures.size() == 1 ? " capture" : " captures")
            << CountOf(captures, CaptureOutcome::Repeated, " repeated")
            << CountOf(captures, CaptureOutcome::LeftOut, " left out (not moved)") << "\n";
}

}  // namespace

void RunSession(const Arguments& arguments) {
  const OutputFormat& format = FormatOf(arguments.output);
  Outputs outputs(arguments);
  const std::vector<std::string> files =
      FindCaptureFiles(arguments.captures, OutputNames(arguments));

  ReportContent content;
  {
    ProgressBar progress(!arguments.quiet);
    StageClock clock;
    const std::unique_ptr<IImageProvider> captures = MakeProvider();
    const std::vector<CaptureFile> read =
        ReadCaptures(files, arguments.keepRepeats, *captures, progress);
    content.seconds.reading = clock.Lap();

    Stitched stitched = RunStitch(*MakeStitcher(arguments), *captures, progress);
    content.seconds.detection = stitched.detectionSeconds;
    content.seconds.composing = stitched.composingSeconds;
    content.resultSize = stitched.image.size();
    content.captures = DescribeCaptures(read, *captures, stitched.translations);
    content.warnings = WarningsAbout(content.captures);
    content.remarks = stitched.remarks;
    captures->Clear();

    progress.Show("Writing", 0);
    clock.Lap();
    RequireFits(format, content.resultSize, arguments.output);
    outputs.StageImage(Encode(format, stitched.image, arguments.output));
    content.seconds.writing = clock.Lap();
    if (outputs.WantsReport()) {
      outputs.StageReport(ReportText(arguments, content));
    }
    outputs.Commit();
  }
  if (!arguments.quiet) {
    PrintSummary(arguments, content);
  }
}

}  // namespace ScrollingCapture::Program
