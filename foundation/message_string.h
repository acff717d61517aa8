// User-visible strings: a number and a default text, looked up in the dictionary of a module so that an application can
// override them.
#pragma once

#include <string>
#include <vector>

class ccDllDictionary {
public:
  explicit ccDllDictionary(char const* module);  // registers itself for the life of the process
  static ccDllDictionary* find(std::string const& module);
  void set(long id, std::string text);
  bool lookup(long id, std::string& text) const;
};

class cc_MsgArgs {
public:
  cc_MsgArgs& add(std::string const&);
  cc_MsgArgs& add(long);
  cc_MsgArgs& add(int);
  cc_MsgArgs& add(double, char const* format = "%g");
  std::vector<std::string> const& texts() const { return texts_; }

private:
  std::vector<std::string> texts_;
};

class ccStringLiteral {
public:
  ccStringLiteral(long id, char const* text, char const* module = "krsdisp");
  long id() const { return id_; }
  std::string text() const;  // the dictionary's entry, else the default
  // Replaces %1 to %9, repeats allowed; one without an argument stays; %% gives %; any other % is copied.
  std::string formatString(cc_MsgArgs const&) const;

private:
  long id_;
  char const* text_;
  char const* module_;
};

// printf with the decimal point of the "C" locale, at most 255 characters.
std::string cfFormat(char const* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;
// The longest number at the start, else 0; always with a decimal point.
double cfParse(std::string const&);
