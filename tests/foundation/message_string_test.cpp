#include "foundation/format.h"
#include "foundation/message_string.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <thread>

namespace {

constexpr char statusFormat[] = "Image: (%.2f, %.2f)   Client: (%.2f, %.2f)    Pel: %3d";

// Every locale of the machine that writes numbers in another way, and the "C" locale.
std::vector<std::string> usableLocales()
{
  std::vector<std::string> names = {"C"};
  for (char const* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "ps_AF", "German_Germany.1252"})
    if (std::setlocale(LC_ALL, name))
      names.emplace_back(name);
  std::setlocale(LC_ALL, "C");
  return names;
}

// Conversions as the C library writes them; the test runs in the "C" locale.
template <class T> std::string plain(char const* format, T value)
{
  char text[1024];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::snprintf(text, sizeof text, format, value);
#pragma GCC diagnostic pop
  return text;
}

}  // namespace

TEST(StringLiteral, isItsDefaultWithoutADictionary)
{
  ccStringLiteral const literal(1004, "More than max (%1)", "testNone");
  EXPECT_EQ(literal.id(), 1004);
  EXPECT_EQ(literal.text(), "More than max (%1)");
  EXPECT_EQ(ccDllDictionary::find("testNone"), nullptr);
}

TEST(StringLiteral, takesTheDictionarysEntryOfItsModuleAndNumber)
{
  ccDllDictionary dictionary("testModule");
  ccStringLiteral const ok(1006, "OK", "testModule"), cancel(1007, "Cancel", "testModule"), other(1006, "OK", "testOther");

  dictionary.set(1006, "Gut");

  EXPECT_EQ(ok.text(), "Gut");
  EXPECT_EQ(cancel.text(), "Cancel");
  EXPECT_EQ(other.text(), "OK");
  dictionary.set(1006, "Ja");
  EXPECT_EQ(ok.text(), "Ja");
  std::string text = "as before";
  EXPECT_FALSE(dictionary.lookup(1, text));
  EXPECT_EQ(text, "as before");
}

TEST(StringLiteral, belongsToTheDisplayLibraryUnlessItSaysOtherwise)
{
  ccStringLiteral const literal(999001, "default");
  ccDllDictionary* dictionary = ccDllDictionary::find("krsdisp");
  std::unique_ptr<ccDllDictionary> own;
  if (!dictionary) {
    own = std::make_unique<ccDllDictionary>("krsdisp");
    dictionary = own.get();
  }
  dictionary->set(999001, "replaced");
  EXPECT_EQ(literal.text(), "replaced");
}

TEST(Dictionary, firstOfAModuleCountsUntilItDies)
{
  auto first = std::make_unique<ccDllDictionary>("testTwice");
  ccDllDictionary second("testTwice");
  EXPECT_EQ(ccDllDictionary::find("testTwice"), first.get());

  first.reset();

  EXPECT_EQ(ccDllDictionary::find("testTwice"), &second);
}

TEST(Dictionary, mayBeReadAndWrittenByThreads)
{
  ccDllDictionary dictionary("testThreads");
  ccStringLiteral const literal(1, "default", "testThreads");
  std::thread writer([&] {
    for (int i = 0; i < 2000; ++i)
      dictionary.set(1, i % 2 ? std::string(50, 'a') : std::string(40, 'b'));
  });
  for (int i = 0; i < 2000; ++i) {
    std::string const text = literal.text();
    ASSERT_TRUE(text == "default" || text == std::string(50, 'a') || text == std::string(40, 'b'));
  }
  writer.join();
}

TEST(StringLiteral, ignoresEntriesWithOtherConversions)
{
  ccDllDictionary dictionary("testFormats");
  ccStringLiteral const status(502, statusFormat, "testFormats");
  struct {
    char const* entry;
    bool taken;
  } const cases[] = {
      {"Bild: (%.1f, %.1f)   Kunde: (%8.2f, %g)    Pel: %i", true},
      {"Bild 100%%: (%.1f, %.1f)   Kunde: (%8.2f, %g)    Pel: %-5d", true},
      {"Bild: (%.2f, %.2f)   Kunde: (%.2f, %.2f)", false},
      {"Bild: (%.2f, %.2f)   Kunde: (%.2f, %.2f)    Pel: %3d %3d", false},
      {"Pel: %3d Bild: (%.2f, %.2f)   Kunde: (%.2f, %.2f)", false},
      {"Bild: (%.2f, %.2f)   Kunde: (%.2f, %.2f)    Pel: %s", false},
      {"Bild: (%.2f, %.2f)   Kunde: (%.2f, %.2f)    Pel: %u", false},
      {"Bild: (%.2f, %.2f)   Kunde: (%.2f, %.2f)    Pel: %ld", false},
      {"Bild: (%.2f, %.2f)   Kunde: (%.*f, %.2f)    Pel: %d", false},
      {"Bild: (%.2f, %.2f)   Kunde: (%.2f, %.2f)    Pel: %n", false},
      {"%2$f %1$f %.2f %.2f %d", false},
      {"", false},
  };
  for (auto const& c : cases) {
    dictionary.set(502, c.entry);
    EXPECT_EQ(status.text(), c.taken ? c.entry : statusFormat);
  }
}

TEST(StringLiteral, textsWithoutConversionsTakeNone)
{
  ccDllDictionary dictionary("testPlain");
  ccStringLiteral const literal(1, "Enter", "testPlain");
  dictionary.set(1, "Eingabe: 5 %");
  EXPECT_EQ(literal.text(), "Eingabe: 5 %");
  dictionary.set(1, "%s");
  EXPECT_EQ(literal.text(), "Enter");
}

TEST(StringLiteral, formatStringReplacesNumberedArguments)
{
  struct {
    char const* text;
    char const* result;
  } const cases[] = {{"More than max (%1)", "More than max (a)"},
                     {"%1x", "ax"},
                     {"1/%1x", "1/ax"},
                     {"%2, %1, %2", "b, a, b"},
                     {"%3 stays", "%3 stays"},
                     {"%12", "a2"},
                     {"100%%", "100%"},
                     {"%%1", "%1"},
                     {"%0 %d %s %.2f % %", "%0 %d %s %.2f % %"},
                     {"", ""}};
  cc_MsgArgs args;
  args.add(std::string("a")).add(std::string("b"));
  for (auto const& c : cases)
    EXPECT_EQ(ccStringLiteral(1, c.text, "testNone").formatString(args), c.result) << c.text;
  EXPECT_EQ(ccStringLiteral(1, "%1", "testNone").formatString(cc_MsgArgs()), "%1");
}

TEST(StringLiteral, formatStringDoesNotReplaceInsideArguments)
{
  cc_MsgArgs args;
  args.add(std::string("%2")).add(std::string("b"));
  EXPECT_EQ(ccStringLiteral(1, "%1", "testNone").formatString(args), "%2");
}

TEST(StringLiteral, formatStringTakesEveryEntry)
{
  ccDllDictionary dictionary("testNumbered");
  ccStringLiteral const literal(1109, "%1x", "testNumbered");
  dictionary.set(1109, "%1-fach");
  cc_MsgArgs args;
  EXPECT_EQ(literal.formatString(args.add(3L)), "3-fach") << "not a printf format, so no check of conversions";
}

TEST(MsgArgs, numbersBecomeText)
{
  cc_MsgArgs args;
  args.add(5).add(-7L).add(2.5).add(1.0 / 3, "%.2f").add(std::string("s"));
  EXPECT_EQ(args.texts(), (std::vector<std::string>{"5", "-7", "2.5", "0.33", "s"}));
}

TEST(StringLiteral, formatStringKnowsNineArguments)
{
  cc_MsgArgs args;
  for (int i = 1; i <= 10; ++i)
    args.add(i * 11);
  EXPECT_EQ(ccStringLiteral(1, "%9 %10", "testNone").formatString(args), "99 110");
}

TEST(Format, isPrintf)
{
  EXPECT_EQ(cfFormat(statusFormat, 1.5, 2.0, -3.25, 1e3, 7), "Image: (1.50, 2.00)   Client: (-3.25, 1000.00)    Pel:   7");
  EXPECT_EQ(cfFormat("%d%%", 50), "50%");
  EXPECT_EQ(cfFormat("%s|%5s|%-5s|%.2s", "ab", "cd", std::string("ef"), "ghi"), "ab|   cd|ef   |gh");
  EXPECT_EQ(cfFormat("%c%3c", 'x', 'y'), "x  y");
  EXPECT_EQ(cfFormat("%*d|%-*d|%.*f", 4, 7, 4, 7, 2, 1.0), "   7|7   |1.00");
  EXPECT_EQ(cfFormat("no arguments"), "no arguments");
  EXPECT_EQ(cfFormat("%ld %lu %lld %zu", -5L, 6UL, -7LL, std::size_t{8}), "-5 6 -7 8");
  EXPECT_EQ(cfFormat("%x %X %o", -1, 255, 8), "ffffffff FF 10");
  EXPECT_EQ(cfFormat("%hhx %hd", 0x1234, 0x12345), "34 9029");
  EXPECT_EQ(cfFormat("%u", 4000000000u), "4000000000");
  EXPECT_EQ(cfFormat("%llu", 0xFFFFFFFFFFFFFFFFull), "18446744073709551615");
  EXPECT_EQ(cfFormat("%p", reinterpret_cast<void const*>(0x1f)), "0x1f");
}

TEST(Format, equalsTheLibrarysForEveryFlag)
{
  std::setlocale(LC_ALL, "C");
  for (char const* flags : {"", "-", "+", " ", "0", "#", "-+", "+0", " 0", "#0", "-0"})
    for (char const* width : {"", "1", "8", "15"})
      for (char const* precision : {"", ".", ".0", ".3", ".9"}) {
        for (char letter : std::string("fFeEgGaA"))
          for (double v : {0.0, -0.0, 1.0, -2.5, 1e10, 123456.789, 1e-7, std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity()}) {
            std::string const format = std::string("%") + flags + width + precision + letter;
            ASSERT_EQ(cfFormat(format.c_str(), v), plain(format.c_str(), v)) << format << ' ' << v;
          }
        for (char letter : std::string("di"))
          for (int v : {0, 1, -1, 12345, -2147483647}) {
            std::string const format = std::string("%") + flags + width + precision + letter;
            if (format.find('#') == std::string::npos) {
              ASSERT_EQ(cfFormat(format.c_str(), v), plain(format.c_str(), v)) << format << ' ' << v;
            }
          }
        for (char letter : std::string("xXo"))
          for (unsigned v : {0u, 1u, 255u, 4000000000u}) {
            std::string const format = std::string("%") + flags + width + precision + letter;
            if (format.find('+') == std::string::npos && format.find(' ') == std::string::npos) {
              ASSERT_EQ(cfFormat(format.c_str(), v), plain(format.c_str(), v)) << format << ' ' << v;
            }
          }
      }
}

TEST(Format, isAtMost255Characters)
{
  EXPECT_EQ(cfFormat("%s", std::string(300, 'x')), std::string(255, 'x'));
  EXPECT_EQ(cfFormat("%999d", 1).size(), 255u);
  EXPECT_EQ(cfFormat("%.300f", 1.0).size(), 255u);
  EXPECT_EQ(cfFormat("%f", 1e300).size(), 255u);
  EXPECT_EQ(cfFormat("%f", 1e300).substr(0, 6), "100000");
}

TEST(Format, survivesWrongArguments)
{
  EXPECT_EQ(cfFormat("%d and %s", 1), "1 and %s");
  EXPECT_EQ(cfFormat("%s", 5), "5");
  EXPECT_EQ(cfFormat("%d", 2.9), "2");
  EXPECT_EQ(cfFormat("%.1f", 3), "3.0");
  EXPECT_EQ(cfFormat("%d", "17"), "17");
  EXPECT_EQ(cfFormat("%s", static_cast<char const*>(nullptr)), "(null)");
  EXPECT_EQ(cfFormat("%n %y %", 1), "%n %y %");
  EXPECT_EQ(cfFormat("%d", 1e300), "9223372036854775807");
  EXPECT_EQ(cfFormat("%d", std::nan("")), "0");
  EXPECT_EQ(cfFormat(nullptr), "");
}

TEST(Format, neverDependsOnTheLocale)
{
  for (auto const& name : usableLocales()) {
    std::setlocale(LC_ALL, name.c_str());
    EXPECT_EQ(cfFormat("%.2f|%8.1f|%g|%e", 1234.5, -0.5, 0.25, 1.5), "1234.50|    -0.5|0.25|1.500000e+00") << name;
    EXPECT_EQ(cfParse("1.5"), 1.5) << name;
    EXPECT_EQ(cfParse("1,5"), 1.0) << name;
  }
  std::setlocale(LC_ALL, "C");
}

TEST(Parse, readsTheLongestNumberAsAtofDoes)
{
  std::setlocale(LC_ALL, "C");
  for (char const* text : {"",      "0",      "1",      "-1.5",   "+2.25", " \t\n 3", "1e3",     "1e",      "1e+",   "1.5e-2x",
                           ".5",    "5.",     ".",      "-",      "+-1",   "--1",     "1.2.3",   "abc",     "1abc",  "0x10",
                           "0x1.8p1", "0x",   "0xg",    "0x.8",   "-0x2",  "1e400",   "-1e400",  "1e-400",  "1e99999999999",
                           "0.000000000000001e310", "123456789012345678901234567890", "4.9e-324", "inf", "-infinity", "infx",
                           "0e999999999", "- 1", "1 2", "0x-5", "00012", "1,5", "1E5"})
    EXPECT_EQ(cfParse(text), std::atof(text)) << '"' << text << '"';
  EXPECT_TRUE(std::isnan(cfParse("nan")));
  EXPECT_TRUE(std::signbit(cfParse("-0")));
  EXPECT_EQ(cfParse(std::string("1\0002", 3)), 1);
}

TEST(FormatTypes, areThoseOfTheArguments)
{
  using Types = std::vector<std::string>;
  EXPECT_EQ(cf_formatTypes("%d %i %5d %-+5i"), (Types{"d", "d", "d", "d"}));
  EXPECT_EQ(cf_formatTypes("%u%x%lo%.*f%*s"), (Types{"u", "u", "lu", "*", "f", "*", "s"}));
  EXPECT_EQ(cf_formatTypes("100%% of %1"), (Types{}));
}
