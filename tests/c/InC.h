#pragma once

/* What a program in C does with the library. Each of these returns NULL, or the first thing that
   did not hold. */

#ifdef __cplusplus
extern "C" {
#endif

const char* vel_test_session(void);
const char* vel_test_stitcher(void);
const char* vel_test_cancelling(void);
const char* vel_test_freeing_nothing(void);

#ifdef __cplusplus
}
#endif
