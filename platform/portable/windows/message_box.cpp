// Message boxes: a window in front of all others, served by a nested loop that serves every other window too.
#include "platform/messages.h"
#include "platform/portable/windows/attempts.h"
#include "platform/portable/windows/menus.h"
#include "platform/portable/windows/popup.h"

#include <algorithm>

namespace plat::portable {
namespace {

constexpr i32 captionHeight = 22, margin = 14, buttonWidth = 76, buttonHeight = 24, gap = 8;

struct Choice {
  int result;
  char const* text;
};

std::vector<Choice> answersOf(unsigned flags)
{
  switch (flags & box::buttonBits) {
  case box::okCancel:
    return {{box::okChosen, "OK"}, {box::cancelled, "Cancel"}};
  case box::abortRetryIgnore:
    return {{box::aborted, "Abort"}, {box::retried, "Retry"}, {box::ignored, "Ignore"}};
  case box::yesNoCancel:
    return {{box::yes, "Yes"}, {box::no, "No"}, {box::cancelled, "Cancel"}};
  case box::yesNo:
    return {{box::yes, "Yes"}, {box::no, "No"}};
  case box::retryCancel:
    return {{box::retried, "Retry"}, {box::cancelled, "Cancel"}};
  default:
    return {{box::okChosen, "OK"}};
  }
}

}  // namespace

class Box {
public:
  Box(HWND owner, std::string const& text, std::string const& caption, unsigned flags)
      : text_(text), caption_(caption), answers_(answersOf(flags)),
        focused_(std::min<std::size_t>(flags >> box::defaultShift & box::buttonBits, answers_.size() - 1))
  {
    Size const body = textSize(text, /*prefix=*/false);
    i32 const buttons = static_cast<i32>(answers_.size()) * (buttonWidth + gap) - gap;
    size_ = {std::max({body.w, buttons, textSize(caption, /*prefix=*/false).w}) + 2 * margin,
             captionHeight + 3 * margin + body.h + buttonHeight};
    textRect_ = {margin, captionHeight + margin, size_.w - margin, captionHeight + margin + body.h};
    firstButton_ = {(size_.w - buttons) / 2, size_.h - margin - buttonHeight};
    standing.push_back(this);
    try {
      show(owner);
    } catch (...) {
      standing.pop_back();
      throw;
    }
  }
  Box(Box const&) = delete;
  Box& operator=(Box const&) = delete;
  ~Box() { std::erase(standing, this); }

  HWND window() const { return window_; }
  std::string const& text() const { return text_; }
  std::string const& caption() const { return caption_; }
  int result() const { return result_; }

  int cancelled() const
  {
    for (Choice const& answer : answers_)
      if (answer.result == box::cancelled)
        return box::cancelled;
    return answers_.size() == 1 ? box::okChosen : 0;
  }

  static LResult proc(HWND window, unsigned message, WParam wParam, LParam lParam)
  {
    for (Box* box : standing)
      if (box->window_ == window && box->take(message, wParam, lParam))
        return message == msg::eraseBackground;
    return Core::instance().callProc(nullptr, window, message, wParam, lParam);
  }

  static std::vector<Box*> standing;

private:
  void show(HWND owner)
  {
    Core& core = Core::instance();
    HWND const host = popupHost(owner, size_);
    Rect const frame = host ? shifted(core.clientRect(host), core.clientToScreen(host, {}))
                            : Rect{0, 0, core.screenSize().w, core.screenSize().h};
    Point const at{frame.left + (frame.width() - size_.w) / 2, frame.top + (frame.height() - size_.h) / 2};
    window_ = openPopup(host, {at.x, at.y, at.x + size_.w, at.y + size_.h}, &proc);
    core.invalidate(window_, nullptr, false);
    core.setFocus(window_);
  }

  Rect button(std::size_t index) const
  {
    i32 const left = firstButton_.x + static_cast<i32>(index) * (buttonWidth + gap);
    return {left, firstButton_.y, left + buttonWidth, firstButton_.y + buttonHeight};
  }

  void redraw() { Core::instance().invalidate(window_, nullptr, false); }

  // True if the box has done all that the message asks for.
  bool take(unsigned message, WParam wParam, LParam lParam)
  {
    Point const at{static_cast<std::int16_t>(lParam & 0xffff), static_cast<std::int16_t>(lParam >> 16 & 0xffff)};
    switch (message) {
    case msg::eraseBackground:
      return true;
    case msg::paint:
      paint();
      return false;
    case msg::leftDown:
    case msg::leftDouble:
      press(at);
      return true;
    case msg::mouseMove:
      drag(at);
      return true;
    case msg::leftUp:
      release(at);
      return true;
    case msg::captureChanged:
      held_ = none;
      moving_ = false;
      redraw();
      return true;
    case msg::keyDown:
      key(static_cast<unsigned>(wParam));
      return true;
    case msg::close:
      answer(cancelled());
      return true;
    default:
      return false;
    }
  }

  // The first one holds.
  void answer(int result) { result_ = result_ ? result_ : result; }

  void press(Point at)
  {
    grip_ = at;
    moving_ = at.y < captionHeight;
    for (std::size_t i = 0; i < answers_.size(); ++i)
      if (contains(button(i), at))
        held_ = focused_ = i;
    if (moving_ || held_ != none)
      Core::instance().setCapture(window_);
    redraw();
  }

  void drag(Point at)
  {
    if (!moving_)
      return;
    Core& core = Core::instance();
    HWND const host = core.parent(window_);
    Point const origin = host ? core.clientToScreen(host, {}) : Point{};
    Rect const place = shifted(core.windowRect(window_), {at.x - grip_.x - origin.x, at.y - grip_.y - origin.y});
    core.place(window_, &place, show::keep);
  }

  void release(Point at)
  {
    std::size_t const held = held_;
    if (moving_ || held != none)
      Core::instance().releaseCapture();
    if (held != none && contains(button(held), at))
      answer(answers_[held].result);
  }

  void key(unsigned virtualKey)
  {
    std::size_t const count = answers_.size();
    switch (virtualKey) {
    case key::enter:
    case key::space:
      return answer(answers_[focused_].result);
    case key::escape:
      return answer(cancelled());
    case key::tab:
    case key::right:
      focused_ = (focused_ + 1) % count;
      return redraw();
    case key::left:
      focused_ = (focused_ + count - 1) % count;
      return redraw();
    default:
      return;
    }
  }

  void paint() const
  {
    WindowPainter painter(window_);
    if (!painter)
      return;
    frame3d(*painter, {0, 0, size_.w, size_.h}, PopupColors::face, PopupColors::edge);
    painter->fillRect({1, 1, size_.w - 1, captionHeight}, PopupColors::caption);
    painter->textColors(PopupColors::captionText, 0, /*opaque=*/false);
    Rect caption{margin, 3, size_.w - margin, captionHeight};
    painter->drawText(caption_, caption, text::noPrefix);
    painter->textColors(PopupColors::text, 0, /*opaque=*/false);
    Rect body = textRect_;
    painter->drawText(text_, body, text::noPrefix);
    for (std::size_t i = 0; i < answers_.size(); ++i) {
      Rect const area = button(i);
      bool const down = held_ == i;
      frame3d(*painter, area, down ? PopupColors::faint : PopupColors::back,
              i == focused_ ? PopupColors::hot : PopupColors::edge);
      Rect label{area.left, area.top + 4, area.right, area.bottom};
      painter->drawText(answers_[i].text, label, text::center | text::noPrefix);
    }
  }

  static constexpr std::size_t none = ~std::size_t(0);

  std::string text_, caption_;
  std::vector<Choice> answers_;
  std::size_t focused_, held_ = none;
  Size size_;
  Rect textRect_;
  Point firstButton_;
  HWND window_ = {};
  bool moving_ = false;
  Point grip_;
  int result_ = 0;
};

std::vector<Box*> Box::standing;

// The answer of the operator, or what a test has prepared.
int Menus::serve(Box& box)
{
  Core& core = Core::instance();
  Answer prepared;
  {
    std::lock_guard const lock(mutex_);
    if (!boxAnswers_.empty()) {
      prepared = std::move(boxAnswers_.front());
      boxAnswers_.pop_front();
      prepared.waiting = true;
    }
    lastBox_ = {box.text(), box.caption()};
  }
  if (prepared.waiting) {
    core.drain();
    if (prepared.meanwhile)
      prepared.meanwhile();
    core.drain();
    return prepared.result;
  }
  while (!box.result() && core.isWindow(box.window()) && core.modalRound()) {
  }
  return box.result() ? box.result() : box.cancelled();
}

int Menus::messageBox(HWND owner, std::string const& text, std::string const& caption, unsigned flags)
{
  Core& core = Core::instance();
  if (!core.onUi()) {
    int result = 0;
    core.callOnUi([&] { result = messageBox(owner, text, caption, flags); });
    return result;
  }
  HWND const focus = core.focus();
  Box box(owner, text, caption, flags);
  Attempts all;
  int result = 0;
  all.run([&] { result = serve(box); });
  all.run([&] { core.destroy(box.window()); });
  if (focus && core.isWindow(focus))
    all.run([&] { core.setFocus(focus); });
  all.finish();
  return result;
}

}  // namespace plat::portable
