#include "platform/paint.h"
#include "tests/backend/scope/scope_fixture.h"

#include <sstream>

using plat::result;
using plat::testing::failNext;
using plat::testing::Op;

class ScopeCreate : public ScopeTest {};

TEST_F(ScopeCreate, nullWindowIsAnInvalidObjectAndChangesNothing)
{
  ScopeProbe scope;
  create(scope);

  EXPECT_EQ(scope.create(nullptr, ccPair<long>(10, 10), -1), result(0x88760082));

  EXPECT_EQ(scope.window(), window_);
  EXPECT_TRUE(scope.directDraw().created());
  EXPECT_EQ(scope.size(), ccPair<long>(width, height));
}

TEST_F(ScopeCreate, zeroSizeStoresTheWindowAndReleasesTheDevice)
{
  ScopeProbe scope;
  create(scope);
  HWND const other = makeWindow({0, 0, 10, 10});

  EXPECT_EQ(scope.create(other, ccPair<long>(10, 0), -1), result(0x80070057));

  EXPECT_EQ(scope.window(), other);
  EXPECT_FALSE(scope.directDraw().created());
  EXPECT_EQ(scope.create(other, ccPair<long>(0, 10), -1), result(0x80070057));
  EXPECT_EQ(scope.create(other, ccPair<long>(-3, 10), -1), result(0x80070057));
}

TEST_F(ScopeCreate, sizeAboveTheScreenIsClamped)
{
  ScopeProbe scope;
  ASSERT_EQ(scope.create(window_, ccPair<long>(5000, 20), -1), 0);
  EXPECT_EQ(scope.size(), ccPair<long>(800, 20));
  EXPECT_EQ(scope.surface().description().width(), 800u);
  ASSERT_EQ(scope.resize(ccPair<long>(10, 5000), -1), 0);
  EXPECT_EQ(scope.size(), ccPair<long>(10, 600));
}

TEST_F(ScopeCreate, depthIsReadFromTheSurface)
{
  for (int const depth : allDepths) {
    screen(depth);
    ScopeProbe scope;
    create(scope);
    EXPECT_EQ(scope.depth(), depth);
    EXPECT_EQ(scope.desktopDepth(), depth);
  }
}

TEST_F(ScopeCreate, desktopDepthWithoutADeviceIsTheScreens)
{
  screen(16);
  EXPECT_EQ(ScopeProbe().desktopDepth(), 16);
}

TEST_F(ScopeCreate, surfaceStartsBlack)
{
  ScopeProbe scope;
  create(scope);
  EXPECT_EQ(pelsOf(scope.surface()), std::vector<std::uint32_t>(width * height, 0));
}

TEST_F(ScopeCreate, ownDepthsAreDescribedByNumbersOfBits)
{
  struct {
    long depth;
    std::uint32_t flags, r, g, b, a;
  } const rows[] = {{8, 96, 3, 3, 2, 0}, {15, 64, 5, 5, 5, 0}, {16, 64, 5, 6, 5, 0}, {24, 64, 8, 8, 8, 0}};
  for (auto const& row : rows) {
    ScopeProbe scope;
    ASSERT_EQ(scope.create(window_, ccPair<long>(8, 8), row.depth), 0) << row.depth;
    ccDirectDrawPixelFormat const f = scope.surface().createDescription().pixelFormat();
    EXPECT_TRUE(scope.surface().createDescription().pixelFormatValid());
    EXPECT_EQ(f.bitCount(), static_cast<std::uint32_t>(row.depth));
    EXPECT_EQ(f.flags(), row.flags);
    EXPECT_EQ(f.rBitMask(), row.r);
    EXPECT_EQ(f.gBitMask(), row.g);
    EXPECT_EQ(f.bBitMask(), row.b);
    EXPECT_EQ(f.alphaBitMask(), row.a);
    EXPECT_EQ(scope.depth(), row.depth);
  }
}

TEST_F(ScopeCreate, depth32OnAnotherScreenHasAnAlphaField)
{
  screen(16);
  ScopeProbe scope;
  ASSERT_EQ(scope.create(window_, ccPair<long>(8, 8), 32), 0);
  ccDirectDrawPixelFormat const f = scope.surface().createDescription().pixelFormat();
  EXPECT_EQ(f.bitCount(), 32u);
  EXPECT_EQ(f.alphaBitMask(), 8u);
  EXPECT_EQ(scope.depth(), 32);
}

TEST_F(ScopeCreate, screensDepthNeedsNoFormat)
{
  ScopeProbe scope;
  create(scope);
  EXPECT_FALSE(scope.surface().createDescription().pixelFormatValid());
  ASSERT_EQ(scope.resize(ccPair<long>(8, 8), 32), 0);
  EXPECT_FALSE(scope.surface().createDescription().pixelFormatValid());
}

TEST_F(ScopeCreate, unknownDepthIsRefusedByTheDevice)
{
  ScopeProbe scope;
  EXPECT_EQ(scope.create(window_, ccPair<long>(8, 8), 13), result(0x88760091));
  ccDirectDrawPixelFormat const f = scope.surface().createDescription().pixelFormat();
  EXPECT_EQ(f.rBitMask(), 3u);
  EXPECT_EQ(f.bBitMask(), 2u);
  scope.set(ccColor::redColor());  // nothing to draw on
  EXPECT_TRUE(scope.surface().created() == false);
}

TEST_F(ScopeCreate, resizeWithoutADeviceIsNotInitialized)
{
  ScopeProbe scope;
  EXPECT_EQ(scope.resize(ccPair<long>(10, 10), -1), result(0x800401F0));
  EXPECT_EQ(scope.resizeCombinedSurface(ccPair<long>(10, 10)), result(0x800401F0));
}

TEST_F(ScopeCreate, failuresOfTheDeviceAreReturned)
{
  for (Op const op : {Op::openDevice, Op::cooperativeLevel, Op::createSurface, Op::createClipper}) {
    ScopeProbe scope;
    failNext(op, result(0x8007000E));
    EXPECT_EQ(scope.create(window_, ccPair<long>(10, 10), -1), result(0x8007000E));
    EXPECT_EQ(scope.create(window_, ccPair<long>(10, 10), -1), 0);
  }
}

TEST_F(ScopeCreate, destroyedScopeCanBeCreatedAgain)
{
  ScopeProbe scope;
  create(scope);
  EXPECT_EQ(scope.destroy(), 0);
  EXPECT_TRUE(scope.isNull());
  EXPECT_EQ(scope.window(), nullptr);
  EXPECT_FALSE(scope.directDraw().created());
  create(scope);
  EXPECT_FALSE(scope.isNull());
}

TEST_F(ScopeCreate, constructorWithAWindowCreates)
{
  ccWin32UIScope scope(window_, ccPair<long>(12, 13), false, nullptr);
  EXPECT_EQ(scope.size(), ccPair<long>(12, 13));
}

TEST_F(ScopeCreate, resizeCutsWhatIsStillToBeShown)
{
  ScopeProbe scope;
  create(scope);
  scope.lockScreenUpdatesPush(true);
  scope.set(ccColor::redColor());
  ASSERT_EQ(scope.resize(ccPair<long>(10, 10), -1), 0);
  scope.set(ccUIRect(0, 0, 10, 10), ccColor::blueColor());
  scope.lockScreenUpdatesPop();
  EXPECT_EQ(shown(5, 5), 0x0000FFu);
  EXPECT_EQ(shown(20, 20), 0u);  // beyond the new size nothing was presented
}

TEST_F(ScopeCreate, paletteGoesToTheScreenBetweenTheSystemsEntries)
{
  screen(8);
  ScopeProbe scope;
  create(scope);
  std::vector<plat::PaletteEntry> const before = plat::platform().objects.systemEntries();
  std::vector<ccRGB> const colors = testColors();

  EXPECT_EQ(scope.palette(colors), 0);

  std::vector<plat::PaletteEntry> const after = plat::platform().objects.systemEntries();
  for (std::size_t i = 0; i < 256; ++i) {
    if (i < 10 || i > 245) {
      EXPECT_EQ(after[i].r, before[i].r) << i;
      EXPECT_EQ(after[i].g, before[i].g) << i;
    } else {
      EXPECT_EQ(after[i].r, colors[i].r) << i;
      EXPECT_EQ(after[i].g, colors[i].g) << i;
      EXPECT_EQ(after[i].b, colors[i].b) << i;
    }
  }
}

TEST_F(ScopeCreate, paletteOf255EntriesIsIgnored)
{
  screen(8);
  ScopeProbe scope;
  create(scope);
  std::vector<plat::PaletteEntry> const before = plat::platform().objects.systemEntries();
  EXPECT_EQ(scope.palette(testColors(255)), 0);
  EXPECT_EQ(plat::platform().objects.systemEntries(), before);
}

TEST_F(ScopeCreate, paletteOnATrueColorScreenHasNoDevicePalette)
{
  ScopeProbe scope;
  create(scope);
  EXPECT_EQ(scope.palette(testColors()), result(0x88760082));
}

// --- Children

TEST_F(ScopeCreate, childOfSubsetKeepsTheClientCoordinates)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(30, 20, 20, 20), true));
  EXPECT_EQ(child->size(), ccPair<long>(10, 10));  // cut with the parent
  EXPECT_EQ(child->clientOffset(), ccPair<long>(30, 20));
  EXPECT_EQ(static_cast<ccWin32UIScope&>(*child).scopeRect(), ccUIRect(30, 20, 10, 10));
  EXPECT_EQ(static_cast<ccWin32UIScope&>(*child).depth(), 32);
}

TEST_F(ScopeCreate, childOfMoveStartsAtItsOwnCorner)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(-5, 20, 20, 20), false));
  EXPECT_EQ(child->clientOffset(), ccPair<long>(5, 0));
  EXPECT_EQ(static_cast<ccWin32UIScope&>(*child).scopeRect(), ccUIRect(0, 20, 15, 10));
}

TEST_F(ScopeCreate, childOfAChildPointsAtTheRoot)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(10, 10, 20, 15), false));
  std::unique_ptr<ccUIScope> const grandChild(child->createChildScope(ccUIRect(5, 5, 50, 50), false));
  EXPECT_EQ(static_cast<ccWin32UIScope&>(*grandChild).scopeRect(), ccUIRect(15, 15, 15, 10));
  child->set(ccColor::redColor());
  grandChild->set(ccColor::greenColor());
  EXPECT_EQ(pelOf(scope.surface(), 14, 14), 0xFF0000u);
  EXPECT_EQ(pelOf(scope.surface(), 15, 15), 0x00FF00u);
}

TEST_F(ScopeCreate, childConstructorTakesTheParentsIndexMap)
{
  ScopeProbe scope;
  create(scope);
  std::vector<unsigned char> const indexes(256, 42);
  scope.cacheMap(indexes);
  ccWin32UIScope child(scope, ccUIRect(2, 3, 4, 5));
  EXPECT_EQ(child.cacheMap(), indexes);
  EXPECT_EQ(child.scopeRect(), ccUIRect(2, 3, 4, 5));
  EXPECT_EQ(child.stateBits() & (ccUIScope::kModified | ccUIScope::kOpaque), 0u);
}

TEST_F(ScopeCreate, childWithoutADeviceAboveIsNull)
{
  ScopeProbe scope;
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(0, 0, 10, 10), true));
  EXPECT_TRUE(child->isNull());
  child->set(ccColor::redColor());
  child->updateScreen();
}

TEST_F(ScopeCreate, scopeMadeAChildReleasesItsDevice)
{
  ScopeProbe scope, other;
  create(scope);
  ASSERT_EQ(other.create(makeWindow({0, 0, 20, 20}), ccPair<long>(20, 20), -1), 0);
  other.window(scope, ccUIRect(1, 2, 3, 4));
  EXPECT_EQ(other.scopeRect(), ccUIRect(1, 2, 3, 4));
  EXPECT_EQ(&other.directDraw(), &scope.directDraw());
}

TEST_F(ScopeCreate, windowOnItselfSetsTheRectangle)
{
  ScopeProbe scope;
  create(scope);
  scope.window(scope, ccUIRect(0, 0, 7, 8));
  EXPECT_EQ(scope.scopeRect(), ccUIRect(0, 0, 7, 8));
  EXPECT_TRUE(scope.directDraw().created());
}

TEST_F(ScopeCreate, rootCannotBecomeAChildOfItsOwnChild)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(0, 0, 10, 10), true));
  scope.window(*child, ccUIRect(0, 0, 5, 5));
  EXPECT_TRUE(scope.isNull());
  child->set(ccColor::redColor());
}

TEST_F(ScopeCreate, childrenOutliveTheirRootWithoutDrawing)
{
  std::unique_ptr<ccUIScope> child;
  {
    ScopeProbe scope;
    create(scope);
    child.reset(scope.createChildScope(ccUIRect(0, 0, 10, 10), true));
  }
  EXPECT_TRUE(child->isNull());
  child->set(ccColor::redColor());
  child->updateScreen();
}

TEST_F(ScopeCreate, colorMapsOfAChildAreTheRoots)
{
  ScopeProbe scope;
  create(scope);
  std::unique_ptr<ccUIScope> const child(scope.createChildScope(ccUIRect(0, 0, 10, 10), true));
  ccWin32UIScope& c = static_cast<ccWin32UIScope&>(*child);
  child->colorMap(testColors(1024));
  EXPECT_EQ(scope.cacheColorMap(), testColors(1024));
  c.cacheMap(std::vector<unsigned char>(256, 9));
  EXPECT_EQ(scope.cacheMap(), std::vector<unsigned char>(256, 9));
  child->colorMap(testColors());
  EXPECT_EQ(scope.cacheMap(), std::vector<unsigned char>(256, 9));
  c.cacheMap(testColors());
  EXPECT_EQ(scope.cacheMap()[0], 10);
  EXPECT_THROW(child->colorMapEx(testColors(3)), cc_CacheMap::InvalidColorMap);
}

// --- Report

TEST_F(ScopeCreate, dumpOfAnEmptyScope)
{
  std::ostringstream out;
  ScopeProbe().dumpInfo(out);
  std::string const stars = "**********************************************************";
  EXPECT_EQ(out.str(), stars + "\nDirectDraw object created:\t\tNo\n\nPrimary surface created:\t\tNo\n\n"
                               "Drawing surface created:\t\tNo\n\nCache surface created:\t\t\tNo\n\n"
                               "Backup surface created:\t\t\tNo\n\n" + stars + "\n\n");
}

TEST_F(ScopeCreate, dumpTellsOfEverySurface)
{
  ScopeProbe scope;
  create(scope);
  std::ostringstream out;
  scope.dumpInfo(out);
  std::string const text = out.str();
  std::string const stars(58, '*');
  EXPECT_EQ(text.substr(0, 59), stars + "\n");
  EXPECT_NE(text.find("DirectDraw object created:\t\tYes\nDirectDraw Test Cooperative Level:\tNo Error\n"
                      "Total video memory:\t\t\t262144 KB\nFree video memory:\t\t\t"),
            std::string::npos);
  EXPECT_NE(text.find(" KB\n\nPrimary surface created:\t\tYes\nSurface width:\t\t\t\t800\nSurface height:\t\t\t\t600\n"
                      "Surface depth:\t\t\t\t32\nSurface pitch:\t\t\t\t3200\nVideo memory:\t\t\t\tYes\nLost:\t\t\t\t\tNo\n\n"
                      "Drawing surface created:\t\tYes\nSurface width:\t\t\t\t40\nSurface height:\t\t\t\t30\n"
                      "Surface depth:\t\t\t\t32\nSurface pitch:\t\t\t\t160\nVideo memory:\t\t\t\tYes\nLost:\t\t\t\t\tNo\n\n"
                      "Cache surface created:\t\t\tNo\n\nBackup surface created:\t\t\tNo\n\n" + stars + "\n\n"),
            std::string::npos)
      << text;
}

TEST_F(ScopeCreate, restoreAllMakesEverythingAnewAndReports)
{
  ScopeProbe scope;
  create(scope);
  plat::testing::lose(window_);
  std::string report;

  EXPECT_EQ(scope.restoreAll(&report), 0);

  EXPECT_EQ(scope.size(), ccPair<long>(width, height));
  EXPECT_FALSE(scope.surface().isLost());
  EXPECT_NE(report.find("Lost:\t\t\t\t\tYes"), std::string::npos);
  EXPECT_NE(report.rfind("Lost:\t\t\t\t\tNo"), std::string::npos);
}
