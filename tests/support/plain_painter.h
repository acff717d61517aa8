// Pictures worked out pel by pel from the rules, for tests to compare with. It shares no code with the library, not even its
// small types, and makes no attempt to be fast.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace plain {

struct Rgb {
  int r = 0, g = 0, b = 0;
};
inline bool operator==(Rgb const& a, Rgb const& b)
{
  return a.r == b.r && a.g == b.g && a.b == b.b;
}

struct Rect {
  long x = 0, y = 0, w = 0, h = 0;  // null when a side is 0 or less
};

// Whole numbers from doubles. A value that misses a whole number by a hundred thousand millionth of its magnitude counts as it.
double floorTolerant(double);
double ceilTolerant(double);
long pelOf(double);  // the pel of a position: the nearest, a half and what is a millionth short of it upwards

// A picture of pel values; what lies outside reads 0 and takes nothing.
class Picture {
public:
  Picture(long width, long height, std::uint32_t value = 0);
  long width() const { return width_; }
  long height() const { return height_; }
  std::uint32_t at(long x, long y) const;
  void put(long x, long y, std::uint32_t value);
  std::vector<std::uint32_t> const& pels() const { return pels_; }  // row by row

private:
  long width_, height_;
  std::vector<std::uint32_t> pels_;
};

// Where the first difference lies, "" if there is none. For messages of failing tests.
std::string firstDifference(Picture const& expected, std::vector<std::uint32_t> const& actual);

// One axis of a picture scaled by `scale`, whose first pel lies at `origin`.
long scaledExtent(long extent, double scale);
bool covers(long at, long origin, long extent, double scale);       // is `at` inside the scaled picture
long sourceIndex(long at, long origin, long extent, double scale);  // which source pel lies there, within the source

// A display of displayW by displayH pels that shows an image, without scroll bars.
struct View {
  long displayW = 0, displayH = 0;
  long imageW = 0, imageH = 0;
  long offsetX = 0, offsetY = 0;  // image coordinates of the image's first pel
  double magnification = 1;       // 1/3, never -3
  double panX = 0, panY = 0;
};

// What a display pel shows.
struct Shown {
  bool image = false;         // false: the surround
  long column = 0, row = 0;   // of the image's pels, from its upper left
  long imageX = 0, imageY = 0;  // the same in image coordinates
};
Shown shownAt(View const&, long x, long y);
Rect shownRect(View const&);  // the part of the endless display plane that the image takes
// The display position, in pels with fractions, of a point in image coordinates.
double displayX(View const&, double imageX);
double displayY(View const&, double imageY);

// The whole display: `image` holds the image's pels row by row as the surface shows them.
Picture displayPicture(View const&, std::vector<std::uint32_t> const& image, std::uint32_t surround);

// Surface pels. Depths 8 (an index of the palette), 15, 16, 24 and 32.
std::uint32_t surfacePel(Rgb const&, int depth, std::vector<Rgb> const& palette = {});
long nearestEntry(Rgb const&, std::vector<Rgb> const& palette);  // 243 is never taken; the lowest of equal ones
int stretched(int value);                                        // 8-bit pels kept out of the palette's system entries
// 8-bit pels through an image map; `mapped` pels are entries already.
std::uint32_t surfacePelOfGrey8(int value, bool mapped, int depth, std::vector<Rgb> const& imageMap);
std::uint32_t surfacePelOfGrey16(int value, int depth, std::vector<Rgb> const& imageMap);
std::vector<Rgb> greyRamp();                                      // 256 greys
std::vector<Rgb> windowMap(int bits, int lowest, int highest);    // for 16-bit grey
Rgb seen(std::uint32_t surfacePel, int depth, std::vector<Rgb> const& palette = {});

void fillRect(Picture&, Rect const&, std::uint32_t value);
void fillOutside(Picture&, Rect const&, std::uint32_t value);
void outline(Picture&, Rect const&, long width, std::uint32_t value);  // a ring inside the rectangle
void line(Picture&, long x0, long y0, long x1, long y1, std::uint32_t value);  // one pel wide, both ends painted
// The overlay's pels over the image's, through its key.
Picture composed(Picture const& image, Picture const& overlay, std::uint32_t key);

}  // namespace plain
