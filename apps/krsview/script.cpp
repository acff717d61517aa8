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
constexpr long kLongestTick = 100000000;  // milliseconds

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

using Words = std::vector<std::string>;

bool cf_position(Words const& words, std::size_t at, long& x, long& y)
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

plat::Point cf_point(long x, long y) { return {static_cast<plat::i32>(x), static_cast<plat::i32>(y)}; }

}  // namespace

std::span<cs_ScriptLine const> ccViewScript::lines()
{
  using Script = ccViewScript;
  static constexpr char kPressForm[] = "left|middle|right X Y [shift] [ctrl]";
  static constexpr cs_ScriptLine all[] = {
      {"move", "X Y", "the pointer, in client pels", &Script::move_},
      {"press", kPressForm, "a button goes down", &Script::press_},
      {"release", kPressForm, "a button goes up", &Script::release_},
      {"double", kPressForm, "a whole double click", &Script::double_},
      {"key", "down|up NAME", "a key by name: pagedown, left, ctrl, f1, a", &Script::key_},
      {"char", "C", "a character", &Script::char_},
      {"wheel", "N X Y", "N notches, away from the operator", &Script::wheel_},
      {"scroll", "horz|vert CODE [POS]", "a scroll bar message", &Script::scroll_},
      {"command", "ID", "a menu command", &Script::command_},
      {"tick", "MS", "headless: turns the clock, timers fire; else waits", &Script::tick_},
      {"resize", "W H", "the client area", &Script::resize_},
      {"expect", "X Y R G B", "a client pel; a mismatch ends with status 3", &Script::expect_},
      {"shot", "FILE", "writes the picture of the client area", &Script::shot_},
      {"info", "", "tells about the image and its view, as --info", &Script::info_},
      {"lose", "", "the surfaces lose their pels", &Script::lose_},
      {"#", "comment", "nothing", &Script::comment_},
  };
  return all;
}

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

std::ostream& ccViewScript::complain_(cs_Given const& given)
{
  return errors_ << "krsview: script line " << given.number;
}

ccViewScript::Status ccViewScript::line_(std::string const& line, long number)
{
  std::istringstream in(line);
  cs_Given given{{}, number};
  for (std::string word; in >> word;)
    given.words.push_back(word);
  if (given.words.empty())
    return done;
  // A comment needs no space behind its mark.
  std::string const word = given.words[0][0] == '#' ? "#" : given.words[0];
  auto const kinds = lines();
  auto const kind = std::find_if(kinds.begin(), kinds.end(), [&](cs_ScriptLine const& k) { return word == k.word; });
  if (kind == kinds.end()) {
    complain_(given) << " is not understood: " << cf_quoted(line) << "\n";
    return notUnderstood;
  }
  if (!(this->*kind->act)(given)) {
    complain_(given) << " is not understood: " << cf_quoted(line) << " (" << kind->word << (*kind->form ? " " : "")
                     << kind->form << ")\n";
    return notUnderstood;
  }
  if (word != "#")
    plat::testing::drain();
  return given.status;
}

// ---- The hand ----

void ccViewScript::point_(long x, long y, unsigned extraMods)
{
  plat::Point const screen = plat::platform().windows.clientToScreen(viewer_.window(), cf_point(x, y));
  plat::testing::pointer(screen, buttons_, mods_ | extraMods);
}

void ccViewScript::pushDown_(cs_Press const& press)
{
  auto const [button, mods, x, y] = press;
  point_(x, y, mods);
  buttons_ |= button;
  point_(x, y, mods);
  presses_ = pressButton_ == button && pressX_ == x && pressY_ == y ? presses_ + 1 : 1;
  pressButton_ = button;
  pressX_ = x;
  pressY_ = y;
}

void ccViewScript::letGo_(cs_Press const& press)
{
  point_(press.x, press.y, press.mods);
  buttons_ &= ~press.button;
  point_(press.x, press.y, press.mods);
}

// The words of press, release and double.
bool ccViewScript::readPress_(cs_Given const& given, cs_Press& press)
{
  Words const& words = given.words;
  press.button = words.size() > 1 ? cf_button(words[1]) : 0;
  if (press.button == 0 || !cf_position(words, 2, press.x, press.y))
    return false;
  for (std::size_t i = 4; i < words.size(); ++i) {
    if (words[i] == "shift")
      press.mods |= plat::held::shift;
    else if (words[i] == "ctrl")
      press.mods |= plat::held::control;
    else
      return false;
  }
  return true;
}

bool ccViewScript::move_(cs_Given& given)
{
  long x = 0, y = 0;
  if (given.words.size() != 3 || !cf_position(given.words, 1, x, y))
    return false;
  point_(x, y);
  return true;
}

bool ccViewScript::press_(cs_Given& given)
{
  cs_Press press;
  if (!readPress_(given, press))
    return false;
  if (buttons_ & press.button)
    letGo_(press);
  pushDown_(press);
  return true;
}

bool ccViewScript::release_(cs_Given& given)
{
  cs_Press press;
  if (!readPress_(given, press))
    return false;
  letGo_(press);
  return true;
}

// The second press of two at one place is the one that counts as double.
bool ccViewScript::double_(cs_Given& given)
{
  cs_Press press;
  if (!readPress_(given, press))
    return false;
  if (buttons_ & press.button)
    letGo_(press);
  bool const secondIsNext =
      pressButton_ == press.button && pressX_ == press.x && pressY_ == press.y && presses_ % 2 == 1;
  for (int i = secondIsNext ? 1 : 0; i < 2; ++i) {
    pushDown_(press);
    letGo_(press);
  }
  return true;
}

bool ccViewScript::wheel_(cs_Given& given)
{
  long notches = 0, x = 0, y = 0;
  if (given.words.size() != 4 || !cf_whole(given.words[1], -100, 100, notches) || !cf_position(given.words, 2, x, y))
    return false;
  plat::Point const screen = plat::platform().windows.clientToScreen(viewer_.window(), cf_point(x, y));
  plat::testing::wheel(screen, static_cast<int>(notches) * plat::msg::wheelNotch, mods_);
  return true;
}

bool ccViewScript::char_(cs_Given& given)
{
  if (given.words.size() != 2 || given.words[1].size() != 1)
    return false;
  plat::testing::character(static_cast<plat::u8>(given.words[1][0]));
  return true;
}

bool ccViewScript::key_(cs_Given& given)
{
  Words const& words = given.words;
  if (words.size() != 3 || (words[1] != "down" && words[1] != "up"))
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

// ---- The window and the clock ----

bool ccViewScript::scroll_(cs_Given& given)
{
  Words const& words = given.words;
  long code = 0, position = 0;
  if (words.size() < 3 || words.size() > 4 || (words[1] != "horz" && words[1] != "vert") ||
      !cf_whole(words[2], 0, 8, code) || (words.size() == 4 && !cf_whole(words[3], 0, 65535, position)))
    return false;
  plat::testing::send(viewer_.view(), words[1] == "horz" ? plat::msg::hScroll : plat::msg::vScroll,
                      static_cast<plat::WParam>(code | position << 16), 0);
  return true;
}

bool ccViewScript::command_(cs_Given& given)
{
  long id = 0;
  if (given.words.size() != 2 || !cf_whole(given.words[1], 0, 65535, id))
    return false;
  plat::testing::send(viewer_.view(), plat::msg::command, static_cast<plat::WParam>(id), 0);
  return true;
}

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

bool ccViewScript::tick_(cs_Given& given)
{
  long ms = 0;
  if (given.words.size() != 2 || !cf_whole(given.words[1], 0, kLongestTick, ms))
    return false;
  wait_(static_cast<unsigned>(ms));
  return true;
}

bool ccViewScript::resize_(cs_Given& given)
{
  long w = 0, h = 0;
  if (given.words.size() != 3 || !cf_whole(given.words[1], 1, cf_maxWindowSide, w) ||
      !cf_whole(given.words[2], 1, cf_maxWindowSide, h))
    return false;
  viewer_.resize(w, h);
  return true;
}

bool ccViewScript::lose_(cs_Given& given)
{
  if (given.words.size() != 1)
    return false;
  plat::testing::lose(viewer_.view());
  plat::platform().windows.invalidate(viewer_.view(), nullptr, false);
  return true;
}

// ---- Looks at the picture ----

bool ccViewScript::expect_(cs_Given& given)
{
  Words const& words = given.words;
  long x = 0, y = 0, rgb[3] = {};
  if (words.size() != 6 || !cf_position(words, 1, x, y) || !cf_whole(words[3], 0, 255, rgb[0]) ||
      !cf_whole(words[4], 0, 255, rgb[1]) || !cf_whole(words[5], 0, 255, rgb[2]))
    return false;
  plat::testing::drain();
  plat::u32 const pel = plat::testing::pel(viewer_.window(), cf_point(x, y));
  long const seen[3] = {static_cast<long>(pel >> 16 & 255), static_cast<long>(pel >> 8 & 255),
                        static_cast<long>(pel & 255)};
  if (!std::equal(seen, seen + 3, rgb)) {
    complain_(given) << ": pel " << x << " " << y << " is " << seen[0] << " " << seen[1] << " " << seen[2]
                     << ", expected " << rgb[0] << " " << rgb[1] << " " << rgb[2] << "\n";
    given.status = notMet;
  }
  return true;
}

bool ccViewScript::shot_(cs_Given& given)
{
  if (given.words.size() != 2)
    return false;
  plat::testing::drain();
  if (std::string const error = viewer_.writeShot(given.words[1]); !error.empty()) {
    complain_(given) << ": " << error << "\n";
    given.status = cannotWrite;
  }
  return true;
}

bool ccViewScript::info_(cs_Given& given)
{
  if (given.words.size() != 1)
    return false;
  plat::testing::drain();
  out_ << viewer_.info() << std::endl;
  return true;
}
