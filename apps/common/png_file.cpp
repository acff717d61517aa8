// PNG by libpng. libpng leaves a failed call by longjmp, so nothing with a destructor lives in a function that calls it; what
// must be freed stands in PngReader, above the setjmp. The chunks are walked first: what is missing or damaged is found before
// memory is taken, and libpng gets to see no chunk that a picture can do without.
#include "apps/common/image_decoders.h"

#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <bit>
#include <csetjmp>
#include <cstring>
#include <optional>

namespace {

constexpr png_byte signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr png_alloc_size_t chunkMemoryLimit = 1u << 20;  // no chunk that is kept needs as much
constexpr unsigned long long deflateGrowth = 1040;       // deflate makes at most 1032 bytes of one
constexpr std::size_t headerAt = sizeof signature;
constexpr std::size_t headerLength = 13;
constexpr std::size_t chunkFrame = 12;  // length, name and checksum

std::uint32_t wordAt(cc_Bytes bytes, std::size_t at)
{
  return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 | std::uint32_t{bytes[at + 2]} << 8 |
         bytes[at + 3];
}

constexpr std::uint32_t named(char const* name)
{
  std::uint32_t word = 0;
  for (int i = 0; i < 4; ++i)
    word = word << 8 | static_cast<unsigned char>(name[i]);
  return word;
}

// Chunks whose name begins with a small letter may be missing; their checksums are not our concern.
bool isNeeded(std::uint32_t name)
{
  return !(name >> 29 & 1);
}

// Goes from chunk to chunk up to the last. Returns how many bytes of compressed pels there are.
unsigned long long walkChunks(cc_Bytes bytes)
{
  unsigned long long pelBytes = 0;
  for (std::size_t at = headerAt;;) {
    if (bytes.size() - at < chunkFrame)
      cf_faultCutOff();
    std::size_t const length = wordAt(bytes, at);
    std::uint32_t const name = wordAt(bytes, at + 4);
    if (at == headerAt && (name != named("IHDR") || length != headerLength))
      cf_faultDamaged("its header is missing");
    if (length > bytes.size() - at - chunkFrame)
      cf_faultCutOff();
    if (isNeeded(name)) {
      uLong const sum = crc32(crc32(0, nullptr, 0), bytes.data() + at + 4, static_cast<uInt>(length + 4));
      if (sum != wordAt(bytes, at + 8 + length))
        cf_faultDamaged("the checksum of a chunk is wrong");
    }
    if (name == named("IDAT"))
      pelBytes += length;
    if (name == named("IEND"))
      return pelBytes;
    at += chunkFrame + length;
  }
}

struct PngReader {
  explicit PngReader(cc_ImageSource const& s) : source(s), bytes(s.bytes)
  {
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, fail, ignore);
    info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
      png_destroy_read_struct(&png, nullptr, nullptr);
      throw std::bad_alloc();
    }
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
  static void seeRow(png_structp, png_row_infop, png_bytep);
  png_bytep row(long y);

  cc_ImageSource source;
  cc_Bytes bytes;
  std::size_t at = 0;
  std::jmp_buf onError;
  char message[128] = {};
  bool cutOff = false;
  bool inLastRow = false;  // libpng was asked for the last row of the last pass
  bool complete = false;   // and has all bytes of it

  png_structp png = nullptr;
  png_infop info = nullptr;
  png_byte colourType = 0;
  int depth = 0;
  int significant = 16;
  int passes = 1;
  ccImageFile image;
  std::optional<cc_PaletteImage> indexed;  // instead of image
};

void PngReader::fail(png_structp png, png_const_charp text)
{
  PngReader& self = *static_cast<PngReader*>(png_get_error_ptr(png));
  std::strncpy(self.message, text, sizeof self.message - 1);
  std::longjmp(self.onError, 1);
}

// What stands behind the last row may grow to gigabytes, and libpng would unpack it all to see its end.
void PngReader::read(png_structp png, png_bytep to, std::size_t count)
{
  PngReader& self = *static_cast<PngReader*>(png_get_io_ptr(png));
  if (self.complete)
    png_error(png, "complete");
  if (count > self.bytes.size() - self.at) {
    self.cutOff = true;
    png_error(png, "cut off");
  }
  std::memcpy(to, self.bytes.data() + self.at, count);
  self.at += count;
}

void PngReader::seeRow(png_structp png, png_row_infop, png_bytep)
{
  PngReader& self = *static_cast<PngReader*>(png_get_user_transform_ptr(png));
  self.complete = self.inLastRow;
}

png_bytep PngReader::row(long y)
{
  if (indexed)
    return indexed->indices(y);
  if (image.format == ceImageFormatGrey8)
    return image.grey8.pelAddress(0, y);
  return image.format == ceImageFormatGrey16 ? reinterpret_cast<png_bytep>(image.grey16.pelAddress(0, y))
                                             : reinterpret_cast<png_bytep>(image.rgb.pelAddress(0, y));
}

void readHeader(PngReader& r)
{
  png_set_read_fn(r.png, &r, PngReader::read);
  png_set_user_limits(r.png, cfImageSideLimit, cfImageSideLimit);
  png_set_chunk_malloc_max(r.png, chunkMemoryLimit);
  // Profiles, texts and the like: skipped where they stand, whatever length they claim.
  static constexpr png_byte unused[] =
      "bKGD\0cHRM\0eXIf\0gAMA\0hIST\0iCCP\0iTXt\0oFFs\0pCAL\0pHYs\0sCAL\0sPLT\0sRGB\0tEXt\0tIME\0tRNS\0zTXt";
  png_set_keep_unknown_chunks(r.png, PNG_HANDLE_CHUNK_NEVER, unused, static_cast<int>(sizeof unused / 5));
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
  png_set_read_user_transform_fn(r.png, PngReader::seeRow);
  png_set_user_transform_info(r.png, &r, 0, 0);
  r.passes = png_set_interlace_handling(r.png);
  png_read_update_info(r.png, r.info);
}

void takeMemory(PngReader& r)
{
  long const width = static_cast<long>(png_get_image_width(r.png, r.info));
  long const height = static_cast<long>(png_get_image_height(r.png, r.info));
  bool const colour = r.colourType == PNG_COLOR_TYPE_RGB || r.colourType == PNG_COLOR_TYPE_RGB_ALPHA;
  bool const deep = r.depth == 16 && !colour;
  std::size_t const rowBytes =
      static_cast<std::size_t>(width) * (colour ? sizeof(ccPackedRGB32Pel) : deep ? sizeof(unsigned short) : 1);
  if (png_get_rowbytes(r.png, r.info) != rowBytes)
    cf_faultUnsupported("this kind of PNG");
  if (r.colourType == PNG_COLOR_TYPE_PALETTE) {
    png_colorp colours = nullptr;
    int count = 0;
    png_get_PLTE(r.png, r.info, &colours, &count);
    cc_PaletteImage::Palette palette;
    count = std::clamp(count, 0, 256);
    for (int i = 0; i < count; ++i)
      palette[static_cast<std::size_t>(i)] = ccPackedRGB32Pel(colours[i].red, colours[i].green, colours[i].blue);
    r.indexed.emplace(r.source, width, height, palette, static_cast<std::size_t>(count));
    return;
  }
  r.image = colour ? cf_newRGB(r.source, width, height)
                   : deep ? cf_newGrey16(r.source, width, height, r.significant) : cf_newGrey8(r.source, width, height);
}

void readRows(PngReader& r)
{
  long const height = static_cast<long>(png_get_image_height(r.png, r.info));
  for (int pass = 0; pass < r.passes; ++pass)
    for (long y = 0; y < height; ++y) {
      r.inLastRow = pass == r.passes - 1 && y == height - 1;
      // The last of the seven passes holds the odd rows only.
      r.complete = r.inLastRow && r.passes > 1 && y % 2 == 0;
      png_read_row(r.png, r.row(y), nullptr);
    }
}

void shiftToSignificant(ccImageFile& image)
{
  int const shift = 16 - image.bits;
  for (long y = 0; y < image.height() && shift; ++y)
    for (unsigned short *pel = image.grey16.pelAddress(0, y), *end = pel + image.width(); pel != end; ++pel)
      *pel = static_cast<unsigned short>(*pel >> shift);
}

}  // namespace

bool cf_isPng(cc_Bytes bytes)
{
  return bytes.size() >= sizeof signature && std::equal(std::begin(signature), std::end(signature), bytes.begin());
}

ccImageFile cf_readPng(cc_ImageSource const& source)
{
  cc_Bytes const bytes = source.bytes;
  // The first chunk is the header, width and height its first words.
  constexpr std::size_t widthAt = headerAt + 8, headerEnd = headerAt + chunkFrame + headerLength;
  if (bytes.size() < headerEnd)
    cf_faultCutOff();
  std::uint32_t const width = wordAt(bytes, widthAt), height = wordAt(bytes, widthAt + 4);
  cf_checkSides(width, height);
  constexpr unsigned channels[] = {1, 1, 3, 1, 2, 1, 4};  // by colour type; libpng refuses other types and depths
  unsigned const depth = bytes[24] <= 16 ? bytes[24] : 1, colourType = bytes[25] <= 6 ? bytes[25] : 0;
  unsigned long long const rowsBytes = 1ull * width * height * depth * channels[colourType] / 8;
  cf_checkGrowth(rowsBytes, bytes.size(), deflateGrowth);
  cf_checkGrowth(rowsBytes, walkChunks(bytes), deflateGrowth);

  PngReader reader(source);
  auto const attempt = [&reader](void (*step)(PngReader&)) {
    if (reader.attempt(step) || reader.complete)
      return;
    if (reader.cutOff)
      cf_faultCutOff();
    if (std::strstr(reader.message, "memory"))
      throw std::bad_alloc();  // the library tells so in several words
    cf_faultDamaged(reader.message);
  };
  attempt(readHeader);
  takeMemory(reader);
  attempt(readRows);
  if (reader.indexed)
    return reader.indexed->finish();
  if (reader.image.format == ceImageFormatGrey16)
    shiftToSignificant(reader.image);
  return std::move(reader.image);
}
