// Keys: who gets them, what keys mean, and the two input records.
#include "canvas/ui_error.h"
#include "foundation/archive.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<unsigned char>;

ccKeyboardEvent keyEvent(ccKeyboardEvent::Event event, char c)
{
  ccKeyboardEvent e;
  e.event(event);
  e.key(c);
  return e;
}

struct KeyStage : ::testing::Test {
  HookLog log;
  TestRoot root;
  ccUIEventProcessor& processor{*root.eventProcessor()};
  SpyFrame a{log, "a", &root, ccUIRect(0, 0, 50, 50)};
  SpyFrame b{log, "b", &root, ccUIRect(50, 0, 50, 50)};
  Hand hand{root};

  KeyStage() { cfOn(a), cfOn(b); }
  HookLog keyLines()
  {
    HookLog lines;
    for (std::string const& line : cfTake(log))
      if (line.find("keyboard") != line.npos)
        lines.push_back(line);
    return lines;
  }
};

using Keyboard = KeyStage;

TEST_F(Keyboard, keysGoToWhatIsUnderThePointer)
{
  hand.moveTo(60, 10);

  processor.processEvent(keyEvent(ccKeyboardEvent::keyCharacter, 'x'));

  EXPECT_EQ(keyLines(), HookLog{"b keyboard 3 120"});
  EXPECT_EQ(processor.lastKeyboardEvent().asciiKey(), 'x');
}

TEST_F(Keyboard, aKeyUpGoesWhereItsDownWent)
{
  hand.moveTo(10, 10);
  processor.processEvent(keyEvent(ccKeyboardEvent::keyDown, 'x'));
  hand.moveTo(60, 10);
  processor.processEvent(keyEvent(ccKeyboardEvent::keyDown, 'y'));  // while x is down
  processor.processEvent(keyEvent(ccKeyboardEvent::keyUp, 'x'));
  EXPECT_EQ(keyLines(), (HookLog{"a keyboard 1 120", "a keyboard 1 121", "a keyboard 2 120"}));

  processor.processEvent(keyEvent(ccKeyboardEvent::keyDown, 'z'));
  EXPECT_EQ(keyLines(), HookLog{"b keyboard 1 122"});
}

TEST_F(Keyboard, aKeyUpWithoutAStoredOwnerReachesNobody)
{
  hand.moveTo(10, 10);

  processor.processEvent(keyEvent(ccKeyboardEvent::keyUp, 'x'));
  processor.processEvent(keyEvent(ccKeyboardEvent::keyNone, 'x'));

  EXPECT_TRUE(keyLines().empty());
}

TEST_F(Keyboard, aCharacterKeepsNoOwner)
{
  hand.moveTo(10, 10);
  processor.processEvent(keyEvent(ccKeyboardEvent::keyCharacter, 'x'));
  keyLines();
  hand.moveTo(60, 10);

  processor.processEvent(keyEvent(ccKeyboardEvent::keyUp, 'x'));

  EXPECT_TRUE(keyLines().empty());
}

TEST_F(Keyboard, theCaptureIsAskedFirst)
{
  SpyFrame kid(log, "kid", &b, ccUIRect(10, 10, 10, 10));
  cfOn(kid);
  hand.moveTo(65, 15);
  processor.mouseCapture(&kid);
  processor.processEvent(keyEvent(ccKeyboardEvent::keyCharacter, 'x'));
  EXPECT_EQ(keyLines(), HookLog{"kid keyboard 3 120"});

  processor.mouseCapture(&a);
  processor.processEvent(keyEvent(ccKeyboardEvent::keyCharacter, 'x'));
  processor.mouseCapture(nullptr);
  EXPECT_TRUE(keyLines().empty());
}

TEST_F(Keyboard, anOwnerThatDiesGetsNoKeyUp)
{
  auto* c = new SpyFrame(log, "c", &root, ccUIRect(0, 0, 50, 50));
  cfOn(*c);
  hand.moveTo(10, 10);
  processor.processEvent(keyEvent(ccKeyboardEvent::keyDown, 'x'));
  delete c;
  keyLines();

  processor.processEvent(keyEvent(ccKeyboardEvent::keyUp, 'x'));

  EXPECT_TRUE(keyLines().empty());
}

TEST_F(Keyboard, selectionAndPanKeysTakeShiftControlOrNoneOnly)
{
  struct {
    int key;
    bool good;
  } const cases[] = {{0, true}, {16, true}, {17, true}, {18, false}, {1, false}, {4, false}, {-1, false}};
  for (auto const& c : cases) {
    auto const key = static_cast<ccKeyboardEvent::VirtualKey>(c.key);
    if (c.good) {
      processor.multiSelectKey(key);
      EXPECT_EQ(processor.multiSelectKey(), key);
      processor.panKey(key);
      EXPECT_EQ(processor.panKey(), key);
    } else {
      EXPECT_THROW(processor.multiSelectKey(key), ccUIError::BadKeyValue) << c.key;
      EXPECT_THROW(processor.panKey(key), ccUIError::BadKeyValue) << c.key;
    }
  }
}

TEST_F(Keyboard, aRejectedKeyChangesNothing)
{
  EXPECT_THROW(processor.multiSelectKey(ccKeyboardEvent::vkAlt), ccUIError::BadKeyValue);

  EXPECT_EQ(processor.multiSelectKey(), ccKeyboardEvent::vkShift);
  EXPECT_EQ(processor.panKey(), ccKeyboardEvent::vkControl);
}

TEST_F(Keyboard, multiSelectKeyOfThePanKeyClearsThePanKey)
{
  processor.multiSelectKey(ccKeyboardEvent::vkNone);
  processor.panKey(ccKeyboardEvent::vkShift);

  processor.multiSelectKey(ccKeyboardEvent::vkShift);

  EXPECT_EQ(processor.multiSelectKey(), ccKeyboardEvent::vkShift);
  EXPECT_EQ(processor.panKey(), ccKeyboardEvent::vkNone);
}

TEST_F(Keyboard, panKeyOfTheMultiSelectionKeyClearsThatOne)
{
  processor.panKey(ccKeyboardEvent::vkShift);

  EXPECT_EQ(processor.panKey(), ccKeyboardEvent::vkShift);
  EXPECT_EQ(processor.multiSelectKey(), ccKeyboardEvent::vkNone);
}

TEST(KeyboardEvent, isZeroAfterDefaultConstruction)
{
  ccKeyboardEvent const e;
  EXPECT_EQ(e.event(), 0);
  EXPECT_EQ(e.keyType(), ccKeyboardEvent::asciiKeyType);
  EXPECT_FALSE(e.repeatKey());
  EXPECT_EQ(e.unicodeKey(), L'\0');
}

TEST(KeyboardEvent, narrowKeysWriteTheLowByteOnly)
{
  ccKeyboardEvent e;
  e.key(L'\x4e2d');
  EXPECT_EQ(e.keyType(), ccKeyboardEvent::unicodeKeyType);
  EXPECT_EQ(e.unicodeKey(), L'\x4e2d');
  EXPECT_EQ(e.asciiKey(), '\x2d');

  e.key('A');
  EXPECT_EQ(e.keyType(), ccKeyboardEvent::asciiKeyType);
  EXPECT_EQ(e.unicodeKey(), L'\x4e41');
  e.key(ccKeyboardEvent::vkF24);
  EXPECT_EQ(e.keyType(), ccKeyboardEvent::virtualKeyType);
  EXPECT_EQ(e.virtualKey(), ccKeyboardEvent::vkF24);
  EXPECT_EQ(e.unicodeKey(), L'\x4e87');
}

TEST(KeyboardEvent, toVirtualKeyKnowsJustTheseCodes)
{
  std::vector<long> known{8, 9, 16, 17, 18, 19, 20, 27, 32, 33, 34, 35, 36, 37, 38, 39, 40, 45, 46, 47, 208};
  for (long f = 112; f <= 135; ++f)
    known.push_back(f);
  for (long code = -2; code < 1000; ++code) {
    bool const isKnown = std::find(known.begin(), known.end(), code) != known.end();
    EXPECT_EQ(ccKeyboardEvent::toVirtualKey(code), isKnown ? code : 0) << code;
  }
}

TEST(KeyboardEvent, archivedFormsByKeyType)
{
  ccKeyboardEvent ascii, unicode, virtualKey;
  ascii.event(ccKeyboardEvent::keyCharacter), ascii.key(L'\x4e2d'), ascii.key('A');
  unicode.event(ccKeyboardEvent::keyDown), unicode.key(L'\x4e2d'), unicode.repeatKey(true);
  virtualKey.event(ccKeyboardEvent::keyUp), virtualKey.key(ccKeyboardEvent::vkF1);
  struct {
    ccKeyboardEvent event;
    Bytes bytes;
  } cases[] = {
      {ascii, {0, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0x41}},
      {unicode, {0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0x2d, 0x4e}},
      {virtualKey, {0, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 0, 112, 0, 0, 0}},
  };
  for (auto& c : cases) {
    ccMemoryArchive out;
    out || c.event;
    EXPECT_EQ(out.data(), c.bytes);
    ccMemoryArchive in(c.bytes);
    ccKeyboardEvent read;
    in || read;
    EXPECT_EQ(read.event(), c.event.event());
    EXPECT_EQ(read.keyType(), c.event.keyType());
    EXPECT_EQ(read.repeatKey(), c.event.repeatKey());
    EXPECT_EQ(read.asciiKey(), c.event.asciiKey());
    for (std::size_t n = 0; n < c.bytes.size(); ++n) {
      ccMemoryArchive cut(Bytes(c.bytes.begin(), c.bytes.begin() + static_cast<std::ptrdiff_t>(n)));
      EXPECT_THROW(cut || read, ccArchive::EndOfData) << n;
    }
  }
}

TEST(KeyboardEvent, ofAnArchivedVirtualKeyOnlyTheLowByteIsKept)
{
  ccMemoryArchive in(Bytes{0, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 0, 112, 1, 2, 3});
  ccKeyboardEvent e;

  in || e;

  EXPECT_EQ(e.unicodeKey(), static_cast<wchar_t>(112));
}

TEST(KeyboardEvent, otherVersionsAndKeyTypesAreRefused)
{
  ccKeyboardEvent e;
  ccMemoryArchive version(Bytes{1, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0x41});
  EXPECT_THROW(version || e, ccArchive::UnknownVersion);
  ccMemoryArchive type(Bytes{0, 0, 0, 0, 3, 0, 0, 0, 9, 0, 0, 0, 0, 0x41});
  EXPECT_THROW(type || e, ccArchive::BadValue);
}

TEST(MouseEvent, isZeroAfterDefaultConstruction)
{
  ccMouseEvent const e;
  EXPECT_EQ(e.event(), ccMouseEvent::mouseNone);
  EXPECT_EQ(e.whichButton(), 0);
  EXPECT_EQ(e.buttons(), 0u);
  EXPECT_EQ(e.keys(), 0u);
  EXPECT_EQ(e.position(), ccPair<long>(0, 0));
  EXPECT_EQ(e.x(), 0);
  EXPECT_EQ(e.y(), 0);
}

TEST(MouseEvent, positionKeepsXAndYInStep)
{
  ccMouseEvent e;

  e.position({-5, 70000});

  EXPECT_EQ(e.x(), -5);
  EXPECT_EQ(e.y(), 70000);
  EXPECT_EQ(e.position(), ccPair<long>(-5, 70000));
}

TEST(MouseEvent, archivedFormLeavesThePositionOut)
{
  ccMouseEvent e = cfMouse(ccMouseEvent::mouseReleased, {-2, 258}, ccMouseEvent::rightButton, 3, 6);
  Bytes const bytes{0, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 2, 1, 0, 0, 4, 0, 0, 0, 4, 0, 0, 0, 3, 0, 0, 0, 6, 0, 0, 0};
  ccMemoryArchive out;
  out || e;
  EXPECT_EQ(out.data(), bytes);

  ccMouseEvent read;
  ccMemoryArchive in(bytes);
  in || read;
  EXPECT_EQ(read.x(), -2);
  EXPECT_EQ(read.y(), 258);
  EXPECT_EQ(read.event(), ccMouseEvent::mouseReleased);
  EXPECT_EQ(read.whichButton(), ccMouseEvent::rightButton);
  EXPECT_EQ(read.buttons(), 3u);
  EXPECT_EQ(read.keys(), 6u);
  EXPECT_EQ(read.position(), ccPair<long>(0, 0));
  for (std::size_t n = 0; n < bytes.size(); ++n) {
    ccMemoryArchive cut(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n)));
    EXPECT_THROW(cut || read, ccArchive::EndOfData) << n;
  }
}

TEST(MouseEvent, otherVersionsAreRefused)
{
  ccMouseEvent e;
  ccMemoryArchive in(Bytes{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_THROW(in || e, ccArchive::UnknownVersion);
}

}  // namespace
