#pragma once

#import <AppKit/AppKit.h>

namespace ScrollingCapture::AppKit {

/// Renders an image into a bitmap of its own size, in whole points, with four 8-bit samples a
/// pixel: red, green, blue, alpha, premultiplied.
/// @return false when memory runs out, be it for a bitmap that is nil
__attribute__((visibility("hidden"))) bool RenderIntoBitmap(NSImage* image,
                                                            NSBitmapImageRep* bitmap);

}  // namespace ScrollingCapture::AppKit
