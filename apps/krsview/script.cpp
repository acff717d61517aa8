#include "apps/krsview/script.h"

#include "apps/common/error_line.h"
#include "platform/app.h"
#include "platform/messages.h"
#include "platform/testing.h"
#include "platform/window.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <istream>
#include <map>
#include <ostream>
#include <sstream>

namespace {

constexpr std::size_t kLongestLine = 8192;

// As std::getline, but of an endless line it takes one character more than a script may have.
bool cf_readLine(std::istream& in, std::string& line)
{
  line.clear();
  int c = in.get();
  for (; c != std::istream::traits_type::eof() && c != '\n' && line.size() <= kLongestLine; c = in.get())
    line += static_cast<char>(c);
  return c != std::istream::traits_type::eof() || !line.empty();
}

bool cf_whole(std::string const& text, long low, long high, long& value)
{
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() && value >= low && value <= high;
}

constexpr long kFar = 32767;  // positions are 16 bits in messages

bool cf_position(std::vector<std::string> const& words, std::size_t at, long& x, long& y)
{
  return words.size() > at + 1 && cf_whole(words[at], -kFar, kFar, x) && cf_whole(words[at + 1], -kFar, kFar, y);
}

unsigned cf_button(std::string const& name)
{
  return name == "left"     ? plat::held::left
         : name == "right"  ? plat::held::right
         : name == "middle" ? plat::held::middle
                            : 0u;
}

// A virtual key by name: one letter or digit, F1 to F24, or a word.
unsigned cf_keyCode(std::string name)
{
  std::transform(name.begin(), name.end(), name.begin(), [](char c) { return static_cast<char>(std::tolower(c)); });
  namespace key = plat::key;
  static std::map<std::string, unsigned> const words = {
      {"backspace", key::backspace}, {"tab", key::tab}, {"enter", key::enter}, {"return", key::enter},
      {"shift", key::shift}, {"ctrl", key::control}, {"control", key::control}, {"alt", key::alt},
      {"pause", key::pause}, {"capslock", key::capsLock}, {"escape", key::escape}, {"space", key::space},
      {"pageup", key::pageUp}, {"pagedown", key::pageDown}, {"end", key::end}, {"home", key::home},
      {"left", key::left}, {"up", key::up}, {"right", key::right}, {"down", key::down}, {"insert", key::insert},
      {"delete", key::remove}, {"help", key::help}};
  if (auto const found = words.find(name); found != words.end())
    return found->second;
  if (name.size() == 1 && std::isalnum(static_cast<unsigned char>(name[0])))
    return static_cast<unsigned>(std::toupper(static_cast<unsigned char>(name[0])));
  long number = 0;
  if (name.size() > 1 && name[0] == 'f' && cf_whole(name.substr(1), 1, 24, number))
    return static_cast<unsigned>(number) - 1 + key::f1;
  return 0;
}

}  // namespace

ccViewScript::ccViewScript(ccViewer& viewer, std::ostream& out, std::ostream& errors, bool headless)
    : viewer_(viewer), out_(out), errors_(errors), headless_(headless)
{
}

ccViewScript::Status ccViewScript::run(std::istream& in, bool answers)
{
  std::string line;
  for (long number = 1; cf_readLine(in, line); ++number) {
    if (line.size() > kLongestLine) {
      errors_ << "krsview: script line " << number << " is longer than " << kLongestLine << " characters\n";
      return notUnderstood;
    }
    if (!line.empty() && line.back() == '\r')
      line.pop_back();
    if (Status const status = line_(line, number); status != done)
      return status;
    if (answers)
      out_ << "ok" << std::endl;
  }
  return done;
}

ccViewScript::Status ccViewScript::line_(std::string const& line, long number)
{
  std::istringstream in(line);
  std::vector<std::string> words;
  for (std::string word; in >> word;)
    words.push_back(word);
  if (words.empty() || words[0][0] == '#')
    return done;
  Status status = done;
  if (!pointer_(words) && !key_(words) && !other_(words, status, number)) {
    errors_ << "krsview: script line " << number << " is not understood: " << cf_quoted(line) << "\n";
    return notUnderstood;
  }
  plat::testing::drain();
  return status;
}

// ---- The hand ----

void ccViewScript::point_(long x, long y, unsigned extraMods)
{
  plat::Point const screen = plat::platform().windows.clientToScreen(
      viewer_.window(), {static_cast<plat::i32>(x), static_cast<plat::i32>(y)});
  plat::testing::pointer(screen, buttons_, mods_ | extraMods);
}

void ccViewScript::press_(unsigned button, long x, long y, unsigned mods)
{
  point_(x, y, mods);
  buttons_ |= button;
  point_(x, y, mods);
  presses_ = pressButton_ == button && pressX_ == x && pressY_ == y ? presses_ + 1 : 1;
  pressButton_ = button;
  pressX_ = x;
  pressY_ = y;
}

void ccViewScript::release_(unsigned button, long x, long y, unsigned mods)
{
  point_(x, y, mods);
  buttons_ &= ~button;
  point_(x, y, mods);
}

bool ccViewScript::pointer_(std::vector<std::string> const& words)
{
  long x = 0, y = 0;
  if (words[0] == "move") {
    if (words.size() != 3 || !cf_position(words, 1, x, y))
      return false;
    point_(x, y);
    return true;
  }
  if (words[0] == "wheel") {
    long notches = 0;
    if (words.size() != 4 || !cf_whole(words[1], -100, 100, notches) || !cf_position(words, 2, x, y))
      return false;
    plat::Point const screen = plat::platform().windows.clientToScreen(
        viewer_.window(), {static_cast<plat::i32>(x), static_cast<plat::i32>(y)});
    plat::testing::wheel(screen, static_cast<int>(notches) * plat::msg::wheelNotch, mods_);
    return true;
  }
  bool const press = words[0] == "press", release = words[0] == "release", twice = words[0] == "double";
  if (!press && !release && !twice)
    return false;
  unsigned const button = words.size() > 1 ? cf_button(words[1]) : 0;
  if (button == 0 || !cf_position(words, 2, x, y))
    return false;
  unsigned mods = 0;
  for (std::size_t i = 4; i < words.size(); ++i) {
    if (words[i] == "shift")
      mods |= plat::held::shift;
    else if (words[i] == "ctrl")
      mods |= plat::held::control;
    else
      return false;
  }
  if (release) {
    release_(button, x, y, mods);
    return true;
  }
  if (buttons_ & button)
    release_(button, x, y, mods);
  if (press) {
    press_(button, x, y, mods);
    return true;
  }
  // A whole double click. The second press of two at one place is the one that counts as double.
  bool const secondIsNext = pressButton_ == button && pressX_ == x && pressY_ == y && presses_ % 2 == 1;
  for (int i = secondIsNext ? 1 : 0; i < 2; ++i) {
    press_(button, x, y, mods);
    release_(button, x, y, mods);
  }
  return true;
}

bool ccViewScript::key_(std::vector<std::string> const& words)
{
  if (words[0] == "char") {
    if (words.size() != 2 || words[1].size() != 1)
      return false;
    plat::testing::character(static_cast<plat::u8>(words[1][0]));
    return true;
  }
  if (words[0] != "key" || words.size() != 3 || (words[1] != "down" && words[1] != "up"))
    return false;
  unsigned const code = cf_keyCode(words[2]);
  if (code == 0)
    return false;
  bool const down = words[1] == "down";
  unsigned const mod = code == plat::key::shift     ? plat::held::shift
                       : code == plat::key::control ? plat::held::control
                       : code == plat::key::alt     ? plat::held::alt
                                                    : 0u;
  mods_ = down ? mods_ | mod : mods_ & ~mod;
  plat::testing::key(code, down, mods_);
  return true;
}

// ---- Everything else ----

void ccViewScript::wait_(unsigned ms)
{
  presses_ = 0;  // no double click across a pause
  if (headless_) {
    plat::testing::advance(ms);
    return;
  }
  auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
  for (auto now = std::chrono::steady_clock::now(); now < end; now = std::chrono::steady_clock::now())
    plat::pump(static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(end - now).count()) + 1);
}

bool ccViewScript::other_(std::vector<std::string> const& words, Status& status, long number)
{
  std::string const& what = words[0];
  if (what == "tick") {
    long ms = 0;
    if (words.size() != 2 || !cf_whole(words[1], 0, 100000000, ms))
      return false;
    wait_(static_cast<unsigned>(ms));
    return true;
  }
  if (what == "resize") {
    long w = 0, h = 0;
    if (words.size() != 3 || !cf_whole(words[1], 1, 16384, w) || !cf_whole(words[2], 1, 16384, h))
      return false;
    viewer_.resize(w, h);
    return true;
  }
  if (what == "scroll") {
    long code = 0, position = 0;
    if (words.size() < 3 || words.size() > 4 || (words[1] != "horz" && words[1] != "vert") ||
        !cf_whole(words[2], 0, 8, code) || (words.size() == 4 && !cf_whole(words[3], 0, 65535, position)))
      return false;
    plat::testing::send(viewer_.view(), words[1] == "horz" ? plat::msg::hScroll : plat::msg::vScroll,
                        static_cast<plat::WParam>(code | position << 16), 0);
    return true;
  }
  if (what == "command") {
    long id = 0;
    if (words.size() != 2 || !cf_whole(words[1], 0, 65535, id))
      return false;
    plat::testing::send(viewer_.view(), plat::msg::command, static_cast<plat::WParam>(id), 0);
    return true;
  }
  if (what == "expect") {
    long x = 0, y = 0, rgb[3] = {};
    if (words.size() != 6 || !cf_position(words, 1, x, y) || !cf_whole(words[3], 0, 255, rgb[0]) ||
        !cf_whole(words[4], 0, 255, rgb[1]) || !cf_whole(words[5], 0, 255, rgb[2]))
      return false;
    plat::testing::drain();
    plat::u32 const pel =
        plat::testing::pel(viewer_.window(), {static_cast<plat::i32>(x), static_cast<plat::i32>(y)});
    long const seen[3] = {static_cast<long>(pel >> 16 & 255), static_cast<long>(pel >> 8 & 255),
                          static_cast<long>(pel & 255)};
    if (!std::equal(seen, seen + 3, rgb)) {
      errors_ << "krsview: script line " << number << ": pel " << x << " " << y << " is " << seen[0] << " " << seen[1]
              << " " << seen[2] << ", expected " << rgb[0] << " " << rgb[1] << " " << rgb[2] << "\n";
      status = notMet;
    }
    return true;
  }
  if (what == "shot") {
    if (words.size() != 2)
      return false;
    plat::testing::drain();
    if (std::string const error = viewer_.writeShot(words[1]); !error.empty()) {
      errors_ << "krsview: script line " << number << ": " << error << "\n";
      status = cannotWrite;
    }
    return true;
  }
  if (what == "lose" && words.size() == 1) {
    plat::testing::lose(viewer_.view());
    plat::platform().windows.invalidate(viewer_.view(), nullptr, false);
    return true;
  }
  if (what == "info" && words.size() == 1) {
    plat::testing::drain();
    out_ << viewer_.info() << std::endl;
    return true;
  }
  return false;
}
