// Writing a picture row by row against OpenCV's encoders, which take it whole: the same format, the
// same level or quality, into memory.

#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <velscroll/output/RowWriter.h>

namespace ScrollingCapture {
namespace {

using Program::PictureFormatOf;

constexpr int StripRows = 136;

/// Keeps nothing but the size.
class CountingSink : public Program::OutputSink {
 private:
  void Store(std::uint64_t /*offset*/, const void* /*bytes*/, size_t /*length*/) override {}
};

/// A sample's true picture, with blue first.
cv::Mat Sample(const std::string& name) {
  cv::Mat picture = cv::imread(std::string(VEL_SAMPLES) + "/" + name + "/truth.png");
  if (picture.empty()) {
    throw std::runtime_error("There is no sample " + name + ".");
  }
  return picture;
}

void SetCounters(benchmark::State& state, size_t fileBytes) {
  state.counters["file_kB"] = static_cast<double>(fileBytes) / 1000;
}

std::vector<int> SettingsFor(const std::string& extension) {
  if (extension == ".png") {
    return {cv::IMWRITE_PNG_COMPRESSION, Program::EncodingSettings().pngLevel};
  }
  if (extension == ".jpg") {
    return {cv::IMWRITE_JPEG_QUALITY, Program::EncodingSettings().jpegQuality};
  }
  return {};
}

void WithOpenCv(benchmark::State& state, const std::string& sample, const std::string& extension) {
  const cv::Mat picture = Sample(sample);
  const std::vector<int> settings = SettingsFor(extension);
  std::vector<unsigned char> file;
  for (auto _ : state) {
    cv::imencode(extension, picture, file, settings);
  }
  SetCounters(state, file.size());
}

void WithRowWriter(benchmark::State& state, const std::string& sample, const std::string& extension,
                   unsigned int threads) {
  cv::Mat picture = Sample(sample);
  cv::cvtColor(picture, picture, cv::COLOR_BGR2RGBA);
  Program::EncodingSettings settings;
  settings.threads = threads;
  size_t fileBytes = 0;
  for (auto _ : state) {
    CountingSink sink;
    const auto writer = MakeRowWriter(PictureFormatOf("p" + extension),
                                      {"p", picture.size(), true, {}}, settings, sink);
    for (int row = 0; row < picture.rows; row += StripRows) {
      writer->Write(picture.rowRange(row, std::min(row + StripRows, picture.rows)));
    }
    writer->Finish();
    fileBytes = sink.Size();
  }
  SetCounters(state, fileBytes);
}

void Register() {
  for (const char* const extension : {".png", ".tif", ".jpg"}) {
    for (const char* const sample : {"article", "map", "toolbar"}) {
      const std::string start = std::string("BM_Write_") + (extension + 1) + "/";
      const std::string end = std::string("/") + sample;
      const auto add = [&](const std::string& contender, auto run) {
        benchmark::RegisterBenchmark((start + contender + end).c_str(), run)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
      };
      add("reference", [=](auto& state) { WithOpenCv(state, sample, extension); });
      add("one_thread", [=](auto& state) { WithRowWriter(state, sample, extension, 1); });
      add("two_threads", [=](auto& state) { WithRowWriter(state, sample, extension, 2); });
    }
  }
}

[[maybe_unused]] const bool registered = (Register(), true);

}  // namespace
}  // namespace ScrollingCapture
