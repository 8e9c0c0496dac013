#pragma once

/// \file
/// Stitched pictures and previews: their pixels, and files of them.

#include <stddef.h>
#include <stdint.h>

#include <VelScrollingCapture/c/images.h>
#include <VelScrollingCapture/c/results.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/// A picture whose pixels are made when they are asked for: who takes it area by area never needs
/// the memory of the whole.
typedef struct vel_picture vel_picture;

/// Hears of progress, and can stop the work. Called by one thread at a time, not always the one
/// that made the call. A call with a handle that the work is done with answers VEL_BUSY.
/// @param percent 0 to 100
/// @param user    what was given along with the callback
/// @return 0 to go on, anything else to stop
typedef int32_t (*vel_progress)(int32_t percent, void* user);

/// How a picture turns into a file.
typedef struct vel_file_settings {
  size_t struct_size;      ///< sizeof(vel_file_settings).
  int32_t jpeg_quality;    ///< 1 to 100. Default: 95.
  int32_t png_level;       ///< 0 (fast) to 9 (small). Default: 3.
  uint32_t thread_count;   ///< The most threads at once, up to 1024; 0 counts as 1. Default: 1.
  int32_t rows_per_file;   ///< Cut it into files of at most so many rows; 0: one file. Default: 0.
  int32_t has_background;  ///< Not 0: the background shows through. Default: 0, transparent places
                           ///< stay so, or are white in a format that has no transparency.
  uint8_t background_red;  ///< Of the background. Default: 255.
  uint8_t background_green;  ///< Of the background. Default: 255.
  uint8_t background_blue;   ///< Of the background. Default: 255.
  uint8_t reserved;          ///< 0.
} vel_file_settings;

/// Sets the defaults.
/// @param settings    NULL is ignored
/// @param struct_size sizeof(vel_file_settings)
void vel_file_settings_init(vel_file_settings* settings, size_t struct_size);

/// The size in pixels.
/// @param picture the picture
/// @param width   receives the pixels in a row
/// @param height  receives the number of rows
vel_result vel_picture_size(vel_picture* picture, int32_t* width, int32_t* height);

/// Whether no pixel is even partly transparent.
/// @param picture the picture
/// @param opaque  receives 1 or 0
vel_result vel_picture_is_opaque(vel_picture* picture, int32_t* opaque);

/// Gives an area: some rows, columns, or the whole. Places that no capture shows are transparent.
///
/// When it fails, some rows may have been written.
/// @param picture the picture
/// @param column  the first column of the area in the picture
/// @param row     its first row
/// @param image   receives the pixels; its size is that of the area, which has to lie in the
///                picture
vel_result vel_picture_read(vel_picture* picture, int32_t column, int32_t row,
                            const vel_target_image* image);

/// Writes the picture into a file. Only when all is written it takes the place of a file that is
/// there; a failure leaves that as it was, and nothing else.
///
/// With rows_per_file several files are written where the picture has more rows: page-1.png,
/// page-2.png, ... for page.png.
/// @param picture  the picture
/// @param path     where to; the extension tells the format: .png, .tif, .tiff, .bmp, .webp, .jpg
///                 or .jpeg
/// @param settings NULL: the defaults
/// @param progress NULL: nobody is told
/// @param user     passed to progress
vel_result vel_picture_write(vel_picture* picture, const char* path,
                             const vel_file_settings* settings, vel_progress progress, void* user);

/// What the last failure with this handle was, as a line of text; empty before the first one.
/// @param picture the picture
/// @param text    receives the message, cut off where there is no room, and a zero at its end
/// @param size    the bytes that there is room for; VEL_MESSAGE_SIZE is always enough
vel_result vel_picture_message(vel_picture* picture, char* text, size_t size);

/// Frees a picture.
/// @param picture NULL is ignored
void vel_picture_free(vel_picture* picture);

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
