#include "tests/apps/file_kit.h"

#include <gtest/gtest.h>

#include <png.h>

#include <fstream>
#include <random>
#include <stdexcept>

namespace fs = std::filesystem;

TestFolder::TestFolder()
{
  std::random_device random;
  path_ = fs::temp_directory_path() / ("krs-apps-" + std::to_string(random()) + "-" + std::to_string(random()));
  fs::create_directory(path_);
}

TestFolder::~TestFolder()
{
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

fs::path TestFolder::file(std::string const& name, Bytes const& bytes) const
{
  std::ofstream out(path_ / name, std::ios::binary);
  out.write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return path_ / name;
}

Bytes fileBytes(fs::path const& path)
{
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

Bytes bytesOf(std::string const& text)
{
  return Bytes(text.begin(), text.end());
}

Bytes operator+(Bytes a, Bytes const& b)
{
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

ccImageFile read(Bytes const& bytes)
{
  return cfReadImageBytes(bytes.data(), bytes.size(), "test");
}

std::vector<std::vector<unsigned>> greys(ccImageFile const& image)
{
  std::vector<std::vector<unsigned>> rows;
  for (long y = 0; y < image.height(); ++y) {
    rows.emplace_back();
    for (long x = 0; x < image.width(); ++x)
      rows.back().push_back(image.format == ceImageFormatGrey8 ? image.grey8.getPel(x, y) : image.grey16.getPel(x, y));
  }
  return rows;
}

std::vector<std::vector<std::uint32_t>> words(ccImageFile const& image)
{
  std::vector<std::vector<std::uint32_t>> rows;
  for (long y = 0; y < image.height(); ++y) {
    rows.emplace_back();
    for (long x = 0; x < image.width(); ++x)
      rows.back().push_back(image.rgb.getPel(x, y).word());
  }
  return rows;
}

namespace {

bool isSound(ccImageFile const& image)
{
  bool const bound[] = {image.grey8.isBound(), image.grey16.isBound(), image.rgb.isBound()};
  if (!image)
    return !bound[0] && !bound[1] && !bound[2] && image.error.rfind("test: ", 0) == 0 && image.error.size() > 6 &&
           image.error.find('\n') == std::string::npos;
  if (!image.error.empty() || bound[0] + bound[1] + bound[2] != 1 || image.width() < 1 || image.height() < 1 ||
      image.width() > 16384 || image.height() > 16384)
    return false;
  // A flipped bit may make a large image of a small one; some rows will do.
  long const step = 1 + image.height() / 64;
  for (long y = 0; y < image.height(); y += step)
    for (long x = 0; x < image.width(); ++x) {
      if (bound[1] && image.grey16.getPel(x, y) >> image.bits)
        return false;
      if (bound[2] && image.rgb.getPel(x, y).word() >> 24)
        return false;
    }
  return true;
}

}  // namespace

int surviveDamage(Bytes const& whole)
{
  EXPECT_TRUE(read(whole)) << read(whole).error;
  int images = 0;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    Bytes const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    ccImageFile const image = read(cut);
    EXPECT_TRUE(isSound(image)) << "cut to " << length << ": " << image.error;
    images += bool(image);
  }
  for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
    Bytes flipped = whole;
    flipped[bit / 8] = static_cast<unsigned char>(flipped[bit / 8] ^ 1u << bit % 8);
    ccImageFile const image = read(flipped);
    EXPECT_TRUE(isSound(image)) << "bit " << bit % 8 << " of byte " << bit / 8 << ": " << image.error;
  }
  return images;
}

Bytes encode(TestPng const& picture)
{
  Bytes out;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(
      png, &out,
      [](png_structp p, png_bytep bytes, std::size_t count) {
        Bytes& to = *static_cast<Bytes*>(png_get_io_ptr(p));
        to.insert(to.end(), bytes, bytes + count);
      },
      nullptr);
  png_set_IHDR(png, info, picture.width, picture.height, picture.depth, picture.colourType,
               picture.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  std::vector<png_color> palette;
  for (Bytes const& c : picture.palette)
    palette.push_back({c[0], c[1], c[2]});
  if (!palette.empty())
    png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
  if (!picture.transparent.empty())
    png_set_tRNS(png, info, picture.transparent.data(), static_cast<int>(picture.transparent.size()), nullptr);
  if (picture.significantGrey) {
    png_color_8 significant = {};
    significant.gray = static_cast<png_byte>(picture.significantGrey);
    png_set_sBIT(png, info, &significant);
  }
  png_write_info(png, info);
  std::size_t const rowBytes = png_get_rowbytes(png, info);
  Bytes data = picture.rows;
  if (data.size() != rowBytes * picture.height)
    throw std::logic_error("rows of a wrong length");
  std::vector<png_bytep> rows;
  for (unsigned y = 0; y < picture.height; ++y)
    rows.push_back(data.data() + y * rowBytes);
  png_write_image(png, rows.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return out;
}
