#include "apps/krsview/options.h"

#include "apps/common/error_line.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

constexpr long kMaxSide = 16384;

template <class T> bool cf_number(std::string_view text, T& value)
{
  if (!text.empty() && text.front() == '+')
    text.remove_prefix(1);
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if constexpr (std::is_floating_point_v<T>)
    if (!std::isfinite(value))
      return false;
  return error == std::errc() && end == text.data() + text.size() && !text.empty();
}

// Two numbers with one character between them.
template <class T> bool cf_two(std::string const& text, char between, T& a, T& b)
{
  std::size_t const at = text.find(between);
  return at != std::string::npos && cf_number(std::string_view(text).substr(0, at), a) &&
         cf_number(std::string_view(text).substr(at + 1), b);
}

}  // namespace

std::string cfParseViewOptions(std::vector<std::string> const& arguments, ccViewOptions& options)
{
  bool onlyNames = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string option = arguments[i];
    if (onlyNames || option.size() < 2 || option[0] != '-') {
      options.images.push_back(option);
      continue;
    }
    if (option == "--") {
      onlyNames = true;
      continue;
    }
    // --name=value is as good as --name value.
    std::optional<std::string> attached;
    if (std::size_t const at = option.find('='); at != std::string::npos) {
      attached = option.substr(at + 1);
      option.resize(at);
    }
    std::string value;
    auto const takeValue = [&]() -> bool {
      if (attached) {
        value = *attached;
        attached.reset();
        return true;
      }
      if (i + 1 >= arguments.size())
        return false;
      value = arguments[++i];
      return true;
    };
    std::string const needs = cf_quoted(option) + " needs a value";
    std::string const bad = "bad value for " + cf_quoted(option) + ": ";

    if (option == "--window") {
      if (!takeValue())
        return needs;
      long width = 0, height = 0;
      if (!cf_two(value, 'x', width, height) || width < 1 || height < 1 || width > kMaxSide || height > kMaxSide)
        return bad + cf_quoted(value) + " (WIDTHxHEIGHT, 1 to 16384)";
      options.givenWidth = width;
      options.givenHeight = height;
    } else if (option == "--depth") {
      if (!takeValue())
        return needs;
      int depth = 0;
      if (!cf_number(value, depth) || (depth != 8 && depth != 15 && depth != 16 && depth != 24 && depth != 32))
        return bad + cf_quoted(value) + " (8, 15, 16, 24 or 32)";
      options.depth = depth;
    } else if (option == "--mag") {
      if (!takeValue())
        return needs;
      long mag = 0;
      if (!cf_number(value, mag))
        return bad + cf_quoted(value) + " (a whole number; -N reduces)";
      options.mag = mag;
    } else if (option == "--pan") {
      if (!takeValue())
        return needs;
      double x = 0, y = 0;
      if (!cf_two(value, ',', x, y))
        return bad + cf_quoted(value) + " (X,Y in image pels)";
      options.pan = std::pair(x, y);
    } else if (option == "--mode") {
      if (!takeValue())
        return needs;
      char const* const modes[] = {"pointer", "pan", "zoom-in", "zoom-out"};
      auto const found = std::find(std::begin(modes), std::end(modes), value);
      if (found == std::end(modes))
        return bad + cf_quoted(value) + " (pointer, pan, zoom-in or zoom-out)";
      options.mode = static_cast<int>(found - std::begin(modes));
    } else if (option == "--overlay") {
      if (!takeValue())
        return needs;
      if (value == "none")
        options.overlay = ccViewOptions::noOverlay;
      else if (value == "plane")
        options.overlay = ccViewOptions::plane;
      else if (value == "chroma")
        options.overlay = ccViewOptions::chroma;
      else
        return bad + cf_quoted(value) + " (none, plane or chroma)";
    } else if (option == "--quit-after") {
      if (!takeValue())
        return needs;
      double seconds = 0;
      if (!cf_number(value, seconds) || seconds < 0 || seconds > 1e6)
        return bad + cf_quoted(value) + " (seconds)";
      options.quitAfter = seconds;
    } else if (option == "--script") {
      if (!takeValue())
        return needs;
      if (value.empty())
        return bad + "an empty file name";
      options.script = value;
    } else if (option == "--shot") {
      if (!takeValue())
        return needs;
      if (value.empty())
        return bad + "an empty file name";
      options.shot = value;
    } else if (option == "--draw") {
      if (!takeValue())
        return needs;
      if (value.empty())
        return bad + "an empty file name";
      options.draw.push_back(value);
    } else if (option == "--page") {
      if (!takeValue())
        return needs;
      options.page = value;
    } else if (option == "--pages") {
      if (!takeValue())
        return needs;
      if (value.empty())
        return bad + "an empty folder name";
      options.pages = value;
    } else if (option == "--gallery")
      options.gallery = true;
    else if (option == "--fit")
      options.fit = ccViewOptions::fitWhole;
    else if (option == "--fit-exact")
      options.fit = ccViewOptions::fitExact;
    else if (option == "--large")
      options.large = true;
    else if (option == "--headless")
      options.headless = true;
    else if (option == "--scrollbars")
      options.scrollBars = true;
    else if (option == "--info")
      options.info = true;
    else if (option == "--help" || option == "-h")
      options.help = true;
    else if (option == "--version")
      options.version = true;
    else
      return "unknown option " + cf_quoted(option);
    if (attached)
      return option + " takes no value";
  }
  if (!options.gallery && (!options.page.empty() || !options.pages.empty()))
    return std::string(options.page.empty() ? "--pages" : "--page") + " goes with --gallery only";
  if (options.gallery && (!options.images.empty() || !options.draw.empty()))
    return "--gallery takes neither images nor --draw";
  return "";
}

char const* cfViewHelp()
{
  return "usage: krsview [options] [IMAGE-or-DIRECTORY ...]\n"
         "Shows images as krsdisp shows them. With no image it takes the bundled samples.\n"
         "\n"
         "  --window WxH     client area of the window (default 800x600)\n"
         "  --depth N        bits a pel of a headless screen: 8, 15, 16, 24 or 32 (default 32)\n"
         "  --mag N          magnification; -N reduces to one N-th\n"
         "  --fit            largest whole magnification or reduction that shows all\n"
         "  --fit-exact      fit the image exactly\n"
         "  --pan X,Y        pan in image pels, after mag or fit\n"
         "  --mode MODE      what the left button does: pointer, pan, zoom-in or zoom-out\n"
         "  --overlay KIND   none, plane (a layer of its own) or chroma (keyed graphics of the application)\n"
         "  --draw FILE.json draw what a file says over the images; may be given several times\n"
         "  --gallery        page through all that the library draws, in place of images\n"
         "  --page NAME      the page of the gallery to begin with\n"
         "  --pages FOLDER   write the picture of each page of the gallery into a folder\n"
         "  --quit-after S   end after so many seconds\n"
         "  --script FILE    do what the lines of a file say (- for standard input)\n"
         "  --headless       open no window\n"
         "  --large          show images that promise far more than their files hold, too\n"
         "  --shot FILE.png  write the picture of the client area\n"
         "  --scrollbars     show scroll bars\n"
         "  --info           tell about the image and its view, as JSON on standard output\n"
         "  --help, --version\n"
         "\n"
         "Keys: Page Down and Page Up step through the images, + and - zoom, 0 fits, 1 is one to one, arrows pan,\n"
         "P, A, I, O choose pointer, pan, zoom in and zoom out, Q quits. The wheel zooms at the cursor.\n"
         "In the gallery the space bar and the left and right arrows turn pages, too.\n"
         "\n"
         "Exit status: 0 all well, 1 a bad option or an output that cannot be written, 2 a file that failed,\n"
         "3 a script's expectation that was not met, 4 a script line that is not understood.\n";
}
