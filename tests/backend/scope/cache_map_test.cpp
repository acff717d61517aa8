#include "backend/scope/cache_map.h"
#include "tests/backend/scope/scope_fixture.h"

TEST(CacheMap, newObjectHasNoTables)
{
  cc_CacheMap map;

  EXPECT_THROW(map.to15(true), cc_CacheMap::InvalidColorMap);
  EXPECT_THROW(map.to24(false), cc_CacheMap::Errors);
  EXPECT_THROW(map.to32(true), cc_CacheMap::InvalidColorMap);
  try {
    map.to16(false);
    FAIL();
  } catch (ccException const& e) {
    EXPECT_EQ(e.message(), "Invalid cache color map");
    EXPECT_EQ(e.errorNumber(), 0x10004514);
  }
}

TEST(CacheMap, acceptsFourSizesOfColorMapsOnly)
{
  for (std::size_t const good : {256u, 1024u, 4096u, 65536u})
    EXPECT_NO_THROW(cc_CacheMap().set(testColors(good), false)) << good;
  for (std::size_t const bad : {0u, 1u, 255u, 257u, 1023u, 2048u, 4095u, 65535u, 65537u})
    EXPECT_THROW(cc_CacheMap().set(testColors(bad), false), cc_CacheMap::InvalidColorMap) << bad;
}

TEST(CacheMap, failedSetKeepsTheState)
{
  cc_CacheMap map;
  map.set(testColors(), false);
  std::vector<unsigned char> reversed(256);
  for (std::size_t i = 0; i < 256; ++i)
    reversed[i] = static_cast<unsigned char>(255 - i);
  map.set(reversed);

  EXPECT_THROW(map.set(testColors(255), true), cc_CacheMap::InvalidColorMap);
  EXPECT_THROW(map.set(std::vector<unsigned char>(255)), cc_CacheMap::InvalidColorMap);

  EXPECT_EQ(map.get(), reversed);
  EXPECT_EQ(map.getColorMap(), testColors());
}

TEST(CacheMap, directTableHasOneEntryPerColorAndDefaultOneHas256)
{
  std::vector<ccRGB> const colors = testColors(1024);
  cc_CacheMap map;
  map.set(colors, false);

  unsigned short const* const direct = map.to16(true);
  for (std::size_t i = 0; i < 1024; ++i)
    ASSERT_EQ(direct[i], surfacePel(colors[i], 16)) << i;
  EXPECT_EQ(map.colorCount(), 1024u);
  unsigned short const* const byDefault = map.to16(false);
  for (std::size_t i = 0; i < 256; ++i)
    ASSERT_EQ(byDefault[i], surfacePel(colors[i < 10 ? 10 : i > 240 ? 240 : i], 16)) << i;
}

TEST(CacheMap, everyFormatHasItsOwnPels)
{
  std::vector<ccRGB> const colors = testColors();
  cc_CacheMap map;
  map.set(colors, false);

  for (std::size_t i = 0; i < 256; ++i) {
    ASSERT_EQ(map.to15(true)[i], surfacePel(colors[i], 15));
    ASSERT_EQ(map.to16(true)[i], surfacePel(colors[i], 16));
    ASSERT_EQ(map.to32(true)[i], surfacePel(colors[i], 32));
    ASSERT_EQ(map.to24(true)[i], (cc_CacheMap::tag_24{colors[i].b, colors[i].g, colors[i].r}));
  }
  EXPECT_EQ(sizeof(cc_CacheMap::tag_24), 3u);
  EXPECT_EQ(map.to15(false)[0], surfacePel(colors[10], 15));
  EXPECT_EQ(map.to24(false)[255], (cc_CacheMap::tag_24{colors[240].b, colors[240].g, colors[240].r}));
  EXPECT_EQ(map.to32(false)[9], surfacePel(colors[10], 32));
}

TEST(CacheMap, setRebuildsTheTablesInUse)
{
  cc_CacheMap map;
  map.set(std::vector<ccRGB>(256, ccRGB(8, 8, 8)), false);
  EXPECT_EQ(map.to32(true)[5], 0x080808u);
  EXPECT_EQ(map.to32(false)[5], 0x080808u);

  map.set(std::vector<ccRGB>(1024, ccRGB(16, 24, 32)), false);

  EXPECT_EQ(map.to32(true)[1023], 0x101820u);
  EXPECT_EQ(map.to32(false)[255], 0x101820u);
}

TEST(CacheMap, setColorsKeepsTheIndexesUnlessAskedToResetThem)
{
  std::vector<unsigned char> indexes(256, 77);
  cc_CacheMap map;
  map.set(indexes);

  map.set(testColors(), false);
  EXPECT_EQ(map.get(), indexes);
  map.set(testColors(), true);
  EXPECT_EQ(map.get(), cc_CacheMap::defaultIndexes());
}

TEST(CacheMap, defaultTablesDoNotUseTheIndexMap)
{
  cc_CacheMap map;
  map.set(testColors(), false);
  map.set(std::vector<unsigned char>(256, 77));

  EXPECT_EQ(map.to32(false)[100], surfacePel(testColor(100), 32));
}

TEST(CacheMap, newObjectAnswersTheDefaultIndexes)
{
  std::vector<unsigned char> const indexes = cc_CacheMap().get();

  ASSERT_EQ(indexes.size(), 256u);
  for (std::size_t i = 0; i < 256; ++i)
    EXPECT_EQ(indexes[i], i < 10 ? 10 : i <= 240 ? i : 240) << i;
}
