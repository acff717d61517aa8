#include "tests/canvas/tablet_fixture.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

TEST(Tablet, firstUpdatePaintsTheTreeFromTheBottom)
{
  TestTree tree;

  EXPECT_EQ(Rows({"...."}), tree.imagePicture({0, 0, 4, 1}));
  EXPECT_EQ(Rows({"----"}), tree.overlayPicture({36, 29, 4, 1}));
  EXPECT_EQ(tree.image.surface(), tree.image.screen());
}

TEST(Tablet, shownKidAppearsAtTheNextUpdate)
{
  TestTree tree;
  TestTablet kid(tree.top, ccUIRect(2, 1, 3, 2));
  kid.face = plainFace(ccColor::redColor());
  kid.visible(false);
  tree.flush();

  kid.visible(true);
  EXPECT_EQ(Rows({"......", "......"}), tree.imagePicture({0, 0, 6, 2}));
  EXPECT_TRUE(tree.top.anyChanged(kImage));
  tree.top.update(kBoth);

  EXPECT_EQ(Rows({"......", "..rrr.", "..rrr.", "......"}), tree.imagePicture({0, 0, 6, 4}));
  EXPECT_FALSE(tree.top.anyChanged(kBoth));
}

TEST(Tablet, hiddenKidIsWipedAndOnlyItsPlaceIsPainted)
{
  TestTree tree;
  TestTablet kid(tree.top, ccUIRect(2, 1, 3, 2));
  kid.face = plainFace(ccColor::redColor());
  kid.redraw(kImage);
  tree.flush();
  ASSERT_EQ(Rows({"..rrr."}), tree.imagePicture({0, 1, 6, 1}));

  kid.visible(false);
  tree.flush();

  EXPECT_EQ(Rows({"......"}), tree.imagePicture({0, 1, 6, 1}));
}

TEST(Tablet, movedKidLeavesNothingBehind)
{
  TestTree tree;
  TestTablet kid(tree.top, ccUIRect(2, 1, 3, 2));
  kid.face = plainFace(ccColor::redColor());
  kid.redraw(kImage);
  tree.flush();

  kid.moveRel({2, 1});
  tree.flush();

  EXPECT_EQ(Rows({".......", ".......", "....rrr", "....rrr", "......."}), tree.imagePicture({0, 0, 7, 5}));
}

TEST(Tablet, imageIsDrawnAtTheSnappedPositionInEachScaleMode)
{
  TestTree tree;
  ccPelBuffer<unsigned char> pels(4, 2);
  for (long y = 0; y < 2; ++y)
    for (long x = 0; x < 4; ++x)
      pels.setPel(x, y, static_cast<unsigned char>(100 + 10 * y + x));
  TestTablet kid(tree.top, ccUIRect(3, 2, 30, 20));
  auto const grey = [&](long x, long y) { return static_cast<int>(tree.image.rgb(x, y).r); };

  kid.draw(pels, ccPoint(0.5, 0.4), false, 0, false, kImage); // 0.5 snaps up, 0.4 down
  EXPECT_EQ(100, grey(4, 2));
  EXPECT_EQ(113, grey(7, 3));
  EXPECT_EQ(1, tree.image.calls("draw8"));

  kid.scaleExact({2, 2});
  kid.draw(pels, ccPoint(2, 1), false, 0, false, kImage);
  EXPECT_EQ(100, grey(3 + 4, 2 + 2));
  EXPECT_EQ(100, grey(3 + 5, 2 + 3));
  EXPECT_EQ(101, grey(3 + 6, 2 + 2));
  EXPECT_EQ(113, grey(3 + 11, 2 + 5));
  EXPECT_EQ(1, tree.image.calls("expand8"));

  kid.scaleExact({0.5, 0.5});
  kid.draw(pels, ccPoint(20, 20), false, 0, false, kImage);
  EXPECT_EQ(100, grey(3 + 10, 2 + 10));
  EXPECT_EQ(102, grey(3 + 11, 2 + 10));
  EXPECT_EQ(1, tree.image.calls("sample8"));
}

TEST(Tablet, imageStaysInsideTheTablet)
{
  TestTree tree;
  ccPelBuffer<ccPackedRGB32Pel> pels(8, 8);
  for (long y = 0; y < 8; ++y)
    for (long x = 0; x < 8; ++x)
      pels.setPel(x, y, ccPackedRGB32Pel(255, 0, 0));
  TestTablet kid(tree.top, ccUIRect(1, 1, 3, 2));

  kid.draw(pels, ccPoint(-2, -2), false, ccPackedRGB32Pel(), kImage);

  EXPECT_EQ(Rows({".....", ".rrr.", ".rrr.", "....."}), tree.imagePicture({0, 0, 5, 4}));
}

// ---- Repaint

TEST(TabletRepaint, groundIsBlackOnTheImageAndPassOnTheOverlay)
{
  TestTree tree;
  tree.top.face = [](TestTablet&) {};
  tree.image.poison(5);
  tree.overlay.poison(5);
  tree.top.redraw(kBoth); // nothing any more reaches its pels

  tree.flush();

  EXPECT_EQ(Rows({"0000"}), tree.imagePicture({10, 10, 4, 1}));
  tree.top.update(ccUIRect::inf, kBoth, true);
  EXPECT_EQ(Rows({"----"}), tree.overlayPicture({10, 10, 4, 1}));
}

TEST(TabletRepaint, overlappingShapesOnTheImageLayer)
{
  TestTree tree;
  TestTablet frame(tree.top, ccUIRect::firstQuad);
  ccUIRect shapeA(2, 2, 6, 4);
  ccUIRect const shapeB(5, 4, 6, 4);
  bool withA = true;
  frame.face = [&](TestTablet& t) {
    if (!t.wants(kImage))
      return;
    if (withA)
      t.set(shapeA, ccColor::redColor(), kImage);
    t.set(shapeB, ccColor::greenColor(), kImage);
  };
  frame.redraw(kImage);
  tree.flush();
  frame.passes.clear();

  withA = false;
  frame.erase(shapeA, kBoth); // what a shape does before it moves
  withA = true;
  shapeA = ccUIRect(20, 2, 3, 3);
  frame.set(shapeA, ccColor::redColor(), kImage);

  EXPECT_EQ(Rows({".........", "...gggggg", "...gggggg", "...gggggg"}), tree.imagePicture({2, 3, 9, 4}));
  EXPECT_EQ(Rows({"part 2,2 6x4"}), areas(tree.top));
  EXPECT_EQ(0, tree.top.passesOn(kOverlay));
  for (MemoryScope::Call const& c : tree.image.log())
    if (c.kind == "set") {
      EXPECT_TRUE(ccUIRect(2, 2, 6, 4).contains(c.rect) || c.rect == shapeA);
    }
}

TEST(TabletRepaint, overlayShapeNeverCostsADrawingOfTheImage)
{
  TestTree tree;
  TestTablet frame(tree.top, ccUIRect::firstQuad);
  ccUIRect shape(2, 2, 4, 2);
  frame.face = [&](TestTablet& t) {
    if (t.wants(kOverlay))
      t.set(shape, ccColor::redColor(), kOverlay);
  };
  frame.redraw(kOverlay);
  tree.flush();

  ccUIRect const old = shape;
  shape = ccUIRect(4, 2, 4, 2);
  frame.erase(old, kBoth);
  frame.set(shape, ccColor::redColor(), kOverlay);

  EXPECT_EQ(Rows({"----rrrr--"}), tree.overlayPicture({0, 2, 10, 1}));
  EXPECT_EQ(0, tree.top.passesOn(kImage));
  EXPECT_EQ(0, tree.image.calls("set"));
}

TEST(TabletRepaint, shapeUnderAFormLeavesNothingBehindOnceUncovered)
{
  TestTree tree;
  TestTablet frame(tree.top, ccUIRect::firstQuad);
  TestTablet form(tree.top, {6, 0, 10, 10});
  form.face = plainFace(ccColor::whiteColor());
  form.redraw(kImage);
  ccUIRect drawn[2];
  ccPoint at(3, 3);
  frame.face = [&](TestTablet& t) {
    if (!t.wants(kImage))
      return;
    bool const records = !t.inAreaUpdate_;
    if (records)
      t.recordChanges(true);
    t.set(ccUIRect(t.scopeCoords(at), ccPair<long>(6, 2)), ccColor::redColor(), kImage);
    if (records)
      t.getChanges(drawn, false);
  };
  frame.redraw(kImage);
  tree.flush();
  EXPECT_EQ(Rows({"...rrrwwww"}), tree.imagePicture({0, 3, 10, 1}));
  EXPECT_EQ(ccUIRect(3, 3, 6, 2), drawn[0]); // as a whole

  form.moveAbs({20, 0});
  tree.flush();
  EXPECT_EQ(Rows({"...rrrrrr."}), tree.imagePicture({0, 3, 10, 1}));
  ccUIRect const old = drawn[0];
  at = ccPoint(30, 20);
  frame.erase(old, kImage);
  EXPECT_EQ(Rows({".........."}), tree.imagePicture({0, 3, 10, 1}));

  // The same after a zoom.
  at = ccPoint(3, 3);
  form.moveAbs({6, 0});
  tree.flush();
  frame.scaleExact({2, 2});
  tree.flush();
  EXPECT_EQ(ccUIRect(6, 6, 6, 2), drawn[0]);
  form.moveAbs({20, 0});
  tree.flush();
  EXPECT_EQ(Rows({"......rrrrrr.."}), tree.imagePicture({0, 6, 14, 1}));
  ccUIRect const zoomed = drawn[0];
  at = ccPoint(14, 10);
  frame.erase(zoomed, kImage);
  EXPECT_EQ(Rows({".............."}), tree.imagePicture({0, 6, 14, 1}));
}

TEST(TabletRepaint, pannedImageBehindASolidFormLeavesTheForm)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 30, 20});
  TestTablet form(tree.top, {5, 5, 10, 10});
  display.face = plainFace(ccColor::redColor());
  form.face = plainFace(ccColor::whiteColor());
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.flush();
  display.passes.clear();
  form.passes.clear();

  display.face = plainFace(ccColor::greenColor());
  display.baseMap(ccXform<2>(1, 1, ccVector<2>(3, 3)));
  display.fullDraw(kImage);

  EXPECT_EQ(Rows({"gggggwwwwwwwwwwggggg"}), tree.imagePicture({0, 7, 20, 1}));
  tree.top.update(kImage);
  EXPECT_EQ(1u, display.passes.size()); // what the map setter marked is done
  EXPECT_TRUE(form.passes.empty());
}

TEST(TabletRepaint, markOfASolidFormSurvivesAFullDrawBehindIt)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 30, 20});
  TestTablet form(tree.top, {5, 5, 10, 10});
  display.face = plainFace(ccColor::redColor());
  form.face = plainFace(ccColor::whiteColor());
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.flush();

  form.face = plainFace(ccColor::yellowColor());
  form.baseMap(ccXform<2>::I); // owes the form a repaint
  display.baseMap(ccXform<2>::I);
  display.fullDraw(kImage);
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"rrrrryyyyy"}), tree.imagePicture({0, 7, 10, 1}));
}

TEST(TabletRepaint, markFromTheBottomUnderASolidFormSurvivesAFullDrawBehindIt)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 30, 20});
  TestTablet form(tree.top, {5, 5, 10, 10});
  display.face = plainFace(ccColor::redColor());
  form.face = plainFace(ccColor::whiteColor());
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.flush();

  form.face = plainFace(ccColor::yellowColor());
  tree.top.update(ccUIRect(7, 7, 2, 1), kImage, false);
  tree.top.update(ccUIRect(20, 7, 2, 1), kImage, false); // done by the full drawing
  display.fullDraw(kImage);
  display.passes.clear();
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"rrrrrwwyyw"}), tree.imagePicture({0, 7, 10, 1}));
  EXPECT_TRUE(display.passes.empty());
}

TEST(TabletRepaint, fullDrawOfAnUnsolidTabletWipesItsFormerPelsAtTheNextUpdate)
{
  TestTree tree;
  TestTablet shapes(tree.top, {5, 5, 10, 10});
  shapes.face = spotFace({0, 0, 5, 1}, ccColor::whiteColor());
  shapes.fullDraw(kBoth);
  tree.flush();
  EXPECT_EQ(Rows({"wwwww."}), tree.imagePicture({5, 5, 6, 1}));

  shapes.face = spotFace({1, 0, 2, 1}, ccColor::redColor());
  shapes.fullDraw(kBoth);
  tree.top.update(kBoth);

  EXPECT_EQ(Rows({".rr..."}), tree.imagePicture({5, 5, 6, 1}));
}

TEST(TabletRepaint, unsolidTabletsInFrontOfAFullDrawReturnAtOnce)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 30, 20});
  TestTablet shapes(tree.top, {5, 5, 10, 10});
  display.face = plainFace(ccColor::redColor());
  shapes.face = spotFace({0, 0, 3, 3}, ccColor::whiteColor());
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.flush();

  display.fullDraw(kImage);

  EXPECT_EQ(Rows({"rrrrrwwwrr"}), tree.imagePicture({0, 6, 10, 1}));
}

TEST(TabletRepaint, imageOfUnchangedGeometryDrawsTheImageOnce)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 30, 20});
  TestTablet nested(display, {0, 0, 30, 20});
  display.face = [](TestTablet& t) {
    if (t.wants(kImage))
      t.set(ccColor::redColor(), kImage);
    if (t.wants(kOverlay)) {
      t.set(t.currentScope(kImage), ccColor::passColor(), kOverlay);
      t.opaque(kOverlay, true);
    }
  };
  display.redraw(kBoth);
  tree.flush();
  display.passes.clear();
  nested.passes.clear();

  // What a display does for such an image.
  display.overlayRepaint_.push(false);
  display.redrawLayer_ = kImage;
  display.baseMap(display.baseMap());
  display.update(display.redrawLayer_);
  display.redrawLayer_ = kBoth;
  display.overlayRepaint_.pop();

  ASSERT_EQ(1u, display.passes.size());
  EXPECT_EQ(kImage, display.passes[0].layer);
  EXPECT_EQ(0, display.passesOn(kOverlay));
  EXPECT_EQ(1, nested.passesOn(kImage));
  EXPECT_FALSE(tree.top.anyChanged(kBoth));
}

TEST(TabletRepaint, disabledTabletIsDrawnOnceByItsEnabler)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 30, 20});
  display.face = plainFace(ccColor::redColor());
  display.drawEnabled_.push(false);
  display.drawEnabled_.push(false);

  display.fullDraw(kBoth);
  display.redraw(kBoth);
  display.baseMap(ccXform<2>(1, 1, ccVector<2>(1, 0)));
  display.drawEnabled_.pop();
  display.fullDraw(kBoth);
  tree.top.update(ccUIRect::inf, kBoth, true);
  EXPECT_TRUE(display.passes.empty());
  EXPECT_EQ(kBoth, display.redrawLayer_);

  display.drawEnabled_.pop();
  display.fullDraw(kBoth);
  tree.top.update(kBoth);
  EXPECT_EQ(1u, display.passes.size());
}

TEST(TabletRepaint, disabledTabletStillDrawsDirectly)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 5, 5});
  display.drawEnabled_.push(false);

  display.set(ccUIRect(0, 0, 2, 1), ccColor::redColor(), kImage);

  EXPECT_EQ(Rows({"rr..."}), tree.imagePicture({0, 0, 5, 1}));
}

TEST(TabletRepaint, pelsOfATemporaryKidSurviveTheNextUpdate)
{
  TestTree tree;
  {
    TestTablet temporary(tree.top, {5, 5, 6, 2});
    temporary.set(ccUIRect(0, 0, 3, 1), ccColor::redColor(), kImage);
    tree.top.clearAnyChanged(kImage);
  }
  EXPECT_FALSE(tree.top.anyChanged(kImage));
  tree.top.update(kBoth);

  EXPECT_EQ(Rows({"rrr..."}), tree.imagePicture({5, 5, 6, 1}));
}

TEST(TabletRepaint, clearAnyChangedKeepsWhatIsOwed)
{
  TestTree tree;
  tree.top.set(ccUIRect(0, 0, 2, 2), ccColor::redColor(), kImage);
  EXPECT_TRUE(tree.top.anyChanged(kImage));
  EXPECT_FALSE(tree.top.anyChanged(kOverlay));
  EXPECT_TRUE(tree.top.anyChanged(kBoth));
  tree.top.clearAnyChanged(kImage);
  EXPECT_FALSE(tree.top.anyChanged(kBoth));

  tree.top.update(ccUIRect(9, 9, 2, 2), kImage, false);
  tree.top.set(ccUIRect(0, 0, 2, 2), ccColor::redColor(), kImage);
  tree.top.clearAnyChanged(kImage);
  EXPECT_TRUE(tree.top.anyChanged(kImage));
}

TEST(TabletRepaint, facelessOpaqueControlShowsThePanelsNewColour)
{
  TestTree tree;
  TestTablet panel(tree.top, {0, 0, 20, 10});
  TestTablet light(panel, {2, 2, 6, 4});
  panel.face = plainFace(ccColor::redColor());
  light.face = spotFace({2, 1, 2, 2}, ccColor::yellowColor());
  light.opaque(kImage, true);
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.flush();
  EXPECT_EQ(Rows({"rrrryyrrrr"}), tree.imagePicture({0, 3, 10, 1}));

  panel.face = plainFace(ccColor::greenColor());
  panel.visible(false);
  panel.visible(true);
  tree.flush();

  EXPECT_EQ(Rows({"ggggyygggg"}), tree.imagePicture({0, 3, 10, 1}));
}

TEST(TabletRepaint, faceSwitchedOffGoesAtTheNextUpdate)
{
  TestTree tree;
  TestTablet panel(tree.top, {0, 0, 20, 10});
  TestTablet button(panel, {2, 2, 6, 4});
  panel.face = plainFace(ccColor::redColor());
  button.face = plainFace(ccColor::yellowColor());
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.flush();
  EXPECT_EQ(Rows({"rryyyyyyrr"}), tree.imagePicture({0, 3, 10, 1}));

  button.face = [](TestTablet&) {};
  button.redraw(kImage);
  tree.flush();

  EXPECT_TRUE(button.opaque(kImage));
  EXPECT_EQ(Rows({"rrrrrrrrrr"}), tree.imagePicture({0, 3, 10, 1}));
}

TEST(TabletRepaint, formHiddenMovedAndShownIsThereAfterAFullDrawBehindIt)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 30, 20});
  TestTablet form(tree.top, {5, 5, 6, 4});
  display.face = plainFace(ccColor::redColor());
  form.face = plainFace(ccColor::whiteColor());
  tree.top.update(ccUIRect::inf, kImage, false);
  tree.flush();

  form.visible(false);
  form.moveAbs({8, 5});
  form.visible(true);
  display.fullDraw(kImage);
  EXPECT_EQ(Rows({"rrrrrrrrwwwwwwrr"}), tree.imagePicture({0, 6, 16, 1}));
  tree.top.update(kImage);

  EXPECT_EQ(Rows({"rrrrrrrrwwwwwwrr"}), tree.imagePicture({0, 6, 16, 1}));
}

TEST(TabletRepaint, colourPelsInAPartialRepaintStayInsideTheArea)
{
  TestTree tree;
  ccPelBuffer<ccPackedRGB32Pel> pels(30, 20);
  ccPackedRGB32Pel color(255, 0, 0);
  auto const paint = [&] {
    for (long y = 0; y < 20; ++y)
      for (long x = 0; x < 30; ++x)
        pels.setPel(x, y, color);
  };
  paint();
  TestTablet display(tree.top, {0, 0, 30, 20});
  display.face = [&](TestTablet& t) {
    if (t.wants(kImage))
      t.draw(pels, ccPoint(), false, ccPackedRGB32Pel(), kImage);
  };
  display.redraw(kImage);
  tree.flush();
  color = ccPackedRGB32Pel(0, 255, 0);
  paint();

  tree.top.update(ccUIRect(3, 2, 4, 2), kImage, true);

  EXPECT_EQ(Rows({"rrrrrrrrr", "rrrggggrr", "rrrggggrr", "rrrrrrrrr"}), tree.imagePicture({0, 1, 9, 4}));
}

TEST(TabletRepaint, areaUpdateIsPartialForCutTabletsOnly)
{
  TestTree tree;
  TestTablet cut(tree.top, {0, 0, 10, 10}), whole(tree.top, {12, 2, 4, 4}), off(tree.top, {30, 20, 5, 5});

  tree.top.update(ccUIRect(5, 0, 15, 10), kImage, true);

  EXPECT_EQ(Rows({"part 5,0 5x10"}), areas(cut));
  EXPECT_EQ(Rows({"all 0,0 4x4"}), areas(whole));
  EXPECT_TRUE(off.passes.empty());
  EXPECT_FALSE(cut.inAreaUpdate_);
  EXPECT_EQ(ccUIRect(0, 0, 10, 10), cut.activeScope(kImage));
}

TEST(TabletRepaint, onePassDrawsItsLayerOnly)
{
  TestTree tree;
  TestTablet kid(tree.top, {0, 0, 4, 2});
  kid.face = [](TestTablet& t) { t.set(ccUIRect(0, 0, 2, 1), ccColor::redColor(), kBoth); };

  kid.redraw(kOverlay);

  EXPECT_EQ(Rows({"rr--"}), tree.overlayPicture({0, 0, 4, 1}));
  EXPECT_EQ(Rows({"...."}), tree.imagePicture({0, 0, 4, 1}));
}

TEST(TabletRepaint, redrawInsideAPassKeepsToItsLayerAndArea)
{
  TestTree tree;
  TestTablet display(tree.top, {0, 0, 10, 4});
  TestTablet nested(display, {0, 0, 10, 4});
  display.face = [&](TestTablet& t) {
    nested.redraw(kBoth);
    t.redraw(kBoth); // dropped: it is being painted
  };
  nested.face = [&](TestTablet& t) { t.set(ccUIRect(0, 0, 10, 1), ccColor::redColor(), kImage); };
  nested.passes.clear();

  tree.top.update(ccUIRect(2, 0, 3, 4), kImage, true);

  ASSERT_EQ(2u, nested.passes.size()); // once by the display, once in its own turn
  EXPECT_EQ(kImage, nested.passes[0].layer);
  EXPECT_EQ("part 2,0 3x4", areas(nested)[0]);
  EXPECT_EQ(1u, display.passes.size());
  EXPECT_EQ(Rows({"..rrr....."}), tree.imagePicture({0, 0, 10, 1}));
}

TEST(TabletRepaint, fullDrawInsideAPassWaitsForItsEnd)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 10, 4}), b(tree.top, {20, 0, 5, 4});
  bool ask = true;
  std::size_t meanwhile = 99;
  b.face = plainFace(ccColor::redColor());
  a.face = [&](TestTablet&) {
    if (ask)
      b.fullDraw(kImage);
    ask = false;
    meanwhile = b.passes.size();
  };

  a.redraw(kImage);

  EXPECT_EQ(0u, meanwhile);
  EXPECT_EQ(1u, b.passes.size());
  EXPECT_EQ(Rows({"rrrrr"}), tree.imagePicture({20, 0, 5, 1}));
  EXPECT_FALSE(tree.top.anyChanged(kImage));
}

TEST(TabletRepaint, immediateUpdateInsideAPassBecomesAMark)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 10, 4});
  std::size_t passesOfTop = 99;
  a.face = [&](TestTablet& t) {
    t.update(ccUIRect(20, 0, 5, 5), kImage, true);
    passesOfTop = tree.top.passes.size();
  };

  a.redraw(kImage);

  EXPECT_EQ(0u, passesOfTop);
  EXPECT_TRUE(tree.top.anyChanged(kImage));
}

TEST(TabletRepaint, tabletMayDieInItsOwnRedraw)
{
  TestTree tree;
  auto a = std::make_unique<TestTablet>(tree.top, ccUIRect(0, 0, 10, 4));
  TestTablet b(tree.top, {5, 0, 10, 4});
  b.face = spotFace({0, 0, 2, 1}, ccColor::redColor());
  a->face = [&](TestTablet& t) {
    t.set(ccUIRect(0, 0, 9, 1), ccColor::greenColor(), kImage);
    auto const dying = std::move(a);
  };

  tree.top.update(ccUIRect::inf, kImage, true);
  tree.top.update(kImage);

  EXPECT_EQ(nullptr, a.get());
  EXPECT_EQ(Rows({".....rr..."}), tree.imagePicture({0, 0, 10, 1}));
}

TEST(TabletRepaint, throwingRedrawLeavesTheTreeUsable)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 10, 4});
  a.face = [&](TestTablet&) { throw std::runtime_error("face"); };

  EXPECT_THROW(a.redraw(kImage), std::runtime_error);
  EXPECT_EQ(kBoth, a.redrawLayer_);
  EXPECT_FALSE(tree.image.screenUpdatesLocked());

  a.face = plainFace(ccColor::redColor());
  a.redraw(kImage);
  EXPECT_EQ(Rows({"rrrr"}), tree.imagePicture({0, 0, 4, 1}));
}

TEST(TabletRepaint, screenSeesAnUpdateAsOnePresentation)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 10, 4}), b(tree.top, {20, 10, 5, 4});
  a.face = plainFace(ccColor::redColor());
  b.face = plainFace(ccColor::greenColor());
  a.visible(false), a.visible(true);
  b.visible(false), b.visible(true);

  tree.top.update(kImage);

  EXPECT_EQ(1, tree.image.presentations());
  EXPECT_EQ(tree.image.surface(), tree.image.screen());
}

TEST(TabletRepaint, eraseInsideTheOwnRedrawMakesOverlayPelsSeeThrough)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 10, 4});
  a.face = [](TestTablet& t) {
    t.set(ccUIRect(0, 0, 6, 1), ccColor::redColor(), kBoth);
    t.erase(ccUIRect(2, 0, 2, 1), kBoth);
  };

  a.redraw(kBoth);

  EXPECT_EQ(Rows({"rr--rr--"}), tree.overlayPicture({0, 0, 8, 1}));
  EXPECT_EQ(Rows({"rrrrrr.."}), tree.imagePicture({0, 0, 8, 1}));
}

TEST(TabletRepaint, eraseWhereNothingWasDrawnCostsNothing)
{
  TestTree tree;
  TestTablet a(tree.top, {0, 0, 10, 10});
  a.set(ccUIRect(0, 0, 3, 3), ccColor::redColor(), kImage);
  tree.image.clearLog();

  a.erase(ccUIRect(5, 5, 2, 2), kBoth);

  EXPECT_EQ(0, tree.image.calls("set"));
  EXPECT_TRUE(tree.top.passes.empty());
}
