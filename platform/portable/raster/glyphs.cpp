#include "platform/portable/raster/glyphs.h"

#include "foundation/leaf_mutex.h"
#include "platform/portable/raster/font_data.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <map>
#include <tuple>

namespace plat::portable {

namespace {

constexpr i32 highest = 2000;          // pels of an em
constexpr std::size_t keptFaces = 64;  // beyond it those that nobody holds go
constexpr FT_Fixed slant = 0x366A;     // of a face that has no slanted form, 1/65536

// Files of a family: upright, bold, slanted, both.
struct Family {
  char const* names[4];
  char const* files[4];
};
constexpr Family families[] = {
    {{"dejavu sans mono", "monospace"},
     {"DejaVuSansMono.ttf", "DejaVuSansMono-Bold.ttf", "DejaVuSansMono-Oblique.ttf", "DejaVuSansMono-BoldOblique.ttf"}},
    {{"dejavu serif", "serif"},
     {"DejaVuSerif.ttf", "DejaVuSerif-Bold.ttf", "DejaVuSerif-Italic.ttf", "DejaVuSerif-BoldItalic.ttf"}},
    {{"liberation sans", "arial", "helvetica"},
     {"LiberationSans-Regular.ttf", "LiberationSans-Bold.ttf", "LiberationSans-Italic.ttf",
      "LiberationSans-BoldItalic.ttf"}},
    {{"liberation mono", "courier new", "courier"},
     {"LiberationMono-Regular.ttf", "LiberationMono-Bold.ttf", "LiberationMono-Italic.ttf",
      "LiberationMono-BoldItalic.ttf"}},
    {{"liberation serif", "times new roman", "times"},
     {"LiberationSerif-Regular.ttf", "LiberationSerif-Bold.ttf", "LiberationSerif-Italic.ttf",
      "LiberationSerif-BoldItalic.ttf"}},
    {{"freesans"}, {"FreeSans.ttf", "FreeSansBold.ttf", "FreeSansOblique.ttf", "FreeSansBoldOblique.ttf"}},
    {{"freemono"}, {"FreeMono.ttf", "FreeMonoBold.ttf", "FreeMonoOblique.ttf", "FreeMonoBoldOblique.ttf"}},
    {{"freeserif"}, {"FreeSerif.ttf", "FreeSerifBold.ttf", "FreeSerifItalic.ttf", "FreeSerifBoldItalic.ttf"}},
};
constexpr char const* folders[] = {"/usr/share/fonts/truetype/dejavu/",     "/usr/share/fonts/truetype/liberation/",
                                   "/usr/share/fonts/truetype/liberation2/", "/usr/share/fonts/truetype/freefont/",
                                   "/usr/share/fonts/dejavu/",               "/usr/share/fonts/liberation/",
                                   "/usr/share/fonts/TTF/",                  "/usr/share/fonts/gnu-free/"};

// The path of a family's file, empty when this machine has none.
std::string fileOf(std::string const& family, bool bold, bool italic)
{
  for (Family const& one : families)
    for (char const* name : one.names)
      if (name && family == name)
        for (char const* folder : folders) {
          std::string const path = std::string(folder) + one.files[(bold ? 1 : 0) + (italic ? 2 : 0)];
          if (std::ifstream(path).good())
            return path;
        }
  return {};
}

std::string pathOf(FontDesc const& desc)
{
  std::string family = desc.family;
  for (char& c : family)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  std::string path = fileOf(family, desc.bold, desc.italic);
  if (path.empty() && desc.fixedPitch)
    path = fileOf("dejavu sans mono", desc.bold, desc.italic);
  if (path.empty() && desc.fixedPitch)
    path = fileOf("liberation mono", desc.bold, desc.italic);
  return path;
}

// FreeType's objects are not for several threads at once.
struct Library {
  Library() { FT_Init_FreeType(&library); }
  cc_LeafMutex<cc_LockRank::glyphs> mutex;
  FT_Library library = nullptr;
  using Key = std::tuple<std::string, bool, bool, bool, i32>;
  std::map<Key, std::shared_ptr<FontFace>> faces;
};

Library& library()
{
  static Library* const one = new Library;  // faces may be held by objects of static lifetime
  return *one;
}

class FreeTypeFace final : public FontFace {
public:
  // Called under the library's lock.
  FreeTypeFace(FontDesc const& desc, i32 height)
  {
    std::string const path = pathOf(desc);
    if (!path.empty())
      FT_New_Face(library().library, path.c_str(), 0, &face_);
    slanted_ = desc.italic && !face_;
    if (!face_) {
      auto const data = builtInFont(desc.bold);
      FT_New_Memory_Face(library().library, data.data(), static_cast<FT_Long>(data.size()), 0, &face_);
    }
    if (!face_)
      return;
    FT_Set_Pixel_Sizes(face_, 0, static_cast<FT_UInt>(height));
    ascent_ = static_cast<i32>((face_->size->metrics.ascender + 63) >> 6);
    descent_ = static_cast<i32>((63 - face_->size->metrics.descender) >> 6);
  }
  FreeTypeFace(FreeTypeFace const&) = delete;
  FreeTypeFace& operator=(FreeTypeFace const&) = delete;
  ~FreeTypeFace() override
  {
    std::lock_guard const guard(library().mutex);
    for (auto const& table : glyphs_)
      for (auto const& one : table)
        delete one.load();
    if (face_)
      FT_Done_Face(face_);
  }

private:
  Glyph const& load(u8 character, bool grey) noexcept override
  {
    std::lock_guard const guard(library().mutex);
    auto& place = glyphs_[grey ? 1 : 0][character];
    for (int attempt = 0; attempt < 2 && !place.load(); ++attempt) {
      try {
        place.store(std::make_unique<Glyph>(make(character, grey)).release(), std::memory_order_release);
      } catch (...) {
        // Once more, then the glyph stays away: half a line may be painted by now.
      }
    }
    static Glyph const none;
    Glyph const* const loaded = place.load();
    return loaded ? *loaded : none;
  }
  Glyph make(u8 character, bool grey);
  void takeRuns(Glyph&, FT_Bitmap const&);
  void takeCoverage(Glyph&, FT_Bitmap const&);

  FT_Face face_ = nullptr;
  bool slanted_ = false;
};

// Controls have neither ink nor width; a tab is a blank.
bool isControl(u8 c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

Glyph FreeTypeFace::make(u8 character, bool grey)
{
  Glyph glyph;
  if (!face_ || (isControl(character) && character != '\t'))
    return glyph;
  FT_UInt const index = FT_Get_Char_Index(face_, character == '\t' ? ' ' : character);
  if (FT_Load_Glyph(face_, index, FT_LOAD_TARGET_MONO))
    return glyph;
  FT_GlyphSlot const slot = face_->glyph;
  glyph.advance = static_cast<i32>((slot->advance.x + 32) >> 6);
  if (grey && FT_Load_Glyph(face_, index, FT_LOAD_TARGET_NORMAL))
    return glyph;
  if (slanted_ && slot->format == FT_GLYPH_FORMAT_OUTLINE) {
    FT_Matrix const shear{0x10000, slant, 0, 0x10000};
    FT_Outline_Transform(&slot->outline, &shear);
  }
  if (FT_Render_Glyph(slot, grey ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO))
    return glyph;
  FT_Bitmap const& bitmap = slot->bitmap;
  if (bitmap.width == 0 || bitmap.rows == 0)
    return glyph;
  glyph.ink = {slot->bitmap_left, -slot->bitmap_top, slot->bitmap_left + static_cast<i32>(bitmap.width),
               -slot->bitmap_top + static_cast<i32>(bitmap.rows)};
  if (grey)
    takeCoverage(glyph, bitmap);
  else
    takeRuns(glyph, bitmap);
  // A blank comes as one empty pel.
  if (std::all_of(glyph.coverage.begin(), glyph.coverage.end(), [](u8 a) { return a == 0; }) && glyph.runs.empty())
    glyph.ink = {};
  return glyph;
}

void FreeTypeFace::takeRuns(Glyph& glyph, FT_Bitmap const& bitmap)
{
  i32 const width = glyph.ink.width();
  glyph.bits.assign(glyph.tileRow(glyph.tiles(), 0), 0);
  for (i32 y = 0; y < glyph.ink.height(); ++y) {
    u8 const* const row = bitmap.buffer + std::ptrdiff_t{y} * bitmap.pitch;
    auto const set = [row](i32 x) { return (row[x >> 3] >> (7 - (x & 7)) & 1) != 0; };
    for (i32 x = 0; x < width;) {
      if (!set(x)) {
        ++x;
        continue;
      }
      i32 const from = x;
      for (; x < width && set(x); ++x)
        glyph.bits[glyph.tileRow(x / 16, y)] |= static_cast<u16>(1u << x % 16);
      glyph.runs.push_back({glyph.ink.left + from, glyph.ink.top + y, x - from});
    }
  }
}

void FreeTypeFace::takeCoverage(Glyph& glyph, FT_Bitmap const& bitmap)
{
  glyph.coverage.assign(glyph.tileRow(glyph.tiles(), 0) * 16, 0);
  for (i32 y = 0; y < glyph.ink.height(); ++y) {
    u8 const* const row = bitmap.buffer + std::ptrdiff_t{y} * bitmap.pitch;
    for (i32 x = 0; x < glyph.ink.width(); ++x)
      glyph.coverage[glyph.tileRow(x / 16, y) * 16 + static_cast<std::size_t>(x % 16)] = row[x];
  }
}

}  // namespace

std::shared_ptr<FontFace> fontFace(FontDesc const& desc)
{
  i32 const height = std::clamp(desc.height < 0 ? -std::max(desc.height, -highest) : desc.height, 1, highest);
  Library& all = library();
  std::vector<std::shared_ptr<FontFace>> dropped;  // die after the lock
  std::lock_guard const guard(all.mutex);
  dropped.reserve(all.faces.size() + 1);
  std::shared_ptr<FontFace>& face = all.faces[{desc.family, desc.bold, desc.italic, desc.fixedPitch, height}];
  if (!face) {
    face = std::make_shared<FreeTypeFace>(desc, height);
    std::shared_ptr<FontFace> const made = face;
    for (auto one = all.faces.begin(); one != all.faces.end() && all.faces.size() > keptFaces;) {
      if (one->second.use_count() > 1) {
        ++one;
        continue;
      }
      dropped.push_back(std::move(one->second));
      one = all.faces.erase(one);
    }
    return made;
  }
  return face;
}

}  // namespace plat::portable
