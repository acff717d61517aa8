// What the command line of krsview asks for.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct ccViewOptions {
  enum Fit { noFit, fitWhole, fitExact };
  enum Overlay { noOverlay, plane, chroma };

  long width = 800, height = 600;  // client area of the window
  int depth = 32;
  std::optional<long> mag;
  Fit fit = noFit;
  std::optional<std::pair<double, double>> pan;  // after mag or fit
  Overlay overlay = noOverlay;
  bool headless = false;
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

// Fills options; the result is one line that tells what is wrong, empty if all is well.
[[nodiscard]] std::string cfParseViewOptions(std::vector<std::string> const& arguments, ccViewOptions& options);
char const* cfViewHelp();
