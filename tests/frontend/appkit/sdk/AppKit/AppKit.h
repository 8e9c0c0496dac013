#pragma once

// What the library and its test hosts use of AppKit, declared as macOS declares it.
#import <Foundation/Foundation.h>

typedef enum NSCompositingOperation : NSUInteger {
  NSCompositingOperationCopy = 1
} NSCompositingOperation;

extern NSString* const NSDeviceRGBColorSpace;

@interface NSImageRep : NSObject
@end

@interface NSBitmapImageRep : NSImageRep
@property(readonly) NSInteger pixelsWide;
@property(readonly) NSInteger pixelsHigh;
@property(readonly) unsigned char* bitmapData;
- (instancetype)initWithCGImage:(CGImageRef)image;
- (instancetype)initWithBitmapDataPlanes:(unsigned char**)planes
                              pixelsWide:(NSInteger)width
                              pixelsHigh:(NSInteger)height
                           bitsPerSample:(NSInteger)bitsPerSample
                         samplesPerPixel:(NSInteger)samplesPerPixel
                                hasAlpha:(BOOL)hasAlpha
                                isPlanar:(BOOL)isPlanar
                          colorSpaceName:(NSString*)colorSpaceName
                             bytesPerRow:(NSInteger)bytesPerRow
                            bitsPerPixel:(NSInteger)bitsPerPixel;
@end

@interface NSColorSpace : NSObject
@property(class, readonly) NSColorSpace* deviceRGBColorSpace;
@property(readonly) CGColorSpaceRef CGColorSpace;
@end

@interface NSGraphicsContext : NSObject
+ (NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmap;
+ (NSGraphicsContext*)graphicsContextWithGraphicsPort:(void*)port flipped:(BOOL)flipped;
+ (void)setCurrentContext:(NSGraphicsContext*)context;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
- (void)flushGraphics;
@end

@interface NSImage : NSObject
@property NSSize size;
- (instancetype)initWithSize:(NSSize)size;
- (void)addRepresentation:(NSImageRep*)representation;
- (void)drawAtPoint:(NSPoint)point
           fromRect:(NSRect)rectangle
          operation:(NSCompositingOperation)operation
           fraction:(CGFloat)fraction;
- (void)drawInRect:(NSRect)target
          fromRect:(NSRect)source
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)fraction;
@end
