#include <algorithm>
#include <cmath>
#include <new>

#include <velscroll/output/formats/JpegEncoder.h>

namespace ScrollingCapture::Program {
namespace {

constexpr int QualityOfFullColour = 90;
constexpr double MostDensity = 65535;

}  // namespace

JpegEncoder::Destination::Destination(OutputSink& sink) : jpeg_destination_mgr(), sink(sink) {
  init_destination = StartBuffer;
  empty_output_buffer = EmptyBuffer;
  term_destination = EmptyLastBuffer;
}

JpegEncoder::JpegEncoder(const EncodingTask& task)
    : format(task.format), name(task.header.name), destination(task.sink) {
  info.err = errors.Manager();
  try {
    Start(task);
  } catch (...) {
    jpeg_destroy_compress(&info);
    throw;
  }
}

JpegEncoder::~JpegEncoder() { jpeg_destroy_compress(&info); }

void JpegEncoder::Start(const EncodingTask& task) {
  const cv::Size& size = task.header.size;
  const ImageMetadata& metadata = task.header.metadata;
  const int quality = task.settings.jpegQuality;
  Attempt([this, &size, &metadata, quality] {
    jpeg_create_compress(&info);
    info.dest = &destination;
    info.image_width = static_cast<JDIMENSION>(size.width);
    info.image_height = static_cast<JDIMENSION>(size.height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    if (quality >= QualityOfFullColour) {
      info.comp_info[0].h_samp_factor = 1;
      info.comp_info[0].v_samp_factor = 1;
    }
    if (metadata.resolution) {
      SetResolution(*metadata.resolution);
    }
    jpeg_start_compress(&info, TRUE);
    if (!metadata.colourProfile.empty()) {
      jpeg_write_icc_profile(&info, metadata.colourProfile.data(),
                             static_cast<unsigned int>(metadata.colourProfile.size()));
    }
  });
}

/// In whole pixels per inch, which is what programs expect.
void JpegEncoder::SetResolution(const Resolution& resolution) {
  constexpr UINT8 PerInch = 1;
  const double horizontal = std::round(resolution.horizontal / InchesPerMetre);
  const double vertical = std::round(resolution.vertical / InchesPerMetre);
  if (std::min(horizontal, vertical) >= 1 && std::max(horizontal, vertical) <= MostDensity) {
    info.density_unit = PerInch;
    info.X_density = static_cast<UINT16>(horizontal);
    info.Y_density = static_cast<UINT16>(vertical);
  }
}

void JpegEncoder::Encode(cv::Mat& pixels) {
  Attempt([this, &pixels] {
    for (int row = 0; row < pixels.rows; ++row) {
      JSAMPROW line = pixels.ptr(row);
      jpeg_write_scanlines(&info, &line, 1);
    }
  });
}

void JpegEncoder::End() {
  Attempt([this] { jpeg_finish_compress(&info); });
}

template <typename Call>
void JpegEncoder::Attempt(const Call& call) {
  if (errors.Attempt(call)) {
    return;
  }
  destination.sink.ThrowFailure();
  if (errors.IsOutOfMemory()) {
    throw std::bad_alloc();
  }
  ThrowEncodingFailure(format, name);
}

void JpegEncoder::StartBuffer(j_compress_ptr info) {
  auto& destination = *static_cast<Destination*>(info->dest);
  destination.next_output_byte = destination.buffer.data();
  destination.free_in_buffer = destination.buffer.size();
}

boolean JpegEncoder::EmptyBuffer(j_compress_ptr info) {
  Store(info, static_cast<Destination*>(info->dest)->buffer.size());
  StartBuffer(info);
  return TRUE;
}

void JpegEncoder::EmptyLastBuffer(j_compress_ptr info) {
  Store(info, static_cast<Destination*>(info->dest)->buffer.size() - info->dest->free_in_buffer);
}

void JpegEncoder::Store(j_compress_ptr info, size_t length) {
  auto& destination = *static_cast<Destination*>(info->dest);
  if (!destination.sink.Append(destination.buffer.data(), length)) {
    JpegErrors::Leave(reinterpret_cast<j_common_ptr>(info));
  }
}

}  // namespace ScrollingCapture::Program
