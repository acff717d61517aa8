#include "backend/scope/win32_pel_buf_scope.h"
#include "tests/backend/scope/scope_fixture.h"

class PelBufScope : public ScopeTest {};

TEST_F(PelBufScope, takesThePelsOverAndGivesThemBack)
{
  ccPelBuffer<unsigned char> pels = randomImage<unsigned char>(20, 10, 1);
  unsigned char const kept = pels.getPel(3, 3);
  ccWin32PelBufUIScope scope(pels);
  EXPECT_EQ(scope.depth(), 8);
  EXPECT_EQ(scope.size(), ccPair<long>(20, 10));

  scope.set(ccUIRect(5, 5, 2, 2), ccColor(static_cast<unsigned char>(7)));
  EXPECT_EQ(pels.getPel(5, 5), randomImage<unsigned char>(20, 10, 1).getPel(5, 5));  // not before sync
  scope.sync();

  EXPECT_EQ(pels.getPel(5, 5), 7);
  EXPECT_EQ(pels.getPel(6, 6), 7);
  EXPECT_EQ(pels.getPel(3, 3), kept);
}

TEST_F(PelBufScope, sixteenBitPelsAreWords)
{
  ccPelBuffer<unsigned short> pels = randomImage<unsigned short>(21, 10, 1);
  unsigned short const kept = pels.getPel(20, 9);
  ccWin32PelBufUIScope scope(pels);
  EXPECT_EQ(scope.depth(), 16);
  scope.set(ccUIRect(0, 0, 2, 2), ccColor::redColor());
  scope.sync();
  EXPECT_EQ(pels.getPel(1, 1), 0xF800);
  EXPECT_EQ(pels.getPel(20, 9), kept);
}

TEST_F(PelBufScope, windowOfABufferKeepsItsSurroundings)
{
  ccPelBuffer<unsigned char> whole = randomImage<unsigned char>(30, 20, 1);
  ccPelBuffer<unsigned char> part = whole;
  part.window(5, 6, 10, 8);
  ccWin32PelBufUIScope scope(part);
  scope.set(ccColor(static_cast<unsigned char>(7)));
  scope.sync();
  ccPelBuffer<unsigned char> const before = randomImage<unsigned char>(30, 20, 1);
  for (long y = 0; y < 20; ++y)
    for (long x = 0; x < 30; ++x)
      ASSERT_EQ(whole.getPel(x, y), x >= 5 && x < 15 && y >= 6 && y < 14 ? 7 : before.getPel(x, y));
}

TEST_F(PelBufScope, rsyncReadsTheBufferAgain)
{
  ccPelBuffer<unsigned char> pels(4, 4);
  ccWin32PelBufUIScope scope(pels);
  pels.setPel(2, 2, 99);
  scope.rsync();
  pels.setPel(2, 2, 0);
  scope.sync();
  EXPECT_EQ(pels.getPel(2, 2), 99);
}

TEST_F(PelBufScope, anotherBufferTakesThePlaceOfTheFirst)
{
  ccPelBuffer<unsigned char> first(4, 4), second(6, 5);
  ccPelBuffer<unsigned short> words(7, 3);
  ccWin32PelBufUIScope scope(first);
  EXPECT_EQ(scope.buffer(second), 0);
  EXPECT_EQ(scope.depth(), 8);
  EXPECT_EQ(scope.size(), ccPair<long>(6, 5));
  EXPECT_EQ(scope.buffer(words), 0);
  EXPECT_EQ(scope.depth(), 16);
  scope.set(ccColor::whiteColor());
  scope.sync();
  EXPECT_EQ(words.getPel(6, 2), 0xFFFF);
  EXPECT_EQ(second.getPel(0, 0), 0);
  EXPECT_EQ(first.getPel(0, 0), 0);
}

TEST_F(PelBufScope, unboundBufferGivesANullScope)
{
  ccPelBuffer<unsigned char> pels;
  ccWin32PelBufUIScope scope(pels);
  EXPECT_TRUE(scope.isNull());
  EXPECT_EQ(scope.buffer(pels), plat::result(0x80070057));
  scope.set(ccColor::redColor());
  scope.sync();
  scope.rsync();
}

TEST_F(PelBufScope, lossKeepsTheDepth)
{
  ccPelBuffer<unsigned char> pels(6, 5);
  ccWin32PelBufUIScope scope(pels);
  plat::testing::lose(nullptr);
  scope.set(ccColor(static_cast<unsigned char>(9)));
  EXPECT_EQ(scope.depth(), 8);
  scope.sync();
  EXPECT_EQ(pels.getPel(5, 4), 9);
}
