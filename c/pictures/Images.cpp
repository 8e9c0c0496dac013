#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include <c/calls/SizedStruct.h>
#include <c/pictures/Images.h>
#include <opencv2/imgproc.hpp>
#include <velscroll/output/Colour.h>
#include <velscroll/pixels/Premultiplication.h>

namespace ScrollingCapture::C {
namespace {

constexpr int Opaque = 255;
constexpr int AlphaChannel = 3;

constexpr vel_source_image DefaultSource = {sizeof(vel_source_image), nullptr, 0, 0, 0, VEL_RGBA,
                                            VEL_PREMULTIPLIED};
constexpr vel_target_image DefaultTarget = {sizeof(vel_target_image), nullptr, 0, 0, 0, VEL_RGBA,
                                            VEL_PREMULTIPLIED};

int ChannelsOf(int format) {
  switch (format) {
    case VEL_RGBA:
    case VEL_BGRA:
      return 4;
    case VEL_GREY:
      return 1;
    default:
      return 3;
  }
}

void RequireSensible(const cv::Size& size, int format, int alpha) {
  InRange(size.width, 1, LongestSide, "the width of an image");
  InRange(size.height, 1, LongestSide, "the height of an image");
  InRange(size.height, 1, std::max(1, MostPixels / size.width),
          "the height of an image of this width");
  InRange<int>(format, VEL_RGBA, VEL_GREY, "the pixel format");
  InRange<int>(alpha, VEL_PREMULTIPLIED, VEL_UNUSED, "the kind of alpha");
}

/// The bytes from a row to the next.
std::size_t StrideOf(std::size_t stated, const cv::Size& size, int channels) {
  const auto least = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(channels);
  const auto addressable = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
  const std::size_t most = addressable / static_cast<std::size_t>(size.height);
  return InRange(stated == 0 ? least : stated, least, most, "the stride");
}

/// A header over the pixels of a caller's image.
template <typename Image>
cv::Mat HeaderOf(const Image& image, void* pixels) {
  const cv::Size size(image.width, image.height);
  RequireSensible(size, image.format, image.alpha);
  const int channels = ChannelsOf(image.format);
  return {size, CV_8UC(channels), Required(pixels, "the pixels of an image"),
          StrideOf(image.stride, size, channels)};
}

cv::Mat InRgba(const cv::Mat& image, int format) {
  cv::Mat capture;
  switch (format) {
    case VEL_BGRA:
      cv::cvtColor(image, capture, cv::COLOR_BGRA2RGBA);
      return capture;
    case VEL_RGB:
      cv::cvtColor(image, capture, cv::COLOR_RGB2RGBA);
      return capture;
    case VEL_BGR:
      cv::cvtColor(image, capture, cv::COLOR_BGR2RGBA);
      return capture;
    case VEL_GREY:
      cv::cvtColor(image, capture, cv::COLOR_GRAY2RGBA);
      return capture;
    default:
      return image.clone();
  }
}

/// Most rows are: all of their pixels at once tell.
bool IsOpaque(const cv::Mat& row) {
  const auto* const pixels = row.ptr<std::uint32_t>();
  std::uint32_t common = ~std::uint32_t{0};
  for (int column = 0; column < row.cols; ++column) {
    common &= pixels[column];
  }
  cv::Vec4b channels;
  std::memcpy(channels.val, &common, sizeof common);
  return channels[AlphaChannel] == Opaque;
}

bool HasColourAboveAlpha(const cv::Mat& row) {
  const auto* const pixels = row.ptr<cv::Vec4b>();
  return std::any_of(pixels, pixels + row.cols, [](const cv::Vec4b& pixel) {
    return std::max({pixel[0], pixel[1], pixel[2]}) > pixel[AlphaChannel];
  });
}

bool IsPremultiplied(const cv::Mat& image) {
  for (int row = 0; row < image.rows; ++row) {
    if (!IsOpaque(image.row(row)) && HasColourAboveAlpha(image.row(row))) {
      return false;
    }
  }
  return true;
}

void MakeOpaque(cv::Mat& image) {
  for (int row = 0; row < image.rows; ++row) {
    auto* const pixels = image.ptr<cv::Vec4b>(row);
    for (int column = 0; column < image.cols; ++column) {
      pixels[column][AlphaChannel] = Opaque;
    }
  }
}

void InterpretAlpha(cv::Mat& capture, int alpha) {
  if (alpha == VEL_UNUSED) {
    MakeOpaque(capture);
  } else if (alpha == VEL_STRAIGHT) {
    Program::Premultiply(capture);
  } else if (!IsPremultiplied(capture)) {
    throw InvalidArgument(
        "the image has a colour above its alpha, which cannot be when alpha is premultiplied; say "
        "that it is straight, or unused");
  }
}

/// How opaque pixels of four channels turn into a format's.
int ConversionTo(int format) {
  switch (format) {
    case VEL_BGRA:
      return cv::COLOR_RGBA2BGRA;
    case VEL_RGB:
      return cv::COLOR_RGBA2RGB;
    case VEL_BGR:
      return cv::COLOR_RGBA2BGR;
    default:
      return cv::COLOR_RGBA2GRAY;
  }
}

/// @param rows of any alpha
/// @return the same, opaque
cv::Mat OnWhite(const cv::Mat& rows) {
  if (Program::IsOpaque(rows)) {
    return rows;
  }
  cv::Mat opaque;
  cv::cvtColor(Program::LayOn(Program::White, rows), opaque, cv::COLOR_RGB2RGBA);
  return opaque;
}

void Convert(const cv::Mat& rows, int format, cv::Mat& to) {
  if (format == VEL_RGBA) {
    rows.copyTo(to);
  } else {
    cv::cvtColor(rows, to, ConversionTo(format));
  }
}

}  // namespace

cv::Mat CaptureOf(const vel_source_image* image) {
  const vel_source_image taken = Taken(image, DefaultSource, "vel_source_image");
  // Only read, though the header could write.
  const cv::Mat header = HeaderOf(taken, const_cast<void*>(taken.pixels));
  cv::Mat capture = InRgba(header, taken.format);
  if (header.channels() == 4) {
    InterpretAlpha(capture, taken.alpha);
  }
  return capture;
}

TargetImage::TargetImage(const vel_target_image* image) {
  const vel_target_image taken = Taken(image, DefaultTarget, "vel_target_image");
  pixels = HeaderOf(taken, taken.pixels);
  format = taken.format;
  alpha = taken.alpha;
}

void TargetImage::Fill(int row, const cv::Mat& rows) {
  cv::Mat target = pixels.rowRange(row, row + rows.rows);
  const bool hasAlpha = target.channels() == 4 && alpha != VEL_UNUSED;
  Convert(hasAlpha ? rows : OnWhite(rows), format, target);
  if (hasAlpha && alpha == VEL_STRAIGHT) {
    Program::Unpremultiply(target);
  }
}

}  // namespace ScrollingCapture::C

void vel_source_image_init(vel_source_image* image, size_t struct_size) {
  ScrollingCapture::C::Initialise(image, struct_size, ScrollingCapture::C::DefaultSource);
}

void vel_target_image_init(vel_target_image* image, size_t struct_size) {
  ScrollingCapture::C::Initialise(image, struct_size, ScrollingCapture::C::DefaultTarget);
}
