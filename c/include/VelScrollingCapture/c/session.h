#pragma once

/// \file
/// One scrolling capture from its settings to its result.

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

/// Takes capture after capture, says of each what has become of it, shows the picture as it grows,
/// and stitches.
typedef struct vel_session vel_session;

/// How captures are joined.
typedef enum vel_engine {
  VEL_EXACT = 0,             ///< Joins that are proven on the pixels, against all seen before.
  VEL_PHASE_CORRELATION = 1  ///< Phase correlation of neighbouring captures, and hard seams.
} vel_engine;

/// The directions in which the content may move.
typedef enum vel_orientation {
  VEL_VERTICAL = 0,    ///< Along rows only.
  VEL_HORIZONTAL = 1,  ///< Along columns only.
  VEL_BOTH = 2         ///< Along rows and columns.
} vel_orientation;

/// What becomes of toolbars and other parts that stand still while the content scrolls.
typedef enum vel_fixed_parts {
  VEL_ONCE = 0,  ///< They appear once, as in a window as large as the picture.
  VEL_KEEP = 1   ///< They are content like any other.
} vel_fixed_parts;

/// What a session is asked to do.
typedef struct vel_session_settings {
  size_t struct_size;                 ///< sizeof(vel_session_settings).
  int32_t engine;                     ///< A vel_engine. Default: VEL_EXACT.
  int32_t orientation;                ///< A vel_orientation. Default: VEL_BOTH.
  int32_t expect_consistent_motions;  ///< Not 0: of two likely motions, the one that repeats a
                                      ///< step before is taken. Default: 0.
  uint32_t thread_count;  ///< The most threads at once, up to 1024; 0 counts as 1. Default: 1.
  int32_t keep_repeats;   ///< Not 0: captures that repeat the one before are kept. Default: 0.
  int32_t fixed_parts;    ///< With exact joins: a vel_fixed_parts. Default: VEL_ONCE.
  int32_t find_borders;   ///< With phase correlation, not 0: find what stands still at the edges,
                          ///< and lay it around the result once. Default: 0.
  uint32_t border_difference;  ///< The grey-level difference, 0 to 255, that a change exceeds.
                               ///< Default: 10.
  uint32_t border_neighbors;  ///< The changed neighbours, 0 to 8, that content exceeds. Default: 2.
  int32_t preview_width;      ///< The box in pixels that the preview fits into. Default: 0 in both
  int32_t preview_height;     ///< directions, there is no preview.
  int32_t reserved;           ///< 0.
  uint64_t memory_limit;      ///< Bytes of captures to keep in memory; the others wait in files.
                              ///< Default: UINT64_MAX, all stay in memory.
  const char* spill_folder;   ///< An existing folder for those files; read by vel_session_create
                              ///< only. Default: NULL, the system's temporary folder.
} vel_session_settings;

/// What was done with a capture.
typedef enum vel_state {
  VEL_PLACED = 0,    ///< It was added. With phase correlation the stitch finds its place.
  VEL_REPEATED = 1,  ///< It shows the same as the last one that was added, and was dropped.
  VEL_DOUBTFUL = 2,  ///< It was added, and several motions explain it alike.
  VEL_TOO_FAST = 3,  ///< It was added, but nothing joins it to those before: scroll back a little.
  VEL_UNUSABLE = 4   ///< It was refused; vel_session_message says why.
} vel_state;

/// What has become of a capture when it was added. Later captures may join parts or take a proof
/// back; what counts in the end is told by vel_stitched_capture.
typedef struct vel_outcome {
  size_t struct_size;        ///< sizeof(vel_outcome).
  int32_t state;             ///< A vel_state.
  int32_t is_placed;         ///< Whether the fields below mean something: 1 when it was added,
                             ///< with exact joins.
  int32_t part;              ///< The part of the picture, from 0 in the order in which they begin.
  int32_t row;               ///< Of its first pixel, relative to the first capture of that part.
  int32_t column;            ///< Likewise.
  int32_t verdict;           ///< A vel_verdict: how sure that is.
  vel_motion motion;         ///< Since the capture before; 0 and 0 where that is not known.
  int64_t compared;          ///< The pixels that were compared under that motion.
  int64_t equal;             ///< Those of them that are equal.
  int64_t joined_to;         ///< The earlier capture that it was proven against, or -1.
  size_t alternative_count;  ///< How many other motions explain the pixels as well.
} vel_outcome;

/// Sets the defaults.
/// @param settings    NULL is ignored
/// @param struct_size sizeof(vel_session_settings)
void vel_session_settings_init(vel_session_settings* settings, size_t struct_size);

/// Sets the size, and all else to 0.
/// @param outcome     NULL is ignored
/// @param struct_size sizeof(vel_outcome)
void vel_outcome_init(vel_outcome* outcome, size_t struct_size);

/// Makes a session.
/// @param settings NULL: the defaults
/// @param session  receives the session
/// @param text     receives a message when this fails, as vel_session_message gives it; may be NULL
/// @param size     the bytes that there is room for
vel_result vel_session_create(const vel_session_settings* settings, vel_session** session,
                              char* text, size_t size);

/// Adds the next capture, unless it repeats the last one or cannot be used. Captures of one session
/// have one size.
/// @param session the session
/// @param image   the capture; its pixels are copied. With VEL_PREMULTIPLIED no colour may exceed
///                its alpha
/// @param motion  how far the content moved since the capture before, right or wrong; NULL: found
///                on the pixels. It has to leave something in common with that capture
/// @param outcome receives what has become of it; may be NULL
vel_result vel_session_add(vel_session* session, const vel_source_image* image,
                           const vel_motion* motion, vel_outcome* outcome);

/// Adds the next capture from an image file: PNG, JPEG, TIFF, WebP or BMP. The first one's
/// resolution and colour profile go into the files that are written of the result.
/// @param session the session
/// @param path    the file
/// @param motion  as in vel_session_add
/// @param outcome receives what has become of it; may be NULL
vel_result vel_session_add_file(vel_session* session, const char* path, const vel_motion* motion,
                                vel_outcome* outcome);

/// One of the other motions that explain the capture as well that was handed over last.
/// @param session the session
/// @param index   below the alternative_count of its outcome
/// @param motion  receives the motion
vel_result vel_session_alternative(vel_session* session, size_t index, vel_motion* motion);

/// Whether more captures are in memory than the settings allow, since they cannot be spilled: the
/// disk is full, for one. Nothing is lost then.
/// @param session the session
/// @param exceeds receives 1 or 0
vel_result vel_session_exceeds_memory_limit(vel_session* session, int32_t* exceeds);

/// The live preview as it stands. VEL_INVALID_ARGUMENT when the settings ask for none, and when the
/// box leaves less than one pixel of its shorter side.
/// @param session the session
/// @param preview receives a picture that later captures do not change
vel_result vel_session_preview(vel_session* session, vel_picture** preview);

/// Stitches the captures that were added.
///
/// With phase correlation that uses the captures up, whatever comes of it: afterwards neither
/// adding nor stitching is possible. With exact joins captures may be added and stitched again.
/// @param session  the session
/// @param progress NULL: nobody is told
/// @param user     passed to progress
/// @param stitched receives the result
vel_result vel_session_stitch(vel_session* session, vel_progress progress, void* user,
                              vel_stitched** stitched);

/// What the last failure with this handle was, as a line of text, or why the last capture was
/// unusable, to go on after "the capture"; empty before the first one.
/// @param session the session
/// @param text    receives the message, cut off where there is no room, and a zero at its end
/// @param size    the bytes that there is room for; VEL_MESSAGE_SIZE is always enough
vel_result vel_session_message(vel_session* session, char* text, size_t size);

/// Frees a session. Results keep what they need of its captures.
/// @param session NULL is ignored
void vel_session_free(vel_session* session);

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
