// JSON texts (RFC 8259): a value, a strict reader and a writer. Texts are UTF-8. Numbers are doubles, so whole numbers are
// exact up to 2^53. A value is a plain value: copies are deep, and nothing here is synchronised.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

class ccJson {
public:
  enum class Kind { Null, Bool, Number, String, Array, Object };

  ccJson() = default;  // null
  ccJson(std::nullptr_t) {}
  template <class N, class = std::enable_if_t<std::is_arithmetic_v<N>>>
  ccJson(N value)
      : kind_(std::is_same_v<N, bool> ? Kind::Bool : Kind::Number), number_(static_cast<double>(value))
  {
  }
  ccJson(std::string text) : kind_(Kind::String), text_(std::move(text)) {}
  ccJson(char const* text) : ccJson(std::string(text)) {}
  static ccJson array() { return ccJson(Kind::Array); }
  static ccJson object() { return ccJson(Kind::Object); }

  Kind kind() const { return kind_; }
  bool isNull() const { return kind_ == Kind::Null; }
  bool isBool() const { return kind_ == Kind::Bool; }
  bool isNumber() const { return kind_ == Kind::Number; }
  bool isString() const { return kind_ == Kind::String; }
  bool isArray() const { return kind_ == Kind::Array; }
  bool isObject() const { return kind_ == Kind::Object; }

  // What a value of another kind answers is given by the caller; an absent one is null. So a chain of questions to a text
  // that somebody else wrote needs no checks between.
  bool boolean(bool otherwise = false) const { return isBool() ? number_ != 0 : otherwise; }
  double number(double otherwise = 0) const { return isNumber() ? number_ : otherwise; }
  std::string text(std::string const& otherwise = "") const { return isString() ? text_ : otherwise; }

  std::size_t size() const { return items_.size(); }           // of an array or object, else 0
  ccJson const& at(std::size_t index) const;                   // null if there is none
  std::string const& name(std::size_t index) const;            // of an object's member, in the order of the text
  bool has(std::string_view name) const { return find(name) < size(); }
  ccJson const& operator[](std::string_view name) const { return at(find(name)); }

  // Both make an array or object of this value first if it is something else, and return this value.
  ccJson& push(ccJson item);
  ccJson& set(std::string_view name, ccJson value);  // replaces or appends
  void append(std::string name, ccJson value);       // for a name that is known to be new

  // Without indent on one line, else on many, ending without a line break. Doubles are written as the shortest text that gives
  // them back; infinities and NaN, which JSON does not know, as null; bytes that are no UTF-8 as U+FFFD.
  std::string write(int indent = 0) const;

  friend bool operator==(ccJson const&, ccJson const&) = default;  // objects with the same order of members

private:
  explicit ccJson(Kind kind) : kind_(kind) {}
  std::size_t find(std::string_view name) const;
  void writeTo(std::string& out, int indent, int level) const;

  Kind kind_ = Kind::Null;
  double number_ = 0;
  std::string text_;
  std::vector<ccJson> items_;
  std::vector<std::string> names_;  // of an object's items
};

constexpr int cfJsonDepthLimit = 64;                   // arrays and objects within each other
constexpr std::size_t cfJsonSizeLimit = 8u << 20;      // bytes of a text
constexpr std::size_t cfJsonValueLimit = 1'000'000;    // values in a text, within each other or not
constexpr std::size_t cfJsonStringLimit = 65536;       // bytes of a string or name; one character more may pass

// A value, or one line like "line 3, column 7: a comma or ] is expected". Columns count characters from 1.
struct ccJsonText {
  ccJson value;
  std::string error;  // empty with a value
  explicit operator bool() const { return error.empty(); }
};

// Strict: one value, no comments, no trailing commas, no doubled names, no numbers beyond the range of doubles. Numbers too
// small become 0.
ccJsonText cfReadJson(std::string_view text, std::size_t sizeLimit = cfJsonSizeLimit);
