#pragma once

/// \file
/// The plain stitch: phase correlation of neighbouring captures and hard seams, and fixed borders
/// around the result. Sessions do more: they refuse, drop repeats, prove joins and show a preview.

#include <stddef.h>
#include <stdint.h>

#include <VelScrollingCapture/c/images.h>
#include <VelScrollingCapture/c/picture.h>
#include <VelScrollingCapture/c/results.h>
#include <VelScrollingCapture/c/stitched.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/// Takes captures and stitches them as they are.
typedef struct vel_stitcher vel_stitcher;

/// What a stitcher is asked to do.
typedef struct vel_stitcher_settings {
  size_t struct_size;                 ///< sizeof(vel_stitcher_settings).
  int32_t orientation;                ///< A vel_orientation. Default: VEL_BOTH.
  int32_t expect_consistent_motions;  ///< Not 0: a pair may be given its second-best motion when
                                      ///< that repeats the step before. Default: 0.
  uint32_t thread_count;  ///< The most detections at once, up to 1024; 0 counts as 1. Default: 1.
  int32_t find_borders;   ///< Not 0: find what stands still at the edges, and lay it around the
                          ///< result once. Default: 0.
  uint32_t border_difference;  ///< The grey-level difference, 0 to 255, that a change exceeds.
                               ///< Default: 10.
  uint32_t border_neighbors;  ///< The changed neighbours, 0 to 8, that content exceeds. Default: 2.
} vel_stitcher_settings;

/// Sets the defaults.
/// @param settings    NULL is ignored
/// @param struct_size sizeof(vel_stitcher_settings)
void vel_stitcher_settings_init(vel_stitcher_settings* settings, size_t struct_size);

/// Makes a stitcher.
/// @param settings NULL: the defaults
/// @param stitcher receives the stitcher
/// @param text     receives a message when this fails, as vel_stitcher_message gives it; may be
///                 NULL
/// @param size     the bytes that there is room for
vel_result vel_stitcher_create(const vel_stitcher_settings* settings, vel_stitcher** stitcher,
                               char* text, size_t size);

/// Adds the next capture. All have one size.
/// @param stitcher the stitcher
/// @param image    the capture; its pixels are copied
vel_result vel_stitcher_add(vel_stitcher* stitcher, const vel_source_image* image);

/// Adds the next capture from an image file: PNG, JPEG, TIFF, WebP or BMP.
/// @param stitcher the stitcher
/// @param path     the file
vel_result vel_stitcher_add_file(vel_stitcher* stitcher, const char* path);

/// Stitches the captures that were added. Whatever comes of it, the stitcher has no captures
/// afterwards, and takes those of another stitch.
/// @param stitcher the stitcher
/// @param progress NULL: nobody is told
/// @param user     passed to progress
/// @param picture  receives the stitched picture
vel_result vel_stitcher_stitch(vel_stitcher* stitcher, vel_progress progress, void* user,
                               vel_picture** picture);

/// How many motions the last stitch that succeeded found: one fewer than it had captures.
/// @param stitcher the stitcher
/// @param count    receives the number
vel_result vel_stitcher_motion_count(vel_stitcher* stitcher, size_t* count);

/// A motion that the last stitch found.
/// @param stitcher the stitcher
/// @param index    k: from capture k to capture k + 1
/// @param motion   receives the motion
vel_result vel_stitcher_motion(vel_stitcher* stitcher, size_t index, vel_motion* motion);

/// What the last failure with this handle was, as a line of text; empty before the first one.
/// @param stitcher the stitcher
/// @param text     receives the message, cut off where there is no room, and a zero at its end
/// @param size     the bytes that there is room for; VEL_MESSAGE_SIZE is always enough
vel_result vel_stitcher_message(vel_stitcher* stitcher, char* text, size_t size);

/// Frees a stitcher. The picture lives on.
/// @param stitcher NULL is ignored
void vel_stitcher_free(vel_stitcher* stitcher);

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
