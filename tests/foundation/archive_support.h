// Bytes as text, and archives made of them.
#pragma once

#include "foundation/archive.h"

#include <stdexcept>
#include <string>
#include <vector>

inline std::string hexOf(std::vector<unsigned char> const& bytes)
{
  static char const digits[] = "0123456789abcdef";
  std::string text;
  for (unsigned char b : bytes) {
    if (!text.empty())
      text += ' ';
    text += digits[b >> 4];
    text += digits[b & 15];
  }
  return text;
}

inline std::vector<unsigned char> bytesOf(std::string const& hex)
{
  std::vector<unsigned char> bytes;
  int high = -1;
  for (char c : hex) {
    if (c == ' ')
      continue;
    int const digit = c <= '9' ? c - '0' : c - 'a' + 10;
    if (high < 0) {
      high = digit;
    } else {
      bytes.push_back(static_cast<unsigned char>(16 * high + digit));
      high = -1;
    }
  }
  return bytes;
}

// The bytes of one value.
template <class T> std::string written(T value)
{
  ccMemoryArchive ar;
  ar || value;
  return hexOf(ar.data());
}

// The value that the bytes hold; they must all be used.
template <class T> T readBack(std::string const& hex)
{
  ccMemoryArchive ar(bytesOf(hex));
  T value{};
  ar || value;
  if (ar.remaining() != 0)
    throw std::logic_error("bytes are left");
  return value;
}
