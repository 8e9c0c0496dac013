#include <new>
#include <stdexcept>
#include <zlib.h>

#include <velscroll/output/formats/DeflatedBlock.h>

namespace ScrollingCapture::Program {
namespace {

/// Compresses without header and checksum.
class Deflater {
 public:
  explicit Deflater(int level) {
    constexpr int WithoutHeader = -MAX_WBITS;
    constexpr int DefaultMemory = 8;
    if (deflateInit2(&stream, level, Z_DEFLATED, WithoutHeader, DefaultMemory,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;
  ~Deflater() { deflateEnd(&stream); }

  std::vector<unsigned char> Compress(const std::vector<unsigned char>& content, bool last) {
    constexpr size_t RoomForFlush = 16;
    std::vector<unsigned char> bytes(deflateBound(&stream, static_cast<uLong>(content.size())) +
                                     RoomForFlush);
    stream.next_in = const_cast<Bytef*>(content.data());
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = bytes.data();
    stream.avail_out = static_cast<uInt>(bytes.size());
    const int result = deflate(&stream, last ? Z_FINISH : Z_SYNC_FLUSH);
    if (result != (last ? Z_STREAM_END : Z_OK) || stream.avail_in > 0 || stream.avail_out == 0) {
      throw std::logic_error("zlib did not take what it said it could");
    }
    bytes.resize(bytes.size() - stream.avail_out);
    return bytes;
  }

 private:
  z_stream stream = {};
};

void AppendHighestByteFirst(std::vector<unsigned char>& bytes, unsigned long number, int count) {
  for (int i = count - 1; i >= 0; --i) {
    bytes.push_back(static_cast<unsigned char>(number >> static_cast<unsigned int>(8 * i)));
  }
}

}  // namespace

DeflatedBlock Deflate(const std::vector<unsigned char>& content, int level, bool last) {
  const uLong checksum = adler32_z(adler32(0, nullptr, 0), content.data(), content.size());
  return {Deflater(level).Compress(content, last), checksum, content.size()};
}

std::vector<unsigned char> ZlibHeader(int level) {
  constexpr unsigned long WindowOf32KiB = 0x7800;
  constexpr unsigned long Divisor = 31;
  constexpr int Default = 6;
  const unsigned long effort = level < 2 ? 0 : level < Default ? 1 : level == Default ? 2 : 3;
  const unsigned long fields = WindowOf32KiB + (effort << 6U);
  std::vector<unsigned char> header;
  AppendHighestByteFirst(header, fields + Divisor - fields % Divisor, 2);
  return header;
}

void StreamChecksum::Add(const DeflatedBlock& block) {
  checksum = adler32_combine(checksum, block.checksum, static_cast<z_off_t>(block.length));
}

std::vector<unsigned char> StreamChecksum::Trailer() const {
  std::vector<unsigned char> trailer;
  AppendHighestByteFirst(trailer, checksum, 4);
  return trailer;
}

}  // namespace ScrollingCapture::Program
