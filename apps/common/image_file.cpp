#include "apps/common/image_file.h"

#include "apps/common/error_line.h"
#include "apps/common/image_decoders.h"

#include <algorithm>
#include <fstream>
#include <new>
#include <system_error>

namespace {

namespace fs = std::filesystem;

// More than an uncompressed image of the largest size with four channels of 16 bits.
constexpr std::size_t fileSizeLimit = (std::size_t{2} << 30) + (std::size_t{16} << 20);
constexpr std::size_t magicBytes = 16;  // enough for every format test

struct Format {
  bool (*matches)(cc_Bytes);
  ccImageFile (*read)(cc_ImageSource const&);
};

constexpr Format formats[] = {
    {cf_isPng, cf_readPng},
    {cf_isPnm, cf_readPnm},
    {cf_isTiff, cf_readTiff},
    {cf_isJpeg, cf_readJpeg},
    {cf_isBmp, cf_readBmp},
};

Format const* formatOf(cc_Bytes bytes)
{
  for (Format const& format : formats)
    if (format.matches(bytes))
      return &format;
  return nullptr;
}

ccImageFile failure(std::string const& name, std::string const& why)
{
  ccImageFile none;
  none.error = cf_errorLine(name, why);
  return none;
}

char const* const notAnImage = "not an image in a known format (PNG, PGM, PPM, TIFF, JPEG, BMP)";

// Empty, or why this is not a file that can be read. A pipe is refused here, as opening it would wait for a writer.
std::string unreadable(fs::path const& path)
{
  std::error_code error;
  fs::file_status const status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found)
    return "no such file";
  if (error)
    return "cannot be read: " + error.message();
  if (status.type() == fs::file_type::directory)
    return "is a folder, not a file";
  if (status.type() != fs::file_type::regular)
    return "is not a plain file";
  return {};
}

// So that the bytes are not moved while they grow. A file that grows meanwhile is read all the same.
std::size_t likelySize(fs::path const& path)
{
  std::error_code error;
  std::uintmax_t const size = fs::file_size(path, error);
  return error ? 0 : static_cast<std::size_t>(std::min<std::uintmax_t>(size, fileSizeLimit)) + 1;
}

// Memory grows with the bytes that are really there.
bool readUpTo(std::ifstream& file, std::size_t limit, std::vector<unsigned char>& bytes)
{
  constexpr std::size_t mostAtOnce = std::size_t{4} << 20;
  while (bytes.size() < limit) {
    std::size_t const had = bytes.size();
    std::size_t const room = bytes.capacity() - had;
    std::size_t const step = std::min({limit - had, mostAtOnce, room ? room : mostAtOnce});
    bytes.resize(had + step);
    file.read(reinterpret_cast<char*>(bytes.data() + had), static_cast<std::streamsize>(step));
    std::size_t const got = static_cast<std::size_t>(file.gcount());
    bytes.resize(had + got);
    if (got < step)
      return !file.bad();
  }
  return true;
}

bool hasImageExtension(fs::path const& path)
{
  std::string extension = path.extension().string();
  for (char& c : extension)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c - 'A' + 'a');
  constexpr char const* known[] = {".png", ".pgm", ".ppm", ".pnm", ".tif", ".tiff", ".jpg", ".jpeg", ".bmp"};
  return std::find(std::begin(known), std::end(known), extension) != std::end(known);
}

}  // namespace

long ccImageFile::width() const
{
  return grey8.width() + grey16.width() + rgb.width();  // two of them are unbound
}

long ccImageFile::height() const
{
  return grey8.height() + grey16.height() + rgb.height();
}

ccImageFile cfReadImageFile(fs::path const& path, ccImageTrust trust)
{
  std::string const name = cf_pathText(path);
  if (std::string const why = unreadable(path); !why.empty())
    return failure(name, why);
  try {
    std::ifstream file(path, std::ios::binary);
    std::vector<unsigned char> bytes;
    if (!file || !readUpTo(file, magicBytes, bytes))
      return failure(name, "cannot be opened for reading");
    // A wrong guess at the file dialogue should not cost the time to read a film.
    if (formatOf(bytes))
      bytes.reserve(likelySize(path));
    if (formatOf(bytes) && !readUpTo(file, fileSizeLimit, bytes))
      return failure(name, "cannot be read to its end");
    if (bytes.size() == fileSizeLimit)
      return failure(name, "the file is too large");
    return cfReadImageBytes(bytes.data(), bytes.size(), name, trust);
  } catch (std::bad_alloc const&) {
    return failure(name, "not enough memory");
  }
}

ccImageFile cfReadImageBytes(unsigned char const* data, std::size_t count, std::string const& name, ccImageTrust trust)
{
  cc_Bytes const bytes(data, count);
  if (bytes.empty())
    return failure(name, "the file is empty");
  Format const* const format = formatOf(bytes);
  if (!format)
    return failure(name, notAnImage);
  try {
    unsigned long long const most = std::max(bytes.size() * cfImageBytesGrowth, cfImageBytesFree);
    return format->read(trust == ccImageTrust::large ? cc_ImageSource{bytes} : cc_ImageSource{bytes, most});
  } catch (cc_ImageFault const& fault) {
    return failure(name, fault.text);
  } catch (std::bad_alloc const&) {
    return failure(name, "not enough memory");
  }
}

ccImageFolder cfListImageFiles(fs::path const& folder)
{
  ccImageFolder result;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code ignored;
    if (hasImageExtension(entry->path()) && entry->is_regular_file(ignored))
      result.files.push_back(entry->path());
  }
  if (error) {
    result.files.clear();
    result.error = cf_errorLine(cf_pathText(folder), "the folder cannot be read: " + error.message());
  }
  std::sort(result.files.begin(), result.files.end(),
            [](fs::path const& a, fs::path const& b) { return a.filename().native() < b.filename().native(); });
  return result;
}

void cf_faultCutOff()
{
  throw cc_ImageFault{"the file is cut off"};
}

void cf_faultDamaged(std::string const& what)
{
  throw cc_ImageFault{"the file is damaged: " + what};
}

void cf_faultUnsupported(std::string const& what)
{
  throw cc_ImageFault{"unsupported: " + what};
}

void cf_checkSides(long long width, long long height)
{
  if (width < 1 || height < 1)
    cf_faultDamaged("the image has no pels");
  if (width > cfImageSideLimit || height > cfImageSideLimit)
    throw cc_ImageFault{std::to_string(width) + " x " + std::to_string(height) + " pels are too many, the limit is " +
                        std::to_string(cfImageSideLimit) + " a side"};
}

void cf_checkGrowth(unsigned long long bytesOut, unsigned long long bytesIn, unsigned long long mostGrowth)
{
  if (bytesOut / mostGrowth > bytesIn)
    cf_faultCutOff();
}

void cc_ImageSource::checkPicture(unsigned long long pictureBytes) const
{
  if (pictureBytes > mostPicture)
    cf_faultUnsupported("a picture of " + std::to_string(pictureBytes >> 20) + " MiB from a file of " +
                        std::to_string(bytes.size()) + " bytes (--large allows it)");
}

ccImageFile cf_newGrey8(cc_ImageSource const& source, long width, long height)
{
  source.checkPicture(static_cast<unsigned long long>(width) * static_cast<unsigned long long>(height));
  ccImageFile image;
  image.grey8 = ccPelBuffer<unsigned char>(width, height);
  image.format = ceImageFormatGrey8;
  return image;
}

ccImageFile cf_newGrey16(cc_ImageSource const& source, long width, long height, int bits)
{
  source.checkPicture(2ull * static_cast<unsigned long long>(width) * static_cast<unsigned long long>(height));
  ccImageFile image;
  image.grey16 = ccPelBuffer<unsigned short>(width, height);
  image.format = ceImageFormatGrey16;
  image.bits = bits;
  return image;
}

ccImageFile cf_newRGB(cc_ImageSource const& source, long width, long height)
{
  source.checkPicture(4ull * static_cast<unsigned long long>(width) * static_cast<unsigned long long>(height));
  ccImageFile image;
  image.rgb = ccPelBuffer<ccPackedRGB32Pel>(width, height);
  image.format = ceImageFormatRGB32;
  return image;
}

cc_PaletteImage::cc_PaletteImage(cc_ImageSource const& source, long width, long height, Palette const& given, std::size_t count)
    : palette_(given)
{
  std::fill(palette_.begin() + static_cast<std::ptrdiff_t>(count), palette_.end(), ccPackedRGB32Pel());
  bool const grey = std::all_of(palette_.begin(), palette_.end(), [](ccPackedRGB32Pel pel) {
    return pel.red() == pel.green() && pel.green() == pel.blue();
  });
  image_ = grey ? cf_newGrey8(source, width, height) : cf_newRGB(source, width, height);
}

// The last quarter of a row of words: read from the left, an index is used before a pel reaches its byte.
unsigned char* cc_PaletteImage::indices(long y)
{
  if (image_.format == ceImageFormatGrey8)
    return image_.grey8.pelAddress(0, y);
  return reinterpret_cast<unsigned char*>(image_.rgb.pelAddress(0, y)) + 3 * image_.rgb.width();
}

ccImageFile cc_PaletteImage::finish()
{
  long const width = image_.width();
  for (long y = 0; y < image_.height(); ++y) {
    unsigned char const* const from = indices(y);
    if (image_.format == ceImageFormatGrey8) {
      std::transform(from, from + width, image_.grey8.pelAddress(0, y), [&](unsigned char i) { return palette_[i].red(); });
      continue;
    }
    ccPackedRGB32Pel* const to = image_.rgb.pelAddress(0, y);
    for (long x = 0; x < width; ++x) {
      unsigned char const index = from[x];
      to[x] = palette_[index];
    }
  }
  return std::move(image_);
}
