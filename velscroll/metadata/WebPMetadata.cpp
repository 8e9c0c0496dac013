#include <memory>

#include <velscroll/metadata/MetadataReaders.h>
#include <webp/mux.h>

namespace ScrollingCapture::Program {

ImageMetadata ReadWebPMetadata(const std::vector<unsigned char>& file) {
  constexpr int Shared = 0;
  const WebPData bytes = {file.data(), file.size()};
  const std::unique_ptr<WebPMux, decltype(&WebPMuxDelete)> mux(WebPMuxCreate(&bytes, Shared),
                                                               WebPMuxDelete);
  ImageMetadata metadata;
  WebPData profile = {};
  if (mux && WebPMuxGetChunk(mux.get(), "ICCP", &profile) == WEBP_MUX_OK) {
    metadata.colourProfile.assign(profile.bytes, profile.bytes + profile.size);
  }
  return metadata;
}

}  // namespace ScrollingCapture::Program
