#include "apps/common/error_line.h"

std::string cf_pathText(std::filesystem::path const& path)
{
  std::u8string const text = path.u8string();
  return std::string(text.begin(), text.end());
}

std::string cf_errorLine(std::string const& name, std::string const& why)
{
  std::string line = name + ": " + why;
  for (char& c : line)
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7f')
      c = '?';
  return line;
}
