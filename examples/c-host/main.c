/* A minimal host in C: stitches captures from image files and prints the progress.

     c-host [--stop-at PERCENT] OUTPUT CAPTURE...

   Exit status: 0 done, 1 failed or stopped, 2 wrong usage or a file that cannot be read. */
#include <stdlib.h>
#include <string.h>

// [host]
#include <stdio.h>

#include <VelScrollingCapture/c/velscrollingcapture.h>

static int32_t show_progress(int32_t percent, void* stop_at) {
  printf("%d %%\n", (int)percent);
  return percent >= *(const int*)stop_at;
}

static vel_result stitch(vel_session* session, const char* output, int* stop_at) {
  vel_stitched* stitched;
  vel_result result = vel_session_stitch(session, show_progress, stop_at, &stitched);
  if (result == VEL_OK) {
    result = vel_stitched_write(stitched, output, NULL, NULL, NULL);
    if (result != VEL_OK) {
      char message[VEL_MESSAGE_SIZE];
      vel_stitched_message(stitched, message, sizeof message);
      fprintf(stderr, "%s\n", message);
    }
    vel_stitched_free(stitched);
  }
  return result;
}
// [host]

enum { FAILED = 1, WRONG_USAGE = 2, NEVER = 101 };

static void complain(vel_session* session, const char* what) {
  char message[VEL_MESSAGE_SIZE];
  vel_session_message(session, message, sizeof message);
  fprintf(stderr, "%s: %s\n", what, message);
}

/* Returns whether all captures were added. */
static int add_captures(vel_session* session, char** paths, int count) {
  int i;
  for (i = 0; i < count; ++i) {
    vel_outcome outcome;
    vel_outcome_init(&outcome, sizeof outcome);
    if (vel_session_add_file(session, paths[i], NULL, &outcome) != VEL_OK ||
        outcome.state == VEL_UNUSABLE) {
      complain(session, paths[i]);
      return 0;
    }
  }
  return 1;
}

static int run(vel_session* session, char** arguments, int count, int stop_at) {
  vel_result result;
  if (!add_captures(session, arguments + 1, count - 1)) {
    return WRONG_USAGE;
  }
  result = stitch(session, arguments[0], &stop_at);
  if (result != VEL_OK) {
    fprintf(stderr, "no image: the stitch was stopped or failed (%s)\n", vel_result_text(result));
    return FAILED;
  }
  return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
  char message[VEL_MESSAGE_SIZE];
  vel_session* session;
  int stop_at = NEVER;
  int first = 1;
  int status;
  if (argc > 2 && strcmp(argv[1], "--stop-at") == 0) {
    stop_at = atoi(argv[2]);
    first = 3;
  }
  if (argc - first < 2) {
    fprintf(stderr, "usage: c-host [--stop-at PERCENT] OUTPUT CAPTURE...\n");
    return WRONG_USAGE;
  }
  if (vel_session_create(NULL, &session, message, sizeof message) != VEL_OK) {
    fprintf(stderr, "%s\n", message);
    return FAILED;
  }
  status = run(session, argv + first, argc - first, stop_at);
  vel_session_free(session);
  return status;
}
