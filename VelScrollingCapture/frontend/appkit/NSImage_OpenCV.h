#pragma once

// OpenCV comes first: AppKit defines macros that its headers do not expect.
#ifdef __cplusplus
#include <opencv2/core.hpp>
#endif

#import <AppKit/AppKit.h>

/// Whether pixels go through CoreGraphics, or else straight into and out of NSBitmapImageRep.
#ifndef VEL_COREGRAPHICS
#ifdef __APPLE__
#define VEL_COREGRAPHICS 1
#else
#define VEL_COREGRAPHICS 0
#endif
#endif

#if VEL_COREGRAPHICS
#ifdef __APPLE__
#import <ApplicationServices/ApplicationServices.h>
#else
#import <CoreGraphics/CoreGraphics.h>
#endif
#endif

/// Conversions between images and matrices. A matrix holds 8 bits a channel, with colour in the
/// order red, green, blue, alpha, premultiplied by alpha. Matrices and images never share pixels.
/// What takes or gives matrices is there for Objective-C++ only.
@interface NSImage (NSImage_OpenCV)

#ifdef __cplusplus
/// The image as CV_8UC4, with as many rows and columns as its size has whole points. The matrix is
/// empty without a whole point, for more than 2^30 of them, and where memory runs out.
@property(nonatomic, readonly) cv::Mat CVMat;

/// The image as CV_8UC1, otherwise like CVMat.
@property(nonatomic, readonly) cv::Mat CVGrayscaleMat;
#endif

#if VEL_COREGRAPHICS
/// A new CoreGraphics image of the receiver, which the caller releases; NULL where CVMat is empty.
- (CGImageRef)CGImage;
#endif

#ifdef __cplusplus
/// An image of the size of `matrix`, with a copy of its pixels; its rows may be padded. Elements of
/// one byte are grey, of four bytes colour with alpha; other matrices give an image without a
/// representation. The returned image takes the place of the receiver.
- (id)initWithCVMat:(const cv::Mat&)matrix;

/// Like initWithCVMat:, autoreleased.
+ (id)imageWithCVMat:(const cv::Mat&)matrix;
#endif

@end
