// Handles: their pictures, where they are touched, their colour, and what drags have in common.
#include "tests/support/memory_watch.h"
#include "tests/ui/shapes/handle_pictures.h"
#include "tests/ui/shapes/shape_stage.h"
#include "ui/shapes/line_seg.h"

#include <type_traits>

namespace {

static_assert(std::is_abstract_v<ccUIHandle>);
static_assert(std::is_abstract_v<ccUIManShape>);

// The places of the characters of a picture whose upper left lies at a place.
Places cfOf(HandlePicture const& picture, std::string const& characters, ccPair<long> const& ul)
{
  Places found;
  for (std::size_t y = 0; y < picture.rows.size(); ++y)
    for (std::size_t x = 0; x < picture.rows[y].size(); ++x)
      if (characters.find(picture.rows[y][x]) != std::string::npos)
        found.insert({ul.x() + static_cast<long>(x), ul.y() + static_cast<long>(y)});
  return found;
}

Places cfTouched(TestDisplay& test, ccUIShapes& shape, ccUITablet const& canvas)
{
  Places found;
  ccUIRect const r = test.scope().rootRect();
  for (long y = 0; y < r.height(); ++y)
    for (long x = 0; x < r.width(); ++x)
      if (shape.isTouched(canvas.tabletFromScreen({x, y}), canvas.hitScale()))
        found.insert({x, y});
  return found;
}

// Handles that are drawn in another colour for a while.
class HandleColor {
public:
  explicit HandleColor(ccColor const& c) : former_(ccUIHandle::handleColor()) { ccUIHandle::handleColor(c); }
  HandleColor(HandleColor const&) = delete;
  HandleColor& operator=(HandleColor const&) = delete;
  ~HandleColor() { ccUIHandle::handleColor(former_); }

private:
  ccColor const former_;
};

TEST(HandlePictures, eachIsDrawnAndTouchedAsItsRowsSay)
{
  for (int i = 0; i < 7; ++i) {
    HandlePicture const& picture = handlePictures()[static_cast<std::size_t>(i)];
    HandlePicture const& touch = handlePictures()[static_cast<std::size_t>(picture.touchedLike)];
    TestDisplay test(60, 40);
    StillHandle handle(test.displayFrame(), static_cast<ccUIHandle::Icons>(i));
    handle.pos(ccVector<2>(25, 18));
    handle.condVisible(true);
    long const half = static_cast<long>(picture.rows.size()) / 2;
    ccPair<long> const ul(25 - half, 18 - half);
    EXPECT_EQ(cfPlaces(test.scope(), kMagenta), cfOf(picture, "0", ul)) << i;
    EXPECT_EQ(cfTouched(test, handle, *test.displayFrame()), cfOf(touch, "0+", ul)) << i;
    EXPECT_EQ(handle.origin(), ccPoint(static_cast<double>(half) + 0.5, static_cast<double>(half) + 0.5)) << i;
  }
}

TEST(HandlePictures, aHandleIsTouchedOnThePelsOnWhichItIsDrawnAtEveryFractionOfAPel)
{
  TestDisplay test(60, 40);
  for (ccUIHandle::Icons which : {ccUIHandle::squareIcon, ccUIHandle::diskIcon})
    for (int i = 0; i < 40; ++i) {
      StillHandle handle(test.displayFrame(), which);
      handle.pos(ccVector<2>(i < 20 ? 25 + i * 0.05 : -1 + i * 0.05, 18 - i * 0.05));
      handle.condVisible(true);
      EXPECT_EQ(cfPlaces(test.scope(), kMagenta), cfTouched(test, handle, *test.displayFrame())) << i;
    }
}

TEST(HandlePictures, aHandleKeepsItsPelSizeAtEveryZoom)
{
  TestDisplay test(90, 70);
  test->image(cfDark(60, 50), true);
  StillHandle handle(test.imageFrame(), ccUIHandle::diskIcon);
  handle.pos(ccVector<2>(30, 25));
  handle.condVisible(true);
  std::size_t const pels = cfOf(handlePictures()[2], "0", {}).size();
  for (long mag : {1, 2, 5, 16, -2, -4}) {
    test->mag(mag);
    test.update();
    Places const drawn = cfPlaces(test.scope(), kMagenta);
    EXPECT_EQ(drawn.size(), pels) << mag;
    EXPECT_EQ(drawn, cfTouched(test, handle, *test.imageFrame())) << mag;
  }
}

TEST(HandlePictures, aValueThatHasNoPictureKeepsTheOneThereIsAndClearsItsOrigin)
{
  TestDisplay test(60, 40);
  StillHandle handle(test.displayFrame());
  handle.pos(ccVector<2>(25, 18));
  handle.condVisible(true);
  for (int other : {7, -1, 1000}) {
    handle.setIcon(ccUIHandle::squareIcon);
    handle.setIcon(static_cast<ccUIHandle::Icons>(other));
    EXPECT_EQ(handle.origin(), ccPoint());
    EXPECT_EQ(cfPlaces(test.scope(), kMagenta), cfOf(handlePictures()[0], "0", {25, 18})) << other;
  }
}

TEST(HandlePictures, aPictureOfTheClientLeavesTouchMapAndOriginsAsTheyAre)
{
  TestDisplay test(60, 40);
  StillHandle handle(test.displayFrame(), ccUIHandle::addIcon);
  handle.pos(ccVector<2>(25, 18));
  handle.setIcon(ccUITablet::makeIcon("/000/", {249}));
  handle.condVisible(true);
  EXPECT_EQ(cfPlaces(test.scope(), ccRGB(255, 0, 0)), (Places{{21, 14}, {22, 14}, {23, 14}}));
  EXPECT_EQ(cfTouched(test, handle, *test.displayFrame()), cfOf(handlePictures()[5], "0+", {21, 14}));
}

TEST(HandleColor, changingItLeavesTheColourOfExistingHandlesAsItIs)
{
  EXPECT_EQ(ccUIHandle::handleColor(), ccColor::magentaColor());
  TestDisplay test(60, 40);
  StillHandle former(test.displayFrame());
  former.pos(ccVector<2>(10, 10));
  former.condVisible(true);
  HandleColor const green(ccColor::greenColor());
  EXPECT_EQ(ccUIHandle::handleColor(), ccColor::greenColor());
  StillHandle fresh(test.displayFrame());
  fresh.pos(ccVector<2>(30, 10));
  fresh.condVisible(true);
  test->fullDraw(ccUITablet::bothLayers);
  EXPECT_EQ(test.scope().rgb(10, 10), kMagenta);
  EXPECT_EQ(test.scope().rgb(30, 10), ccRGB(0, 255, 0));

  former.setIcon(ccUIHandle::squareIcon);
  EXPECT_EQ(test.scope().rgb(10, 10), ccRGB(0, 255, 0));
}

// Index 0 is the place of the client's colour in an icon, 243 that of what is see-through.
TEST(HandleColor, aColourOfAnyIndexIsShown)
{
  for (int depth : {8, 32})
    for (int index : {0, 1, 7, 242, 243, 244, 255}) {
      HandleColor const color{ccColor(static_cast<unsigned char>(index))};
      TestDisplay test(60, 40, {.depth = depth});
      test.scope().poison(depth == 8 ? 100u : 0x123456u);
      StillHandle handle(test.displayFrame(), ccUIHandle::turnIcon);
      handle.pos(ccVector<2>(25, 18));
      handle.condVisible(true);
      std::uint32_t const expected = test.scope().value(ccColor(static_cast<unsigned char>(index)));
      EXPECT_EQ(test.scope().pel(30, 18), expected) << depth << " " << index;  // drawn: the tip
      EXPECT_EQ(test.scope().pel(25, 18), depth == 8 ? 100u : 0x123456u) << depth << " " << index;
    }
}

// The colour that needs a place of its own in the map leaves none behind for a picture that the client brings.
TEST(HandleColor, aPictureOfTheClientKeepsItsColours)
{
  HandleColor const black(ccColor::blackColor());
  TestDisplay test(60, 40);
  StillHandle handle(test.displayFrame());
  handle.pos(ccVector<2>(25, 18));
  handle.setIcon(ccUITablet::makeIcon("/111/", {249, 1}));
  handle.condVisible(true);
  EXPECT_EQ(cfPlaces(test.scope(), ccRGB(128, 0, 0)).size(), 3u);
}

TEST(Handle, standsBelowTheOthersWhenItIsPickedAndCanBeClickedAndDragged)
{
  StillHandle handle(nullptr);
  EXPECT_TRUE(handle.dontMove() && handle.clickable() && handle.draggable());
  EXPECT_FALSE(handle.visible());
  EXPECT_TRUE(handle.dontScale());
}

TEST(Handle, isNeverDrawnAsSelected)
{
  TestDisplay test(60, 40);
  ccUILineSeg seg(test.displayFrame());
  seg.condVisible(true);
  StillHandle handle(&seg);
  handle.setIcon(ccUITablet::makeIcon("/000/", {0}));  // in the colour of the handle itself
  handle.condVisible(true);
  cfSelect(handle);
  ASSERT_TRUE(handle.selected());
  test.clearLogs();
  handle.condSelected(false, false);
  handle.condSelected(true, false);
  EXPECT_EQ(test.scope().calls("rle"), 0);
  EXPECT_EQ(handle.getColor(), handle.color());
}

TEST(Handle, drawsOnTheLayerOfItsShape)
{
  TestDisplay test(60, 40, {.overlay = true});
  ccUILineSeg seg(test.imageFrame());
  seg.lineSeg(ccLineSeg(ccPoint(20, 20), ccPoint(40, 20)));
  seg.drawLayer(ccUITablet::overlayLayer);
  seg.condVisible(true);
  cfSelect(seg);
  EXPECT_EQ(cfPlaces(test.overlayScope(), kMagenta).size(), 98u);
  EXPECT_TRUE(cfPlaces(test.scope(), kMagenta).empty());
  EXPECT_EQ(cfHandle(seg, 0)->drawLayer(), ccUITablet::overlayLayer);

  // And follows it to another one.
  seg.drawLayer(ccUITablet::imageLayer);
  seg.update(/*withKids=*/true, /*erase=*/true, nullptr, ccUITablet::bothLayers);
  EXPECT_EQ(cfPlaces(test.scope(), kMagenta).size(), 98u);
}

TEST(HandleDrag, theDraggedPointGoesThroughWholePelsOfTheScreen)
{
  TestDisplay test(200, 100, {.rect = ccUIRect(20, 10, 150, 80)});
  test->image(cfDark(60, 40), true);
  test->mag(4);
  StillHandle handle(test.imageFrame());
  handle.pos(ccVector<2>(10.3, 5.2));
  // The pel of a quarter of a unit that holds it, and three to the right and two down from there.
  ccPair<long> const pel = test.imageFrame()->screenCoords(ccPoint(10.3, 5.2));
  EXPECT_EQ(pel, test.imageFrame()->screenCoords(ccPoint(10.25, 5.25)));
  ccPoint const to = handle.dragged_({3, 2});
  EXPECT_NEAR(to.x(), 11.0, 1e-9);
  EXPECT_NEAR(to.y(), 5.75, 1e-9);
}

TEST(HandleDrag, aDirectionCountsFromTheShapesPlaceAndNotBelowItsDeadZone)
{
  TestDisplay test(200, 100);
  ccUILineSeg seg(test.displayFrame());
  seg.lineSeg(ccLineSeg(ccPoint(40, 40), ccPoint(60, 40)));
  StillHandle handle(&seg);
  handle.pos(ccVector<2>(10, 0));  // at (60, 40), the shape's place is (50, 40)
  struct {
    ccPair<long> delta;
    bool usable;
  } const cases[] = {{{0, 0}, true}, {{-7, 3}, false}, {{-13, -3}, false}, {{-6, 0}, true}, {{-10, 4}, true}, {{-14, 0}, true}};
  for (auto const& c : cases) {
    auto const dir = handle.draggedDirection_(c.delta, kTurnDeadZone);
    ASSERT_EQ(dir.has_value(), c.usable) << c.delta.x() << " " << c.delta.y();
    if (dir) {
      EXPECT_EQ(*dir, ccVector<2>(10.0 + static_cast<double>(c.delta.x()), static_cast<double>(c.delta.y())));
    }
  }
  EXPECT_TRUE(handle.draggedDirection_({-10, 0}).has_value());  // no dead zone
  StillHandle loose(nullptr);
  EXPECT_FALSE(loose.draggedDirection_({5, 5}).has_value());
}

TEST(HandleWithoutMemory, aHandleIsMadeOrNot)
{
  struct Stage {
    TestDisplay test{60, 40};
    ccUILineSeg seg{test.displayFrame()};
    Stage() { test.scope().keepLog(false); }
  };
  ccUIHandle::handleColor(ccColor::magentaColor());
  long const failures = failEach([] { return std::make_unique<Stage>(); }, [](Stage& s) { new StillHandle(&s.seg); },
                                 [](Stage& s, bool failed) { EXPECT_EQ(s.seg.numKids(), failed ? 0 : 1); });
  EXPECT_GE(failures, 2);
}

TEST(HandleWithoutMemory, theTableOfPicturesIsBuiltWholeOrNotAtAll)
{
  long const failures = failEach(
      [] {
        ccUIHandle::handleColor(ccColor::magentaColor());
        return std::make_unique<int>();
      },
      [](int&) { ccUIHandle::handleColor(ccColor::greenColor()); },
      [](int&, bool) {
        for (int i = 0; i < 7; ++i) {
          StillHandle const handle(nullptr, static_cast<ccUIHandle::Icons>(i));
          EXPECT_EQ(handle.icon().width(), static_cast<long>(handlePictures()[static_cast<std::size_t>(i)].rows.size()));
        }
        EXPECT_EQ(ccUIHandle::handleColor(), ccColor::greenColor());
      });
  EXPECT_GE(failures, 7);
  ccUIHandle::handleColor(ccColor::magentaColor());
}

}  // namespace
