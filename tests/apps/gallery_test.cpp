// The gallery and the example file.
#include "apps/common/json.h"
#include "apps/krsview/script.h"
#include "apps/krsview/viewer.h"
#include "platform/app.h"
#include "platform/testing.h"
#include "tests/apps/draw_kit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <set>

namespace fs = std::filesystem;

namespace {

ccJson exampleFile()
{
  std::ifstream in(KRS_SOURCE_FOLDER "/docs/examples/draw_all.json", std::ios::binary);
  std::string const text((std::istreambuf_iterator<char>(in)), {});
  ccJsonText const json = cfReadJson(text);
  EXPECT_EQ(json.error, "");
  return json.value;
}

// An entry in a colour that is seen on black.
std::string visible(ccJson entry)
{
  if (entry["color"].text() == "black")
    entry.set("color", "white");
  return entry.write();
}

// The entries of the example that stand for a kind, as the inside of a list.
std::string entriesOf(std::string const& kind, ccJson const& file)
{
  std::string out;
  for (std::size_t i = 0; i < file["draw"].size(); ++i)
    if (file["draw"].at(i)["kind"].text() == kind)
      out += (out.empty() ? "" : ", ") + visible(file["draw"].at(i));
  return out;
}

DrawnView exampleView()
{
  DrawnView v;
  v.windowW = v.imageW = 800;
  v.windowH = v.imageH = 600;
  return v;
}

std::string exampleMap(ccJson const& file) { return "\"clientFromImage\": " + file["clientFromImage"].write() + ", "; }

// Where n by n pels are all painted.
bool hasBlock(DrawnPels const& p, long n, long& atX, long& atY)
{
  for (long y = 0; y + n <= p.h; ++y)
    for (long x = 0; x + n <= p.w; ++x) {
      bool all = true;
      for (long dy = 0; dy < n && all; ++dy)
        for (long dx = 0; dx < n && all; ++dx)
          all = p.at(x + dx, y + dy) != kBlack;
      if (all) {
        atX = x;
        atY = y;
        return true;
      }
    }
  return false;
}

struct GalleryRun {
  ccViewOptions options;
  std::ostringstream errors;
  std::unique_ptr<ccViewer> viewer;

  explicit GalleryRun(int depth = 32, long w = 640, long h = 480)
  {
    plat::InitOptions init;
    init.video = plat::InitOptions::headless;
    plat::init(init);
    plat::testing::screen({1280, 1024}, depth);
    options.gallery = true;
    options.givenWidth = w;
    options.givenHeight = h;
    viewer = std::make_unique<ccViewer>(options, errors);
    plat::testing::drain();
  }
  std::vector<std::uint32_t> pels()
  {
    plat::testing::drain();
    plat::Size size;
    return plat::testing::shot(viewer->window(), size);
  }
  void script(std::string const& lines)
  {
    std::istringstream in(lines);
    std::ostringstream out;
    EXPECT_EQ(ccViewScript(*viewer, out, errors, true).run(in, false), 0) << errors.str();
  }
};

}  // namespace

// ---- The example file

TEST(DrawExample, holdsEveryKind)
{
  ccJson const file = exampleFile();
  std::set<std::string> found;
  for (std::size_t i = 0; i < file["draw"].size(); ++i)
    found.insert(file["draw"].at(i)["kind"].text());
  std::vector<std::string> const kinds = cfDrawKinds();

  EXPECT_EQ(found, std::set<std::string>(kinds.begin(), kinds.end()));
  EXPECT_EQ(kinds.size(), 41u);
}

TEST(DrawExample, holdsEveryStyleAndWayToDraw)
{
  ccJson const file = exampleFile();
  std::map<std::string, std::set<std::string>> values;
  for (std::size_t i = 0; i < file["draw"].size(); ++i)
    for (char const* const field : {"style", "join", "cap", "layer", "coords"})
      if (file["draw"].at(i).has(field))
        values[field].insert(file["draw"].at(i)[field].text());

  EXPECT_EQ(values["style"], (std::set<std::string>{"dash", "dot", "dashDot", "dashDotDot"}));  // solid is the default
  EXPECT_EQ(values["join"], (std::set<std::string>{"round", "bevel"}));
  EXPECT_EQ(values["cap"], (std::set<std::string>{"round", "flat", "square"}));
  EXPECT_TRUE(values["layer"].count("image"));
  EXPECT_TRUE(values["coords"].count("client") && values["coords"].count("display"));
}

TEST(DrawExample, everyKindPaintsPels)
{
  ccJson const file = exampleFile();
  for (std::string const& kind : cfDrawKinds()) {
    if (kind == "clipRect" || kind == "erase")
      continue;  // they limit and take away what others paint
    DrawnPels const p = drawn(entriesOf(kind, file), exampleView(), exampleMap(file));
    EXPECT_LT(p.count(kBlack), 800 * 600 - 4) << kind;
  }
}

TEST(DrawExample, everyEntryPaintsPelsOfItsOwn)
{
  ccJson const file = exampleFile();
  for (std::size_t i = 0; i < file["draw"].size(); ++i) {
    ccJson const& entry = file["draw"].at(i);
    std::string const kind = entry["kind"].text();
    if (kind == "clipRect" || kind == "erase" || entry["color"].text() == "pass")
      continue;
    DrawnPels const p = drawn(visible(entry), exampleView(), exampleMap(file));
    EXPECT_LT(p.count(kBlack), 800 * 600) << i << " " << entry.write();
  }
}

TEST(DrawExample, thinPensStayOnePelWideAtZoomEight)
{
  ccJson const file = exampleFile();
  DrawnView zoomed = exampleView();
  zoomed.mag = 8;
  zoomed.windowW = 6400;
  zoomed.windowH = 4800;
  std::string thin;
  int count = 0;
  std::set<std::string> kinds;
  for (std::size_t i = 0; i < file["draw"].size(); ++i) {
    ccJson const& entry = file["draw"].at(i);
    if (!entry.has("color") || entry["width"].number(1) != 1 || entry["fill"].boolean() ||
        entry["coords"].text("image") != "image")
      continue;
    std::string const kind = entry["kind"].text();
    // Not what is made of whole pels, nor endless lines, which all cross, nor the small arrow heads of wireframes.
    if (std::set<std::string>{"text", "set", "fillRect", "setComplement", "outline", "outline3D", "drawTo", "line", "wireframe"}.count(kind))
      continue;
    thin += (thin.empty() ? "" : ", ") + visible(entry);
    kinds.insert(kind);
    ++count;
  }
  EXPECT_EQ(kinds.size(), 27u);
  EXPECT_GT(count, 50);

  DrawnPels const p = drawn(thin, zoomed);

  long x = 0, y = 0;
  EXPECT_FALSE(hasBlock(p, 3, x, y)) << x << "," << y;
  EXPECT_GT(p.count(kBlack), 6400 * 4800 - 200000);
  // And yet it is eight times as large: the first rectangle, (12, 133) and 36 by 22, ends 8 * 36 pels right of its start.
  EXPECT_EQ(p.at(8 * 12, 8 * 133 + 40), 0xFFFF00u);
  EXPECT_EQ(p.at(8 * 48, 8 * 133 + 40), 0xFFFF00u);
  EXPECT_EQ(p.at(8 * 12 + 1, 8 * 133 + 40), kBlack);
}

TEST(DrawDocs, everySampleStandsInTheExampleProgram)
{
  auto const textOf = [](char const* name) {
    std::ifstream in(std::string(KRS_SOURCE_FOLDER) + name, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), {});
  };
  std::string const docs = textOf("/docs/drawing.md"), program = textOf("/examples/drawing.cpp");
  std::string const open = "```cpp\n";
  int samples = 0;
  for (std::size_t at = docs.find(open); at != std::string::npos; at = docs.find(open, at + 1)) {
    std::size_t const start = at + open.size();
    std::string const sample = docs.substr(start, docs.find("```", start) - start);
    EXPECT_NE(program.find(sample), std::string::npos) << sample;
    ++samples;
  }
  EXPECT_EQ(samples, 9);
}

TEST(DrawDocs, theTablesNameEveryKindAndEveryPage)
{
  std::ifstream in(KRS_SOURCE_FOLDER "/docs/krsview.md", std::ios::binary);
  std::string const docs((std::istreambuf_iterator<char>(in)), {});
  std::size_t const tables = docs.find("## Draw files");
  ASSERT_NE(tables, std::string::npos);
  for (std::string const& kind : cfDrawKinds())
    EXPECT_NE(docs.find("`" + kind + "`", tables), std::string::npos) << kind;
  GalleryRun run;
  for (long i = 0; i < run.viewer->gallery()->size(); ++i) {
    std::string const name = run.viewer->gallery()->name(i);
    EXPECT_NE(docs.find("`" + name + "`"), std::string::npos) << name;
    EXPECT_TRUE(fs::exists(std::string(KRS_SOURCE_FOLDER) + "/docs/pictures/gallery_" + name + ".png")) << name;
  }
}

TEST(DrawDocs, theExampleOfTheFormatIsAGoodFile)
{
  std::ifstream in(KRS_SOURCE_FOLDER "/docs/krsview.md", std::ios::binary);
  std::string const docs((std::istreambuf_iterator<char>(in)), {});
  std::size_t const start = docs.find("```json\n") + 8;
  ccDrawing const drawing = cfReadDrawing(docs.substr(start, docs.find("```", start) - start), "docs");

  EXPECT_EQ(drawing.error, "");
  EXPECT_EQ(drawing.size(), 2u);
}

// ---- The gallery

TEST(Gallery, everyPageHasItsOwnNameTitleAndPicture)
{
  GalleryRun run;
  ccGallery& gallery = *run.viewer->gallery();
  std::set<std::string> names, titles;
  std::set<std::vector<std::uint32_t>> pictures;
  for (long i = 0; i < gallery.size(); ++i) {
    EXPECT_EQ(gallery.page(), i);
    names.insert(gallery.name());
    titles.insert(gallery.title());
    std::vector<std::uint32_t> const pels = run.pels();
    std::set<std::uint32_t> const colors(pels.begin(), pels.end());
    EXPECT_GT(colors.size(), 4u) << gallery.name();
    pictures.insert(pels);
    gallery.show(i + 1);
  }
  std::size_t const count = static_cast<std::size_t>(gallery.size());
  EXPECT_EQ(count, 14u);
  EXPECT_EQ(names.size(), count);
  EXPECT_EQ(titles.size(), count);
  EXPECT_EQ(pictures.size(), count);
}

TEST(Gallery, aPageLeavesNothingBehind)
{
  for (int depth : {8, 32}) {
    GalleryRun run(depth);
    ccGallery& gallery = *run.viewer->gallery();
    std::vector<std::vector<std::uint32_t>> first;
    for (long i = 0; i < gallery.size(); ++i) {
      gallery.show(i);
      first.push_back(run.pels());
    }
    // Backwards, each page comes after another one than before.
    for (long i = gallery.size() - 1; i >= 0; --i) {
      gallery.show(i);
      EXPECT_EQ(run.pels() == first[static_cast<std::size_t>(i)], true) << gallery.name() << " at depth " << depth;
    }
  }
}

TEST(Gallery, pagesComeBackAfterTheSurfacesWereLost)
{
  GalleryRun run;
  ccGallery& gallery = *run.viewer->gallery();
  for (long i = 0; i < gallery.size(); ++i) {
    gallery.show(i);
    std::vector<std::uint32_t> const before = run.pels();
    run.script("lose\n");
    EXPECT_EQ(run.pels() == before, true) << gallery.name();
  }
}

TEST(Gallery, keysTurnPages)
{
  GalleryRun run;
  ccGallery& gallery = *run.viewer->gallery();
  struct {
    char const* key;
    long page;
  } const steps[] = {{"pageup", 0}, {"pagedown", 1}, {"space", 2}, {"right", 3}, {"left", 2}, {"pageup", 1}, {"left", 0}, {"left", 0}};
  for (auto const& step : steps) {
    run.script(std::string("key down ") + step.key + "\nkey up " + step.key + "\n");
    EXPECT_EQ(gallery.page(), step.page) << step.key;
  }
  for (int i = 0; i < 30; ++i)
    run.script("key down pagedown\nkey up pagedown\n");
  EXPECT_EQ(gallery.page(), gallery.size() - 1);
}

TEST(Gallery, pagesAreChosenByName)
{
  GalleryRun run;

  EXPECT_TRUE(run.viewer->showPage("text"));
  EXPECT_EQ(run.viewer->gallery()->name(), "text");
  EXPECT_FALSE(run.viewer->showPage("nothing"));
  EXPECT_EQ(run.viewer->gallery()->name(), "text");
}

TEST(Gallery, turningAPageForgetsTheZoom)
{
  GalleryRun run;
  std::vector<std::uint32_t> const before = run.pels();

  run.script("char +\nwheel 2 300 200\n");
  EXPECT_EQ(run.pels() == before, false);
  run.script("key down pagedown\nkey down pageup\n");

  EXPECT_EQ(run.pels() == before, true);
}

TEST(Gallery, titlesStandStillWhileThePageZooms)
{
  GalleryRun run;
  auto const strip = [&] {
    std::vector<std::uint32_t> pels = run.pels();
    pels.resize(32 * 640);
    return pels;
  };
  std::vector<std::uint32_t> const before = strip();

  run.script("wheel 3 300 300\n");

  EXPECT_EQ(strip() == before, true);
  std::uint32_t const ground = 0x283C5A;  // (40, 60, 90)
  EXPECT_EQ(before[640 * 4 + 600], ground);
  EXPECT_GT(std::count(before.begin(), before.end(), 0xFFFFFFu), 200);  // and letters on it
}

TEST(Gallery, theSheetShowsTheColoursExactly)
{
  GalleryRun run;
  run.viewer->showPage("colours");
  std::vector<std::uint32_t> const pels = run.pels();
  auto const at = [&](long x, long y) { return pels[static_cast<std::size_t>(y * 640 + x)]; };

  EXPECT_EQ(at(40, 90), 0x000000u);
  EXPECT_EQ(at(40 + 5 * 77, 90), 0xFF0000u);
  EXPECT_EQ(at(40 + 7 * 77, 90), 0xFFA500u);
  EXPECT_EQ(at(40, 152), 0xFFFF00u);
  EXPECT_EQ(at(40 + 7 * 77, 152), 0xE4E4E4u);  // the sheet of grey 228, through the pass colour
  EXPECT_EQ(at(622, 240), 0xFF0000u);          // the end of the red ramp
}

TEST(Gallery, infoNamesThePage)
{
  GalleryRun run;
  run.viewer->showPage("maps");
  ccJson const info = cfReadJson(run.viewer->info()).value;

  EXPECT_EQ(info["page"].text(), "maps");
  EXPECT_EQ(info["title"].text(), "Maps: rotation, shear, mirror, reduction");
}
