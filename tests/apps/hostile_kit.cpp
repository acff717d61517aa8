#include "tests/apps/hostile_kit.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include <jpeglib.h>
#include <zlib.h>

Bytes big32(std::uint32_t v)
{
  return {static_cast<unsigned char>(v >> 24), static_cast<unsigned char>(v >> 16), static_cast<unsigned char>(v >> 8),
          static_cast<unsigned char>(v)};
}

Bytes little16(unsigned v) { return {static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8)}; }
Bytes little32(std::uint32_t v) { return little16(v & 0xFFFF) + little16(v >> 16); }

Bytes deflated(Bytes const& data, int level)
{
  uLongf size = compressBound(static_cast<uLong>(data.size()));
  Bytes out(size);
  if (compress2(out.data(), &size, data.data(), static_cast<uLong>(data.size()), level) != Z_OK)
    throw std::logic_error("zlib");
  out.resize(size);
  return out;
}

namespace {

// Raw deflate that ends on a whole byte and needs nothing before it, or that ends the stream.
Bytes zeroPiece(std::size_t count, int flush)
{
  z_stream stream = {};
  if (deflateInit2(&stream, 9, Z_DEFLATED, -15, 9, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::logic_error("zlib");
  Bytes zeros(count), out(count / 64 + 64);
  stream.next_in = zeros.data();
  stream.avail_in = static_cast<uInt>(count);
  stream.next_out = out.data();
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, flush);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

}  // namespace

Bytes deflatedZeros(std::size_t count)
{
  constexpr std::size_t step = 1 << 20;
  Bytes const piece = zeroPiece(step, Z_FULL_FLUSH), rest = zeroPiece(count % step, Z_FINISH);
  Bytes out{0x78, 0xDA};
  for (std::size_t i = 0; i < count / step; ++i)
    out.insert(out.end(), piece.begin(), piece.end());
  return out + rest + big32(static_cast<std::uint32_t>(count % 65521 << 16 | 1));  // the checksum of zeros
}

Bytes pngChunk(std::string const& name, Bytes const& data)
{
  Bytes const body = bytesOf(name) + data;
  auto const sum = crc32(0, body.data(), static_cast<uInt>(body.size()));
  return big32(static_cast<std::uint32_t>(data.size())) + body + big32(static_cast<std::uint32_t>(sum));
}

Bytes pngStart(std::uint32_t width, std::uint32_t height, int depth, int colourType, bool interlaced)
{
  return Bytes{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'} +
         pngChunk("IHDR", big32(width) + big32(height) +
                              Bytes{static_cast<unsigned char>(depth), static_cast<unsigned char>(colourType), 0, 0,
                                    static_cast<unsigned char>(interlaced)});
}

Bytes pngFile(Bytes const& start, Bytes const& more, Bytes const& compressed)
{
  return start + more + pngChunk("IDAT", compressed) + pngChunk("IEND", {});
}

Bytes runsBmp(std::uint32_t width, std::uint32_t height, Bytes const& runs)
{
  Bytes const header = little32(40) + little32(width) + little32(height) + little16(1) + little16(8) + little32(1) +
                       little32(0) + little32(1) + little32(1) + little32(2) + little32(0) + Bytes{0, 0, 255, 0, 0, 255, 0, 0};
  return bytesOf("BM") + little32(0) + little32(0) + little32(static_cast<std::uint32_t>(14 + header.size())) + header + runs;
}

TiffTag tiffHalf(unsigned tag, unsigned value) { return {tag, 3, 1, little16(value)}; }
TiffTag tiffWord(unsigned tag, std::uint32_t value) { return {tag, 4, 1, little32(value)}; }

Bytes tiffFile(Bytes const& pels, std::vector<TiffTag> const& tags)
{
  std::uint32_t const directory = static_cast<std::uint32_t>(8 + pels.size());
  std::uint32_t at = directory + 2 + 12 * static_cast<std::uint32_t>(tags.size()) + 4;
  Bytes list = little16(static_cast<unsigned>(tags.size())), values;
  std::map<Bytes, std::uint32_t> places;
  for (TiffTag const& t : tags) {
    Bytes entry = little16(t.tag) + little16(t.type) + little32(t.count);
    if (t.value.size() <= 4) {
      Bytes value = t.value;
      value.resize(4);
      entry = entry + value;
    } else {
      auto const [place, isNew] = places.try_emplace(t.value, at);
      entry = entry + little32(place->second);
      if (isNew) {
        values.insert(values.end(), t.value.begin(), t.value.end());
        at += static_cast<std::uint32_t>(t.value.size());
      }
    }
    list.insert(list.end(), entry.begin(), entry.end());
  }
  return bytesOf("II") + little16(42) + little32(directory) + pels + list + little32(0) + values;
}

std::vector<TiffTag> greyTiff(std::uint32_t width, std::uint32_t height, unsigned compression, std::uint32_t stripBytes)
{
  return {tiffWord(256, width), tiffWord(257, height), tiffHalf(258, 8), tiffHalf(259, compression), tiffHalf(262, 1),
          tiffWord(273, 8),     tiffHalf(277, 1),      tiffWord(278, height), tiffWord(279, stripBytes)};
}

Bytes flatJpeg(unsigned width, unsigned height, int channels, bool progressive)
{
  jpeg_compress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&jpeg, &memory, &size);
  jpeg.image_width = width;
  jpeg.image_height = height;
  jpeg.input_components = channels;
  jpeg.in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&jpeg);
  if (progressive)
    jpeg_simple_progression(&jpeg);
  jpeg_start_compress(&jpeg, TRUE);
  Bytes row(std::size_t{width} * static_cast<unsigned>(channels), 77);
  JSAMPROW line = row.data();
  for (unsigned y = 0; y < height; ++y)
    jpeg_write_scanlines(&jpeg, &line, 1);
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  Bytes const bytes(memory, memory + size);
  std::free(memory);
  return bytes;
}

Bytes withRepeatedScan(Bytes const& whole, int times)
{
  // The last scan, from its marker to the end mark. It has no tables of its own if there are tables before it.
  std::size_t last = 0;
  for (std::size_t i = 0; i + 1 < whole.size(); ++i)
    if (whole[i] == 0xFF && whole[i + 1] == 0xDA)
      last = i;
  auto const place = [&whole](std::size_t at) { return whole.begin() + static_cast<std::ptrdiff_t>(at); };
  Bytes const scan(place(last), place(whole.size() - 2));
  Bytes out(whole.begin(), place(last));
  for (int i = 0; i < times; ++i)
    out.insert(out.end(), scan.begin(), scan.end());
  return out + Bytes{0xFF, 0xD9};
}
