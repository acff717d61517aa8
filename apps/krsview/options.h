// What the command line of krsview asks for.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

inline constexpr long cf_maxWindowSide = 16384;

struct ccViewOptions {
  enum Fit { noFit, fitWhole, fitExact };
  enum Overlay { noOverlay, plane, chroma };

  std::optional<long> givenWidth, givenHeight;
  long width() const { return givenWidth.value_or(gallery ? 640 : 800); }  // client area of the window
  long height() const { return givenHeight.value_or(gallery ? 480 : 600); }
  int depth = 32;
  std::optional<long> mag;
  Fit fit = noFit;
  std::optional<std::pair<double, double>> pan;  // after mag or fit
  std::optional<Overlay> overlay;  // not given: a plane where something is drawn on it, else none
  std::vector<std::string> draw;   // draw files
  bool gallery = false;
  std::string page;   // of the gallery, by name; empty for the first
  std::string pages;  // folder for the pictures of all pages, empty for none
  bool headless = false;
  bool large = false;  // images may promise far more than their files hold
  bool scrollBars = false;
  bool info = false;
  bool help = false;
  bool version = false;
  int mode = 0;                     // ccDisplay::MouseMode
  std::optional<double> quitAfter;  // seconds
  std::string script;               // file name, "-" for standard input, empty for none
  std::string shot;  // file name of the picture, empty for none
  std::vector<std::string> images;
};

// One option: how it is written, what it does, and the function that takes its value.
struct cs_ViewOption {
  char const* name;
  char const* shortName;  // may be empty
  // Of the value, as docs and messages write it; empty if there is none. | stands between choices.
  char const* form;
  char const* limits;  // what the form does not tell of a good value; may be empty
  char const* help;
  bool (*take)(ccViewOptions&, std::string const& value, char const* form);  // false: the value is bad
};

std::span<cs_ViewOption const> cfViewOptions();  // all, in the order of the help

// Fills options; the result is one line that tells what is wrong, empty if all is well.
[[nodiscard]] std::string cfParseViewOptions(std::vector<std::string> const& arguments, ccViewOptions& options);
