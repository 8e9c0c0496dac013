#include <live/x11/XImageReader.h>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace ScrollingCapture::Live {
namespace {

constexpr std::uint32_t AllPlanes = ~0U;
constexpr std::size_t BytesOfPixel = 4;

}  // namespace

XImageReader::XImageReader(const XConnection& connection)
    : connection(connection), mayShare(connection.Has(xcb_shm_id)) {}

XImageReader::~XImageReader() { Unshare(); }

cv::Mat XImageReader::Read(xcb_drawable_t drawable, const cv::Rect& area, const XPixels& pixels) {
  cv::Mat capture;
  const std::size_t bytes = static_cast<std::size_t>(area.area()) * BytesOfPixel;
  if (Share(bytes)) {
    const std::uint32_t* const rows = ReadShared(drawable, area);
    if (rows != nullptr) {
      capture.create(area.size(), CV_8UC4);
      ConvertPixels(rows, pixels, capture);
    }
    return capture;
  }
  const auto image = connection.Ask(
      xcb_get_image, xcb_get_image_reply, std::uint8_t{XCB_IMAGE_FORMAT_Z_PIXMAP}, drawable,
      static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
      static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height), AllPlanes);
  if (image && static_cast<std::size_t>(xcb_get_image_data_length(image.get())) >= bytes) {
    capture.create(area.size(), CV_8UC4);
    ConvertPixels(reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get())), pixels,
                  capture);
  }
  return capture;
}

const std::uint32_t* XImageReader::ReadShared(xcb_drawable_t drawable, const cv::Rect& area) {
  const auto done = connection.Ask(
      xcb_shm_get_image, xcb_shm_get_image_reply, drawable, static_cast<std::int16_t>(area.x),
      static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
      static_cast<std::uint16_t>(area.height), AllPlanes, std::uint8_t{XCB_IMAGE_FORMAT_Z_PIXMAP},
      segment, std::uint32_t{0});
  return done ? shared : nullptr;
}

/// Shares so much memory with the server. It goes with both processes, however they end.
bool XImageReader::Share(std::size_t bytes) {
  if (!mayShare || bytes <= sharedBytes) {
    return mayShare;
  }
  Unshare();
  constexpr int Private = 0600;
  const int memory = ::shmget(IPC_PRIVATE, bytes, IPC_CREAT | Private);
  void* const mapped = memory < 0 ? nullptr : ::shmat(memory, nullptr, 0);
  mayShare = memory >= 0 && reinterpret_cast<std::intptr_t>(mapped) != -1;
  if (mayShare) {
    shared = static_cast<std::uint32_t*>(mapped);
    segment = xcb_generate_id(connection.Get());
    mayShare = Succeeds(connection, xcb_shm_attach_checked(connection.Get(), segment,
                                                           static_cast<std::uint32_t>(memory), 0));
    sharedBytes = bytes;
  }
  if (memory >= 0) {
    ::shmctl(memory, IPC_RMID, nullptr);
  }
  if (!mayShare) {
    Unshare();
  }
  return mayShare;
}

void XImageReader::Unshare() {
  if (shared != nullptr) {
    xcb_shm_detach(connection.Get(), segment);
    ::shmdt(shared);
    shared = nullptr;
    sharedBytes = 0;
  }
}

}  // namespace ScrollingCapture::Live
