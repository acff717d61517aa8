// PNG by libpng. libpng leaves a failed call by longjmp, so nothing with a destructor lives in a function that calls it; what
// must be freed stands in PngReader, above the setjmp.
#include "apps/common/image_decoders.h"

#include <png.h>

#include <algorithm>
#include <bit>
#include <csetjmp>
#include <cstring>

namespace {

constexpr png_byte signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr png_alloc_size_t chunkMemoryLimit = 8u << 20;  // for one text, profile or other side chunk
constexpr unsigned long long deflateGrowth = 1040;       // deflate makes at most 1032 bytes of one

std::uint32_t wordAt(cc_Bytes bytes, std::size_t at)
{
  return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 | std::uint32_t{bytes[at + 2]} << 8 |
         bytes[at + 3];
}

struct PngReader {
  explicit PngReader(cc_Bytes b) : bytes(b)
  {
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, fail, ignore);
    info = png ? png_create_info_struct(png) : nullptr;
    if (!info)
      throw std::bad_alloc();
  }
  PngReader(PngReader const&) = delete;
  PngReader& operator=(PngReader const&) = delete;
  ~PngReader() { png_destroy_read_struct(&png, info ? &info : nullptr, nullptr); }

  // False after an error, which `message` then tells.
  bool attempt(void (*step)(PngReader&))
  {
    if (setjmp(onError))
      return false;
    step(*this);
    return true;
  }

  static void fail(png_structp, png_const_charp);
  static void ignore(png_structp, png_const_charp) {}
  static void read(png_structp, png_bytep to, std::size_t count);

  cc_Bytes bytes;
  std::size_t at = 0;
  std::jmp_buf onError;
  char message[128] = {};
  bool cutOff = false;

  png_structp png = nullptr;
  png_infop info = nullptr;
  png_byte colourType = 0;
  int depth = 0;
  int significant = 16;
  ccImageFile image;
  std::vector<png_bytep> rows;
};

void PngReader::fail(png_structp png, png_const_charp text)
{
  PngReader& self = *static_cast<PngReader*>(png_get_error_ptr(png));
  std::strncpy(self.message, text, sizeof self.message - 1);
  std::longjmp(self.onError, 1);
}

void PngReader::read(png_structp png, png_bytep to, std::size_t count)
{
  PngReader& self = *static_cast<PngReader*>(png_get_io_ptr(png));
  if (count > self.bytes.size() - self.at) {
    self.cutOff = true;
    png_error(png, "cut off");
  }
  std::memcpy(to, self.bytes.data() + self.at, count);
  self.at += count;
}

void readHeader(PngReader& r)
{
  png_set_read_fn(r.png, &r, PngReader::read);
  png_set_user_limits(r.png, cfImageSideLimit, cfImageSideLimit);
  png_set_chunk_malloc_max(r.png, chunkMemoryLimit);
  png_read_info(r.png, r.info);
  r.colourType = png_get_color_type(r.png, r.info);
  r.depth = png_get_bit_depth(r.png, r.info);

  png_color_8p significant = nullptr;
  if (r.colourType == PNG_COLOR_TYPE_GRAY || r.colourType == PNG_COLOR_TYPE_GRAY_ALPHA)
    if (png_get_sBIT(r.png, r.info, &significant) && significant->gray >= 1 && significant->gray <= 16)
      r.significant = significant->gray;

  if (r.colourType & PNG_COLOR_MASK_ALPHA)
    png_set_strip_alpha(r.png);
  if (r.colourType == PNG_COLOR_TYPE_PALETTE) {
    png_set_packing(r.png);
  } else if (r.colourType & PNG_COLOR_MASK_COLOR) {
    // Straight into words of 0x00RRGGBB.
    if (r.depth == 16)
      png_set_scale_16(r.png);
    if (std::endian::native == std::endian::little) {
      png_set_bgr(r.png);
      png_set_filler(r.png, 0, PNG_FILLER_AFTER);
    } else {
      png_set_filler(r.png, 0, PNG_FILLER_BEFORE);
    }
  } else if (r.depth < 8) {
    png_set_expand_gray_1_2_4_to_8(r.png);
  } else if (r.depth == 16 && std::endian::native == std::endian::little) {
    png_set_swap(r.png);
  }
  png_set_interlace_handling(r.png);
  png_read_update_info(r.png, r.info);
}

// No libpng calls that can fail from here on.
void takeMemory(PngReader& r)
{
  long const width = static_cast<long>(png_get_image_width(r.png, r.info));
  long const height = static_cast<long>(png_get_image_height(r.png, r.info));
  bool const colour = r.colourType == PNG_COLOR_TYPE_RGB || r.colourType == PNG_COLOR_TYPE_RGB_ALPHA;
  bool const deep = r.depth == 16 && !colour;
  r.image = colour ? cf_newRGB(width, height)
                   : deep ? cf_newGrey16(width, height, r.significant) : cf_newGrey8(width, height);
  std::size_t const rowBytes =
      static_cast<std::size_t>(width) * (colour ? sizeof(ccPackedRGB32Pel) : deep ? sizeof(unsigned short) : 1);
  if (png_get_rowbytes(r.png, r.info) != rowBytes)
    cf_faultUnsupported("this kind of PNG");
  for (long y = 0; y < height; ++y)
    r.rows.push_back(colour ? reinterpret_cast<png_bytep>(r.image.rgb.pelAddress(0, y))
                            : deep ? reinterpret_cast<png_bytep>(r.image.grey16.pelAddress(0, y))
                                   : r.image.grey8.pelAddress(0, y));
}

void readRows(PngReader& r)
{
  png_read_image(r.png, r.rows.data());
  png_read_end(r.png, nullptr);
}

void shiftToSignificant(ccImageFile& image)
{
  int const shift = 16 - image.bits;
  for (long y = 0; y < image.height() && shift; ++y)
    for (unsigned short *pel = image.grey16.pelAddress(0, y), *end = pel + image.width(); pel != end; ++pel)
      *pel = static_cast<unsigned short>(*pel >> shift);
}

ccImageFile withPalette(PngReader const& r)
{
  png_colorp colours = nullptr;
  int count = 0;
  png_get_PLTE(r.png, r.info, &colours, &count);
  cc_Palette palette;
  count = std::clamp(count, 0, 256);
  for (int i = 0; i < count; ++i)
    palette[static_cast<std::size_t>(i)] = ccPackedRGB32Pel(colours[i].red, colours[i].green, colours[i].blue);
  return cf_applyPalette(r.image.grey8, palette, static_cast<std::size_t>(count));
}

}  // namespace

bool cf_isPng(cc_Bytes bytes)
{
  return bytes.size() >= sizeof signature && std::equal(std::begin(signature), std::end(signature), bytes.begin());
}

ccImageFile cf_readPng(cc_Bytes bytes)
{
  // The first chunk is the header, width and height its first words.
  constexpr std::size_t widthAt = 16, headerEnd = 33;
  if (bytes.size() < headerEnd)
    cf_faultCutOff();
  std::uint32_t const width = wordAt(bytes, widthAt), height = wordAt(bytes, widthAt + 4);
  cf_checkSides(width, height);
  constexpr unsigned channels[] = {1, 1, 3, 1, 2, 1, 4};  // by colour type; libpng refuses other types and depths
  unsigned const depth = bytes[24] <= 16 ? bytes[24] : 1, colourType = bytes[25] <= 6 ? bytes[25] : 0;
  cf_checkGrowth(1ull * width * height * depth * channels[colourType] / 8, bytes.size(), deflateGrowth);

  PngReader reader(bytes);
  auto const attempt = [&reader](void (*step)(PngReader&)) {
    if (reader.attempt(step))
      return;
    if (reader.cutOff)
      cf_faultCutOff();
    cf_faultDamaged(reader.message);
  };
  attempt(readHeader);
  takeMemory(reader);
  attempt(readRows);
  if (reader.image.format == ceImageFormatGrey16)
    shiftToSignificant(reader.image);
  if (reader.colourType == PNG_COLOR_TYPE_PALETTE)
    return withPalette(reader);
  return std::move(reader.image);
}
