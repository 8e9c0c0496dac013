#pragma once

// What the library uses of Core Graphics, declared as macOS declares it.
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

typedef const struct __CFData* CFDataRef;
typedef double CGFloat;
typedef struct CGPoint {
  CGFloat x, y;
} CGPoint;
typedef struct CGSize {
  CGFloat width, height;
} CGSize;
typedef struct CGRect {
  CGPoint origin;
  CGSize size;
} CGRect;
typedef struct CGContext* CGContextRef;
typedef struct CGImage* CGImageRef;
typedef struct CGColorSpace* CGColorSpaceRef;
typedef struct CGDataProvider* CGDataProviderRef;

typedef enum CGImageAlphaInfo : uint32_t {
  kCGImageAlphaPremultipliedLast = 1,
  kCGImageAlphaPremultipliedFirst = 2
} CGImageAlphaInfo;
typedef uint32_t CGBitmapInfo;
enum { kCGBitmapByteOrder32Little = 2U << 12U };
typedef enum CGColorRenderingIntent : int32_t {
  kCGRenderingIntentDefault = 0
} CGColorRenderingIntent;

#ifdef __cplusplus
extern "C" {
#endif

static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  const CGRect rectangle = {{x, y}, {width, height}};
  return rectangle;
}

CGColorSpaceRef CGColorSpaceCreateDeviceGray(void);
CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
void CGColorSpaceRelease(CGColorSpaceRef space);

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space, uint32_t bitmapInfo);
CGImageRef CGBitmapContextCreateImage(CGContextRef context);
void CGContextDrawImage(CGContextRef context, CGRect rectangle, CGImageRef image);
void CGContextRelease(CGContextRef context);

CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data);
void CGDataProviderRelease(CGDataProviderRef provider);

CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                         size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                         CGDataProviderRef provider, const CGFloat* decode, bool shouldInterpolate,
                         CGColorRenderingIntent intent);
CGColorSpaceRef CGImageGetColorSpace(CGImageRef image);
void CGImageRelease(CGImageRef image);

#ifdef __cplusplus
}  // extern "C"
#endif
