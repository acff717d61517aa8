// Points, pictures and icons: where they are drawn and touched.
#include "tests/ui/shapes/shape_stage.h"
#include "ui/shapes/icon.h"

#include <random>

namespace {

class PlainPoint : public ccUIPointShapeBase {
public:
  using ccUIPointShapeBase::ccUIPointShapeBase;
  long redims = 0;

protected:
  void redim_() override { ++redims; }
};

TEST(PointShape, isTouchedInsideASquareOfTwiceTheDistance)
{
  TestDisplay test(60, 40);
  PlainPoint point(test.displayFrame());
  point.pos(ccVector<2>(20, 15));
  EXPECT_FLOAT_EQ(point.touchDist(), 4);
  struct {
    double x, y, scale;
    bool touched;
  } const cases[] = {{24, 19, 1, true},  {16, 11, 1, true},     {24.01, 15, 1, false}, {20, 10.99, 1, false},
                     {22, 17, 2, true},  {22.01, 15, 2, false}, {28, 23, 0.5, true},   {20, 23.1, 0.5, false},
                     {20, 15, 1e9, true}};
  for (auto const& c : cases)
    EXPECT_EQ(point.isTouched(ccVector<2>(c.x, c.y), c.scale), c.touched) << c.x << " " << c.y << " " << c.scale;
  point.touchDist(1.5f);
  EXPECT_TRUE(point.isTouched(ccVector<2>(21.5, 15), 1));
  EXPECT_FALSE(point.isTouched(ccVector<2>(21.6, 15), 1));
}

TEST(PointShape, itsDistanceCountsFromItsPlaceWithItsParents)
{
  TestDisplay test(60, 40);
  PlainPoint parent(test.displayFrame());
  parent.pos(ccVector<2>(10, 10));
  PlainPoint kid(&parent);
  kid.pos(ccVector<2>(5, -3));
  EXPECT_EQ(kid.absPos(), ccVector<2>(15, 7));
  EXPECT_TRUE(kid.isTouched(ccVector<2>(19, 11), 1));
  EXPECT_FALSE(kid.isTouched(ccVector<2>(5, -3), 1));
}

TEST(PointShape, aNewPlaceIsAnnounced)
{
  TestDisplay test(60, 40);
  PlainPoint point(test.displayFrame());
  point.pos(ccVector<2>(1, 2));
  EXPECT_EQ(point.redims, 2);  // by the step that stores it, and by whoever moved it
  EXPECT_EQ(point.pos(), ccVector<2>(1, 2));
}

TEST(PointIcon, isACrossOfFourPelsToEachSideTouchedInItsSquare)
{
  TestDisplay test(60, 40);
  ccUIPointIcon point(test.displayFrame());
  point.pos(ccVector<2>(20, 15));
  point.condVisible(true);
  Places cross;
  for (long i = -4; i <= 4; ++i)
    cross.insert({20 + i, 15}), cross.insert({20, 15 + i});
  EXPECT_EQ(cfPlaces(test.scope(), kCyan), cross);
  for (long y = 5; y < 25; ++y)
    for (long x = 10; x < 30; ++x)
      EXPECT_EQ(point.isTouched(ccVector<2>(ccPair<long>(x, y)), 1), std::labs(x - 20) <= 4 && std::labs(y - 15) <= 4)
          << x << " " << y;
  EXPECT_FALSE(ccUIPointIcon().isTouched(ccVector<2>(), 1));  // nowhere
}

// 4 by 3 pels: value 5 is see-through.
ccRLEBuffer cfSmall()
{
  unsigned char const pels[] = {5, 249, 249, 5, 249, 5, 5, 249, 249, 249, 0, 5};
  return ccRLEBuffer::fromPels(pels, 4, 3, 4);
}

TEST(Picture, isDrawnWithItsOriginOnItsPlace)
{
  TestDisplay test(60, 40);
  ccUIRLEBuffer picture(test.displayFrame());
  picture.pos(ccVector<2>(20, 15));
  picture.passThrough(true);
  picture.passColor(5);
  picture.rleBuffer(cfSmall());
  picture.condVisible(true);
  Places const red{{21, 15}, {22, 15}, {20, 16}, {23, 16}, {20, 17}, {21, 17}};
  EXPECT_EQ(cfPlaces(test.scope(), ccRGB(255, 0, 0)), red);

  picture.origin(ccPoint(1, 2));
  Places moved;
  for (auto const& [x, y] : red)
    moved.insert({x - 1, y - 2});
  EXPECT_EQ(cfPlaces(test.scope(), ccRGB(255, 0, 0)), moved);
}

// Of a picture that is zoomed the origin counts its own pels, of one that is not those of the screen.
TEST(Picture, itsOriginIsZoomedWithIt)
{
  TestDisplay test(90, 70);
  test->image(cfDark(60, 50), true);
  test->mag(4);
  unsigned char const red = 249;
  ccUIRLEBuffer picture(test.imageFrame());
  picture.rleBuffer(ccRLEBuffer::fromPels(&red, 1, 1, 1));
  picture.origin(ccPoint(1, 2));
  picture.pos(ccVector<2>(30, 25));
  picture.condVisible(true);
  test.update();
  auto const [x, y] = *cfPlaces(test.scope(), ccRGB(255, 0, 0)).begin();
  EXPECT_EQ(ccPair<long>(x, y), test.imageFrame()->screenCoords(ccPoint(29, 23)));
  EXPECT_EQ(cfPlaces(test.scope(), ccRGB(255, 0, 0)).size(), 16u);

  picture.dontScale(true);
  test.update();
  ccPair<long> const at = test.imageFrame()->screenCoords(ccPoint(30, 25)) - ccPair<long>(1, 2);
  EXPECT_EQ(cfPlaces(test.scope(), ccRGB(255, 0, 0)), (Places{{at.x(), at.y()}}));
}

TEST(Picture, isNotTouchedOnItsSeeThroughPels)
{
  TestDisplay test(60, 40);
  ccUIRLEBuffer picture(test.displayFrame());
  picture.pos(ccVector<2>(20, 15));
  EXPECT_FALSE(picture.isTouched(ccVector<2>(20, 15), 1));  // no picture yet
  picture.rleBuffer(cfSmall());
  picture.passColor(5);
  auto const touched = [&] {
    Places found;
    for (long y = 10; y < 25; ++y)
      for (long x = 15; x < 30; ++x)
        if (picture.isTouched(ccVector<2>(ccPair<long>(x, y)), 1))
          found.insert({x, y});
    return found;
  };
  EXPECT_EQ(touched().size(), 12u);
  picture.passThrough(true);
  EXPECT_EQ(touched(), (Places{{21, 15}, {22, 15}, {20, 16}, {23, 16}, {20, 17}, {21, 17}, {22, 17}}));
}

TEST(Picture, anEntryOfItsMapTakesTheColourOfTheShapeAndComesBack)
{
  TestDisplay test(60, 40);
  ccUIRLEBuffer picture(test.displayFrame());
  picture.pos(ccVector<2>(20, 15));
  picture.rleBuffer(cfSmall());
  picture.passThrough(true);
  picture.passColor(5);
  picture.color(ccColor::greenColor());
  std::vector<unsigned char> map{252};
  picture.colorMap(map);
  EXPECT_TRUE(map.empty());
  picture.condVisible(true);
  EXPECT_EQ(test.scope().rgb(22, 17), ccRGB(0, 0, 255));  // its own map: value 0 is blue

  picture.useClientColor(true);
  EXPECT_EQ(test.scope().rgb(22, 17), ccRGB(0, 255, 0));
  picture.color(ccColor(1, 2, 3));  // without an index nothing can be put into the map
  EXPECT_EQ(test.scope().rgb(22, 17), ccRGB(0, 0, 255));
  // An entry outside its map: one for all takes its place, and its own map counts for nothing.
  picture.clientColor(249);
  picture.color(ccColor::greenColor());
  EXPECT_EQ(test.scope().rgb(22, 17), ccRGB(0, 0, 0));
  EXPECT_EQ(test.scope().rgb(21, 15), ccRGB(0, 255, 0));
  picture.useClientColor(false);
  EXPECT_EQ(test.scope().rgb(21, 15), ccRGB(255, 0, 0));
  EXPECT_EQ(test.scope().rgb(22, 17), ccRGB(0, 0, 255));
}

TEST(Picture, aSetMapEmptiesTheCallersVectorEachTime)
{
  ccUIRLEBuffer picture;
  std::vector<unsigned char> first{1, 2}, second{3};
  picture.colorMap(first);
  picture.colorMap(second);
  EXPECT_TRUE(first.empty());
  EXPECT_TRUE(second.empty());
}

TEST(Picture, everySetterRedrawsAndThoseThatMayUncoverEraseFirst)
{
  TestDisplay test(60, 40);
  ccUIRLEBuffer picture(test.displayFrame());
  picture.pos(ccVector<2>(20, 15));
  picture.rleBuffer(cfSmall());
  picture.condVisible(true);
  std::vector<unsigned char> map{1};
  struct {
    char const* name;
    std::function<void()> set;
    bool erases;
  } const cases[] = {{"rleBuffer", [&] { picture.rleBuffer(cfSmall()); }, true},
                     {"origin", [&] { picture.origin(ccPoint(1, 1)); }, true},
                     {"dontScale", [&] { picture.dontScale(true); }, true},
                     {"passThrough", [&] { picture.passThrough(true); }, true},
                     {"passColor", [&] { picture.passColor(5); }, true},
                     {"useClientColor", [&] { picture.useClientColor(true); }, true},
                     {"clientColor", [&] { picture.clientColor(1); }, false},
                     {"colorMap", [&] { picture.colorMap(map); }, false}};
  for (auto const& c : cases) {
    test.update();
    test.clearLogs();
    c.set();
    // A display is opaque, so erasing repaints it: the shape is drawn in that pass or after it.
    EXPECT_GE(test.scope().calls("rle"), 1) << c.name;
    EXPECT_EQ(!test.display().redraws.empty(), c.erases) << c.name;
  }
}

// A magnified picture, and one that keeps its pels: touched where it is drawn, at every fraction of a pel.
TEST(Picture, isTouchedExactlyWhereItIsDrawnAtEveryZoomAndFraction)
{
  TestDisplay test(90, 70);
  test->image(cfDark(60, 50), true);
  std::mt19937 random(5);
  std::uniform_real_distribution<double> place(-2, 50), fraction(0, 5);
  long const mags[] = {1, 2, 3, 5, -2};
  for (int round = 0; round < 60; ++round) {
    test->mag(mags[round % 5]);
    ccUIRLEBuffer picture(test.imageFrame());
    unsigned char pels[20];
    for (unsigned char& p : pels)
      p = random() % 3 == 0 ? 5 : 249;
    picture.dontScale(round % 2 == 0);
    picture.passThrough(true);
    picture.passColor(5);
    picture.rleBuffer(ccRLEBuffer::fromPels(pels, 5, 4, 5));
    picture.origin(ccPoint(fraction(random), fraction(random)));
    picture.pos(ccVector<2>(place(random), place(random)));
    picture.condVisible(true);
    test.update();
    Places touched;
    for (long y = 0; y < 70; ++y)
      for (long x = 0; x < 90; ++x)
        if (picture.isTouched(test.imageFrame()->tabletFromScreen({x, y}), test.imageFrame()->hitScale()))
          touched.insert({x, y});
    Places const drawn = cfPlaces(test.scope(), ccRGB(255, 0, 0));
    ASSERT_EQ(drawn, touched) << "round " << round;
    picture.condVisible(false);
    test.update();
  }
}

constexpr char const* kMap = "/.00/0+./";

TEST(Icon, hasItsOwnDefaults)
{
  ccUIIcon icon;
  EXPECT_TRUE(icon.dontScale() && icon.passThrough() && icon.useClientColor());
  EXPECT_EQ(icon.passColor(), 243);
  EXPECT_EQ(icon.clientColor(), 0);
  EXPECT_TRUE(icon.icon().isNull());
  EXPECT_EQ(icon.origin(), ccPoint());
}

TEST(Icon, isDrawnInTheColourOfTheShapeAndTouchedByItsMap)
{
  TestDisplay test(60, 40);
  ccUIIcon icon(test.displayFrame());
  icon.pos(ccVector<2>(20, 15));
  icon.icon(ccUITablet::makeIcon(kMap, {0}));
  icon.touchMap(kMap, ccPair<long>(1, 1));
  icon.origin(ccPoint(1, 1));
  icon.condVisible(true);
  EXPECT_EQ(cfPlaces(test.scope(), kCyan), (Places{{20, 14}, {21, 14}, {19, 15}}));
  Places touched;
  for (long y = 5; y < 25; ++y)
    for (long x = 10; x < 30; ++x)
      if (icon.isTouched(ccVector<2>(ccPair<long>(x, y)), 1))
        touched.insert({x, y});
  EXPECT_EQ(touched, (Places{{20, 14}, {21, 14}, {19, 15}, {20, 15}}));
}

TEST(Icon, aTouchMapWithoutASecondSeparatorLeavesTheTestToThePicture)
{
  TestDisplay test(60, 40);
  for (char const* map : {"/000", "/", "", static_cast<char const*>(nullptr), "//"}) {
    ccUIIcon icon(test.displayFrame());
    icon.pos(ccVector<2>(20, 15));
    icon.icon(ccUITablet::makeIcon(kMap, {0}));
    icon.touchMap(kMap, ccPair<long>());
    EXPECT_TRUE(icon.isTouched(ccVector<2>(21, 16), 1));  // "+": by the map

    icon.touchMap(map, ccPair<long>());

    bool const none = !map || std::string(map) != "//";
    EXPECT_EQ(icon.isTouched(ccVector<2>(21, 15), 1), none) << (map ? map : "null");  // by the picture
    EXPECT_FALSE(icon.isTouched(ccVector<2>(21, 16), 1)) << (map ? map : "null");
  }
}

TEST(Icon, keepsItsPelsAtEveryZoom)
{
  TestDisplay test(90, 70);
  test->image(cfDark(60, 50), true);
  ccUIIcon icon(test.imageFrame());
  icon.pos(ccVector<2>(30, 25));
  icon.icon(ccUITablet::makeIcon(kMap, {0}));
  icon.condVisible(true);
  for (long mag : {1, 2, 7, 16, -2, -3}) {
    test->mag(mag);
    test.update();
    EXPECT_EQ(cfPlaces(test.scope(), kCyan).size(), 3u) << mag;
  }
}

}  // namespace
