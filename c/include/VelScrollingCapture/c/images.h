#pragma once

/// \file
/// Images in the caller's memory.

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/// The channels of a pixel in the order of their bytes, of 8 bits each.
typedef enum vel_pixel_format {
  VEL_RGBA = 0,  ///< Red, green, blue, alpha.
  VEL_BGRA = 1,  ///< Blue, green, red, alpha.
  VEL_RGB = 2,   ///< Red, green, blue.
  VEL_BGR = 3,   ///< Blue, green, red.
  VEL_GREY = 4   ///< One grey level.
} vel_pixel_format;

/// What the alpha of VEL_RGBA and VEL_BGRA means; the other formats have none.
typedef enum vel_alpha {
  VEL_PREMULTIPLIED = 0,  ///< The colours are multiplied with alpha, so that none is above it.
  VEL_STRAIGHT = 1,       ///< The colours are as they would be if the pixel were opaque.
  VEL_UNUSED = 2          ///< The byte means nothing: every pixel is opaque. 255 is written.
} vel_alpha;

/// An image that is read. The library copies what it keeps: the memory is the caller's again as
/// soon as the call returns.
typedef struct vel_source_image {
  size_t struct_size;  ///< sizeof(vel_source_image).
  const void* pixels;  ///< The first pixel of the first row, which is the topmost one.
  size_t stride;       ///< Bytes from a row to the next; 0: the rows have no gaps between them.
  int32_t width;       ///< Pixels in a row: 1 to 1048576, and 1073741824 pixels in all.
  int32_t height;      ///< Rows: 1 to 1048576.
  int32_t format;      ///< A vel_pixel_format. Default: VEL_RGBA.
  int32_t alpha;       ///< A vel_alpha. Default: VEL_PREMULTIPLIED.
} vel_source_image;

/// An image that is written. What lies between the rows stays as it is. In formats without alpha,
/// and with VEL_UNUSED, transparent places are laid on white.
typedef struct vel_target_image {
  size_t struct_size;  ///< sizeof(vel_target_image).
  void* pixels;        ///< The first pixel of the first row, which is the topmost one.
  size_t stride;       ///< Bytes from a row to the next; 0: the rows have no gaps between them.
  int32_t width;       ///< Pixels in a row, at least 1.
  int32_t height;      ///< Rows, at least 1.
  int32_t format;      ///< A vel_pixel_format. Default: VEL_RGBA.
  int32_t alpha;       ///< A vel_alpha. Default: VEL_PREMULTIPLIED.
} vel_target_image;

/// Sets the defaults, and pixels to NULL, stride, width and height to 0.
/// @param image       NULL is ignored
/// @param struct_size sizeof(vel_source_image)
void vel_source_image_init(vel_source_image* image, size_t struct_size);

/// Sets the defaults, and pixels to NULL, stride, width and height to 0.
/// @param image       NULL is ignored
/// @param struct_size sizeof(vel_target_image)
void vel_target_image_init(vel_target_image* image, size_t struct_size);

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
