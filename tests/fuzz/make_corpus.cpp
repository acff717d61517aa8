// Writes the seeds of all targets into folders below the one that is named. Run by hand when a format or kind is added.
#include "apps/common/json.h"
#include "canvas/color.h"
#include "canvas/graphic_props.h"
#include "foundation/archive.h"
#include "foundation/exception.h"
#include "foundation/math_error.h"
#include "foundation/pel_buffer.h"
#include "tests/apps/hostile_kit.h"
#include "ui/core/mouse_event.h"

#include <fstream>
#include <iterator>
#include <random>
#include <set>

namespace {

namespace fs = std::filesystem;

class Corpus {
public:
  Corpus(fs::path const& root, std::string const& target) : folder_(root / target) { fs::create_directories(folder_); }
  void add(std::string const& name, Bytes const& bytes) const
  {
    std::ofstream out(folder_ / name, std::ios::binary);
    out.write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  void add(std::string const& name, std::string const& text) const { add(name, bytesOf(text)); }

private:
  fs::path folder_;
};

void makePng(fs::path const& root)
{
  Corpus const corpus(root, "png");
  for (bool interlaced : {false, true})
    for (int type : {0, 2, 3, 4, 6})
      for (int depth : {1, 8, 16}) {
        if ((depth == 1 && type != 0 && type != 3) || (depth == 16 && type == 3))
          continue;
        TestPng png;
        png.width = 9;
        png.height = 5;
        png.depth = depth;
        png.colourType = type;
        png.interlaced = interlaced;
        png.significantGrey = type == 0 && depth == 16 ? 12 : 0;
        if (type == 3)
          png.palette = {{255, 0, 0}, {0, 255, 0}};
        unsigned const channels = type == 2 ? 3 : type == 4 ? 2 : type == 6 ? 4 : 1;
        unsigned const rowBytes = (png.width * channels * static_cast<unsigned>(depth) + 7) / 8;
        for (unsigned i = 0; i < rowBytes * png.height; ++i)
          png.rows.push_back(static_cast<unsigned char>(type == 3 ? i % 2 : i * 7));
        corpus.add(std::to_string(type) + "_" + std::to_string(depth) + (interlaced ? "_passes" : "") + ".png", encode(png));
      }
  corpus.add("side_chunks.png", pngFile(pngStart(1, 1, 8, 0), pngChunk("tEXt", bytesOf("a")) + pngChunk("eXIf", Bytes(9)),
                                        deflated({0, 5})));
  corpus.add("claim.png", pngStart(1, 1, 8, 0) + big32(0x7FFFFFFF) + bytesOf("eXIf") + Bytes(4));
  corpus.add("behind.png", pngFile(pngStart(1, 1, 8, 0), {}, deflatedZeros(3 << 20)));
}

void makePnm(fs::path const& root)
{
  Corpus const corpus(root, "pnm");
  corpus.add("plain_grey.pgm", "P2 # a comment\n3 2\n255\n0 1 2\n253 254 255\n");
  corpus.add("plain_colour.ppm", "P3 2 1 15 1 2 3 13 14 15");
  corpus.add("grey.pgm", "P5\n4 2\n255\nabcdefgh");
  corpus.add("deep.pgm", "P5 2 2 4095\n\x01\x02\x03\x04\x05\x06\x07\x08");
  corpus.add("colour.ppm", "P6 2 1 255\nabcdef");
  corpus.add("bitmap.pbm", "P4 8 1\nx");
  corpus.add("numbers.pgm", "P2 99999999999 -1 70000");
}

void makeBmp(fs::path const& root)
{
  Corpus const corpus(root, "bmp");
  corpus.add("runs.bmp", runsBmp(6, 3, {3, 1, 0, 0, 0, 3, 1, 0, 1, 0, 0, 2, 1, 1, 2, 0, 0, 1}));
  auto const plain = [&](unsigned depth, unsigned compression, Bytes const& between, Bytes const& pels, int height = 2) {
    Bytes const header = little32(40) + little32(3) + little32(static_cast<std::uint32_t>(height)) + little16(1) +
                         little16(depth) + little32(compression) + Bytes(20);
    return bytesOf("BM") + Bytes(8) + little32(static_cast<std::uint32_t>(54 + between.size())) + header + between + pels;
  };
  corpus.add("one.bmp", plain(1, 0, Bytes(8, 99), {0xA0, 0, 0, 0, 0x40, 0, 0, 0}));
  corpus.add("four.bmp", plain(4, 0, Bytes(64, 7), {0x12, 0x30, 0, 0, 0x32, 0x10, 0, 0}));
  corpus.add("eight.bmp", plain(8, 0, Bytes(1024, 5), {1, 2, 3, 0, 4, 5, 6, 0}));
  corpus.add("runs4.bmp", plain(4, 2, Bytes(64, 7), {3, 0x12, 0, 0, 0, 3, 0x12, 0x30, 0, 1}));
  corpus.add("sixteen.bmp", plain(16, 0, {}, Bytes(16, 0x5A)));
  corpus.add("masks.bmp", plain(32, 3, little32(0xFF000000) + little32(0xFF0000) + little32(0xFF00), Bytes(24, 0x5A)));
  corpus.add("colour.bmp", plain(24, 0, {}, Bytes(24, 0x5A), -2));
  corpus.add("oldest.bmp", bytesOf("BM") + Bytes(8) + little32(32) + little32(12) + little16(3) + little16(1) + little16(1) +
                               little16(1) + Bytes{0, 0, 0, 255, 255, 255} + Bytes{0xA0, 0, 0, 0});
}

void makeJpeg(fs::path const& root)
{
  Corpus const corpus(root, "jpeg");
  for (int channels : {1, 3})
    for (bool progressive : {false, true})
      corpus.add((channels == 1 ? "grey" : "colour") + std::string(progressive ? "_scans" : "") + ".jpg",
                 flatJpeg(17, 9, channels, progressive));
  Bytes const whole = flatJpeg(8, 8, 1, false);
  corpus.add("markers.jpg", Bytes(whole.begin(), whole.begin() + 2) + Bytes{0xFF, 0xE1, 0, 6, 'E', 'x', 'i', 'f'} +
                                Bytes(whole.begin() + 2, whole.end()));
  corpus.add("many_scans.jpg", withRepeatedScan(flatJpeg(16, 16, 1, true), 210));
}

void makeTiff(fs::path const& root)
{
  Corpus const corpus(root, "tiff");
  Bytes pels;
  for (unsigned char i = 0; i < 64; ++i)
    pels.push_back(i);
  corpus.add("grey.tif", tiffFile(pels, greyTiff(8, 8, 1, 64)));
  Bytes const packed = deflated(pels);
  corpus.add("deflate.tif", tiffFile(packed, greyTiff(8, 8, 8, static_cast<std::uint32_t>(packed.size()))));
  corpus.add("packbits.tif", tiffFile({0xF9, 7, 0xF9, 9}, greyTiff(8, 2, 32773, 4)));
  corpus.add("lzw.tif", tiffFile({0x80, 0x0B, 0x60, 0x50, 0x22, 0x0C, 0x0C, 0x85, 0x01}, greyTiff(3, 3, 5, 9)));
  std::vector<TiffTag> deep = greyTiff(4, 8, 1, 64);
  deep[2] = tiffHalf(258, 12);
  corpus.add("twelve.tif", tiffFile(pels, deep));
  std::vector<TiffTag> palette = greyTiff(8, 8, 1, 64);
  palette[4] = tiffHalf(262, 3);
  palette.push_back({320, 3, 768, Bytes(1536, 0x5A)});
  corpus.add("palette.tif", tiffFile(pels, palette));
  std::vector<TiffTag> colour = greyTiff(4, 4, 1, 48);
  colour[2] = {258, 3, 3, little16(8) + little16(8) + little16(8)};
  colour[4] = tiffHalf(262, 2);
  colour[6] = tiffHalf(277, 3);
  corpus.add("colour.tif", tiffFile(pels, colour));
  std::vector<TiffTag> const tiles = {tiffWord(256, 8), tiffWord(257, 4), tiffHalf(258, 8),  tiffHalf(259, 1),  tiffHalf(262, 0),
                                      tiffHalf(277, 1), tiffHalf(322, 16), tiffHalf(323, 16), tiffWord(324, 8), tiffWord(325, 256)};
  corpus.add("tiles.tif", tiffFile(Bytes(256, 3), tiles));
  Bytes const jpeg = flatJpeg(16, 16, 1, false);
  corpus.add("jpeg.tif", tiffFile(jpeg, greyTiff(16, 16, 7, static_cast<std::uint32_t>(jpeg.size()))));
  std::vector<TiffTag> tagged = greyTiff(2, 2, 1, 4);
  for (unsigned tag = 50000; tag < 50300; ++tag)
    tagged.push_back({tag, 1, 1200, Bytes(1200, 'x')});
  corpus.add("hidden_tags.tif", tiffFile({1, 2, 3, 4}, tagged));
}

void makeDraw(fs::path const& root, fs::path const& examples)
{
  Corpus const corpus(root, "draw");
  std::ifstream in(examples / "draw_all.json", std::ios::binary);
  std::string const text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  ccJsonText const file = cfReadJson(text);
  ccJson const& all = file.value["draw"];
  std::set<std::string> seen;
  for (std::size_t i = 0; i < all.size(); ++i) {
    std::string const kind = all.at(i)["kind"].text();
    if (seen.insert(kind).second)
      corpus.add(kind + ".json", ccJson::object().set("version", 1).set("draw", ccJson::array().push(all.at(i))).write());
  }
  corpus.add("map.json", R"({"version":1,"clientFromImage":{"matrix":[0.5,0.1,-0.1,0.5],"trans":[3,4]},"draw":[]})");
  corpus.add("numbers.json", R"({"version":1,"draw":[{"kind":"circle","center":[1e308,-1e308],"radius":1e300}]})");
}

void makeScripts(fs::path const& root)
{
  Corpus const corpus(root, "script");
  corpus.add("hand", "# all of a hand\nmove 3 4\npress left 5 6 shift\nmove 9 9\nrelease left 9 9 ctrl\ndouble right 1 2\nwheel 2 8 8\n");
  corpus.add("keys", "key down ctrl\nkey up ctrl\nkey down f12\nchar +\nchar 0\nchar a\npress left 3 3\nmove 20 9\nrelease left 20 9\n");
  corpus.add("rest", "scroll horz 1\nscroll vert 5 40\ncommand 40506\ntick 500\nresize 40 30\nlose\nexpect 1 1 9 9 9\ninfo\n");
  corpus.add("zoom", "char i\npress left 9 9\nrelease left 9 9\nchar o\npress right 9 9\nlose\nresize 9 9\nrelease right 9 9\n");
}

void makeArchives(fs::path const& root)
{
  Corpus const corpus(root, "archive");
  auto const add = [&corpus](std::string const& name, unsigned char kind, auto&& write) {
    ccMemoryArchive out;
    write(out);
    corpus.add(name, Bytes{kind} + out.data());
  };
  add("objects", 0, [](ccArchive& ar) {
    ccGraphicProps pen;
    ccBadPointer bad;
    ccPersistent *first = &pen, *second = &bad, *none = nullptr;
    for (ccPersistent* o : {first, second, none, first})
      ar.object(o);
  });
  add("exceptions", 1, [](ccArchive& ar) {
    ccMathError::Singular singular("a text");
    ccArchive::TooLarge large("b");
    ccException *first = &singular, *second = &large;
    for (ccException* o : {first, second, first})
      ar.object(o);
  });
  std::vector<std::string> texts = {"one", "\xC3\xA4", ""};
  add("texts", 3, [&](ccArchive& ar) { ar || texts; });
  std::vector<double> doubles = {1.5, -2, 3e300};
  add("doubles", 4, [&](ccArchive& ar) { ar || doubles; });
  std::vector<std::vector<unsigned short>> nested = {{1, 2}, {}, {3}};
  add("nested", 6, [&](ccArchive& ar) { ar || nested; });
  ccPelBuffer<unsigned char> grey(3, 2);
  add("grey", 9, [&](ccArchive& ar) { ar || grey; });
  ccPelBuffer<ccPackedRGB32Pel> colour(2, 2);
  add("colour", 11, [&](ccArchive& ar) { ar || colour; });
  ccColor red = ccColor::redColor();
  add("color", 13, [&](ccArchive& ar) { ar || red; });
  ccMouseEvent mouse;
  add("mouse", 15, [&](ccArchive& ar) { ar || mouse; });
}

// The storm makes an operation of every few bytes, whatever they are.
void makeStorms(fs::path const& root)
{
  Corpus const corpus(root, "storm");
  std::mt19937 random(7);
  for (std::size_t size : {24u, 60u, 150u, 400u}) {
    Bytes bytes(size);
    for (unsigned char& b : bytes)
      b = static_cast<unsigned char>(random());
    corpus.add(std::to_string(size), bytes);
  }
}

}  // namespace

int main(int count, char** values)
{
  if (count != 3)
    return 2;
  fs::path const root = values[1];
  makePng(root);
  makePnm(root);
  makeBmp(root);
  makeJpeg(root);
  makeTiff(root);
  makeDraw(root, values[2]);
  makeScripts(root);
  makeArchives(root);
  makeStorms(root);
  return 0;
}
