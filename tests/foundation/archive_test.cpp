#include "archive_support.h"
#include "foundation/exception_impl.h"
#include "foundation/handle.h"
#include "foundation/math_error.h"
#include "foundation/pel_buffer.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

enum Small : std::int32_t { smallMinusOne = -1, smallSeven = 7 };
enum class Byte : std::uint8_t { Max = 255 };

// A diamond: both middle classes serialise the shared base.
class Base : public virtual ccPersistent {
public:
  int field = 0;
  char const* className() const override { return "Base"; }
  void dispatchSerialize(ccArchive& ar) override
  {
    if (ar.haveVisited(this, typeid(Base)))
      return;
    ar || field;
    ar.setVisited(this, typeid(Base));
  }
};
class Left : public virtual Base {
public:
  char left = 'l';
  void dispatchSerialize(ccArchive& ar) override
  {
    if (ar.haveVisited(this, typeid(Left)))
      return;
    ar || left;
    Base::dispatchSerialize(ar);
    ar.setVisited(this, typeid(Left));
  }
};
class Right : public virtual Base {
public:
  char right = 'r';
  void dispatchSerialize(ccArchive& ar) override
  {
    if (ar.haveVisited(this, typeid(Right)))
      return;
    ar || right;
    Base::dispatchSerialize(ar);
    ar.setVisited(this, typeid(Right));
  }
};
class Diamond : public Left, public Right {
public:
  char const* className() const override { return "Diamond"; }
  void dispatchSerialize(ccArchive& ar) override
  {
    if (ar.haveVisited(this, typeid(Diamond)))
      return;
    Left::dispatchSerialize(ar);
    Right::dispatchSerialize(ar);
    ar.setVisited(this, typeid(Diamond));
  }
};

// A node of a graph that owns what it alone points to.
int livingNodes = 0;
class Node : public ccPersistent {
public:
  Node() { ++livingNodes; }
  ~Node() override
  {
    --livingNodes;
    if (next != this)
      delete next;
  }
  unsigned char value = 0;
  Node* next = nullptr;
  char const* className() const override { return "Node"; }
  void dispatchSerialize(ccArchive& ar) override
  {
    if (ar.haveVisited(this, typeid(Node)))
      return;
    ar || value;
    ar.object(next);
    ar.setVisited(this, typeid(Node));
  }
};
cc_Instantiator const nodeExemplar("Node", [] { return static_cast<ccPersistent*>(new Node); });
cc_Instantiator const diamondExemplar("Diamond", [] { return static_cast<ccPersistent*>(new Diamond); });

constexpr char nodeHeader[] = "01 04 00 00 00 4e 6f 64 65 ";  // new, "Node"

}  // namespace

TEST(Archive, numbersAreLittleEndianWithoutPadding)
{
  EXPECT_EQ(written(true), "01");
  EXPECT_EQ(written(false), "00");
  EXPECT_EQ(written('A'), "41");
  EXPECT_EQ(written(static_cast<signed char>(-2)), "fe");
  EXPECT_EQ(written(static_cast<unsigned char>(200)), "c8");
  EXPECT_EQ(written(static_cast<short>(-2)), "fe ff");
  EXPECT_EQ(written(static_cast<unsigned short>(0x1234)), "34 12");
  EXPECT_EQ(written(L'\x20AC'), "ac 20");
  EXPECT_EQ(written(0x01020304), "04 03 02 01");
  EXPECT_EQ(written(-1), "ff ff ff ff");
  EXPECT_EQ(written(0xfedcba98u), "98 ba dc fe");
  EXPECT_EQ(written(-2L), "fe ff ff ff");
  EXPECT_EQ(written(0xfedcba98UL), "98 ba dc fe");
  EXPECT_EQ(written(0x0102030405060708LL), "08 07 06 05 04 03 02 01");
  EXPECT_EQ(written(0xff02030405060708ULL), "08 07 06 05 04 03 02 ff");
  EXPECT_EQ(written(1.0f), "00 00 80 3f");
  EXPECT_EQ(written(-2.0), "00 00 00 00 00 00 00 c0");
}

TEST(Archive, numbersAreReadBack)
{
  EXPECT_TRUE(readBack<bool>("01"));
  EXPECT_TRUE(readBack<bool>("80"));
  EXPECT_FALSE(readBack<bool>("00"));
  EXPECT_EQ(readBack<char>("41"), 'A');
  EXPECT_EQ(readBack<signed char>("fe"), -2);
  EXPECT_EQ(readBack<unsigned char>("c8"), 200);
  EXPECT_EQ(readBack<short>("fe ff"), -2);
  EXPECT_EQ(readBack<unsigned short>("34 12"), 0x1234);
  EXPECT_EQ(readBack<wchar_t>("ac 20"), L'\x20AC');
  EXPECT_EQ(readBack<wchar_t>("ff ff"), static_cast<wchar_t>(0xFFFF));
  EXPECT_EQ(readBack<int>("04 03 02 01"), 0x01020304);
  EXPECT_EQ(readBack<unsigned int>("98 ba dc fe"), 0xfedcba98u);
  EXPECT_EQ(readBack<long>("fe ff ff ff"), -2) << "sign-extended";
  EXPECT_EQ(readBack<unsigned long>("98 ba dc fe"), 0xfedcba98UL) << "zero-extended";
  EXPECT_EQ(readBack<long long>("08 07 06 05 04 03 02 01"), 0x0102030405060708LL);
  EXPECT_EQ(readBack<unsigned long long>("08 07 06 05 04 03 02 ff"), 0xff02030405060708ULL);
  EXPECT_EQ(readBack<float>("00 00 80 3f"), 1.0f);
  EXPECT_EQ(readBack<double>("00 00 00 00 00 00 00 c0"), -2.0);
}

TEST(Archive, valuesBeyondTheirWireWidthAreBadOnWriting)
{
  if constexpr (sizeof(long) > 4) {
    EXPECT_THROW(written(static_cast<long>(0x80000000LL)), ccArchive::BadValue);
    EXPECT_THROW(written(static_cast<long>(-0x80000001LL)), ccArchive::BadValue);
    EXPECT_THROW(written(static_cast<unsigned long>(0x100000000LL)), ccArchive::BadValue);
  }
  if constexpr (sizeof(wchar_t) > 2) {
    EXPECT_THROW(written(static_cast<wchar_t>(0x10000)), ccArchive::BadValue);
  }
  EXPECT_EQ(written(-2147483647L - 1), "00 00 00 80");
  EXPECT_EQ(written(0xffffffffUL), "ff ff ff ff");
}

TEST(Archive, nothingIsWrittenForABadValue)
{
  if constexpr (sizeof(wchar_t) > 2) {
    ccMemoryArchive ar;
    auto wide = static_cast<wchar_t>(0x10000);
    EXPECT_THROW(ar || wide, ccArchive::BadValue);
    EXPECT_TRUE(ar.data().empty());
  }
}

TEST(Archive, enumerationsTakeFourBytes)
{
  EXPECT_EQ(written(smallMinusOne), "ff ff ff ff");
  EXPECT_EQ(readBack<Small>("07 00 00 00"), smallSeven);
  EXPECT_EQ(static_cast<int>(readBack<Small>("39 30 00 00")), 12345) << "unknown values load without harm";
  EXPECT_EQ(written(Byte::Max), "ff 00 00 00");
  EXPECT_EQ(readBack<Byte>("ff 00 00 00"), Byte::Max);
  EXPECT_THROW(readBack<Byte>("00 01 00 00"), ccArchive::BadValue);
}

TEST(Archive, expressionsChainFromTheLeft)
{
  ccMemoryArchive ar;
  unsigned char a = 1;
  unsigned short b = 2;
  int c = 3;

  ar || a || b || c;

  EXPECT_EQ(hexOf(ar.data()), "01 02 00 03 00 00 00");
  EXPECT_TRUE(ar.isStoring());
  EXPECT_FALSE(ar.isLoading());
}

TEST(Archive, stringsAndVectorsHaveACountBefore)
{
  EXPECT_EQ(written(std::string("h\xc3\xa9")), "03 00 00 00 68 c3 a9");
  EXPECT_EQ(readBack<std::string>("03 00 00 00 68 c3 a9"), "h\xc3\xa9");
  EXPECT_EQ(readBack<std::string>("00 00 00 00"), "");
  EXPECT_EQ(readBack<std::string>("02 00 00 00 00 41"), std::string("\0A", 2));
  EXPECT_EQ(written(std::vector<unsigned short>{1, 0x203}), "02 00 00 00 01 00 03 02");
  EXPECT_EQ(readBack<std::vector<unsigned short>>("02 00 00 00 01 00 03 02"), (std::vector<unsigned short>{1, 0x203}));
  EXPECT_EQ(written(std::vector<bool>{true, false}), "02 00 00 00 01 00");
  EXPECT_EQ(readBack<std::vector<bool>>("02 00 00 00 01 00"), (std::vector<bool>{true, false}));
  EXPECT_EQ(written(std::vector<std::string>{"", "a"}), "02 00 00 00 00 00 00 00 01 00 00 00 61");
}

TEST(Archive, longVectorsAreReadInPieces)
{
  std::vector<unsigned short> many(100001);
  for (std::size_t i = 0; i < many.size(); ++i)
    many[i] = static_cast<unsigned short>(i * 7);
  ccMemoryArchive writer;
  writer || many;
  ASSERT_EQ(writer.data().size(), 4u + 200002u);

  ccMemoryArchive reader(writer.data());
  std::vector<unsigned short> read{1, 2, 3};
  reader || read;

  EXPECT_EQ(read, many);
  EXPECT_EQ(reader.remaining(), 0u);
}

TEST(Archive, pairsAndVectorsAreXThenY)
{
  EXPECT_EQ(written(ccPair<long>(1, -1)), "01 00 00 00 ff ff ff ff");
  EXPECT_EQ(readBack<ccPair<long>>("01 00 00 00 ff ff ff ff"), ccPair<long>(1, -1));
  EXPECT_EQ(written(ccVector<2>(1, -2)), "00 00 00 00 00 00 f0 3f 00 00 00 00 00 00 00 c0");
  EXPECT_EQ(readBack<ccVector<2>>("00 00 00 00 00 00 f0 3f 00 00 00 00 00 00 00 c0"), ccVector<2>(1, -2));
  EXPECT_EQ(written(ccPoint(1, -2)), written(ccVector<2>(1, -2)));
}

TEST(Archive, countChecksItsLimitBothWays)
{
  ccMemoryArchive writer;
  EXPECT_EQ(writer.count(10, 10), 10u);
  EXPECT_THROW(writer.count(11, 10), ccArchive::TooLarge);
  EXPECT_EQ(hexOf(writer.data()), "0a 00 00 00");

  ccMemoryArchive reader(bytesOf("0a 00 00 00 0b 00 00 00"));
  EXPECT_EQ(reader.count(0, 10), 10u);
  EXPECT_THROW(reader.count(0, 10), ccArchive::TooLarge);
}

TEST(Archive, bytesMoveAsTheyAre)
{
  unsigned char three[3] = {1, 2, 3};
  ccMemoryArchive writer;
  writer.bytes(three, 3);
  writer.bytes(nullptr, 0);
  EXPECT_EQ(hexOf(writer.data()), "01 02 03");

  ccMemoryArchive reader(bytesOf("09 08 07 06"));
  reader.bytes(three, 3);
  EXPECT_EQ(three[0], 9);
  EXPECT_EQ(three[2], 7);
  EXPECT_THROW(reader.bytes(three, 2), ccArchive::EndOfData);
  EXPECT_EQ(reader.remaining(), 1u);
  EXPECT_EQ(three[0], 9) << "nothing is read when the data ends";
}

TEST(Archive, sharedBaseIsMovedOnceForEachObject)
{
  Diamond one, two;
  one.field = 1;
  two.field = 2;
  ccMemoryArchive writer;
  one.dispatchSerialize(writer);
  two.dispatchSerialize(writer);
  one.dispatchSerialize(writer);
  EXPECT_EQ(hexOf(writer.data()), "6c 01 00 00 00 72 6c 02 00 00 00 72 6c 01 00 00 00 72");

  ccMemoryArchive reader(bytesOf("6c 07 00 00 00 72"));
  Diamond read;
  read.dispatchSerialize(reader);
  EXPECT_EQ(read.field, 7);
  EXPECT_EQ(reader.remaining(), 0u);
}

TEST(Archive, visitedMarksGoWhenNoLevelIsOpen)
{
  ccMemoryArchive ar;
  ccBadPointer a, b;

  EXPECT_FALSE(ar.haveVisited(&a, typeid(ccBadPointer)));
  EXPECT_FALSE(ar.haveVisited(&a, typeid(ccException)));
  ar.setVisited(&a, typeid(ccException));
  EXPECT_TRUE(ar.haveVisited(&a, typeid(ccException)));
  EXPECT_FALSE(ar.haveVisited(&b, typeid(ccException))) << "another object";
  ar.setVisited(&b, typeid(ccException));
  ar.setVisited(&a, typeid(ccBadPointer));
  EXPECT_FALSE(ar.haveVisited(&a, typeid(ccException)));
  ar.setVisited(&a, typeid(ccException));
}

TEST(Archive, objectsAreNullNewOrEarlier)
{
  Node a;
  a.value = 0x11;
  a.next = &a;
  Node* out = &a;
  Node* null = nullptr;
  ccMemoryArchive writer;
  writer.object(null);
  writer.object(out);
  writer.object(out);
  EXPECT_EQ(hexOf(writer.data()),
            "00 " + std::string(nodeHeader) + "11 02 00 00 00 00 02 00 00 00 00");

  ccMemoryArchive reader(writer.data());
  Node *first = &a, *second = nullptr, *third = nullptr;
  reader.object(first);
  reader.object(second);
  reader.object(third);
  std::unique_ptr<Node> const owned(second);
  EXPECT_EQ(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->value, 0x11);
  EXPECT_EQ(second->next, second);
  EXPECT_EQ(third, second);
}

TEST(Archive, indicesCountFirstAppearances)
{
  auto const bytes = bytesOf(std::string(nodeHeader) + "01 " + nodeHeader + "02 00 02 01 00 00 00");
  ccMemoryArchive reader(bytes);
  Node *outer = nullptr, *again = nullptr;
  reader.object(outer);
  reader.object(again);

  std::unique_ptr<Node> const owned(outer);
  EXPECT_EQ(outer->value, 1);
  EXPECT_EQ(outer->next->value, 2);
  EXPECT_EQ(again, outer->next);
}

TEST(Archive, unknownAndWrongClassesAreNamed)
{
  struct {
    char const* bytes;
    char const* name;
  } const cases[] = {{"01 03 00 00 00 58 59 5a", "XYZ"},
                     {"01 07 00 00 00 44 69 61 6d 6f 6e 64 6c 00 00 00 00 72", "Diamond"}};
  for (auto const& c : cases) {
    ccMemoryArchive reader(bytesOf(c.bytes));
    Node* read = nullptr;
    try {
      reader.object(read);
      FAIL() << c.name;
    } catch (ccArchive::UnknownClass const& e) {
      EXPECT_EQ(e.message(), c.name);
    }
    EXPECT_EQ(read, nullptr);
  }
}

TEST(Archive, badTagsAndIndicesAreBadValues)
{
  for (char const* bytes : {"03", "ff", "02 00 00 00 00", "02 ff ff ff ff"}) {
    ccMemoryArchive reader(bytesOf(bytes));
    Node* read = nullptr;
    EXPECT_THROW(reader.object(read), ccArchive::BadValue) << bytes;
  }
}

TEST(Archive, halfReadObjectIsDeleted)
{
  int const before = livingNodes;
  ccMemoryArchive reader(bytesOf(std::string(nodeHeader) + "01 " + nodeHeader + "02"));
  Node* read = nullptr;

  EXPECT_THROW(reader.object(read), ccArchive::EndOfData);

  EXPECT_EQ(read, nullptr);
  EXPECT_EQ(livingNodes, before);
}

TEST(Archive, classNamesAndStringsHaveLimits)
{
  EXPECT_EQ(written(std::string(65535, 'x')).size(), 3 * (4u + 65535u) - 1);
  EXPECT_THROW(written(std::string(65536, 'x')), ccArchive::TooLarge);
  EXPECT_THROW(readBack<std::string>("00 00 01 00"), ccArchive::TooLarge);
  EXPECT_THROW(readBack<std::string>("ff ff 00 00"), ccArchive::EndOfData);
  ccPersistent* read = nullptr;
  ccMemoryArchive name(bytesOf("01 00 01 00 00"));
  EXPECT_THROW(name.object(read), ccArchive::TooLarge);
  ccMemoryArchive longest(bytesOf("01 ff 00 00 00"));
  EXPECT_THROW(longest.object(read), ccArchive::EndOfData);
}

TEST(Archive, vectorsHaveLimitsOfCountAndOfBytes)
{
  EXPECT_THROW(written(std::vector<unsigned char>(1048577)), ccArchive::TooLarge);
  EXPECT_THROW(readBack<std::vector<unsigned char>>("01 00 10 00"), ccArchive::TooLarge);
  EXPECT_THROW(readBack<std::vector<unsigned char>>("00 00 10 00"), ccArchive::EndOfData);
  // A string object takes at least 16 bytes, so fewer than a million of them fill 16 MiB.
  auto const tooMany = static_cast<std::uint32_t>((16u << 20) / sizeof(std::string) + 1);
  ccMemoryArchive count;
  std::uint32_t n = tooMany;
  count || n;
  ASSERT_LT(tooMany, 1048576u);
  EXPECT_THROW(readBack<std::vector<std::string>>(hexOf(count.data())), ccArchive::TooLarge);
}

TEST(Archive, nestingHasALimitBothWays)
{
  auto const chain = [](int length) {
    std::string bytes;
    for (int i = 0; i < length; ++i)
      bytes += std::string(nodeHeader) + "05 ";
    return bytesOf(bytes + "00");
  };
  int const before = livingNodes;
  {
    ccMemoryArchive reader(chain(64));
    Node* read = nullptr;
    reader.object(read);
    std::unique_ptr<Node> const owned(read);
    EXPECT_EQ(livingNodes, before + 64);

    ccMemoryArchive writer;
    writer.object(read);
    EXPECT_EQ(writer.data(), chain(64));

    Node head;
    head.next = read;
    Node* out = &head;
    ccMemoryArchive tooDeep;
    EXPECT_THROW(tooDeep.object(out), ccArchive::TooLarge);
    head.next = nullptr;
  }
  ccMemoryArchive reader(chain(65));
  Node* read = nullptr;
  EXPECT_THROW(reader.object(read), ccArchive::TooLarge);
  EXPECT_EQ(livingNodes, before);
}

TEST(Archive, numberOfObjectsHasALimitBothWays)
{
  std::vector<Node> nodes(65537);
  ccMemoryArchive writer;
  std::size_t i = 0;
  for (; i < 65536; ++i) {
    Node* out = &nodes[i];
    writer.object(out);
  }
  Node* last = &nodes[i];
  EXPECT_THROW(writer.object(last), ccArchive::TooLarge);

  auto bytes = writer.data();
  bytes.push_back(1);
  ccMemoryArchive reader(std::move(bytes));
  std::vector<std::unique_ptr<Node>> owned;
  for (i = 0; i < 65536; ++i) {
    Node* read = nullptr;
    reader.object(read);
    owned.emplace_back(read);
  }
  Node* read = nullptr;
  EXPECT_THROW(reader.object(read), ccArchive::TooLarge);
}
