#include <memory>
#include <new>

#include <velscroll/output/formats/WebPEncoder.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>
#include <webp/encode.h>
#include <webp/mux.h>

namespace ScrollingCapture::Program {
namespace {

/// What libwebp's own function for lossless pictures takes.
constexpr float Effort = 70;

int GoOn(int /*percent*/, const WebPPicture* /*picture*/) {
  return static_cast<int>(!InterruptionRequested());
}

/// The picture as libwebp holds it, and the file that becomes of it.
class WebPFile {
 public:
  WebPFile() { WebPMemoryWriterInit(&file); }
  WebPFile(const WebPFile&) = delete;
  WebPFile& operator=(const WebPFile&) = delete;
  ~WebPFile() {
    WebPMemoryWriterClear(&file);
    WebPPictureFree(&picture);
  }

  bool Take(const cv::Mat& pixels) {
    constexpr int WithAlpha = 4;
    if (WebPPictureInit(&picture) == 0) {
      return false;
    }
    picture.use_argb = 1;
    picture.width = pixels.cols;
    picture.height = pixels.rows;
    picture.writer = WebPMemoryWrite;
    picture.custom_ptr = &file;
    picture.progress_hook = GoOn;
    const auto import =
        pixels.channels() == WithAlpha ? WebPPictureImportRGBA : WebPPictureImportRGB;
    return import(&picture, pixels.data, static_cast<int>(pixels.step)) != 0;
  }

  bool Encode() {
    WebPConfig config;
    if (WebPConfigPreset(&config, WEBP_PRESET_DEFAULT, Effort) == 0) {
      return false;
    }
    config.lossless = 1;
    return WebPEncode(&config, &picture) != 0;
  }

  WebPEncodingError Error() const { return picture.error_code; }
  WebPData Bytes() const { return {file.mem, file.size}; }

 private:
  WebPPicture picture = {};
  WebPMemoryWriter file = {};
};

bool WasOutOfMemory(WebPEncodingError error) {
  return error == VP8_ENC_ERROR_OUT_OF_MEMORY || error == VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY;
}

/// The file with the colour profile in it; frees what it holds.
class FileWithProfile {
 public:
  FileWithProfile(const WebPData& file, const std::vector<unsigned char>& profile) {
    constexpr int Shared = 0;
    const std::unique_ptr<WebPMux, decltype(&WebPMuxDelete)> mux(WebPMuxCreate(&file, Shared),
                                                                 WebPMuxDelete);
    const WebPData chunk = {profile.data(), profile.size()};
    if (!mux || WebPMuxSetChunk(mux.get(), "ICCP", &chunk, Shared) != WEBP_MUX_OK ||
        WebPMuxAssemble(mux.get(), &assembled) != WEBP_MUX_OK) {
      throw std::bad_alloc();
    }
  }
  FileWithProfile(const FileWithProfile&) = delete;
  FileWithProfile& operator=(const FileWithProfile&) = delete;
  ~FileWithProfile() { WebPDataClear(&assembled); }

  const WebPData& Bytes() const { return assembled; }

 private:
  WebPData assembled = {};
};

}  // namespace

WebPEncoder::WebPEncoder(const EncodingTask& task)
    : format(task.format),
      name(task.header.name),
      colourProfile(task.header.metadata.colourProfile),
      sink(task.sink),
      picture(task.header.size, CV_8UC(task.channels)) {}

void WebPEncoder::Encode(cv::Mat& pixels) {
  pixels.copyTo(picture.rowRange(rowsCollected, rowsCollected + pixels.rows));
  rowsCollected += pixels.rows;
}

void WebPEncoder::End() {
  WebPFile file;
  const bool taken = file.Take(picture);
  picture.release();
  if (!taken || !file.Encode()) {
    StopIfInterrupted();
    if (WasOutOfMemory(file.Error())) {
      throw std::bad_alloc();
    }
    ThrowEncodingFailure(format, name);
  }
  if (colourProfile.empty()) {
    sink.Append(file.Bytes().bytes, file.Bytes().size);
  } else {
    const FileWithProfile complete(file.Bytes(), colourProfile);
    sink.Append(complete.Bytes().bytes, complete.Bytes().size);
  }
}

}  // namespace ScrollingCapture::Program
