#include <algorithm>
#include <utility>

#include <c/calls/Call.h>
#include <c/pictures/Images.h>
#include <c/pictures/Picture.h>
#include <c/pictures/PictureFiles.h>
#include <velscroll/output/Strips.h>
#include <velscroll/pixels/Premultiplication.h>

namespace ScrollingCapture::C {
namespace {

class PictureInMemory : public StitchedPicture {
 public:
  explicit PictureInMemory(cv::Mat pixels) : pixels(std::move(pixels)) {}

  cv::Size Size() const override { return pixels.size(); }
  bool IsOpaque() const override { return Program::IsOpaque(pixels); }
  cv::Mat Area(const cv::Rect& area) const override { return pixels(area); }

 private:
  const cv::Mat pixels;
};

/// Throws InvalidArgument unless the area lies in the picture.
void RequireInside(const cv::Point& corner, const cv::Size& area, const cv::Size& picture) {
  InRange(corner.x, 0, picture.width - 1, "the column of the area");
  InRange(corner.y, 0, picture.height - 1, "the row of the area");
  InRange(area.width, 1, picture.width - corner.x, "the width of the area");
  InRange(area.height, 1, picture.height - corner.y, "the height of the area");
}

/// By strips, so that a large area needs hardly any memory besides the caller's.
void Read(const StitchedPicture& picture, const cv::Point& corner, TargetImage& image) {
  const cv::Size size = image.Size();
  RequireInside(corner, size, picture.Size());
  const int stripRows = Program::RowsPerStrip(size);
  for (int row = 0; row < size.height; row += stripRows) {
    const int rows = std::min(stripRows, size.height - row);
    image.Fill(row, picture.Area({corner.x, corner.y + row, size.width, rows}));
  }
}

}  // namespace
}  // namespace ScrollingCapture::C

using namespace ScrollingCapture::C;

vel_picture::vel_picture(cv::Mat pixels)
    : vel_picture(std::make_shared<Gate>(), std::make_shared<PictureInMemory>(std::move(pixels)),
                  {}) {}

vel_result vel_picture_size(vel_picture* picture, int32_t* width, int32_t* height) {
  return Call(picture, [=](const vel_picture& called) {
    *Required(width, "width") = called.picture->Size().width;
    *Required(height, "height") = called.picture->Size().height;
  });
}

vel_result vel_picture_is_opaque(vel_picture* picture, int32_t* opaque) {
  return Call(picture, [=](const vel_picture& called) {
    *Required(opaque, "opaque") = called.picture->IsOpaque() ? 1 : 0;
  });
}

vel_result vel_picture_read(vel_picture* picture, int32_t column, int32_t row,
                            const vel_target_image* image) {
  return Call(picture, [=](const vel_picture& called) {
    TargetImage target(image);
    Read(*called.picture, {column, row}, target);
  });
}

vel_result vel_picture_write(vel_picture* picture, const char* path,
                             const vel_file_settings* settings, vel_progress progress, void* user) {
  return Call(picture, [=](const vel_picture& called) {
    WriteParts({called.picture}, called.metadata, path, settings, progress, user);
  });
}

vel_result vel_picture_message(vel_picture* picture, char* text, size_t size) {
  return GiveMessage(picture, text, size);
}

void vel_picture_free(vel_picture* picture) { Free(picture); }
