#include "apps/krsview/draw_fields.h"

#include "apps/common/error_line.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

struct cs_NamedColor {
  char const* name;
  ccColor (*color)();
};

constexpr cs_NamedColor kColors[] = {
    {"black", ccColor::blackColor},   {"white", ccColor::whiteColor},     {"grey", ccColor::greyColor},
    {"ltGrey", ccColor::ltGreyColor}, {"dkGrey", ccColor::dkGreyColor},   {"red", ccColor::redColor},
    {"dkRed", ccColor::dkRedColor},   {"green", ccColor::greenColor},     {"dkGreen", ccColor::dkGreenColor},
    {"blue", ccColor::blueColor},     {"yellow", ccColor::yellowColor},   {"magenta", ccColor::magentaColor},
    {"cyan", ccColor::cyanColor},     {"purple", ccColor::purpleColor},   {"orange", ccColor::orangeColor},
    {"pass", ccColor::passColor},
};

// What stands in the file, short enough for a message.
std::string cf_found(ccJson const& value)
{
  constexpr std::size_t kLongest = 43;
  return cf_quoted(value.write(), kLongest);
}

bool cf_isWhole(ccJson const& value, double low, double high)
{
  return value.isNumber() && value.number() == std::floor(value.number()) && value.number() >= low && value.number() <= high;
}

bool cf_isPair(ccJson const& value)
{
  return value.isArray() && value.size() == 2 && value.at(0).isNumber() && value.at(1).isNumber();
}

int cf_hexDigit(char c)
{
  return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

bool cf_hexColor(std::string const& text, ccColor& color)
{
  if (text.size() != 7 || text[0] != '#')
    return false;
  int digits[6];
  for (std::size_t i = 0; i < 6; ++i)
    if ((digits[i] = cf_hexDigit(text[i + 1])) < 0)
      return false;
  auto const byte = [&](int i) { return static_cast<unsigned char>(digits[i] * 16 + digits[i + 1]); };
  color = ccColor(byte(0), byte(2), byte(4));
  return true;
}

constexpr std::size_t kLongestName = 60;  // of a field or kind in a message
constexpr double kFarPel = 1 << 24;  // whole pels are cut to the surface long before

}  // namespace

bool cfDrawColor(ccJson const& value, ccColor& color)
{
  if (cf_isWhole(value, 0, 255)) {
    color = ccColor(static_cast<unsigned char>(value.number()));
    return true;
  }
  if (!value.isString())
    return false;
  for (cs_NamedColor const& named : kColors)
    if (value.text() == named.name) {
      color = named.color();
      return true;
    }
  return cf_hexColor(value.text(), color);
}

cc_DrawFields::cc_DrawFields(ccJson const& object, std::string where) : object_(object), where_(std::move(where))
{
  if (!object.isObject())
    throw cc_DrawFault(where_ + ": expected an object, found " + cf_found(object));
}

void cc_DrawFields::fail(std::string const& name, std::string const& expected) const
{
  throw cc_DrawFault(place(name) + ": expected " + expected +
                     (object_.has(name) ? ", found " + cf_found(object_[name]) : ", but the field is missing"));
}

ccJson const& cc_DrawFields::value(std::string const& name)
{
  known_.insert(name);
  return object_[name];
}

double cc_DrawFields::number(std::string const& name)
{
  if (!value(name).isNumber())
    fail(name, "a number");
  return value(name).number();
}

double cc_DrawFields::length(std::string const& name)
{
  if (!value(name).isNumber() || value(name).number() < 0)
    fail(name, "a number of at least 0");
  return value(name).number();
}

ccRadian cc_DrawFields::angle(std::string const& name)
{
  if (!value(name).isNumber())
    fail(name, "an angle in degrees");
  return ccDegree(value(name).number());
}

ccRadian cc_DrawFields::angle(std::string const& name, double otherwise)
{
  return has(name) ? angle(name) : ccRadian(ccDegree(otherwise));
}

long cc_DrawFields::whole(std::string const& name, long low, long high)
{
  if (!cf_isWhole(value(name), static_cast<double>(low), static_cast<double>(high)))
    fail(name, "a whole number from " + std::to_string(low) + " to " + std::to_string(high));
  return static_cast<long>(value(name).number());
}

bool cc_DrawFields::flag(std::string const& name, bool otherwise)
{
  ccJson const& found = value(name);
  if (has(name) && !found.isBool())
    fail(name, "true or false");
  return found.boolean(otherwise);
}

std::string cc_DrawFields::text(std::string const& name)
{
  if (!value(name).isString())
    fail(name, "a text");
  return value(name).text();
}

long cc_DrawFields::word(std::string const& name, std::vector<std::string> const& words, long otherwise)
{
  ccJson const& found = value(name);
  if (!has(name))
    return otherwise;
  auto const at = std::find(words.begin(), words.end(), found.text());
  if (!found.isString() || at == words.end()) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i)
      list += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    fail(name, list);
  }
  return static_cast<long>(at - words.begin());
}

ccPoint cc_DrawFields::point(std::string const& name)
{
  if (!cf_isPair(value(name)))
    fail(name, "two numbers [x, y]");
  return ccPoint(value(name).at(0).number(), value(name).at(1).number());
}

ccPair<long> cc_DrawFields::pels(std::string const& name)
{
  ccJson const& found = value(name);
  if (!cf_isPair(found) || !cf_isWhole(found.at(0), -kFarPel, kFarPel) || !cf_isWhole(found.at(1), -kFarPel, kFarPel))
    fail(name, "two whole numbers [x, y] in pels");
  return ccPair<long>(static_cast<long>(found.at(0).number()), static_cast<long>(found.at(1).number()));
}

ccJson const& cc_DrawFields::array(std::string const& name)
{
  if (!value(name).isArray() || value(name).size() == 0)
    fail(name, "a list of at least one value");
  return value(name);
}

ccJson const& cc_DrawFields::object(std::string const& name)
{
  if (!value(name).isObject())
    fail(name, "an object");
  return value(name);
}

std::vector<ccVector<2>> cc_DrawFields::points(std::string const& name)
{
  ccJson const& list = array(name);
  std::vector<ccVector<2>> out;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (!cf_isPair(list.at(i)))
      throw cc_DrawFault(place(name) + "[" + std::to_string(i) + "]: expected two numbers [x, y], found " +
                         cf_found(list.at(i)));
    out.emplace_back(list.at(i).at(0).number(), list.at(i).at(1).number());
  }
  return out;
}

std::vector<double> cc_DrawFields::numbers(std::string const& name)
{
  ccJson const& list = array(name);
  std::vector<double> out;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (!list.at(i).isNumber())
      throw cc_DrawFault(place(name) + "[" + std::to_string(i) + "]: expected a number, found " + cf_found(list.at(i)));
    out.push_back(list.at(i).number());
  }
  return out;
}

ccColor cc_DrawFields::color(std::string const& name)
{
  ccColor color;
  if (!cfDrawColor(value(name), color))
    fail(name, kDrawColorExpected);
  return color;
}

void cc_DrawFields::kind(std::string const& kind)
{
  where_ += " (" + cf_quoted(kind, kLongestName) + ")";
}

void cc_DrawFields::done() const
{
  for (std::size_t i = 0; i < object_.size(); ++i)
    if (known_.count(object_.name(i)) == 0)
      throw cc_DrawFault(place(cf_quoted(object_.name(i), kLongestName)) + ": this field is not known here");
}
