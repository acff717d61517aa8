#include "foundation/format.h"

#include "foundation/message_string.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>

namespace {

constexpr std::size_t maxLength = 255;
constexpr int fromArgument = -2;

bool cf_isDigit(char c) { return c >= '0' && c <= '9'; }

char cf_kind(char letter)
{
  if (letter == 0)
    return 0;
  if (std::strchr("di", letter))
    return 'd';
  if (std::strchr("uxXo", letter))
    return 'u';
  if (std::strchr("fFeEgGaA", letter))
    return 'f';
  return std::strchr("csp", letter) ? letter : '\0';
}

// A number or an asterisk. What is more than any text may be long counts as that.
int cf_number(std::string const& s, std::size_t& i, int absent)
{
  if (i < s.size() && s[i] == '*') {
    ++i;
    return fromArgument;
  }
  int n = absent;
  for (; i < s.size() && cf_isDigit(s[i]); ++i)
    n = std::min(std::max(n, 0) * 10 + (s[i] - '0'), static_cast<int>(maxLength));
  return n;
}

// Reads a conversion that begins at the % at i; false if there is none.
bool cf_conversion(std::string const& s, std::size_t& i, cs_FormatPiece& piece)
{
  std::size_t k = i + 1;
  for (; k < s.size() && std::strchr("-+ #0", s[k]) && s[k]; ++k)
    piece.flags += s[k];
  piece.width = cf_number(s, k, -1);
  if (k < s.size() && s[k] == '.')
    piece.precision = cf_number(s, ++k, 0);
  for (; k < s.size() && std::strchr("hljztL", s[k]) && s[k]; ++k)
    piece.length += s[k];
  static char const* const lengths[] = {"", "hh", "h", "l", "ll", "j", "z", "t", "L"};
  bool const known = std::find(std::begin(lengths), std::end(lengths), piece.length) != std::end(lengths);
  piece.letter = k < s.size() ? s[k] : '\0';
  piece.conversion = cf_kind(piece.letter);
  if (!known || !piece.conversion)
    return false;
  piece.source = s.substr(i, k + 1 - i);
  i = k + 1;
  return true;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <class Value> std::string cf_print(std::string const& spec, int precision, Value value)
{
  char text[1024];  // the longest double has 309 digits before its point, and the precision is cut to 255
  int const n = std::snprintf(text, sizeof(text), spec.c_str(), precision, value);
  return std::string(text, static_cast<std::size_t>(std::clamp(n, 0, static_cast<int>(sizeof(text)) - 1)));
}
#pragma GCC diagnostic pop

// Whatever a locale puts between the digits becomes a point.
std::string cf_plainPoint(std::string const& number)
{
  std::string plain;
  bool inPoint = false;
  for (char c : number) {
    bool const usual = cf_isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' || c == '-' || c == ' ';
    if (usual)
      plain += c;
    else if (!inPoint)
      plain += '.';
    inPoint = !usual;
  }
  return plain;
}

std::string cf_padded(std::string text, int width, bool left, bool zeros)
{
  std::size_t const missing = width > static_cast<int>(text.size()) ? static_cast<std::size_t>(width) - text.size() : 0;
  if (left)
    return text + std::string(missing, ' ');
  if (!zeros)
    return std::string(missing, ' ') + text;
  std::size_t at = !text.empty() && std::strchr("+- ", text[0]) ? 1 : 0;
  if (text.size() > at + 1 && text[at] == '0' && (text[at + 1] == 'x' || text[at + 1] == 'X'))
    at += 2;
  return text.insert(at, missing, '0');
}

long long cf_saturated(double v)
{
  if (!(v > -9223372036854775808.0))
    return v == v ? std::numeric_limits<long long>::min() : 0;
  return v < 9223372036854775808.0 ? static_cast<long long>(v) : std::numeric_limits<long long>::max();
}

}  // namespace

std::vector<cs_FormatPiece> cf_formatPieces(std::string const& format)
{
  std::vector<cs_FormatPiece> pieces;
  std::string text;
  auto const endText = [&] {
    if (!text.empty())
      pieces.emplace_back().source = std::move(text);
    text.clear();
  };
  for (std::size_t i = 0; i < format.size();) {
    cs_FormatPiece piece;
    if (format[i] != '%') {
      text += format[i++];
    } else if (format.compare(i, 2, "%%") == 0) {
      text += '%';
      i += 2;
    } else if (cf_conversion(format, i, piece)) {
      endText();
      pieces.push_back(piece);
    } else {
      text += format[i++];
    }
  }
  endText();
  return pieces;
}

std::vector<std::string> cf_formatTypes(std::string const& format)
{
  std::vector<std::string> types;
  for (auto const& piece : cf_formatPieces(format)) {
    if (!piece.conversion)
      continue;
    if (piece.width == fromArgument)
      types.emplace_back("*");
    if (piece.precision == fromArgument)
      types.emplace_back("*");
    types.push_back(piece.length + piece.conversion);
  }
  return types;
}

// Goes through the arguments of one call.
class cc_Formatter {
public:
  cc_Formatter(cc_FormatArg const* args, std::size_t count) : next_(args), left_(count) {}

  std::string convert(cs_FormatPiece piece)
  {
    std::size_t const wanted = 1u + (piece.width == fromArgument) + (piece.precision == fromArgument);
    if (left_ < wanted) {
      left_ = 0;
      return piece.source;
    }
    bool left = piece.flags.find('-') != std::string::npos;
    if (piece.width == fromArgument) {
      int const width = static_cast<int>(std::clamp<long long>(integer_(take_()), -255, 255));
      left = left || width < 0;
      piece.width = width < 0 ? -width : width;
    }
    if (piece.precision == fromArgument)
      piece.precision = static_cast<int>(std::clamp<long long>(integer_(take_()), -1, 255));
    bool zeros = piece.flags.find('0') != std::string::npos;
    std::string const text = one_(piece, take_(), zeros);
    return cf_padded(text, piece.width, left, zeros);
  }

private:
  cc_FormatArg const& take_()
  {
    --left_;
    return *next_++;
  }

  // Without the width. Clears zeros where they don't belong.
  std::string one_(cs_FormatPiece const& piece, cc_FormatArg const& arg, bool& zeros)
  {
    std::string flags;
    for (char c : piece.flags)
      if (std::strchr("+ #", c))
        flags += c;
    switch (piece.conversion) {
    case 'd':
      zeros = zeros && piece.precision < 0;
      return integerText_(piece, arg, flags);
    case 'u':
      zeros = zeros && piece.precision < 0;
      return cf_print("%" + flags + ".*ll" + piece.letter, piece.precision, unsigned_(piece, arg));
    case 'f': {
      double const v = real_(arg);
      zeros = zeros && std::isfinite(v);
      return cf_plainPoint(cf_print("%" + flags + ".*" + piece.letter, piece.precision, v));
    }
    case 'c':
      zeros = false;
      return std::string(1, static_cast<char>(integer_(arg)));
    case 'p':
      zeros = false;
      return address_(arg);
    default:
      zeros = false;
      return text_(arg).substr(0, piece.precision < 0 ? std::string::npos : static_cast<std::size_t>(piece.precision));
    }
  }

  static std::string integerText_(cs_FormatPiece const& piece, cc_FormatArg const& arg, std::string const& flags)
  {
    long long v = integer_(arg);
    if (arg.kind_ == cc_FormatArg::Kind::Integer && !arg.isSigned_ && v < 0)
      return cf_print("%" + flags + ".*llu", piece.precision, static_cast<unsigned long long>(v));
    if (piece.length == "h")
      v = static_cast<short>(v);
    else if (piece.length == "hh")
      v = static_cast<signed char>(v);
    return cf_print("%" + flags + ".*lld", piece.precision, v);
  }

  // As wide as the argument is, at least 32 bits.
  static unsigned long long unsigned_(cs_FormatPiece const& piece, cc_FormatArg const& arg)
  {
    auto const v = static_cast<unsigned long long>(integer_(arg));
    if (piece.length == "h")
      return static_cast<unsigned short>(v);
    if (piece.length == "hh")
      return static_cast<unsigned char>(v);
    return arg.bits_ <= 32 ? static_cast<std::uint32_t>(v) : v;
  }

  static long long integer_(cc_FormatArg const& arg)
  {
    switch (arg.kind_) {
    case cc_FormatArg::Kind::Integer:
      return arg.integer_;
    case cc_FormatArg::Kind::Address:
      return static_cast<long long>(reinterpret_cast<std::uintptr_t>(arg.address_));
    default:
      return cf_saturated(real_(arg));
    }
  }

  static double real_(cc_FormatArg const& arg)
  {
    switch (arg.kind_) {
    case cc_FormatArg::Kind::Real:
      return arg.real_;
    case cc_FormatArg::Kind::Text:
      return arg.text_ ? cfParse(arg.text_) : 0;
    case cc_FormatArg::Kind::Integer:
      return arg.isSigned_ ? static_cast<double>(arg.integer_)
                           : static_cast<double>(static_cast<unsigned long long>(arg.integer_));
    default:
      return 0;
    }
  }

  static std::string address_(cc_FormatArg const& arg)
  {
    auto const v = arg.kind_ == cc_FormatArg::Kind::Text ? reinterpret_cast<std::uintptr_t>(arg.text_)
                                                         : static_cast<std::uintptr_t>(integer_(arg));
    return cf_print("0x%.*llx", 1, static_cast<unsigned long long>(v));
  }

  static std::string text_(cc_FormatArg const& arg)
  {
    switch (arg.kind_) {
    case cc_FormatArg::Kind::Text:
      return arg.text_ ? arg.text_ : "(null)";
    case cc_FormatArg::Kind::Integer:
      return std::to_string(arg.integer_);
    case cc_FormatArg::Kind::Real:
      return cf_plainPoint(cf_print("%.*g", 6, arg.real_));
    default:
      return address_(arg);
    }
  }

  cc_FormatArg const* next_;
  std::size_t left_;
};

std::string cf_format(char const* format, cc_FormatArg const* args, std::size_t count)
{
  std::string out;
  if (!format)
    return out;
  cc_Formatter formatter(args, count);
  for (auto const& piece : cf_formatPieces(format)) {
    out += piece.conversion ? formatter.convert(piece) : piece.source;
    if (out.size() > maxLength) {
      out.resize(maxLength);
      break;
    }
  }
  return out;
}

namespace {

// Is a number, which is out of range, too large or too small? By the place of its first digit. The exponent counts places,
// or bits of which a hexadecimal digit has four.
bool cf_isLarge(char const* p, char const* end, bool hex)
{
  long long place = 0;  // of the first digit that is not 0: 1 stands directly before the point
  bool point = false, found = false;
  char const mark = hex ? 'p' : 'e';
  for (; p < end && (*p | 0x20) != mark; ++p) {
    if (*p == '.') {
      point = true;
    } else if (!found && *p == '0') {
      place -= point ? 1 : 0;
    } else {
      found = true;
      place += point ? 0 : 1;
    }
  }
  long long exponent = 0;
  bool const negative = p + 1 < end && p[1] == '-';
  for (; p < end; ++p)
    if (cf_isDigit(*p))
      exponent = std::min(exponent * 10 + (*p - '0'), 100000000000LL);
  return place * (hex ? 4 : 1) + (negative ? -exponent : exponent) > 0;
}

}  // namespace

double cfParse(std::string const& text)
{
  char const* p = text.data();
  char const* const end = p + text.size();
  while (p < end && *p && std::strchr(" \t\n\v\f\r", *p))
    ++p;
  double sign = 1;
  if (p < end && (*p == '+' || *p == '-'))
    sign = *p++ == '-' ? -1 : 1;
  if (p < end && *p == '-')  // the sign was read already
    return 0;
  double value = 0;
  if (end - p > 2 && *p == '0' && (p[1] == 'x' || p[1] == 'X') && p[2] != '-') {
    auto const hex = std::from_chars(p + 2, end, value, std::chars_format::hex);
    if (hex.ec == std::errc::result_out_of_range)
      value = cf_isLarge(p + 2, hex.ptr, true) ? std::numeric_limits<double>::infinity() : 0.0;
    else if (hex.ec != std::errc())
      value = 0;
    return sign * value;
  }
  auto const read = std::from_chars(p, end, value, std::chars_format::general);
  if (read.ec == std::errc::result_out_of_range)
    value = cf_isLarge(p, read.ptr, false) ? std::numeric_limits<double>::infinity() : 0.0;
  else if (read.ec != std::errc())
    return 0;
  return sign * value;
}
