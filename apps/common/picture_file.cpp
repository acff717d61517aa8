#include "apps/common/picture_file.h"

#include "apps/common/error_line.h"

#include <png.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <functional>
#include <new>
#include <random>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Picture {
  long width = 0;
  long height = 0;
  int colourType = PNG_COLOR_TYPE_GRAY;
  int depth = 8;
  int significant = 0;  // 0: not noted
  std::size_t rowBytes = 0;
  std::function<void(long y, png_bytep to)> row;  // big-endian samples
};

constexpr long sideLimit = 1'000'000;  // libpng's own

// The file while it is written. Removed unless it was renamed.
class TemporaryFile {
public:
  explicit TemporaryFile(fs::path const& target)
  {
    static std::atomic<unsigned> count{0};
    constexpr int attempts = 20;
    std::random_device random;
    for (int i = 0; i < attempts && !file_; ++i) {
      std::string const mark = std::to_string(random()) + "-" + std::to_string(count++);
      path_ = target.parent_path() / ("." + mark + ".part");
      file_ = std::fopen(path_.string().c_str(), "wbx");  // x: never a file that is there already
      if (!file_ && errno != EEXIST)
        break;
    }
    error_ = file_ ? 0 : errno;
  }
  TemporaryFile(TemporaryFile const&) = delete;
  TemporaryFile& operator=(TemporaryFile const&) = delete;
  ~TemporaryFile()
  {
    if (file_)
      std::fclose(file_);
    std::error_code ignored;
    if (!path_.empty() && !error_)
      fs::remove(path_, ignored);
  }

  std::FILE* file() const { return file_; }
  int error() const { return error_; }
  int close()  // errno where the last bytes did not reach the file, else 0
  {
    int const result = std::fclose(file_) == 0 ? 0 : errno;
    file_ = nullptr;
    return result;
  }
  std::error_code rename(fs::path const& target)
  {
    std::error_code error;
    fs::rename(path_, target, error);
    if (!error)
      path_.clear();
    return error;
  }

private:
  fs::path path_;
  std::FILE* file_ = nullptr;
  int error_ = 0;  // errno where the file could not be made
};

struct PngWriter {
  PngWriter(Picture const& p, std::FILE* f) : picture(p), file(f), buffer(p.rowBytes)
  {
    png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, fail, ignore);
    info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
      png_destroy_write_struct(&png, nullptr);
      throw std::bad_alloc();
    }
  }
  PngWriter(PngWriter const&) = delete;
  PngWriter& operator=(PngWriter const&) = delete;
  ~PngWriter() { png_destroy_write_struct(&png, info ? &info : nullptr); }

  static void fail(png_structp png, png_const_charp text)
  {
    PngWriter& self = *static_cast<PngWriter*>(png_get_error_ptr(png));
    std::strncpy(self.message, text, sizeof self.message - 1);
    std::longjmp(self.onError, 1);
  }
  static void ignore(png_structp, png_const_charp) {}
  static void write(png_structp png, png_bytep bytes, std::size_t count)
  {
    PngWriter& self = *static_cast<PngWriter*>(png_get_io_ptr(png));
    if (std::fwrite(bytes, 1, count, self.file) != count) {
      self.error = errno;
      png_error(png, "write error");
    }
  }
  static void flush(png_structp) {}
  bool run();

  Picture const& picture;
  std::FILE* file;
  std::vector<png_byte> buffer;
  std::jmp_buf onError;
  char message[128] = {};
  int error = 0;  // errno of a failed write
  png_structp png = nullptr;
  png_infop info = nullptr;
};

void writeAll(PngWriter& w)
{
  Picture const& p = w.picture;
  png_set_write_fn(w.png, &w, PngWriter::write, PngWriter::flush);
  png_set_IHDR(w.png, w.info, static_cast<png_uint_32>(p.width), static_cast<png_uint_32>(p.height), p.depth,
               p.colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (p.significant) {
    png_color_8 significant = {};
    significant.gray = static_cast<png_byte>(p.significant);
    png_set_sBIT(w.png, w.info, &significant);
  }
  png_write_info(w.png, w.info);
  for (long y = 0; y < p.height; ++y) {
    p.row(y, w.buffer.data());
    png_write_row(w.png, w.buffer.data());
  }
  png_write_end(w.png, nullptr);
}

// Nothing with a destructor lives below the setjmp.
bool PngWriter::run()
{
  if (setjmp(onError))
    return false;
  writeAll(*this);
  return true;
}

// Empty, or why nothing may be written there.
std::string refused(fs::path const& target)
{
  std::error_code error;
  fs::file_status const status = fs::symlink_status(target, error);
  switch (status.type()) {
  case fs::file_type::not_found: return {};
  case fs::file_type::symlink: return "is a symbolic link; pictures replace plain files only";
  case fs::file_type::directory: return "is a folder, not a file";
  case fs::file_type::none: return "cannot be written: " + error.message();
  case fs::file_type::regular:
    if ((status.permissions() & fs::perms::owner_write) == fs::perms::none)
      return "is write-protected";
    return {};
  default: return "is not a plain file; pictures replace plain files only";
  }
}

std::string writeFile(fs::path const& target, Picture const& picture)
{
  if (picture.width < 1 || picture.height < 1)
    return "the picture has no pels";
  if (picture.width > sideLimit || picture.height > sideLimit)
    return "the picture is too large";
  if (!target.has_filename())
    return "a file name is missing";
  if (std::string const why = refused(target); !why.empty())
    return why;

  TemporaryFile temporary(target);
  if (!temporary.file())
    return "cannot be written: " + std::generic_category().message(temporary.error());
  PngWriter writer(picture, temporary.file());
  if (!writer.run())
    return "cannot be written: " + (writer.error ? std::generic_category().message(writer.error) : writer.message);
  if (int const error = temporary.close())
    return "cannot be written: " + std::generic_category().message(error);
  if (std::error_code const error = temporary.rename(target))
    return "cannot be written: " + error.message();
  return {};
}

std::string write(fs::path const& target, Picture const& picture)
{
  std::string text;
  try {
    text = writeFile(target, picture);
  } catch (std::bad_alloc const&) {
    text = "not enough memory";
  }
  return text.empty() ? text : cf_errorLine(cf_pathText(target), text);
}

void putRGB(std::uint32_t word, png_bytep& to)
{
  *to++ = static_cast<png_byte>(word >> 16);
  *to++ = static_cast<png_byte>(word >> 8);
  *to++ = static_cast<png_byte>(word);
}

// The upper bits repeat below, so that black stays 0 and white becomes 65535.
unsigned scaledUp(unsigned value, int bits)
{
  value = std::min(value, (1u << bits) - 1) << (16 - bits);
  for (int filled = bits; filled < 16; filled *= 2)
    value |= value >> filled;
  return value;
}

Picture colourPicture(long width, long height)
{
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.colourType = PNG_COLOR_TYPE_RGB;
  picture.rowBytes = static_cast<std::size_t>(std::max(width, 0l)) * 3;
  return picture;
}

}  // namespace

std::string cfWritePng(fs::path const& path, long width, long height, std::uint32_t const* words)
{
  Picture picture = colourPicture(width, height);
  picture.row = [=](long y, png_bytep to) {
    for (std::uint32_t const *from = words + y * width, *end = from + width; from != end; ++from)
      putRGB(*from, to);
  };
  return write(path, picture);
}

std::string cfWritePng(fs::path const& path, ccPelBuffer_const<ccPackedRGB32Pel> const& pels)
{
  Picture picture = colourPicture(pels.width(), pels.height());
  picture.row = [&pels](long y, png_bytep to) {
    ccPackedRGB32Pel const* from = pels.pelAddress(pels.offset().x(), pels.offset().y() + y);
    for (long x = 0; x < pels.width(); ++x)
      putRGB(from[x].word(), to);
  };
  return write(path, picture);
}

std::string cfWritePng(fs::path const& path, ccPelBuffer_const<unsigned char> const& pels)
{
  Picture picture;
  picture.width = pels.width();
  picture.height = pels.height();
  picture.rowBytes = static_cast<std::size_t>(pels.width());
  picture.row = [&pels](long y, png_bytep to) {
    unsigned char const* from = pels.pelAddress(pels.offset().x(), pels.offset().y() + y);
    std::copy(from, from + pels.width(), to);
  };
  return write(path, picture);
}

std::string cfWritePng(fs::path const& path, ccPelBuffer_const<unsigned short> const& pels, int bits)
{
  Picture picture;
  picture.width = pels.width();
  picture.height = pels.height();
  picture.depth = 16;
  picture.significant = std::clamp(bits, 1, 16);
  picture.rowBytes = static_cast<std::size_t>(pels.width()) * 2;
  picture.row = [&](long y, png_bytep to) {
    unsigned short const* from = pels.pelAddress(pels.offset().x(), pels.offset().y() + y);
    for (long x = 0; x < pels.width(); ++x) {
      unsigned const value = scaledUp(from[x], picture.significant);
      *to++ = static_cast<png_byte>(value >> 8);
      *to++ = static_cast<png_byte>(value);
    }
  };
  return write(path, picture);
}
