#pragma once

/// \file
/// What came of a session's stitch.

#include <stddef.h>
#include <stdint.h>

#include <VelScrollingCapture/c/picture.h>
#include <VelScrollingCapture/c/results.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/// One picture, or several parts where captures are missing in between, and where each capture
/// lies.
typedef struct vel_stitched vel_stitched;

/// How far the content moved from one capture to the next, in pixels. This structure never gets
/// more fields.
typedef struct vel_motion {
  int32_t rows;     ///< Positive: down. Scrolling down moves the content up.
  int32_t columns;  ///< Positive: to the right.
} vel_motion;

/// How sure it is that a capture was joined rightly.
typedef enum vel_verdict {
  VEL_JOIN_NONE = 0,      ///< The captures have nothing in common.
  VEL_JOIN_DOUBTFUL = 1,  ///< Several motions explain the pixels alike; one of them was taken.
  VEL_JOIN_LIKELY = 2,    ///< One motion explains them far better than every other.
  VEL_JOIN_PROVEN = 3     ///< The motion is the only one that the pixels allow.
} vel_verdict;

/// Where a capture has gone.
typedef struct vel_placement {
  size_t struct_size;        ///< sizeof(vel_placement).
  size_t part;               ///< The part of the result that shows it, from 0.
  int32_t row;               ///< Of its first pixel in that part's picture.
  int32_t column;            ///< Likewise.
  int32_t verdict;           ///< A vel_verdict; means nothing for the first capture.
  int32_t left_out;          ///< With phase correlation 1: left out since it did not move.
  vel_motion motion;         ///< Since the capture that was added before.
  int64_t compared;          ///< The pixels that were compared under that motion.
  int64_t equal;             ///< Those of them that are equal.
  int64_t joined_to;         ///< The earlier capture that it was proven against, or -1.
  size_t alternative_count;  ///< How many other motions explain the pixels as well.
} vel_placement;

/// The fixed borders of a run of captures, in pixels.
typedef struct vel_borders {
  size_t struct_size;  ///< sizeof(vel_borders).
  int32_t found;       ///< 1 when there are any; 0, and all else as well, when not.
  int32_t top;         ///< Rows above what changes.
  int32_t bottom;      ///< Rows below it.
  int32_t left;        ///< Columns left of it.
  int32_t right;       ///< Columns right of it.
  int32_t reserved;    ///< 0.
} vel_borders;

/// Sets the size, and all else to 0.
/// @param placement   NULL is ignored
/// @param struct_size sizeof(vel_placement)
void vel_placement_init(vel_placement* placement, size_t struct_size);

/// Sets the size, and all else to 0.
/// @param borders     NULL is ignored
/// @param struct_size sizeof(vel_borders)
void vel_borders_init(vel_borders* borders, size_t struct_size);

/// How many parts there are, at least one.
/// @param stitched the result
/// @param count    receives the number
vel_result vel_stitched_part_count(vel_stitched* stitched, size_t* count);

/// The picture of a part.
/// @param stitched the result
/// @param part     from 0, in the order in which parts begin
/// @param picture  receives the picture
vel_result vel_stitched_part(vel_stitched* stitched, size_t part, vel_picture** picture);

/// How many captures were stitched.
/// @param stitched the result
/// @param count    receives the number
vel_result vel_stitched_capture_count(vel_stitched* stitched, size_t* count);

/// Where a capture has gone.
/// @param stitched  the result
/// @param capture   from 0, in the order in which they were added
/// @param placement receives the answer; state its size
vel_result vel_stitched_capture(vel_stitched* stitched, size_t capture, vel_placement* placement);

/// One of the other motions that explain a capture as well.
/// @param stitched the result
/// @param capture  from 0
/// @param index    below the alternative_count of its placement
/// @param motion   receives the motion
vel_result vel_stitched_alternative(vel_stitched* stitched, size_t capture, size_t index,
                                    vel_motion* motion);

/// The borders that were found.
/// @param stitched the result
/// @param borders  receives them; state its size
vel_result vel_stitched_borders(vel_stitched* stitched, vel_borders* borders);

/// Writes all parts into files, as vel_picture_write does it: one file, or page-1.png, page-2.png,
/// ... for page.png where there are several parts. None takes its name before all are written.
/// @param stitched the result
/// @param path     where to; the extension tells the format
/// @param settings NULL: the defaults
/// @param progress NULL: nobody is told
/// @param user     passed to progress
vel_result vel_stitched_write(vel_stitched* stitched, const char* path,
                              const vel_file_settings* settings, vel_progress progress, void* user);

/// What the last failure with this handle was, as a line of text; empty before the first one.
/// @param stitched the result
/// @param text     receives the message, cut off where there is no room, and a zero at its end
/// @param size     the bytes that there is room for; VEL_MESSAGE_SIZE is always enough
vel_result vel_stitched_message(vel_stitched* stitched, char* text, size_t size);

/// Frees a result. The pictures of its parts live on.
/// @param stitched NULL is ignored
void vel_stitched_free(vel_stitched* stitched);

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
