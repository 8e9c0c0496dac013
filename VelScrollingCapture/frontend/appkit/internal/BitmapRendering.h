#pragma once

#import <AppKit/AppKit.h>

namespace ScrollingCapture::AppKit {

/// Renders an image into a bitmap of its own size, in whole points, with four 8-bit samples a
/// pixel: red, green, blue, alpha, premultiplied.
__attribute__((visibility("hidden"))) void RenderIntoBitmap(NSImage* image,
                                                            NSBitmapImageRep* bitmap);

}  // namespace ScrollingCapture::AppKit
