// The conversions of a printf format. Internal to message strings.
#pragma once

#include <string>
#include <vector>

// One conversion, or a piece of text between conversions.
struct cs_FormatPiece {
  std::string source;     // as it stands in the format
  char conversion = 0;    // d u c s f p; 0 for text
  char letter = 0;        // the conversion as written
  std::string flags;      // of "-+ #0"
  std::string length;     // hh h l ll j z t L
  int width = -1;         // -1 none, -2 from an argument
  int precision = -1;     // likewise
};

// A % that begins no conversion is text; %% is the text "%". The conversion 'n' is none.
std::vector<cs_FormatPiece> cf_formatPieces(std::string const& format);

// The types of the arguments that a format asks for, in order: one text for each.
std::vector<std::string> cf_formatTypes(std::string const& format);
