// Scripts: one line, one deed of the operator's hand or one look at the picture. All goes through the window, as
// a hand does.
#pragma once

#include "apps/krsview/viewer.h"

#include <iosfwd>
#include <span>
#include <string>
#include <vector>

struct cs_ScriptLine;

class ccViewScript {
public:
  enum Status { done = 0, cannotWrite = 1, notMet = 3, notUnderstood = 4 };

  ccViewScript(ccViewer&, std::ostream& out, std::ostream& errors, bool headless);

  // Runs all lines. With answers, each line is answered with "ok" once it is done.
  Status run(std::istream&, bool answers);
  static std::span<cs_ScriptLine const> lines();  // every kind of line, in the order of the help

private:
  friend struct cs_ScriptLine;
  struct cs_Given {
    std::vector<std::string> words;
    long number;
    Status status = done;
  };
  struct cs_Press {
    unsigned button = 0, mods = 0;
    long x = 0, y = 0;
  };

  Status line_(std::string const& line, long number);
  // One for each kind of line. False: the words after the first are not understood, and nothing has been done.
  bool move_(cs_Given&);
  bool press_(cs_Given&);
  bool release_(cs_Given&);
  bool double_(cs_Given&);
  bool key_(cs_Given&);
  bool char_(cs_Given&);
  bool wheel_(cs_Given&);
  bool scroll_(cs_Given&);
  bool command_(cs_Given&);
  bool tick_(cs_Given&);
  bool resize_(cs_Given&);
  bool expect_(cs_Given&);
  bool shot_(cs_Given&);
  bool info_(cs_Given&);
  bool lose_(cs_Given&);
  bool comment_(cs_Given&) { return true; }

  static bool readPress_(cs_Given const&, cs_Press&);
  void point_(long x, long y, unsigned extraMods = 0);
  void letGo_(cs_Press const&);
  void pushDown_(cs_Press const&);
  void wait_(unsigned ms);
  std::ostream& complain_(cs_Given const&);

  ccViewer& viewer_;
  std::ostream& out_;
  std::ostream& errors_;
  bool headless_;
  unsigned buttons_ = 0, mods_ = 0;
  // The last press, as far as it may become a double click.
  unsigned pressButton_ = 0;
  long pressX_ = 0, pressY_ = 0, presses_ = 0;
};

// One kind of line: its first word, how the others are written, what it does, and the function that does it.
struct cs_ScriptLine {
  char const* word;
  char const* form;  // | stands between choices, what is in brackets may be left out
  char const* help;
  bool (ccViewScript::*act)(ccViewScript::cs_Given&);
};
