/* Stitches two captures of a drawn page with nothing but what the installed package offers. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <VelScrollingCapture/c/velscrollingcapture.h>

enum { WIDTH = 160, HEIGHT = 200, SCROLL = 60, PAGE_HEIGHT = HEIGHT + SCROLL };

static uint8_t page[PAGE_HEIGHT][WIDTH];
static uint8_t stitched_page[PAGE_HEIGHT][WIDTH];

static int add_captures(vel_session* session) {
  int row;
  for (row = 0; row <= SCROLL; row += SCROLL) {
    vel_source_image capture;
    vel_source_image_init(&capture, sizeof capture);
    capture.pixels = page[row];
    capture.width = WIDTH;
    capture.height = HEIGHT;
    capture.format = VEL_GREY;
    if (vel_session_add(session, &capture, NULL, NULL) != VEL_OK) {
      return 0;
    }
  }
  return 1;
}

static int read_page(vel_session* session) {
  vel_stitched* stitched = NULL;
  vel_picture* picture = NULL;
  vel_target_image image;
  int succeeded;
  vel_target_image_init(&image, sizeof image);
  image.pixels = stitched_page;
  image.width = WIDTH;
  image.height = PAGE_HEIGHT;
  image.format = VEL_GREY;
  succeeded = vel_session_stitch(session, NULL, NULL, &stitched) == VEL_OK &&
              vel_stitched_part(stitched, 0, &picture) == VEL_OK &&
              vel_picture_read(picture, 0, 0, &image) == VEL_OK;
  vel_picture_free(picture);
  vel_stitched_free(stitched);
  return succeeded;
}

int main(void) {
  vel_session* session = NULL;
  int same;
  size_t i;
  srand(1);
  for (i = 0; i < sizeof page; ++i) {
    ((uint8_t*)page)[i] = (uint8_t)(rand() >> 7);
  }
  if (vel_session_create(NULL, &session, NULL, 0) != VEL_OK) {
    return EXIT_FAILURE;
  }
  same =
      add_captures(session) && read_page(session) && memcmp(page, stitched_page, sizeof page) == 0;
  vel_session_free(session);
  printf("version %s stitched %s\n", vel_version(), same ? "as drawn" : "wrongly");
  return same ? EXIT_SUCCESS : EXIT_FAILURE;
}
