// User-visible strings: a number and a default text, looked up in the dictionary of a module so that an application can
// override them. Literals may be static. All of this may be used from any thread.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

// The texts of one module that an application has replaced. Of two dictionaries of one module the first counts.
class ccDllDictionary {
public:
  explicit ccDllDictionary(char const* module);  // registers itself for as long as it lives
  ccDllDictionary(ccDllDictionary const&) = delete;
  ccDllDictionary& operator=(ccDllDictionary const&) = delete;
  ~ccDllDictionary();

  static ccDllDictionary* find(std::string const& module);  // null if there is none
  void set(long id, std::string text);
  bool lookup(long id, std::string& text) const;

private:
  std::string module_;
  std::map<long, std::string> texts_;
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
  // The dictionary's entry, else the default. Fit for cfFormat: an entry whose conversions differ from the default's in number,
  // order or type is ignored.
  std::string text() const;
  // Replaces %1 to %9, repeats allowed; one without an argument stays; %% gives %; any other % is copied. The conversions of
  // cfFormat mean nothing here, so every entry of the dictionary is used.
  std::string formatString(cc_MsgArgs const&) const;

private:
  bool entry_(std::string& text) const;

  long id_;
  char const* text_;
  char const* module_;
};

// One argument of cfFormat, which knows its own type: a format that asks for another one gets it converted.
class cc_FormatArg {
public:
  template <class T>
    requires(std::is_integral_v<T> || std::is_enum_v<T>)
  cc_FormatArg(T v) : kind_(Kind::Integer), bits_(8 * sizeof(T)), integer_(static_cast<long long>(v))
  {
    if constexpr (std::is_enum_v<T>)
      isSigned_ = std::is_signed_v<std::underlying_type_t<T>>;
    else
      isSigned_ = std::is_signed_v<T>;
  }
  cc_FormatArg(double v) : kind_(Kind::Real), real_(v) {}
  cc_FormatArg(char const* v) : kind_(Kind::Text), text_(v) {}
  cc_FormatArg(std::string const& v) : kind_(Kind::Text), text_(v.c_str()) {}
  cc_FormatArg(void const* v) : kind_(Kind::Address), address_(v) {}

private:
  friend class cc_Formatter;
  enum class Kind { Integer, Real, Text, Address } kind_;
  std::size_t bits_ = 64;
  bool isSigned_ = true;
  long long integer_ = 0;
  double real_ = 0;
  char const* text_ = nullptr;
  void const* address_ = nullptr;
};

std::string cf_format(char const* format, cc_FormatArg const* args, std::size_t count);

// printf with the decimal point of the "C" locale, at most 255 characters. A conversion without an argument is copied. %n
// doesn't exist.
template <class... Args> std::string cfFormat(char const* format, Args const&... args)
{
  cc_FormatArg const list[] = {cc_FormatArg(0), cc_FormatArg(args)...};
  return cf_format(format, list + 1, sizeof...(Args));
}

// The longest number at the start as atof reads it, else 0; always with a decimal point.
double cfParse(std::string const&);
