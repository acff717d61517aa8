// JPEG by libjpeg. As with libpng, a failed call leaves by longjmp: nothing with a destructor lives below the setjmp.
#include "apps/common/image_decoders.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>
#include <jerror.h>

namespace {

// Each scan costs a pass over all blocks of the image, whatever few bytes it has. Encoders make about ten.
constexpr int mostScans = 200;
constexpr unsigned long long mostBlockPasses = 50'000'000;  // some two seconds; 200 scans of a grey image up to 16 million pels
constexpr long mostScansAnyway = 16;
constexpr unsigned long long huffmanGrowth = 520;  // a block of 64 pels takes at least one bit in its first scan

class JpegReader {
public:
  explicit JpegReader(cc_ImageSource const& source) : source_(source), bytes_(source.bytes) {}
  JpegReader(JpegReader const&) = delete;
  JpegReader& operator=(JpegReader const&) = delete;
  ~JpegReader()
  {
    if (created_)
      jpeg_destroy_decompress(&jpeg_);
  }
  ccImageFile read();

private:
  struct Errors : jpeg_error_mgr {
    std::jmp_buf leave;
    int fault;  // the warning that made us give up, 0 for an error of the library
  };
  struct Progress : jpeg_progress_mgr {
    Errors* errors;
    long mostScans;
  };

  void attempt(void (JpegReader::*step)());
  void readHeader();
  void readRows();
  void takeMemory();
  void limitScans();
  [[noreturn]] void fault();

  static void leave(j_common_ptr);
  static void warn(j_common_ptr, int level);
  static void beSilent(j_common_ptr) {}
  static void countScans(j_common_ptr);

  cc_ImageSource source_;
  cc_Bytes bytes_;
  Errors errors_ = {};
  Progress progress_ = {};
  jpeg_decompress_struct jpeg_ = {};
  bool created_ = false;
  ccImageFile image_;
  std::vector<JSAMPLE> row_;
};

void JpegReader::leave(j_common_ptr jpeg)
{
  std::longjmp(static_cast<Errors*>(jpeg->err)->leave, 1);
}

// The library goes on after damage with grey or torn blocks. Cameras that add bytes between markers are forgiven.
void JpegReader::warn(j_common_ptr jpeg, int level)
{
  if (level >= 0)
    return;
  int const code = jpeg->err->msg_code;
  if (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE || code == JWRN_MUST_RESYNC) {
    static_cast<Errors*>(jpeg->err)->fault = code;
    leave(jpeg);
  }
}

void JpegReader::countScans(j_common_ptr jpeg)
{
  if (jpeg->is_decompressor && reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number >
                                static_cast<Progress*>(jpeg->progress)->mostScans) {
    static_cast<Errors*>(jpeg->err)->fault = JERR_BAD_PROGRESSION;
    leave(jpeg);
  }
}

void JpegReader::attempt(void (JpegReader::*step)())
{
  if (setjmp(errors_.leave))
    fault();
  (this->*step)();
}

void JpegReader::fault()
{
  if (errors_.fault == JWRN_JPEG_EOF)
    cf_faultCutOff();
  if (errors_.fault == JERR_BAD_PROGRESSION)
    cf_faultUnsupported("a JPEG of more than " + std::to_string(progress_.mostScans) + " scans");
  if (errors_.msg_code == JERR_OUT_OF_MEMORY)
    throw std::bad_alloc();
  if (errors_.msg_code == JERR_NO_BACKING_STORE)
    cf_faultUnsupported("a progressive JPEG of this size");
  char text[JMSG_LENGTH_MAX] = {};
  errors_.format_message(reinterpret_cast<j_common_ptr>(&jpeg_), text);
  if (errors_.msg_code == JERR_BAD_PRECISION || errors_.msg_code == JERR_SOF_UNSUPPORTED)
    cf_faultUnsupported(text);
  cf_faultDamaged(text);
}

void JpegReader::readHeader()
{
  jpeg_create_decompress(&jpeg_);
  created_ = true;
  jpeg_.progress = &progress_;
  jpeg_mem_src(&jpeg_, bytes_.data(), static_cast<unsigned long>(bytes_.size()));
  jpeg_read_header(&jpeg_, TRUE);
}

void JpegReader::takeMemory()
{
  cf_checkSides(jpeg_.image_width, jpeg_.image_height);
  if (jpeg_.arith_code)
    cf_faultUnsupported("a JPEG with arithmetic coding");
  if (jpeg_.num_components != 1 && jpeg_.num_components != 3)
    cf_faultUnsupported("a JPEG of " + std::to_string(jpeg_.num_components) + " channels");
  cf_checkGrowth(1ull * jpeg_.image_width * jpeg_.image_height, bytes_.size(), huffmanGrowth);
  limitScans();
  long const width = static_cast<long>(jpeg_.image_width), height = static_cast<long>(jpeg_.image_height);
  bool const grey = jpeg_.num_components == 1;
  jpeg_.out_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
  image_ = grey ? cf_newGrey8(source_, width, height) : cf_newRGB(source_, width, height);
  row_.resize(jpeg_.image_width * (grey ? 1u : 3u));
}

// A JPEG in several scans keeps the coefficients of all its blocks, 16 bits each. They count as part of its picture.
void JpegReader::limitScans()
{
  jpeg_.mem->max_memory_to_use = static_cast<long>(cf_workMemory / 2);
  progress_.mostScans = mostScans;
  if (!jpeg_has_multiple_scans(&jpeg_))
    return;
  unsigned long long blocks = 0;
  for (int i = 0; i < jpeg_.num_components; ++i) {
    jpeg_component_info const& c = jpeg_.comp_info[i];
    auto const across = [](JDIMENSION side, int part, int whole) {
      auto const mcu = static_cast<unsigned long long>(whole) * DCTSIZE;
      return (side + mcu - 1) / mcu * static_cast<unsigned long long>(part);
    };
    blocks += across(jpeg_.image_width, c.h_samp_factor, jpeg_.max_h_samp_factor) *
              across(jpeg_.image_height, c.v_samp_factor, jpeg_.max_v_samp_factor);
  }
  unsigned long long const coefficients = blocks * DCTSIZE2 * sizeof(JCOEF);
  unsigned long long const pels = 1ull * jpeg_.image_width * jpeg_.image_height;
  source_.checkPicture(coefficients + pels * (jpeg_.num_components == 1 ? 1 : sizeof(ccPackedRGB32Pel)));
  jpeg_.mem->max_memory_to_use += static_cast<long>(coefficients);
  auto const affordable = static_cast<long>(std::min(mostBlockPasses / blocks, 1ull * mostScans));
  progress_.mostScans = std::max(affordable, mostScansAnyway);
}

void JpegReader::readRows()
{
  jpeg_start_decompress(&jpeg_);
  while (jpeg_.output_scanline < jpeg_.output_height) {
    long const y = static_cast<long>(jpeg_.output_scanline);
    JSAMPROW row = row_.data();
    jpeg_read_scanlines(&jpeg_, &row, 1);
    if (jpeg_.num_components == 1) {
      std::copy(row, row + jpeg_.output_width, image_.grey8.pelAddress(0, y));
      continue;
    }
    ccPackedRGB32Pel* const to = image_.rgb.pelAddress(0, y);
    for (std::size_t x = 0; x < jpeg_.output_width; ++x)
      to[x] = ccPackedRGB32Pel(row[3 * x], row[3 * x + 1], row[3 * x + 2]);
  }
  jpeg_finish_decompress(&jpeg_);
}

ccImageFile JpegReader::read()
{
  jpeg_.err = jpeg_std_error(&errors_);
  errors_.error_exit = leave;
  errors_.emit_message = warn;
  errors_.output_message = beSilent;
  progress_.progress_monitor = countScans;
  progress_.mostScans = mostScans;
  attempt(&JpegReader::readHeader);
  takeMemory();
  attempt(&JpegReader::readRows);
  return std::move(image_);
}

}  // namespace

bool cf_isJpeg(cc_Bytes bytes)
{
  return bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[2] == 0xFF;
}

ccImageFile cf_readJpeg(cc_ImageSource const& source)
{
  return JpegReader(source).read();
}
