#pragma once

/// \file
/// What functions answer with, and the version.

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/// What has become of a call.
typedef enum vel_result {
  VEL_OK = 0,                ///< It did what it was asked to.
  VEL_INVALID_ARGUMENT = 1,  ///< An argument is NULL, out of range, or contradicts another one.
  VEL_OUT_OF_MEMORY = 2,     ///< There was not enough memory; the call may be tried again.
  VEL_CANCELLED = 3,         ///< The progress callback asked to stop.
  VEL_BUSY = 4,              ///< Another call is at work with the handle; this one did nothing.
  VEL_NO_CAPTURES = 5,       ///< There is nothing to stitch.
  VEL_ALREADY_STITCHED = 6,  ///< The captures were used up by a stitch; make a new handle.
  VEL_STITCH_FAILED = 7,     ///< The captures cannot be stitched.
  VEL_FILE_UNUSABLE = 8,     ///< A file cannot be read, is no image, or may not be written there.
  VEL_FILE_FAILED = 9,       ///< A file could not be written to its end: the disk is full, for one.
  VEL_CAPTURE_LOST = 10,     ///< A capture that waited in a file cannot be read back.
  VEL_FAILURE = 11           ///< Something else went wrong.
} vel_result;

enum {
  VEL_MESSAGE_SIZE = 1024  ///< Bytes that hold any message, with the zero at its end.
};

/// What a result means, in a few English words; for any number.
/// @param result a vel_result
/// @return never NULL; it need not be freed
const char* vel_result_text(int result);

/// The version of the library, such as "1.1.0".
const char* vel_version(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
