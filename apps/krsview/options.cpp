#include "apps/krsview/options.h"

#include "apps/common/error_line.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace {

constexpr double kLongestRun = 1e6;  // seconds

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

// The place of a value among the choices of a form, from 0; -1 if it is none of them.
int cf_choice(std::string_view value, std::string_view form)
{
  for (int place = 0;; ++place) {
    std::size_t const end = form.find('|');
    if (form.substr(0, end) == value)
      return place;
    if (end == std::string_view::npos)
      return -1;
    form.remove_prefix(end + 1);
  }
}

bool cf_window(ccViewOptions& options, std::string const& value, char const*)
{
  long width = 0, height = 0;
  if (!cf_two(value, 'x', width, height) || width < 1 || height < 1 || width > cf_maxWindowSide ||
      height > cf_maxWindowSide)
    return false;
  options.givenWidth = width;
  options.givenHeight = height;
  return true;
}

bool cf_depth(ccViewOptions& options, std::string const& value, char const* form)
{
  int depth = 0;
  if (!cf_number(value, depth) || cf_choice(std::to_string(depth), form) < 0)
    return false;
  options.depth = depth;
  return true;
}

bool cf_mag(ccViewOptions& options, std::string const& value, char const*)
{
  long mag = 0;
  if (!cf_number(value, mag))
    return false;
  options.mag = mag;
  return true;
}

bool cf_pan(ccViewOptions& options, std::string const& value, char const*)
{
  double x = 0, y = 0;
  if (!cf_two(value, ',', x, y))
    return false;
  options.pan = std::pair(x, y);
  return true;
}

// The choices of the form are in the order of ccDisplay::MouseMode.
bool cf_mode(ccViewOptions& options, std::string const& value, char const* form)
{
  int const mode = cf_choice(value, form);
  if (mode < 0)
    return false;
  options.mode = mode;
  return true;
}

// The choices of the form are in the order of ccViewOptions::Overlay.
bool cf_overlay(ccViewOptions& options, std::string const& value, char const* form)
{
  int const overlay = cf_choice(value, form);
  if (overlay < 0)
    return false;
  options.overlay = static_cast<ccViewOptions::Overlay>(overlay);
  return true;
}

bool cf_quitAfter(ccViewOptions& options, std::string const& value, char const*)
{
  double seconds = 0;
  if (!cf_number(value, seconds) || seconds < 0 || seconds > kLongestRun)
    return false;
  options.quitAfter = seconds;
  return true;
}

bool cf_draw(ccViewOptions& options, std::string const& value, char const*)
{
  if (!value.empty())
    options.draw.push_back(value);
  return !value.empty();
}

// Any text, also an empty one.
template <std::string ccViewOptions::*Member>
bool cf_text(ccViewOptions& options, std::string const& value, char const*)
{
  options.*Member = value;
  return true;
}

// A file or a folder has a name.
template <std::string ccViewOptions::*Member>
bool cf_name(ccViewOptions& options, std::string const& value, char const*)
{
  options.*Member = value;
  return !value.empty();
}

template <bool ccViewOptions::*Member> bool cf_flag(ccViewOptions& options, std::string const&, char const*)
{
  return options.*Member = true;
}

template <ccViewOptions::Fit Fit> bool cf_fit(ccViewOptions& options, std::string const&, char const*)
{
  options.fit = Fit;
  return true;
}

using Options = ccViewOptions;

constexpr cs_ViewOption kOptions[] = {
    {"--window", "", "WxH", "each 1 to 16384", "client area of the window (default 800x600)", cf_window},
    {"--depth", "", "8|15|16|24|32", "", "bits a pel of a headless screen (default 32)", cf_depth},
    {"--mag", "", "N", "a whole number; -N reduces", "magnification; -N reduces to one N-th", cf_mag},
    {"--fit", "", "", "", "largest whole magnification or reduction that shows all", cf_fit<Options::fitWhole>},
    {"--fit-exact", "", "", "", "fit the image exactly", cf_fit<Options::fitExact>},
    {"--pan", "", "X,Y", "in image pels", "pan in image pels, after mag or fit", cf_pan},
    {"--mode", "", "pointer|pan|zoom-in|zoom-out", "", "what the left button does", cf_mode},
    {"--overlay", "", "none|plane|chroma", "", "no layer, one of its own, or keyed graphics", cf_overlay},
    {"--draw", "", "FILE.json", "", "draw what a file says over the images; may be given several times", cf_draw},
    {"--gallery", "", "", "", "page through all that the library draws", cf_flag<&Options::gallery>},
    {"--page", "", "NAME", "", "the page of the gallery to begin with", cf_text<&Options::page>},
    {"--pages", "", "FOLDER", "", "write the picture of each page into a folder", cf_name<&Options::pages>},
    {"--quit-after", "", "SECONDS", "0 to 1000000", "end after so many seconds", cf_quitAfter},
    {"--script", "", "FILE", "", "do what the lines of a file say (- for standard input)", cf_name<&Options::script>},
    {"--headless", "", "", "", "open no window", cf_flag<&Options::headless>},
    {"--large", "", "", "", "show images that promise far more than their files hold, too", cf_flag<&Options::large>},
    {"--shot", "", "FILE.png", "", "write the picture of the client area", cf_name<&Options::shot>},
    {"--scrollbars", "", "", "", "show scroll bars", cf_flag<&Options::scrollBars>},
    {"--info", "", "", "", "tell about the image and its view, as JSON on standard output", cf_flag<&Options::info>},
    {"--help", "-h", "", "", "tell all this", cf_flag<&Options::help>},
    {"--version", "", "", "", "tell the version", cf_flag<&Options::version>},
};

cs_ViewOption const* cf_find(std::string const& name)
{
  for (cs_ViewOption const& option : kOptions)
    if (name == option.name || name == option.shortName)
      return &option;
  return nullptr;
}

// The form of an option's value, in brackets.
std::string cf_form(cs_ViewOption const& option)
{
  std::string const limits = option.limits;
  return std::string(" (") + option.form + (limits.empty() ? "" : ", " + limits) + ")";
}

using Arguments = std::vector<std::string>;

// One option and its value, which is attached (--name=value) or the next argument.
std::string cf_take(std::string name, Arguments::const_iterator& next, Arguments::const_iterator end,
                    ccViewOptions& options)
{
  std::optional<std::string> attached;
  if (std::size_t const at = name.find('='); at != std::string::npos) {
    attached = name.substr(at + 1);
    name.resize(at);
  }
  cs_ViewOption const* const option = cf_find(name);
  if (!option)
    return "unknown option " + cf_quoted(name);
  if (*option->form == 0) {
    option->take(options, "", "");
    return attached ? name + " takes no value" : "";
  }
  if (!attached && next == end)
    return name + " needs a value" + cf_form(*option);
  std::string const value = attached ? *attached : *next++;
  if (option->take(options, value, option->form))
    return "";
  return "bad value for " + name + ": " + (value.empty() ? "an empty text" : cf_quoted(value)) + cf_form(*option);
}

// What each option allows for itself and not beside the others.
std::string cf_contradiction(ccViewOptions const& options)
{
  if (!options.gallery && (!options.page.empty() || !options.pages.empty()))
    return std::string(options.page.empty() ? "--pages" : "--page") + " goes with --gallery only";
  if (options.gallery && (!options.images.empty() || !options.draw.empty()))
    return "--gallery takes neither images nor --draw";
  return "";
}

}  // namespace

std::span<cs_ViewOption const> cfViewOptions() { return kOptions; }

std::string cfParseViewOptions(std::vector<std::string> const& arguments, ccViewOptions& options)
{
  bool onlyNames = false;
  for (auto next = arguments.begin(); next != arguments.end();) {
    std::string const& argument = *next++;
    if (onlyNames || argument.size() < 2 || argument[0] != '-')
      options.images.push_back(argument);
    else if (argument == "--")
      onlyNames = true;
    else if (std::string const wrong = cf_take(argument, next, arguments.end(), options); !wrong.empty())
      return wrong;
  }
  return cf_contradiction(options);
}
