#pragma once

#import <AppKit/AppKit.h>
#include <opencv2/core.hpp>

namespace ScrollingCapture::AppKit {

/// The bitmap of an image from which its pixels are taken: the smallest that has a pixel for each
/// of the image's points, otherwise the one of the most pixels; nil when there is none.
__attribute__((visibility("hidden"))) NSBitmapImageRep* BestBitmapOf(NSImage* image);

/// Whether the bitmap's samples are grey pixels of 8 bits as they stand.
__attribute__((visibility("hidden"))) bool IsPlainGrey(NSBitmapImageRep* bitmap);

/// A header over the bytes of a bitmap that keeps all samples of a pixel together, 8 bits each.
__attribute__((visibility("hidden"))) cv::Mat SamplesOf(NSBitmapImageRep* bitmap);

/// The bitmap's pixels as CV_8UC4: red, green, blue, premultiplied alpha. Of whatever layout its
/// samples are; greys and colours of up to 16 bits a sample are converted row by row.
__attribute__((visibility("hidden"))) cv::Mat PixelsOf(NSBitmapImageRep* bitmap);

}  // namespace ScrollingCapture::AppKit
