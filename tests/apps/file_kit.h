// What the tests of image files share: folders that vanish, bytes written by hand, PNG files written by libpng itself, and the
// check of hostile bytes.
#pragma once

#include "apps/common/image_file.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

// A folder below the system's temporary one, removed with all it holds.
class TestFolder {
public:
  TestFolder();
  ~TestFolder();
  TestFolder(TestFolder const&) = delete;
  TestFolder& operator=(TestFolder const&) = delete;
  std::filesystem::path path() const { return path_; }
  std::filesystem::path file(std::string const& name) const { return path_ / name; }
  std::filesystem::path file(std::string const& name, Bytes const&) const;  // writes it

private:
  std::filesystem::path path_;
};

Bytes fileBytes(std::filesystem::path const&);
Bytes bytesOf(std::string const&);
Bytes operator+(Bytes, Bytes const&);
ccImageFile read(Bytes const&);  // under the name "test"

// Rows from the top, one inner vector per row.
std::vector<std::vector<unsigned>> greys(ccImageFile const&);
std::vector<std::vector<std::uint32_t>> words(ccImageFile const&);

// Reads the file cut at every length and with every single bit flipped. Fails the test unless each gives an image that can be
// read through or one line of error text. Returns how many of the cut copies gave an image.
int surviveDamage(Bytes const&);

struct TestPng {
  unsigned width = 0, height = 0;
  int depth = 8, colourType = 0;
  bool interlaced = false;
  Bytes rows;                  // packed rows as the file holds them, big-endian
  std::vector<Bytes> palette;  // red, green, blue
  Bytes transparent;           // alpha of the palette's first entries
  int significantGrey = 0;     // writes sBIT
};
Bytes encode(TestPng const&);
