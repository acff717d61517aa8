// Scripts: one line, one deed of the operator's hand or one look at the picture. All goes through the window, as a hand does.
#pragma once

#include "apps/krsview/viewer.h"

#include <iosfwd>
#include <string>
#include <vector>

class ccViewScript {
public:
  enum Status { done = 0, cannotWrite = 1, notMet = 3, notUnderstood = 4 };

  ccViewScript(ccViewer&, std::ostream& out, std::ostream& errors, bool headless);

  // Runs all lines. With answers, each line is answered with "ok" once it is done.
  Status run(std::istream&, bool answers);

private:
  Status line_(std::string const& line, long number);
  bool pointer_(std::vector<std::string> const& words);
  bool key_(std::vector<std::string> const& words);
  bool other_(std::vector<std::string> const& words, Status& status, long number);
  void point_(long x, long y, unsigned extraMods = 0);
  void press_(unsigned button, long x, long y, unsigned mods);
  void release_(unsigned button, long x, long y, unsigned mods);
  void wait_(unsigned ms);

  ccViewer& viewer_;
  std::ostream& out_;
  std::ostream& errors_;
  bool headless_;
  unsigned buttons_ = 0, mods_ = 0;
  // The last press, as far as it may become a double click.
  unsigned pressButton_ = 0;
  long pressX_ = 0, pressY_ = 0, presses_ = 0;
};
