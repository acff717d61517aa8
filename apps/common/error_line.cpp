#include "apps/common/error_line.h"

namespace {

constexpr std::size_t mostReason = 1000;  // characters behind the name

unsigned byteOf(char c)
{
  return static_cast<unsigned char>(c);
}

// What a terminal would obey instead of showing it. The character is UTF-8.
bool isObeyed(std::string_view character)
{
  unsigned const first = byteOf(character[0]);
  if (character.size() == 1)
    return first < 0x20 || first == 0x7F;
  unsigned const second = byteOf(character[1]);
  if (character.size() == 2)
    return first == 0xC2 && second < 0xA0;  // U+0080 to U+009F
  unsigned const third = byteOf(character[2]);
  // U+200E, U+200F, U+2028 to U+202E, U+2066 to U+2069.
  return character.size() == 3 && first == 0xE2 &&
         ((second == 0x80 && (third == 0x8E || third == 0x8F || (third >= 0xA8 && third <= 0xAE))) ||
          (second == 0x81 && third >= 0xA6 && third <= 0xA9));
}

}  // namespace

std::size_t cf_utf8Length(std::string_view text)
{
  unsigned const lead = byteOf(text[0]);
  if (lead < 0x80)
    return 1;
  std::size_t const length = lead >= 0xC2 && lead <= 0xDF ? 2 : (lead & 0xF0) == 0xE0 ? 3 : lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
  if (!length || text.size() < length)
    return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byteOf(text[i]) & 0xC0) != 0x80)
      return 0;
  unsigned const second = byteOf(text[1]);
  bool const wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
                     (lead == 0xF4 && second > 0x8F);
  return wrong ? 0 : length;
}

std::string cf_quoted(std::string_view text, std::size_t most)
{
  constexpr std::string_view mark = "...";
  std::string out;
  std::size_t characters = 0, cutAt = 0;  // where the mark begins if the text turns out too long
  while (!text.empty()) {
    if (characters + mark.size() == most)
      cutAt = out.size();
    if (characters == most) {
      out.resize(cutAt);
      return out += mark;
    }
    std::size_t const length = cf_utf8Length(text);
    if (!length || isObeyed(text.substr(0, length)))
      out += '?';
    else
      out += text.substr(0, length);
    text.remove_prefix(length ? length : 1);
    ++characters;
  }
  return out;
}

std::string cf_pathText(std::filesystem::path const& path)
{
  std::u8string const text = path.u8string();
  return std::string(text.begin(), text.end());
}

std::string cf_errorLine(std::string const& name, std::string const& why)
{
  return cf_quoted(name) + ": " + cf_quoted(why, mostReason);
}
