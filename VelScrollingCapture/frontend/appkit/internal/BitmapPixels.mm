#include <array>
#include <cstdint>
#include <vector>

#include <opencv2/imgproc.hpp>

#import <VelScrollingCapture/frontend/appkit/internal/BitmapPixels.h>

namespace ScrollingCapture::AppKit {
namespace {

constexpr int GreySamples = 1;
constexpr int ColourSamples = 3;
constexpr int BitsInByte = 8;
constexpr int MostBits = 16;
constexpr std::size_t MostPlanes = 5;

std::int64_t PixelCount(NSBitmapImageRep* bitmap) {
  return static_cast<std::int64_t>([bitmap pixelsWide]) * [bitmap pixelsHigh];
}

bool Covers(NSBitmapImageRep* bitmap, const NSSize& points) {
  return static_cast<double>([bitmap pixelsWide]) >= points.width &&
         static_cast<double>([bitmap pixelsHigh]) >= points.height;
}

bool IsBetter(NSBitmapImageRep* bitmap, NSBitmapImageRep* other, const NSSize& points) {
  const bool covers = Covers(bitmap, points);
  if (covers != Covers(other, points)) {
    return covers;
  }
  return covers ? PixelCount(bitmap) < PixelCount(other) : PixelCount(bitmap) > PixelCount(other);
}

bool HasFormat(NSBitmapImageRep* bitmap, NSBitmapFormat format) {
  return ([bitmap bitmapFormat] & format) != 0;
}

/// The samples of a pixel without its alpha, as far as they mean a grey or a colour; else none.
int ColourSamplesOf(NSBitmapImageRep* bitmap) {
  NSString* const space = [bitmap colorSpaceName];
  if ([space isEqualToString:NSDeviceWhiteColorSpace] ||
      [space isEqualToString:NSCalibratedWhiteColorSpace]) {
    return GreySamples;
  }
  const bool isColour = [space isEqualToString:NSDeviceRGBColorSpace] ||
                        [space isEqualToString:NSCalibratedRGBColorSpace];
  return isColour ? ColourSamples : 0;
}

bool HasRowsThatCanBeRead(NSBitmapImageRep* bitmap) {
  const int colours = ColourSamplesOf(bitmap);
  return colours > 0 && [bitmap samplesPerPixel] >= colours + ([bitmap hasAlpha] ? 1 : 0) &&
         [bitmap bitsPerSample] <= MostBits &&
         !HasFormat(bitmap, NSFloatingPointSamplesBitmapFormat);
}

/// The planes of a planar bitmap, or all of its samples as the only one.
std::vector<const uchar*> PlanesOf(NSBitmapImageRep* bitmap) {
  std::array<uchar*, MostPlanes> planes{};
  [bitmap getBitmapDataPlanes:planes.data()];
  const std::ptrdiff_t count = [bitmap isPlanar] ? [bitmap samplesPerPixel] : 1;
  return {planes.begin(), planes.begin() + count};
}

/// Reads samples of up to 16 bits, the highest bit first, from one row of a plane.
class SampleReader {
 public:
  SampleReader(std::size_t bytesPerRow, int bitsPerSample)
      : bytesPerRow(bytesPerRow), bitsPerSample(bitsPerSample) {}

  /// The sample that begins at a bit of the row, scaled to 8 bits.
  uchar At(const uchar* row, std::size_t bit) const {
    const std::size_t first = bit / BitsInByte;
    unsigned int bytes = 0;
    for (std::size_t i = first; i < first + 3; ++i) {
      bytes = (bytes << BitsInByte) | (i < bytesPerRow ? row[i] : 0U);
    }
    const int behind = 3 * BitsInByte - static_cast<int>(bit % BitsInByte) - bitsPerSample;
    const unsigned int most = (1U << bitsPerSample) - 1;
    return static_cast<uchar>((((bytes >> behind) & most) * 255 + most / 2) / most);
  }

 private:
  std::size_t bytesPerRow;
  int bitsPerSample;
};

cv::Mat UnpackedSamplesOf(NSBitmapImageRep* bitmap) {
  const std::vector<const uchar*> planes = PlanesOf(bitmap);
  const auto bytesPerRow = static_cast<std::size_t>([bitmap bytesPerRow]);
  const auto bitsPerPixel = static_cast<std::size_t>([bitmap bitsPerPixel]);
  const auto bitsPerSample = static_cast<std::size_t>([bitmap bitsPerSample]);
  const SampleReader reader(bytesPerRow, static_cast<int>(bitsPerSample));
  const bool planar = planes.size() > 1;
  const auto samplesPerPixel = static_cast<std::size_t>([bitmap samplesPerPixel]);
  cv::Mat samples(static_cast<int>([bitmap pixelsHigh]), static_cast<int>([bitmap pixelsWide]),
                  CV_8UC(static_cast<int>(samplesPerPixel)));
  for (int row = 0; row < samples.rows; ++row) {
    uchar* sample = samples.ptr(row);
    for (std::size_t column = 0; column < static_cast<std::size_t>(samples.cols); ++column) {
      for (std::size_t i = 0; i < samplesPerPixel; ++i) {
        const uchar* const plane = planes[planar ? i : 0];
        const std::size_t bit = column * bitsPerPixel + (planar ? 0 : i * bitsPerSample);
        *sample++ = reader.At(plane + static_cast<std::size_t>(row) * bytesPerRow, bit);
      }
    }
  }
  return samples;
}

cv::Mat MergedPlanesOf(NSBitmapImageRep* bitmap) {
  std::vector<cv::Mat> planes;
  for (const uchar* const plane : PlanesOf(bitmap)) {
    planes.emplace_back(static_cast<int>([bitmap pixelsHigh]),
                        static_cast<int>([bitmap pixelsWide]), CV_8UC1, const_cast<uchar*>(plane),
                        static_cast<std::size_t>([bitmap bytesPerRow]));
  }
  cv::Mat samples;
  cv::merge(planes, samples);
  return samples;
}

/// All samples with 8 bits each, in the order in which the bitmap has them. Unused bytes may follow
/// a pixel's samples.
cv::Mat SamplesIn8Bits(NSBitmapImageRep* bitmap) {
  const bool wholeBytes =
      [bitmap bitsPerSample] == BitsInByte && [bitmap bitsPerPixel] % BitsInByte == 0;
  if (!wholeBytes) {
    return UnpackedSamplesOf(bitmap);
  }
  return [bitmap isPlanar] ? MergedPlanesOf(bitmap) : SamplesOf(bitmap);
}

bool HasAlphaFirst(NSBitmapImageRep* bitmap) {
  return [bitmap hasAlpha] && HasFormat(bitmap, NSAlphaFirstBitmapFormat);
}

/// Whether `samples` of the bitmap are red, green, blue, alpha.
bool AreInOrder(const cv::Mat& samples, NSBitmapImageRep* bitmap) {
  return ColourSamplesOf(bitmap) == ColourSamples && samples.channels() == 4 && [bitmap hasAlpha] &&
         !HasAlphaFirst(bitmap);
}

/// `samples` of the bitmap in the order red, green, blue, alpha; opaque without an alpha.
cv::Mat InOrder(const cv::Mat& samples, NSBitmapImageRep* bitmap) {
  if (AreInOrder(samples, bitmap)) {
    return samples;
  }
  cv::Mat pixels;
  const int colours = ColourSamplesOf(bitmap);
  if (samples.channels() == colours) {
    cv::cvtColor(samples, pixels,
                 colours == GreySamples ? cv::COLOR_GRAY2RGBA : cv::COLOR_RGB2RGBA);
    return pixels;
  }
  const bool alphaFirst = HasAlphaFirst(bitmap);
  const int first = alphaFirst ? 1 : 0;
  const int step = colours == ColourSamples ? 1 : 0;
  std::vector<int> moves = {first, 0, first + step, 1, first + 2 * step, 2};
  if ([bitmap hasAlpha]) {
    moves.insert(moves.end(), {alphaFirst ? 0 : colours, 3});
  }
  pixels = cv::Mat(samples.size(), CV_8UC4, cv::Scalar::all(255));
  cv::mixChannels(std::vector<cv::Mat>{samples}, std::vector<cv::Mat>{pixels}, moves);
  return pixels;
}

cv::Vec4b PremultipliedPixel(NSColor* colour) {
  NSColor* const converted = [colour colorUsingColorSpaceName:NSDeviceRGBColorSpace];
  if (converted == nil) {
    return {};
  }
  const double scale = 255.0 * [converted alphaComponent];
  return {cv::saturate_cast<uchar>(scale * [converted redComponent]),
          cv::saturate_cast<uchar>(scale * [converted greenComponent]),
          cv::saturate_cast<uchar>(scale * [converted blueComponent]),
          cv::saturate_cast<uchar>(scale)};
}

/// Works for every layout and colour space, but makes an object for each pixel.
cv::Mat PixelByPixel(NSBitmapImageRep* bitmap) {
  cv::Mat pixels(static_cast<int>([bitmap pixelsHigh]), static_cast<int>([bitmap pixelsWide]),
                 CV_8UC4);
  for (int row = 0; row < pixels.rows; ++row) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    for (int column = 0; column < pixels.cols; ++column) {
      pixels.at<cv::Vec4b>(row, column) = PremultipliedPixel([bitmap colorAtX:column y:row]);
    }
    [pool drain];
  }
  return pixels;
}

}  // namespace

NSBitmapImageRep* BestBitmapOf(NSImage* image) {
  NSBitmapImageRep* best = nil;
  NSArray* const representations = [image representations];
  for (NSUInteger i = 0; i < [representations count]; ++i) {
    NSImageRep* const representation = [representations objectAtIndex:i];
    if (![representation isKindOfClass:[NSBitmapImageRep class]]) {
      continue;
    }
    auto* const bitmap = static_cast<NSBitmapImageRep*>(representation);
    if (PixelCount(bitmap) > 0 && (best == nil || IsBetter(bitmap, best, [image size]))) {
      best = bitmap;
    }
  }
  return best;
}

bool IsPlainGrey(NSBitmapImageRep* bitmap) {
  return ColourSamplesOf(bitmap) == GreySamples && ![bitmap hasAlpha] && ![bitmap isPlanar] &&
         [bitmap bitsPerSample] == BitsInByte && [bitmap bitsPerPixel] == BitsInByte;
}

cv::Mat SamplesOf(NSBitmapImageRep* bitmap) {
  return {static_cast<int>([bitmap pixelsHigh]), static_cast<int>([bitmap pixelsWide]),
          CV_8UC(static_cast<int>([bitmap bitsPerPixel]) / BitsInByte), [bitmap bitmapData],
          static_cast<std::size_t>([bitmap bytesPerRow])};
}

cv::Mat PixelsOf(NSBitmapImageRep* bitmap) {
  if (!HasRowsThatCanBeRead(bitmap)) {
    return PixelByPixel(bitmap);
  }
  const cv::Mat samples = SamplesIn8Bits(bitmap);
  const cv::Mat pixels = InOrder(samples, bitmap);
  if ([bitmap hasAlpha] && HasFormat(bitmap, NSAlphaNonpremultipliedBitmapFormat)) {
    cv::Mat premultiplied;
    cv::cvtColor(pixels, premultiplied, cv::COLOR_RGBA2mRGBA);
    return premultiplied;
  }
  return pixels.data == samples.data ? samples.clone() : pixels;
}

}  // namespace ScrollingCapture::AppKit
