#include "apps/common/json.h"

#include "apps/common/error_line.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <unordered_set>

namespace {

struct JsonFault {
  std::size_t at;
  char const* text;
};

bool isDigit(char c)
{
  return c >= '0' && c <= '9';
}

unsigned byteOf(char c)
{
  return static_cast<unsigned char>(c);
}

void appendUtf8(std::string& out, std::uint32_t code)
{
  auto const put = [&out](std::uint32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6);
    put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12);
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | code >> 18);
    put(0x80 | (code >> 12 & 0x3F));
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  }
}

class JsonReader {
public:
  explicit JsonReader(std::string_view text) : text_(text) {}
  ccJson read();

private:
  [[noreturn]] void fault(char const* text) const { throw JsonFault{at_, text}; }
  bool ended() const { return at_ == text_.size(); }
  char next() const { return ended() ? '\0' : text_[at_]; }
  void skipSpace();
  bool take(char c);
  ccJson value(int depth);
  ccJson array(int depth);
  ccJson object(int depth);
  ccJson word(std::string_view text, ccJson value);
  double number();
  void digits();
  std::string string();
  void escape(std::string& out);
  std::uint32_t hexWord();

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t values_ = 0;
};

void JsonReader::skipSpace()
{
  while (!ended() && (next() == ' ' || next() == '\t' || next() == '\n' || next() == '\r'))
    ++at_;
}

bool JsonReader::take(char c)
{
  if (ended() || next() != c)
    return false;
  ++at_;
  return true;
}

ccJson JsonReader::read()
{
  ccJson result = value(0);
  skipSpace();
  if (!ended())
    fault("nothing may follow the value");
  return result;
}

ccJson JsonReader::value(int depth)
{
  skipSpace();
  if (++values_ > cfJsonValueLimit)
    fault("too many values");
  switch (next()) {
  case '{': return object(depth);
  case '[': return array(depth);
  case '"': return string();
  case 't': return word("true", true);
  case 'f': return word("false", false);
  case 'n': return word("null", ccJson());
  default:
    if (next() != '-' && !isDigit(next()))
      fault("a value is expected");
    return number();
  }
}

ccJson JsonReader::word(std::string_view expected, ccJson result)
{
  if (text_.substr(at_, expected.size()) != expected)
    fault("a value is expected");
  at_ += expected.size();
  return result;
}

ccJson JsonReader::array(int depth)
{
  if (depth == cfJsonDepthLimit)
    fault("too many arrays and objects within each other");
  ++at_;
  ccJson result = ccJson::array();
  skipSpace();
  if (take(']'))
    return result;
  for (;;) {
    result.push(value(depth + 1));
    skipSpace();
    if (take(']'))
      return result;
    if (!take(','))
      fault("a comma or ] is expected");
  }
}

ccJson JsonReader::object(int depth)
{
  if (depth == cfJsonDepthLimit)
    fault("too many arrays and objects within each other");
  ++at_;
  ccJson result = ccJson::object();
  std::unordered_set<std::string> names;
  skipSpace();
  if (take('}'))
    return result;
  for (;;) {
    skipSpace();
    if (next() != '"')
      fault("a name in quotes is expected");
    std::size_t const nameAt = at_;
    std::string const name = string();
    if (!names.insert(name).second)
      throw JsonFault{nameAt, "this name stands here twice"};
    skipSpace();
    if (!take(':'))
      fault("a colon is expected");
    result.append(name, value(depth + 1));
    skipSpace();
    if (take('}'))
      return result;
    if (!take(','))
      fault("a comma or } is expected");
  }
}

void JsonReader::digits()
{
  if (!isDigit(next()))
    fault("a digit is expected");
  while (isDigit(next()))
    ++at_;
}

// The power of ten of a number's first digit other than 0, of a number with one.
double magnitude(std::string_view number)
{
  std::size_t const mark = std::min(number.find_first_of("eE"), number.size());
  std::string_view const digits = number.substr(0, mark);
  std::size_t const point = std::min(digits.find('.'), digits.size());
  std::size_t const first = digits.find_first_of("123456789");
  double exponent = 0;
  for (char c : number.substr(mark))
    if (isDigit(c))
      exponent = exponent * 10 + (c - '0');
  if (mark + 1 < number.size() && number[mark + 1] == '-')
    exponent = -exponent;
  return exponent + static_cast<double>(point) - static_cast<double>(first);
}

double JsonReader::number()
{
  std::size_t const start = at_;
  take('-');
  if (!take('0'))
    digits();
  else if (isDigit(next()))
    fault("a number may not begin with 0");
  if (take('.'))
    digits();
  if (take('e') || take('E')) {
    if (!take('+'))
      take('-');
    digits();
  }
  std::string_view const spelt = text_.substr(start, at_ - start);
  double result = 0;
  if (std::from_chars(spelt.data(), spelt.data() + spelt.size(), result).ec == std::errc::result_out_of_range) {
    if (magnitude(spelt) > 0)
      throw JsonFault{start, "the number is too large"};
    result = spelt[0] == '-' ? -0.0 : 0.0;
  }
  return result;
}

std::string JsonReader::string()
{
  std::size_t const start = at_;
  std::string result;
  ++at_;
  while (!take('"')) {
    if (ended())
      throw JsonFault{start, "this text has no closing quote"};
    if (result.size() > cfJsonStringLimit)
      throw JsonFault{start, "this text is too long"};
    if (byteOf(next()) < 0x20)
      fault("a control character must be escaped");
    if (take('\\')) {
      escape(result);
      continue;
    }
    std::size_t const length = cf_utf8Length(text_.substr(at_));
    if (!length)
      fault("this is not UTF-8");
    result.append(text_, at_, length);
    at_ += length;
  }
  return result;
}

void JsonReader::escape(std::string& out)
{
  constexpr std::string_view letters = "\"\\/bfnrt", meanings = "\"\\/\b\f\n\r\t";
  if (std::size_t const i = letters.find(next()); !ended() && i != std::string_view::npos) {
    ++at_;
    out += meanings[i];
    return;
  }
  std::size_t const start = at_ - 1;
  if (!take('u'))
    throw JsonFault{start, "an unknown escape"};
  std::uint32_t code = hexWord();
  if (code >= 0xD800 && code < 0xDC00) {
    if (!take('\\') || !take('u'))
      throw JsonFault{start, "half a character"};
    std::uint32_t const low = hexWord();
    if (low < 0xDC00 || low > 0xDFFF)
      throw JsonFault{start, "half a character"};
    code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
  } else if (code >= 0xDC00 && code <= 0xDFFF) {
    throw JsonFault{start, "half a character"};
  }
  appendUtf8(out, code);
}

std::uint32_t JsonReader::hexWord()
{
  std::uint32_t result = 0;
  for (int i = 0; i < 4; ++i, ++at_) {
    char const c = next();
    char const lower = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    if (!isDigit(lower) && (lower < 'a' || lower > 'f'))
      fault("four hexadecimal digits are expected");
    result = result << 4 | static_cast<std::uint32_t>(isDigit(lower) ? lower - '0' : lower - 'a' + 10);
  }
  return result;
}

std::string describe(std::string_view text, JsonFault const& fault)
{
  std::string_view const before = text.substr(0, fault.at);
  std::size_t const lineStart = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
  auto const line = std::count(before.begin(), before.end(), '\n') + 1;
  // Bytes that continue a character take no column.
  auto const column = std::count_if(before.begin() + static_cast<std::ptrdiff_t>(lineStart), before.end(),
                                    [](char c) { return (byteOf(c) & 0xC0) != 0x80; }) + 1;
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + fault.text;
}

void writeText(std::string& out, std::string_view text)
{
  constexpr std::string_view escaped = "\"\\\b\f\n\r\t", letters = "\"\\bfnrt";
  out += '"';
  while (!text.empty()) {
    std::size_t const length = cf_utf8Length(text);
    char const c = text[0];
    if (std::size_t const i = escaped.find(c); i != std::string_view::npos) {
      out += '\\';
      out += letters[i];
    } else if (byteOf(c) < 0x20) {
      out += byteOf(c) < 0x10 ? "\\u000" : "\\u001";
      out += "0123456789abcdef"[byteOf(c) & 15];
    } else if (length) {
      out += text.substr(0, length);
    } else {
      appendUtf8(out, 0xFFFD);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  out += '"';
}

void writeNumber(std::string& out, double number)
{
  if (!std::isfinite(number)) {
    out += "null";
    return;
  }
  char digits[32];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void breakLine(std::string& out, int indent, int level)
{
  if (indent <= 0)
    return;
  out += '\n';
  out.append(static_cast<std::size_t>(indent * level), ' ');
}

}  // namespace

ccJson const& ccJson::at(std::size_t index) const
{
  static ccJson const none;
  return index < items_.size() ? items_[index] : none;
}

std::string const& ccJson::name(std::size_t index) const
{
  static std::string const none;
  return index < names_.size() ? names_[index] : none;
}

std::size_t ccJson::find(std::string_view name) const
{
  auto const found = std::find(names_.begin(), names_.end(), name);
  return found == names_.end() ? static_cast<std::size_t>(-1) : static_cast<std::size_t>(found - names_.begin());
}

ccJson& ccJson::push(ccJson item)
{
  if (!isArray())
    *this = array();
  items_.push_back(std::move(item));
  return *this;
}

ccJson& ccJson::set(std::string_view name, ccJson value)
{
  if (std::size_t const index = find(name); index < size())
    items_[index] = std::move(value);
  else
    append(std::string(name), std::move(value));
  return *this;
}

void ccJson::append(std::string name, ccJson value)
{
  if (!isObject())
    *this = object();
  names_.push_back(std::move(name));
  items_.push_back(std::move(value));
}

void ccJson::writeTo(std::string& out, int indent, int level) const
{
  switch (kind_) {
  case Kind::Null: out += "null"; return;
  case Kind::Bool: out += number_ != 0 ? "true" : "false"; return;
  case Kind::Number: writeNumber(out, number_); return;
  case Kind::String: writeText(out, text_); return;
  case Kind::Array:
  case Kind::Object: break;
  }
  out += isArray() ? '[' : '{';
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (i)
      out += ',';
    breakLine(out, indent, level + 1);
    if (isObject()) {
      writeText(out, names_[i]);
      out += indent > 0 ? ": " : ":";
    }
    items_[i].writeTo(out, indent, level + 1);
  }
  if (!items_.empty())
    breakLine(out, indent, level);
  out += isArray() ? ']' : '}';
}

std::string ccJson::write(int indent) const
{
  std::string out;
  writeTo(out, indent, 0);
  return out;
}

ccJsonText cfReadJson(std::string_view text, std::size_t sizeLimit)
{
  ccJsonText result;
  if (text.size() > sizeLimit) {
    result.error = "the text is longer than " + std::to_string(sizeLimit) + " bytes";
    return result;
  }
  try {
    result.value = JsonReader(text).read();
  } catch (JsonFault const& fault) {
    result.error = describe(text, fault);
  }
  return result;
}
