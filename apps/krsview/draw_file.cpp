#include "apps/krsview/draw_file.h"

#include "apps/common/error_line.h"
#include "apps/krsview/draw_figures.h"
#include "backend/win32/win32_display.h"
#include "canvas/format.h"
#include "canvas/rle_buffer.h"
#include "geometry/rect.h"
#include "platform/objects.h"
#include "platform/window.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <new>

namespace {

using Fields = cc_DrawFields;
using Layers = ccUITablet::Layers;
using Target = ccDrawing::cs_Target;

Layers cf_layerOn(Target const& target, Layers l) { return target.overlay ? l : ccUITablet::imageLayer; }

// The strings of the library are Latin-1.
std::string cf_latin1(Fields& f, std::string const& name)
{
  std::string const utf8 = f.text(name);
  std::string out;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    auto const c = static_cast<unsigned char>(utf8[i]);
    if (c < 0x80)
      out += utf8[i];
    else if (c == 0xC2 || c == 0xC3)  // U+0080 to U+00FF
      out += static_cast<char>((c & 3) << 6 | (static_cast<unsigned char>(utf8[++i]) & 0x3F));
    else
      f.fail(name, "characters up to U+00FF");
  }
  return out;
}

ccUIRect cf_pelRect(Fields& f)
{
  ccPair<long> const ul = f.pels("ul");
  ccPair<long> const sz = f.pels("sz");
  if (sz.x() < 1 || sz.y() < 1)
    f.fail("sz", "two whole numbers of at least 1");
  return ccUIRect(ul, sz);
}

// The rows of a table, all of one length.
std::vector<ccJson const*> cf_rows(Fields& f, std::string const& name)
{
  ccJson const& list = f.array(name);
  std::vector<ccJson const*> rows;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (!list.at(i).isArray() || list.at(i).size() == 0 || list.at(i).size() != list.at(0).size())
      f.fail(name, "rows of equal length");
    rows.push_back(&list.at(i));
  }
  return rows;
}

template <class Pel, class From, class Convert> ccPelBuffer<Pel> cf_buffer(std::vector<std::vector<From>> const& rows, Convert c)
{
  ccPelBuffer<Pel> out(static_cast<long>(rows[0].size()), static_cast<long>(rows.size()));
  for (long y = 0; y < out.height(); ++y)
    for (long x = 0; x < out.width(); ++x)
      out.setPel(x, y, c(rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]));
  return out;
}

}  // namespace

class cc_DrawReader {
public:
  explicit cc_DrawReader(ccDrawing& out) : out_(out) {}
  void read(ccJson const&);
  static std::vector<std::string> kinds();

private:
  using Command = ccDrawing::Command;
  using Maker = Command (cc_DrawReader::*)(Fields&, Layers);

  Command entry_(Fields&, std::string const& kind, Layers);
  Command text_(Fields&, Layers);
  Command icon_(Fields&, Layers);
  Command pels_(Fields&, Layers);
  Command set_(Fields&, Layers);
  Command fillRect_(Fields&, Layers);
  Command setComplement_(Fields&, Layers);
  Command erase_(Fields&, Layers);
  Command outline_(Fields&, Layers);
  Command outline3D_(Fields&, Layers);
  Command drawTo_(Fields&, Layers);
  Command clipRect_(Fields&, Layers);
  Command sketch_(Fields&, Layers);
  long font_(Fields&);
  void clientFromImage_(Fields& file);
  void countEntry_(std::string const& where);
  static std::map<std::string, Maker> const& makers_();

  ccDrawing& out_;
  std::size_t entries_ = 0;  // those inside sketches too
};

std::map<std::string, cc_DrawReader::Maker> const& cc_DrawReader::makers_()
{
  static std::map<std::string, Maker> const makers = {
      {"text", &cc_DrawReader::text_},         {"icon", &cc_DrawReader::icon_},
      {"pels", &cc_DrawReader::pels_},         {"set", &cc_DrawReader::set_},
      {"fillRect", &cc_DrawReader::fillRect_}, {"setComplement", &cc_DrawReader::setComplement_},
      {"erase", &cc_DrawReader::erase_},       {"outline", &cc_DrawReader::outline_},
      {"outline3D", &cc_DrawReader::outline3D_}, {"drawTo", &cc_DrawReader::drawTo_},
      {"clipRect", &cc_DrawReader::clipRect_}, {"sketch", &cc_DrawReader::sketch_},
  };
  return makers;
}

std::vector<std::string> cc_DrawReader::kinds()
{
  std::vector<std::string> out = cfDrawFigureKinds();
  for (auto const& maker : makers_())
    out.push_back(maker.first);
  std::sort(out.begin(), out.end());
  return out;
}

// The index of an inline font in the drawing's fonts, -1 for the stock font.
long cc_DrawReader::font_(Fields& f)
{
  if (!f.has("font"))
    return -1;
  constexpr long kTallest = 500;
  constexpr std::size_t kLongestFamily = 200;
  Fields part(f.object("font"), f.place("font"));
  plat::FontDesc font;
  if (part.has("family"))
    font.family = part.text("family");
  if (font.family.size() > kLongestFamily)
    part.fail("family", "a name of at most " + std::to_string(kLongestFamily) + " bytes");
  font.height = static_cast<plat::i32>(part.whole("height", 1, kTallest, font.height));
  font.bold = part.flag("bold", false);
  font.italic = part.flag("italic", false);
  font.fixedPitch = part.flag("fixedPitch", false);
  font.smooth = part.flag("smooth", false);
  part.done();
  auto const found = std::find(out_.fonts_.begin(), out_.fonts_.end(), font);
  if (found != out_.fonts_.end())
    return static_cast<long>(found - out_.fonts_.begin());
  if (out_.fonts_.size() == cfMostDrawFonts)
    f.fail("font", "one of at most " + std::to_string(cfMostDrawFonts) + " different fonts");
  out_.fonts_.push_back(font);
  return static_cast<long>(out_.fonts_.size()) - 1;
}

ccDrawing::Command cc_DrawReader::text_(Fields& f, Layers l)
{
  std::string const text = cf_latin1(f, "text");
  ccPoint const at = f.point("at");
  ccColor const color = f.color("color", ccColor::redColor());
  ccColor const background = f.color("background", ccColor::passColor());
  auto const alignment = static_cast<ccUIFormat::Alignment>(
      f.word("alignment", {"topLeft", "topCenter", "topRight", "centerLeft", "center", "centerRight", "bottomLeft",
                           "bottomCenter", "bottomRight"}, 0));
  long const font = font_(f);
  return [=](ccUITablet& t, Target const& target) {
    ccUIFormat format(alignment);
    format.fontId(font < 0 ? -1 : font + target.firstFont);
    t.draw(text, at, color, background, format, cf_layerOn(target, l));
  };
}

ccDrawing::Command cc_DrawReader::icon_(Fields& f, Layers l)
{
  ccPoint const at = f.point("at");
  std::string map;
  ccJson const& rows = f.array("rows");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::string const row = rows.at(i).text();
    if (row.empty() || row.size() != rows.at(0).text().size() || row.find_first_not_of("0123456789.+") != std::string::npos)
      f.fail("rows", "texts of equal length out of digits, . and +");
    map += "|" + row;
  }
  map += "|";
  std::vector<unsigned char> colors;
  ccJson const& list = f.array("colors");
  for (std::size_t i = 0; i < list.size(); ++i) {
    ccColor color;
    // An icon's pels are palette indices.
    if (!cfDrawColor(list.at(i), color) || !(color.flags() & ccColor::kIndex))
      f.fail("colors", "colours by name or palette index");
    colors.push_back(color.index());
  }
  bool const dontScale = f.flag("dontScale", true);
  ccRLEBuffer const icon = ccUITablet::makeIcon(map.c_str(), colors);
  return [=](ccUITablet& t, Target const& target) {
    t.draw(icon, at, {}, /*transparent=*/true, ccColor::passColor().index(), dontScale, cf_layerOn(target, l));
  };
}

// Grey values, or colours. Colours are shown as images are: as they are at depths 32 and 16, as grey elsewhere.
ccDrawing::Command cc_DrawReader::pels_(Fields& f, Layers l)
{
  ccPoint const at = f.point("at");
  bool const masked = f.has("maskValue");
  if (f.has("rgb")) {
    if (f.has("grey8"))
      f.fail("rgb", "nothing beside grey8");
    auto const rgb = [&](ccJson const& v, std::string const& name) {
      ccColor c;
      if (!cfDrawColor(v, c))
        f.fail(name, kDrawColorExpected);
      return ccPackedRGB32Pel(c.toRGB().r, c.toRGB().g, c.toRGB().b);
    };
    std::vector<std::vector<ccPackedRGB32Pel>> table;
    for (ccJson const* row : cf_rows(f, "rgb")) {
      table.emplace_back();
      for (std::size_t i = 0; i < row->size(); ++i)
        table.back().push_back(rgb(row->at(i), "rgb"));
    }
    ccPackedRGB32Pel const mask = masked ? rgb(f.value("maskValue"), "maskValue") : ccPackedRGB32Pel();
    return [=](ccUITablet& t, Target const& target) {
      Layers const layer = cf_layerOn(target, l);
      auto const to16 = [](ccPackedRGB32Pel p) { return ccPackedRGB16Pel(p.red(), p.green(), p.blue()); };
      auto const toGrey = [](ccPackedRGB32Pel p) {
        return static_cast<unsigned char>((p.red() + 2 * p.green() + p.blue()) >> 2);
      };
      if (target.format == ccDisplay::format32)
        t.draw(cf_buffer<ccPackedRGB32Pel>(table, [](ccPackedRGB32Pel p) { return p; }), at, masked, mask, layer);
      else if (target.format == ccDisplay::format16)
        t.draw(cf_buffer<ccPackedRGB16Pel>(table, to16), at, masked, to16(mask), layer);
      else
        t.draw(cf_buffer<unsigned char>(table, toGrey), at, masked, toGrey(mask), target.format != ccDisplay::format8, layer);
    };
  }
  std::vector<std::vector<long>> table;
  for (ccJson const* row : cf_rows(f, "grey8")) {
    table.emplace_back();
    for (std::size_t i = 0; i < row->size(); ++i) {
      double const v = row->at(i).number(-1);
      if (v < 0 || v > 255 || v != static_cast<double>(static_cast<long>(v)))
        f.fail("grey8", "rows of whole numbers from 0 to 255");
      table.back().push_back(static_cast<long>(v));
    }
  }
  auto const mask = static_cast<unsigned char>(f.whole("maskValue", 0, 255, 0));
  ccPelBuffer<unsigned char> const pels = cf_buffer<unsigned char>(table, [](long v) { return static_cast<unsigned char>(v); });
  return [=](ccUITablet& t, Target const& target) {
    t.draw(pels, at, masked, mask, target.format != ccDisplay::format8, cf_layerOn(target, l));
  };
}

ccDrawing::Command cc_DrawReader::set_(Fields& f, Layers l)
{
  ccColor const color = f.color("color");
  if (f.has("ul") || f.has("sz"))
    return [r = cf_pelRect(f), color, l](ccUITablet& t, Target const& target) { t.set(r, color, cf_layerOn(target, l)); };
  return [color, l](ccUITablet& t, Target const& target) { t.set(color, cf_layerOn(target, l)); };
}

ccDrawing::Command cc_DrawReader::fillRect_(Fields& f, Layers l)
{
  ccUIRect const r = cf_pelRect(f);
  ccColor const color = f.color("color");
  return [=](ccUITablet& t, Target const& target) { t.set(r, color, cf_layerOn(target, l)); };
}

ccDrawing::Command cc_DrawReader::setComplement_(Fields& f, Layers l)
{
  ccUIRect const r = cf_pelRect(f);
  ccColor const color = f.color("color");
  return [=](ccUITablet& t, Target const& target) { t.setComplement(r, color, cf_layerOn(target, l)); };
}

ccDrawing::Command cc_DrawReader::erase_(Fields& f, Layers l)
{
  ccUIRect const r = cf_pelRect(f);
  return [=](ccUITablet& t, Target const& target) { t.erase(r, cf_layerOn(target, l)); };
}

ccDrawing::Command cc_DrawReader::outline_(Fields& f, Layers l)
{
  ccUIRect const r = cf_pelRect(f);
  ccColor const color = f.color("color", ccColor::redColor());
  long const width = f.whole("width", 1, 10000, 1);
  return [=](ccUITablet& t, Target const& target) { t.outline(r, color, width, cf_layerOn(target, l)); };
}

ccDrawing::Command cc_DrawReader::outline3D_(Fields& f, Layers l)
{
  ccUIRect const r = cf_pelRect(f);
  ccColor const light = f.color("light", ccColor::whiteColor()), shadow = f.color("shadow", ccColor::dkGreyColor());
  long const width = f.whole("width", 1, 10000, 1);
  return [=](ccUITablet& t, Target const& target) { t.outline3D(r, light, shadow, width, cf_layerOn(target, l)); };
}

// The pen goes from start to each of the points, then by whole pels.
ccDrawing::Command cc_DrawReader::drawTo_(Fields& f, Layers l)
{
  ccPoint const start = f.point("start");
  ccColor const color = f.color("color", ccColor::redColor());
  if (!f.has("to") && !f.has("relPels"))
    f.fail("to", "a list of points (or relPels)");
  std::vector<ccVector<2>> const to = f.has("to") ? f.points("to") : std::vector<ccVector<2>>();
  std::vector<ccPair<long>> steps;
  for (ccVector<2> const& v : f.has("relPels") ? f.points("relPels") : std::vector<ccVector<2>>()) {
    constexpr double kFarthest = 100000;
    if (std::floor(v.x()) != v.x() || std::floor(v.y()) != v.y() || !(std::abs(v.x()) <= kFarthest) ||
        !(std::abs(v.y()) <= kFarthest))
      f.fail("relPels", "a list of steps [x, y] in whole pels");
    steps.emplace_back(static_cast<long>(v.x()), static_cast<long>(v.y()));
  }
  return [=](ccUITablet& t, Target const& target) {
    Layers const layer = cf_layerOn(target, l);
    t.drawStart(start, layer);
    for (ccVector<2> const& p : to)
      t.drawTo(ccPoint(p), color, layer);
    for (ccPair<long> const& d : steps)
      t.drawToRelPels(d.x(), d.y(), color, layer);
  };
}

// Limits what follows in the same coordinates; without a rectangle it lifts the limit.
ccDrawing::Command cc_DrawReader::clipRect_(Fields& f, Layers l)
{
  ccRect clip;
  if (f.has("ul") || f.has("sz")) {
    clip = ccRect(f.point("ul"), f.point("sz"));
    if (!(clip.width() > 0) || !(clip.height() > 0))
      f.fail("sz", "two numbers above 0");
  }
  return [=](ccUITablet& t, Target const& target) { t.drawClipRect(clip, cf_layerOn(target, l)); };
}

ccDrawing::Command cc_DrawReader::sketch_(Fields& f, Layers l)
{
  ccPoint const at = f.point("at", ccPoint());
  std::vector<Command> commands;
  ccJson const& list = f.array("draw");
  for (std::size_t i = 0; i < list.size(); ++i) {
    std::string const where = f.place("draw") + "[" + std::to_string(i) + "]";
    Fields part(list.at(i), where);
    std::string const kind = part.text("kind");
    part.kind(kind);
    countEntry_(where);
    commands.push_back(entry_(part, kind, l));
    part.done();
  }
  return [=](ccUITablet& t, Target const& target) {
    ccUITablet recorder;
    for (Command const& command : commands)
      command(recorder, target);
    t.draw(recorder.sketch(), at, ccUITablet::bothLayers);
  };
}

ccDrawing::Command cc_DrawReader::entry_(Fields& f, std::string const& kind, Layers l)
{
  try {
    if (auto const found = makers_().find(kind); found != makers_().end())
      return (this->*found->second)(f, l);
    std::vector<std::string> const figures = cfDrawFigureKinds();
    if (std::find(figures.begin(), figures.end(), kind) == figures.end())
      f.fail("kind", "a kind that can be drawn");
    ccGraphicProps pen = cfDrawPen(f);
    cs_DrawFigure figure;
    cfDrawFigure(kind, f, pen, figure);
    return [=](ccUITablet& t, Target const& target) { figure.draw(t, pen, cf_layerOn(target, l)); };
  } catch (ccException const& e) {
    std::string const told = e.message();
    throw cc_DrawFault(f.where() + ": this figure is not possible: " + e.what() +
                       (told.empty() ? "" : " (" + cf_quoted(told) + ")"));
  }
}

void cc_DrawReader::countEntry_(std::string const& where)
{
  if (++entries_ > cfMostDrawEntries)
    throw cc_DrawFault(where + ": expected at most " + std::to_string(cfMostDrawEntries) + " entries in a file");
}

// A display goes both ways through the map, at every zoom. Elements up to kFarthest of the map and of its inverse leave doubles
// room for that.
void cc_DrawReader::clientFromImage_(Fields& file)
{
  constexpr double kFarthest = 1e15;
  auto const isNear = [](ccXform<2> const& map) {
    for (int i = 0; i < 4; ++i)
      if (!(std::abs(map.matrix().element(i / 2, i % 2)) <= kFarthest))
        return false;
    return std::abs(map.trans().x()) <= kFarthest && std::abs(map.trans().y()) <= kFarthest;
  };
  Fields map(file.object("clientFromImage"), "clientFromImage");
  std::vector<double> const m = map.has("matrix") ? map.numbers("matrix") : std::vector<double>{1, 0, 0, 1};
  ccMatrix<2> const matrix = m.size() == 4 ? ccMatrix<2>(m[0], m[1], m[2], m[3]) : ccMatrix<2>(0, 0, 0, 0);
  double const determinant = matrix.determinant();
  if (determinant == 0 || !std::isfinite(determinant) || !isNear(ccXform<2>(matrix, ccPoint()).inverse()) ||
      !isNear(ccXform<2>(matrix, ccPoint())))
    map.fail("matrix", "four numbers by rows, with an inverse");
  ccXform<2> const given(matrix, map.point("trans", ccPoint()));
  if (!isNear(given) || !isNear(given.inverse()))
    map.fail("trans", "two numbers that the inverse can hold");
  out_.clientFromImage_ = given;
  map.done();
}

void cc_DrawReader::read(ccJson const& json)
{
  Fields file(json, "the file");
  if (file.value("version") != ccJson(1))
    file.fail("version", "1");
  if (file.has("clientFromImage"))
    clientFromImage_(file);
  if (!file.value("draw").isArray())
    file.fail("draw", "a list of entries");
  ccJson const& list = file.value("draw");
  for (std::size_t i = 0; i < list.size(); ++i) {
    std::string const where = "entry " + std::to_string(i);
    Fields f(list.at(i), where);
    std::string const kind = f.text("kind");
    f.kind(kind);
    countEntry_(where);
    auto const coords = static_cast<ccDisplay::CoordinateSystem>(f.word("coords", {"display", "image", "client"}, 1));
    auto const layer = static_cast<Layers>(f.word("layer", {"image", "overlay", "both"}, 1));
    ccDrawing::Command command = entry_(f, kind, layer);
    f.done();
    out_.usesOverlay_ = out_.usesOverlay_ || layer != ccUITablet::imageLayer;
    out_.entries_.push_back({kind, coords, std::move(command)});
  }
  file.done();
}

ccUISketch ccDrawing::sketch(ccDisplay::CoordinateSystem coords, cs_Target const& target) const
{
  ccUITablet recorder;
  bool clipped = false;
  for (cs_Entry const& entry : entries_) {
    if (entry.coords != coords)
      continue;
    entry.command(recorder, target);
    clipped = clipped || entry.kind == "clipRect" || entry.kind == "sketch";
  }
  if (clipped)
    recorder.drawClipRect(ccRect(), ccUITablet::bothLayers);  // a clip outlives its sketch
  return recorder.sketch();
}

ccUISketch ccDrawing::sketch(std::size_t entry, cs_Target const& target) const
{
  ccUITablet recorder;
  entries_[entry].command(recorder, target);
  return recorder.sketch();
}

std::vector<std::string> cfDrawKinds() { return cc_DrawReader::kinds(); }

ccDrawing cfReadDrawing(std::string_view text, std::string const& name)
{
  ccDrawing out;
  std::string why;
  try {
    ccJsonText const json = cfReadJson(text);
    why = json.error;
    if (json)
      cc_DrawReader(out).read(json.value);
  } catch (cc_DrawFault const& fault) {
    why = fault.what();
  } catch (std::bad_alloc const&) {
    why = "not enough memory";
  }
  if (!why.empty()) {
    out = ccDrawing();
    out.error = cf_errorLine(name, why);
  }
  return out;
}

ccDrawing cfReadDrawFile(std::filesystem::path const& path)
{
  std::string const name = cf_pathText(path);
  std::string text;
  std::ifstream in(path, std::ios::binary);
  // One byte more than may be there, as a file's size is not to be trusted and a pipe has none.
  while (in && text.size() <= cfJsonSizeLimit) {
    char piece[1 << 16];
    in.read(piece, static_cast<std::streamsize>(std::min(sizeof piece, cfJsonSizeLimit + 1 - text.size())));
    text.append(piece, static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad() || (text.empty() && !in.eof())) {
    ccDrawing out;
    out.error = cf_errorLine(name, "cannot be read");
    return out;
  }
  return cfReadDrawing(text, name);
}

std::vector<HFONT> cfShowDrawing(ccWin32Display& display, ccDrawing const& drawing)
{
  ccDrawing::cs_Target target;
  target.format = display.displayFormat();
  target.overlay = display.enableOverlay() == ccDisplay::overlayOn;
  std::vector<HFONT> fonts = display.fontTable();
  target.firstFont = static_cast<long>(fonts.size());
  std::vector<HFONT> made;
  for (plat::FontDesc const& font : drawing.fonts())
    made.push_back(plat::platform().objects.createFont(font));
  fonts.insert(fonts.end(), made.begin(), made.end());
  display.fontTable(fonts);
  for (auto const coords : {ccDisplay::imageCoords, ccDisplay::clientCoords, ccDisplay::displayCoords})
    display.drawSketch(drawing.sketch(coords, target), coords);
  return made;
}
