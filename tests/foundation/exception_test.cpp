#include "archive_support.h"
#include "foundation/exception_impl.h"
#include "foundation/initialize.h"
#include "foundation/math_error.h"
#include "foundation/pel_error.h"
#include "foundation/resource.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class TestErrors {
public:
  class Errors : public ccException {
    KRS_EXCEPTION_FAMILY
  };
  class Leaf : public Errors {
    KRS_EXCEPTION
  };
  class Thrower : public ccException {
    KRS_EXCEPTION
  protected:
    void message_(std::string& out) const override
    {
      out += "half";
      throw 1;
    }
  };
};

KRS_DEFINE_EXCEPTION_FAMILY(TestErrors::Errors, ccException)
KRS_DEFINE_NUMBERED_EXCEPTION_(TestErrors::Leaf, TestErrors::Errors, 0x10000F01)
KRS_DEFINE_NUMBERED_EXCEPTION_(TestErrors::Thrower, ccException, 0x10000F02)

struct cs_Row {
  char const* name;
  long number;
};

cs_Row const rows[] = {
    {"ccBadPointer", 0x10000101},
    {"ccArchive::UnknownVersion", 0x10000110},
    {"ccArchive::UnknownClass", 0x10000111},
    {"ccArchive::EndOfData", 0x10000112},
    {"ccArchive::BadValue", 0x10000113},
    {"ccArchive::TooLarge", 0x10000114},
    {"cc_Resource::BrokenLock", 0x10000120},
    {"ccMathError::Singular", 0x10000130},
    {"ccShapesError::DegenerateShape", 0x10000140},
    {"ccShapesError::BadGeom", 0x10000141},
    {"ccShapesError::BadParams", 0x10000142},
    {"ccPelError::BadSize", 0x10000160},
    {"ccPelError::BadTable", 0x10000161},
};

// True if the object throws exactly a T when it rethrows itself.
template <class T> bool rethrowsItself(T* thrown)
{
  try {
    thrown->suicideAndRethrow();
  } catch (T const& caught) {
    return typeid(caught) == typeid(T);
  } catch (...) {
  }
  return false;
}

}  // namespace

TEST(Exception, everyClassHasItsNameAndNumber)
{
  cfInitializeFoundation();
  for (auto const& row : rows) {
    std::unique_ptr<ccPersistent> const made(cc_Instantiator::make(row.name));
    auto const* const e = dynamic_cast<ccException*>(made.get());
    ASSERT_NE(e, nullptr) << row.name;
    EXPECT_EQ(e->errorNumber(), row.number) << row.name;
    EXPECT_STREQ(e->className(), row.name);
    EXPECT_STREQ(e->what(), row.name);
    EXPECT_EQ(e->message(), "") << row.name;
  }
}

TEST(Exception, textIsTheMessage)
{
  EXPECT_EQ(ccMathError::Singular("why").message(), "why");
  EXPECT_EQ(ccBadPointer().message(), "");
}

TEST(Exception, messageNeverThrows) { EXPECT_EQ(TestErrors::Thrower().message(), ""); }

TEST(Exception, suicideAndRethrowThrowsTheLeafType)
{
  EXPECT_TRUE(rethrowsItself(new ccBadPointer));
  EXPECT_TRUE(rethrowsItself(new ccArchive::EndOfData));
  EXPECT_TRUE(rethrowsItself(new ccArchive::UnknownVersion("x")));
  EXPECT_TRUE(rethrowsItself(new ccArchive::UnknownClass("x")));
  EXPECT_TRUE(rethrowsItself(new ccArchive::BadValue("x")));
  EXPECT_TRUE(rethrowsItself(new ccArchive::TooLarge("x")));
  EXPECT_TRUE(rethrowsItself(new cc_Resource::BrokenLock));
  EXPECT_TRUE(rethrowsItself(new ccMathError::Singular("x")));
  EXPECT_TRUE(rethrowsItself(new ccShapesError::DegenerateShape("x")));
  EXPECT_TRUE(rethrowsItself(new ccShapesError::BadGeom("x")));
  EXPECT_TRUE(rethrowsItself(new ccShapesError::BadParams("x")));
  EXPECT_TRUE(rethrowsItself(new ccPelError::BadSize("x")));
  EXPECT_TRUE(rethrowsItself(new ccPelError::BadTable("x")));
  EXPECT_TRUE(rethrowsItself(new TestErrors::Leaf));
}

TEST(Exception, suicideAndRethrowThroughTheBaseKeepsTypeAndText)
{
  std::unique_ptr<ccException> thrown(new ccMathError::Singular("why"));
  try {
    thrown.release()->suicideAndRethrow();
    FAIL() << "it must throw";
  } catch (ccMathError::Singular const& caught) {
    EXPECT_EQ(caught.message(), "why");
  }
}

TEST(Exception, isCaughtAsAStandardException)
{
  try {
    throw ccArchive::EndOfData();
  } catch (std::exception const& caught) {
    EXPECT_STREQ(caught.what(), "ccArchive::EndOfData");
  }
}

TEST(Exception, bodyIsOneByteForEachClass)
{
  ccMemoryArchive plain, family, text;
  ccBadPointer().dispatchSerialize(plain);
  TestErrors::Leaf().dispatchSerialize(family);
  ccMathError::Singular("ab").dispatchSerialize(text);

  EXPECT_EQ(hexOf(plain.data()), "00 00");
  EXPECT_EQ(hexOf(family.data()), "00 00 00");
  EXPECT_EQ(hexOf(text.data()), "00 00 02 00 00 00 61 62 00");
}

TEST(Exception, crossesAnArchiveByItsName)
{
  ccMathError::Singular thrown("ab");
  ccPersistent* out = &thrown;
  ccMemoryArchive writer;
  writer.object(out);
  std::string const bytes = "01 15 00 00 00 "                                              // new, 21 letters
                            "63 63 4d 61 74 68 45 72 72 6f 72 3a 3a "                      // ccMathError::
                            "53 69 6e 67 75 6c 61 72 "                                     // Singular
                            "00 00 02 00 00 00 61 62 00";
  EXPECT_EQ(hexOf(writer.data()), bytes);

  ccMemoryArchive reader(bytesOf(bytes));
  ccException* read = nullptr;
  reader.object(read);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(reader.remaining(), 0u);
  EXPECT_EQ(read->errorNumber(), 0x10000130);
  EXPECT_EQ(read->message(), "ab");
  EXPECT_THROW(read->suicideAndRethrow(), ccMathError::Singular);
}

TEST(Exception, anotherVersionOfAnyLevelIsUnknown)
{
  struct {
    char const* bytes;
    char const* name;
  } const cases[] = {{"01", "TestErrors::Leaf"}, {"00 07", "TestErrors::Errors"}, {"00 00 ff", "ccException"}};
  for (auto const& c : cases) {
    ccMemoryArchive ar(bytesOf(c.bytes));
    TestErrors::Leaf leaf;
    try {
      leaf.dispatchSerialize(ar);
      FAIL() << c.bytes;
    } catch (ccArchive::UnknownVersion const& e) {
      EXPECT_EQ(e.message(), c.name);
      EXPECT_EQ(ar.remaining(), 0u) << "nothing else is read before";
    }
  }
  ccMemoryArchive ar(bytesOf("00 01 02 00 00 00 61 62 00"));
  ccMathError::Singular text;
  EXPECT_THROW(text.dispatchSerialize(ar), ccArchive::UnknownVersion);
  EXPECT_EQ(ar.remaining(), 7u);
}

TEST(Instantiator, unknownNamesMakeNothingAndTheFirstOfEqualNamesWins)
{
  static cc_Instantiator const first("TestOnly", [] { return static_cast<ccPersistent*>(new ccBadPointer); });
  static cc_Instantiator const second("TestOnly", [] { return static_cast<ccPersistent*>(new TestErrors::Leaf); });

  EXPECT_EQ(cc_Instantiator::make("ccNoSuchClass"), nullptr);
  EXPECT_EQ(cc_Instantiator::make(""), nullptr);
  std::unique_ptr<ccPersistent> const made(cc_Instantiator::make("TestOnly"));
  EXPECT_STREQ(made->className(), "ccBadPointer");
}
