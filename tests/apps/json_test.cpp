#include "apps/common/json.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

std::string errorOf(std::string const& text) { return cfReadJson(text).error; }

}  // namespace

TEST(Json, readsEveryKindOfValue)
{
  ccJsonText const text = cfReadJson(R"( {"a": [1, -2.5e3, true, false, null], "b": {"c": "d"}, "": "x"} )");

  ASSERT_EQ(text.error, "");
  ccJson const& value = text.value;
  EXPECT_EQ(value.size(), 3u);
  EXPECT_EQ(value.name(0), "a");
  EXPECT_EQ(value["a"].size(), 5u);
  EXPECT_EQ(value["a"].at(0).number(), 1);
  EXPECT_EQ(value["a"].at(1).number(), -2500);
  EXPECT_TRUE(value["a"].at(2).boolean());
  EXPECT_TRUE(value["a"].at(3).isBool());
  EXPECT_FALSE(value["a"].at(3).boolean(true));
  EXPECT_TRUE(value["a"].at(4).isNull());
  EXPECT_EQ(value["b"]["c"].text(), "d");
  EXPECT_EQ(value[""].text(), "x");
}

TEST(Json, questionsToAbsentValuesAnswerWithTheGivenDefault)
{
  ccJson const value = cfReadJson(R"({"a": "text"})").value;

  EXPECT_TRUE(value["x"]["y"].at(3).isNull());
  EXPECT_EQ(value["a"].number(7), 7);
  EXPECT_EQ(value["x"].text("none"), "none");
  EXPECT_TRUE(value["x"].boolean(true));
  EXPECT_EQ(value["a"].size(), 0u);
  EXPECT_EQ(value["a"].name(0), "");
  EXPECT_TRUE(value.has("a"));
  EXPECT_FALSE(value.has("x"));
}

TEST(Json, readsEscapesAndUtf8)
{
  EXPECT_EQ(cfReadJson(R"("\"\\\/\b\f\n\r\t\u0041\u00e4\u20AC\uD83D\uDE00\u0000")").value.text(),
            std::string("\"\\/\b\f\n\r\tA\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\0", 19));
  EXPECT_EQ(cfReadJson("\"\xC3\xA4\xF4\x8F\xBF\xBF\x7F\"").value.text(), "\xC3\xA4\xF4\x8F\xBF\xBF\x7F");
}

TEST(Json, faultsAreToldWithLineAndColumn)
{
  struct {
    char const* text;
    char const* error;
  } const cases[] = {
      {"", "line 1, column 1: a value is expected"},
      {" \n ", "line 2, column 2: a value is expected"},
      {"nul", "line 1, column 1: a value is expected"},
      {"True", "line 1, column 1: a value is expected"},
      {"'a'", "line 1, column 1: a value is expected"},
      {"\xEF\xBB\xBF{}", "line 1, column 1: a value is expected"},
      {"1 2", "line 1, column 3: nothing may follow the value"},
      {"[1,\n 2,]", "line 2, column 4: a value is expected"},
      {"[1 2]", "line 1, column 4: a comma or ] is expected"},
      {"[1", "line 1, column 3: a comma or ] is expected"},
      {"[/**/]", "line 1, column 2: a value is expected"},
      {"{\"a\" 1}", "line 1, column 6: a colon is expected"},
      {"{\"a\":1,}", "line 1, column 8: a name in quotes is expected"},
      {"{a:1}", "line 1, column 2: a name in quotes is expected"},
      {"{\"a\":1 \"b\"", "line 1, column 8: a comma or } is expected"},
      {"{\"a\":1,\r\n \"a\":2}", "line 2, column 2: this name stands here twice"},
      {"{\"\xC3\xA4\":1,}", "line 1, column 8: a name in quotes is expected"},
      {"01", "line 1, column 2: a number may not begin with 0"},
      {"-", "line 1, column 2: a digit is expected"},
      {"1.", "line 1, column 3: a digit is expected"},
      {".5", "line 1, column 1: a value is expected"},
      {"+1", "line 1, column 1: a value is expected"},
      {"1e", "line 1, column 3: a digit is expected"},
      {"1e+", "line 1, column 4: a digit is expected"},
      {"0x10", "line 1, column 2: nothing may follow the value"},
      {"NaN", "line 1, column 1: a value is expected"},
      {"[1e309]", "line 1, column 2: the number is too large"},
      {"-1e999999999999999999999", "line 1, column 1: the number is too large"},
      {"\"abc", "line 1, column 1: this text has no closing quote"},
      {"\"a\nb\"", "line 1, column 3: a control character must be escaped"},
      {"\"\\x\"", "line 1, column 2: an unknown escape"},
      {"\"\\", "line 1, column 2: an unknown escape"},
      {"\"\\u12G4\"", "line 1, column 6: four hexadecimal digits are expected"},
      {"\"\\uD800\"", "line 1, column 2: half a character"},
      {"\"\\uD800\\u0041\"", "line 1, column 2: half a character"},
      {"\"\\uDC00\"", "line 1, column 2: half a character"},
      {"\"a\x80\"", "line 1, column 3: this is not UTF-8"},
      {"\"\xC0\xAF\"", "line 1, column 2: this is not UTF-8"},
      {"\"\xE0\x80\xAF\"", "line 1, column 2: this is not UTF-8"},
      {"\"\xED\xA0\x80\"", "line 1, column 2: this is not UTF-8"},
      {"\"\xF4\x90\x80\x80\"", "line 1, column 2: this is not UTF-8"},
      {"\"\xE2\x82\"", "line 1, column 2: this is not UTF-8"},
  };
  for (auto const& c : cases) {
    EXPECT_EQ(errorOf(c.text), c.error) << c.text;
    EXPECT_TRUE(cfReadJson(c.text).value.isNull()) << c.text;
  }
  EXPECT_EQ(errorOf(std::string("1\0", 2)), "line 1, column 2: nothing may follow the value");
  EXPECT_EQ(errorOf(std::string("[\0]", 3)), "line 1, column 2: a value is expected");
}

TEST(Json, nestingIsReadDownToDepth64)
{
  EXPECT_EQ(errorOf(std::string(64, '[') + std::string(64, ']')), "");
  EXPECT_EQ(errorOf(std::string(65, '[') + std::string(65, ']')),
            "line 1, column 65: too many arrays and objects within each other");
  EXPECT_EQ(errorOf(std::string(1'000'000, '[')), "line 1, column 65: too many arrays and objects within each other");
  std::string objects;
  for (int i = 0; i < 65; ++i)
    objects += "{\"a\":";
  EXPECT_EQ(errorOf(objects), "line 1, column 321: too many arrays and objects within each other");
}

TEST(Json, sizeIsLimited)
{
  EXPECT_EQ(cfReadJson("[1,2]", 5).error, "");
  EXPECT_EQ(cfReadJson("[1,2]", 4).error, "the text is longer than 4 bytes");
  EXPECT_EQ(errorOf(std::string(cfJsonSizeLimit + 1, ' ')), "the text is longer than 8388608 bytes");
}

TEST(Json, numbersTooSmallAreZeroWithTheirSign)
{
  for (char const* text : {"1e-400", "0.001e-330", "-1e-99999999999999", "0e999"}) {
    ccJsonText const number = cfReadJson(text);
    EXPECT_EQ(number.error, "") << text;
    EXPECT_EQ(number.value.number(1), 0) << text;
    EXPECT_EQ(std::signbit(number.value.number(1)), text[0] == '-') << text;
  }
  EXPECT_EQ(cfReadJson("5e-324").value.number(), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(cfReadJson("1" + std::string(400, '0') + "e-400").value.number(), 1);
}

TEST(Json, writesOnOneLineOrIndented)
{
  ccJson value;
  value.set("list", ccJson().push(1).push(true).push(ccJson()));
  value.set("empty", ccJson::array()).set("none", ccJson::object()).set("text", "a\"b");

  EXPECT_EQ(value.write(), R"({"list":[1,true,null],"empty":[],"none":{},"text":"a\"b"})");
  EXPECT_EQ(value.write(2), "{\n  \"list\": [\n    1,\n    true,\n    null\n  ],\n  \"empty\": [],\n  \"none\": {},\n"
                            "  \"text\": \"a\\\"b\"\n}");
}

TEST(Json, setReplacesAMemberWhereItStands)
{
  ccJson value = cfReadJson(R"({"a":1,"b":2})").value;
  value.set("a", "new");

  EXPECT_EQ(value.write(), R"({"a":"new","b":2})");
}

TEST(Json, writesEscapesAndRepairsBytesThatAreNoUtf8)
{
  EXPECT_EQ(ccJson(std::string("\"\\/\b\f\n\r\t\x01\x1F\x7F\0", 12)).write(),
            std::string("\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\x7F\\u0000\""));
  EXPECT_EQ(ccJson("\xC3\xA4\x80z\xE2\x82").write(), "\"\xC3\xA4\xEF\xBF\xBDz\xEF\xBF\xBD\xEF\xBF\xBD\"");
}

TEST(Json, numbersAreWrittenShortAndComeBackExactly)
{
  struct {
    double number;
    char const* text;
  } const cases[] = {
      {0, "0"}, {-0.0, "-0"}, {3, "3"}, {-17, "-17"}, {0.1, "0.1"}, {1.0 / 3, "0.3333333333333333"}, {1e21, "1e+21"},
      {5e-324, "5e-324"}, {1.7976931348623157e308, "1.7976931348623157e+308"}, {9007199254740991.0, "9007199254740991"},
  };
  for (auto const& c : cases)
    EXPECT_EQ(ccJson(c.number).write(), c.text);
  EXPECT_EQ(ccJson(std::nan("")).write(), "null");
  EXPECT_EQ(ccJson(-std::numeric_limits<double>::infinity()).write(), "null");

  std::mt19937_64 random(3);
  for (int i = 0; i < 20'000; ++i) {
    std::uint64_t const bits = random();
    double number;
    std::memcpy(&number, &bits, sizeof number);
    if (!std::isfinite(number))
      continue;
    double const back = cfReadJson(ccJson(number).write()).value.number();
    EXPECT_EQ(std::memcmp(&back, &number, sizeof number), 0) << number;
  }
}

TEST(Json, decimalPointIsAPointInEveryLocale)
{
  std::string const former = std::setlocale(LC_ALL, nullptr);
  for (char const* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"})
    if (std::setlocale(LC_ALL, name))
      break;

  EXPECT_EQ(ccJson(0.5).write(), "0.5");
  EXPECT_EQ(cfReadJson("0.5").value.number(), 0.5);
  std::setlocale(LC_ALL, former.c_str());
}

TEST(Json, survivesDamage)
{
  std::string const whole = R"({"a\u00e4": [1, -2.5e3, true, null, "\ud83d\ude00"], "b": {"c": 0.5}})";
  ASSERT_EQ(errorOf(whole), "");
  for (std::size_t length = 0; length < whole.size(); ++length)
    EXPECT_NE(errorOf(whole.substr(0, length)), "") << length;
  for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
    std::string flipped = whole;
    flipped[bit / 8] = static_cast<char>(static_cast<unsigned char>(flipped[bit / 8]) ^ 1u << bit % 8);
    ccJsonText const text = cfReadJson(flipped);
    // What was read is written and read again as the same.
    if (text) {
      EXPECT_EQ(cfReadJson(text.value.write()).value, text.value) << flipped;
    } else {
      EXPECT_EQ(text.error.rfind("line 1, column ", 0), 0u) << flipped;
    }
  }
}

TEST(Json, manyNamesAreReadInGoodTime)
{
  std::string text = "{";
  for (int i = 0; i < 100'000; ++i)
    text += "\"" + std::to_string(i) + "\":0,";
  text.back() = '}';

  EXPECT_EQ(cfReadJson(text).value.size(), 100'000u);
}
