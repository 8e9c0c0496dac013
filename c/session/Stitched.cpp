#include <c/calls/Call.h>
#include <c/calls/SizedStruct.h>
#include <c/pictures/Picture.h>
#include <c/pictures/PictureFiles.h>
#include <c/session/Joins.h>
#include <c/session/Stitched.h>

namespace ScrollingCapture::C {
namespace {

vel_placement PlacementOf(const CaptureInPicture& capture) {
  vel_placement placement = {};
  placement.part = capture.part;
  placement.row = capture.place.row;
  placement.column = capture.place.column;
  placement.left_out = capture.leftOut ? 1 : 0;
  Tell(capture.join, capture.joinedTo, placement);
  return placement;
}

vel_borders BordersOf(const std::optional<FixedBorders>& found) {
  vel_borders borders = {};
  if (found) {
    borders.found = 1;
    borders.top = found->top;
    borders.bottom = found->bottom;
    borders.left = found->left;
    borders.right = found->right;
  }
  return borders;
}

}  // namespace
}  // namespace ScrollingCapture::C

using namespace ScrollingCapture::C;

void vel_placement_init(vel_placement* placement, size_t struct_size) {
  Initialise(placement, struct_size, {});
}

void vel_borders_init(vel_borders* borders, size_t struct_size) {
  Initialise(borders, struct_size, {});
}

vel_result vel_stitched_part_count(vel_stitched* stitched, size_t* count) {
  return Call(stitched, [=](const vel_stitched& called) {
    *Required(count, "count") = called.result.parts.size();
  });
}

vel_result vel_stitched_part(vel_stitched* stitched, size_t part, vel_picture** picture) {
  return Call(stitched, [=](const vel_stitched& called) {
    *Required(picture, "picture") = nullptr;
    *picture = new vel_picture(called.SharedGate(), ElementOf(called.result.parts, part, "part"),
                               called.metadata);
  });
}

vel_result vel_stitched_capture_count(vel_stitched* stitched, size_t* count) {
  return Call(stitched, [=](const vel_stitched& called) {
    *Required(count, "count") = called.result.captures.size();
  });
}

vel_result vel_stitched_capture(vel_stitched* stitched, size_t capture, vel_placement* placement) {
  return Call(stitched, [=](const vel_stitched& called) {
    Give(PlacementOf(ElementOf(called.result.captures, capture, "capture")), placement,
         "vel_placement");
  });
}

vel_result vel_stitched_alternative(vel_stitched* stitched, size_t capture, size_t index,
                                    vel_motion* motion) {
  return Call(stitched, [=](const vel_stitched& called) {
    const auto& join = ElementOf(called.result.captures, capture, "capture").join;
    *Required(motion, "motion") = MotionOf(ElementOf(join.alternatives, index, "index"));
  });
}

vel_result vel_stitched_borders(vel_stitched* stitched, vel_borders* borders) {
  return Call(stitched, [=](const vel_stitched& called) {
    Give(BordersOf(called.result.borders), borders, "vel_borders");
  });
}

vel_result vel_stitched_write(vel_stitched* stitched, const char* path,
                              const vel_file_settings* settings, vel_progress progress,
                              void* user) {
  return Call(stitched, [=](const vel_stitched& called) {
    WriteParts(called.result.parts, called.metadata, path, settings, progress, user);
  });
}

vel_result vel_stitched_message(vel_stitched* stitched, char* text, size_t size) {
  return GiveMessage(stitched, text, size);
}

void vel_stitched_free(vel_stitched* stitched) { Free(stitched); }
