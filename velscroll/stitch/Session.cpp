#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>

#include <velscroll/input/CaptureSequence.h>
#include <velscroll/input/InputFiles.h>
#include <velscroll/output/OutputFormat.h>
#include <velscroll/output/Outputs.h>
#include <velscroll/report/CaptureOutcome.h>
#include <velscroll/report/Report.h>
#include <velscroll/stitch/RecordedBorders.h>
#include <velscroll/stitch/Session.h>
#include <velscroll/stitch/SpillFolder.h>
#include <velscroll/stitch/StageClock.h>
#include <velscroll/stitch/StitchRun.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/ProgressBar.h>

#include <VelScrollingCapture/preview/PreviewImage.h>
#include <VelScrollingCapture/stitching/StitcherFactory.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>
#include <VelScrollingCapture/storage/MemoryEfficientImageProvider.h>

namespace ScrollingCapture::Program {
namespace {

/// Says what a capture that cannot be read back means to the user.
class SpilledCaptures : public MemoryEfficientImageProvider {
 public:
  using MemoryEfficientImageProvider::MemoryEfficientImageProvider;

  std::shared_ptr<cv::Mat> GetImageAt(size_t index) override {
    try {
      return MemoryEfficientImageProvider::GetImageAt(index);
    } catch (const std::runtime_error&) {
      throw Failed("a capture that was spilled to " + Quoted(GetFolderPath()) +
                   " cannot be read back; leave that folder alone, or choose another with "
                   "--spill-folder");
    }
  }
};

/// The captures, and where they wait while they are not in memory.
class CaptureStore {
 public:
  explicit CaptureStore(const Arguments& arguments) {
    if (!arguments.memoryLimit) {
      provider = std::make_unique<BasicImageProvider>();
      return;
    }
    folder.emplace(arguments.spillFolder);
    provider = std::make_unique<SpilledCaptures>(folder->Path(), *arguments.memoryLimit);
  }

  IImageProvider& Captures() { return *provider; }

 private:
  // In this order: the provider deletes its files before the folder goes.
  std::optional<SpillFolder> folder;
  std::unique_ptr<IImageProvider> provider;
};

/// The stitcher that the arguments ask for, and what it found besides the image.
class SessionStitcher {
 public:
  explicit SessionStitcher(const Arguments& arguments)
      : stitcher(StitcherFactory::CreateBasicStitcher(
            arguments.orientation, arguments.expectConsistentTranslations, arguments.threadCount)) {
    if (arguments.borders) {
      borderDetection = std::make_shared<RecordedBorders>(stitcher, arguments.borders->difference,
                                                          arguments.borders->neighbors);
      stitcher = borderDetection;
    }
  }

  IStitcher& Stitcher() { return *stitcher; }

  std::optional<Borders> FoundBorders() const {
    return borderDetection ? borderDetection->Found() : std::nullopt;
  }

 private:
  std::shared_ptr<IStitcher> stitcher;
  std::shared_ptr<RecordedBorders> borderDetection;
};

/// A preview as a host shows it: its canvas begins at the size at which it is shown.
std::optional<PreviewImage> MakePreview(const Arguments& arguments) {
  constexpr int FirstRow = 1;
  constexpr int FirstColumn = 0;
  if (arguments.preview.empty()) {
    return std::nullopt;
  }
  return std::make_optional<PreviewImage>(arguments.previewSize, FirstRow, FirstColumn);
}

cv::Mat PictureOf(PreviewImage& preview, const cv::Size& box) {
  try {
    return preview.GetPreview(box.width, box.height);
  } catch (const cv::Exception& error) {
    if (error.code == cv::Error::StsNoMem) {
      throw;
    }
    throw BadInput(
        "--preview-size " + std::to_string(box.width) + "x" + std::to_string(box.height) +
        " leaves less than one pixel of the preview's shorter side; choose a larger box");
  }
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
            << CountOf(captures, CaptureOutcome::LeftOut, " left out (not moved)")
            << (arguments.borders && !content.borders ? ", no borders found" : "") << "\n";
}

/// Reads, stitches and stages everything; only what the report tells outlives it.
ReportContent StageEverything(const Arguments& arguments, Outputs& outputs,
                              const std::vector<std::string>& files) {
  ReportContent content;
  ProgressBar progress(!arguments.quiet);
  StageClock clock;
  CaptureStore store(arguments);
  IImageProvider& captures = store.Captures();
  std::optional<PreviewImage> preview = MakePreview(arguments);
  const std::vector<CaptureFile> read =
      ReadCaptures(files, arguments.keepRepeats, captures, preview ? &*preview : nullptr, progress);
  // Before the long work, since the box may turn out too small.
  const cv::Mat picture = preview ? PictureOf(*preview, arguments.previewSize) : cv::Mat();
  content.seconds.reading = clock.Lap();

  SessionStitcher stitcher(arguments);
  Stitched stitched = RunStitch(stitcher.Stitcher(), captures, progress);
  content.seconds.detection = stitched.detectionSeconds;
  content.seconds.composing = stitched.composingSeconds;
  content.resultSize = stitched.image.size();
  content.borders = stitcher.FoundBorders();
  content.captures = DescribeCaptures(read, captures, stitched.translations);
  content.warnings = WarningsAbout(content.captures);
  content.remarks = stitched.remarks;
  captures.Clear();

  progress.Show("Writing", 0);
  clock.Lap();
  outputs.StageImage(stitched.image);
  if (preview) {
    outputs.StagePreview(picture);
  }
  content.seconds.writing = clock.Lap();
  return content;
}

}  // namespace

void RunSession(const Arguments& arguments) {
  Outputs outputs(arguments);
  const std::vector<std::string> files = FindCaptureFiles(arguments.captures, outputs.Names());
  const ReportContent content = StageEverything(arguments, outputs, files);
  outputs.StageReport(ReportText(arguments, content));
  outputs.Commit();
  if (!arguments.quiet) {
    PrintSummary(arguments, content);
  }
}

}  // namespace ScrollingCapture::Program
