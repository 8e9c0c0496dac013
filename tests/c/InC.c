#include "InC.h"

#include <stdint.h>
#include <string.h>

#include <VelScrollingCapture/c/velscrollingcapture.h>

#define TEXT_OF(line) #line
#define LINE(line) TEXT_OF(line)
#define CHECK(condition)                             \
  do {                                               \
    if (!(condition)) {                              \
      return "line " LINE(__LINE__) ": " #condition; \
    }                                                \
  } while (0)

enum { WIDTH = 120, HEIGHT = 90, STEP = 31, CAPTURES = 3, PAGE_HEIGHT = HEIGHT + 2 * STEP };

/* A page of noise, in red, green and blue. */
static uint8_t page[PAGE_HEIGHT][WIDTH][3];

static void draw_page(void) {
  uint32_t state = 7;
  size_t i;
  for (i = 0; i < sizeof page; ++i) {
    state = state * 1664525U + 1013904223U;
    ((uint8_t*)page)[i] = (uint8_t)(state >> 24);
  }
}

static vel_source_image capture_at(int index) {
  vel_source_image capture;
  vel_source_image_init(&capture, sizeof capture);
  capture.pixels = page[index * STEP];
  capture.width = WIDTH;
  capture.height = HEIGHT;
  capture.format = VEL_RGB;
  return capture;
}

static const char* check_is_page(vel_picture* picture) {
  static uint8_t read[PAGE_HEIGHT][WIDTH][3];
  vel_target_image image;
  int32_t width = 0;
  int32_t height = 0;
  CHECK(vel_picture_size(picture, &width, &height) == VEL_OK);
  CHECK(width == WIDTH);
  CHECK(height == PAGE_HEIGHT);
  vel_target_image_init(&image, sizeof image);
  image.pixels = read;
  image.width = width;
  image.height = height;
  image.format = VEL_RGB;
  memset(read, 0, sizeof read);
  CHECK(vel_picture_read(picture, 0, 0, &image) == VEL_OK);
  CHECK(memcmp(read, page, sizeof page) == 0);
  return NULL;
}

static int32_t count_calls(int32_t percent, void* user) {
  *(int*)user += percent >= 0 && percent <= 100;
  return 0;
}

static int32_t stop(int32_t percent, void* user) {
  (void)percent;
  (void)user;
  return 1;
}

static const char* add_captures(vel_session* session) {
  int i;
  for (i = 0; i < CAPTURES; ++i) {
    const vel_source_image capture = capture_at(i);
    vel_outcome outcome;
    vel_outcome_init(&outcome, sizeof outcome);
    CHECK(vel_session_add(session, &capture, NULL, &outcome) == VEL_OK);
    CHECK(outcome.state == VEL_PLACED);
    CHECK(outcome.is_placed == 1);
    CHECK(outcome.row == i * STEP);
    CHECK(i == 0 || outcome.motion.rows == -STEP);
    CHECK(i == 0 || outcome.verdict == VEL_JOIN_PROVEN);
  }
  return NULL;
}

const char* vel_test_session(void) {
  vel_session_settings settings;
  vel_session* session = NULL;
  vel_stitched* stitched = NULL;
  vel_picture* picture = NULL;
  const char* failed = NULL;
  int calls = 0;
  draw_page();
  vel_session_settings_init(&settings, sizeof settings);
  settings.orientation = VEL_VERTICAL;
  CHECK(vel_session_create(&settings, &session, NULL, 0) == VEL_OK);
  failed = add_captures(session);
  CHECK(failed == NULL);
  CHECK(vel_session_stitch(session, count_calls, &calls, &stitched) == VEL_OK);
  CHECK(calls > 0);
  CHECK(vel_stitched_part(stitched, 0, &picture) == VEL_OK);
  vel_stitched_free(stitched);
  vel_session_free(session);
  failed = check_is_page(picture);
  vel_picture_free(picture);
  return failed;
}

const char* vel_test_stitcher(void) {
  vel_stitcher* stitcher = NULL;
  vel_picture* picture = NULL;
  vel_motion motion = {0, 0};
  const char* failed = NULL;
  int i;
  draw_page();
  CHECK(vel_stitcher_create(NULL, &stitcher, NULL, 0) == VEL_OK);
  for (i = 0; i < CAPTURES; ++i) {
    const vel_source_image capture = capture_at(i);
    CHECK(vel_stitcher_add(stitcher, &capture) == VEL_OK);
  }
  CHECK(vel_stitcher_stitch(stitcher, NULL, NULL, &picture) == VEL_OK);
  CHECK(vel_stitcher_motion(stitcher, 1, &motion) == VEL_OK);
  CHECK(motion.rows == -STEP && motion.columns == 0);
  vel_stitcher_free(stitcher);
  failed = check_is_page(picture);
  vel_picture_free(picture);
  return failed;
}

const char* vel_test_cancelling(void) {
  vel_session* session = NULL;
  vel_stitched* stitched = NULL;
  char message[VEL_MESSAGE_SIZE] = "";
  draw_page();
  CHECK(vel_session_create(NULL, &session, message, sizeof message) == VEL_OK);
  CHECK(vel_session_stitch(session, NULL, NULL, &stitched) == VEL_NO_CAPTURES);
  CHECK(add_captures(session) == NULL);
  CHECK(vel_session_stitch(session, stop, NULL, &stitched) == VEL_CANCELLED);
  CHECK(stitched == NULL);
  CHECK(vel_session_message(session, message, sizeof message) == VEL_OK);
  CHECK(strcmp(message, "cancelled") == 0);
  CHECK(vel_session_stitch(session, NULL, NULL, &stitched) == VEL_OK);
  vel_stitched_free(stitched);
  vel_session_free(session);
  return NULL;
}

const char* vel_test_freeing_nothing(void) {
  vel_session_free(NULL);
  vel_stitched_free(NULL);
  vel_picture_free(NULL);
  vel_stitcher_free(NULL);
  CHECK(strcmp(vel_result_text(VEL_OK), "done") == 0);
  CHECK(strcmp(vel_result_text(-1), vel_result_text(9999)) == 0);
  CHECK(strchr(vel_version(), '.') != NULL);
  return NULL;
}
