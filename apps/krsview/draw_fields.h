// The fields of one JSON object of a draw file, each asked for by its name and its kind of value. Whatever is missing, of the
// wrong kind or never asked for is a cc_DrawFault, whose text names the object, the field and what was expected.
#pragma once

#include "apps/common/json.h"
#include "canvas/color.h"
#include "foundation/vector.h"

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

struct cc_DrawFault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class cc_DrawFields {
public:
  // where names the object in messages, as "entry 3". Both must outlive this.
  cc_DrawFields(ccJson const& object, std::string where);

  bool has(std::string const& name) const { return object_.has(name); }
  ccJson const& value(std::string const& name);  // null if there is none
  std::string place(std::string const& name) const { return where_ + ": " + name; }
  std::string const& where() const { return where_; }
  void kind(std::string const&);  // is named behind where from now on
  [[noreturn]] void fail(std::string const& name, std::string const& expected) const;

  double number(std::string const& name);
  double number(std::string const& name, double otherwise) { return has(name) ? number(name) : otherwise; }
  double length(std::string const& name);  // at least 0
  ccRadian angle(std::string const& name);  // in degrees
  ccRadian angle(std::string const& name, double otherwise);
  long whole(std::string const& name, long low, long high);
  long whole(std::string const& name, long low, long high, long otherwise)
  {
    return has(name) ? whole(name, low, high) : otherwise;
  }
  bool flag(std::string const& name, bool otherwise);
  std::string text(std::string const& name);
  // One of the words, as its index.
  long word(std::string const& name, std::vector<std::string> const& words, long otherwise);
  ccPoint point(std::string const& name);
  ccPoint point(std::string const& name, ccPoint const& otherwise) { return has(name) ? point(name) : otherwise; }
  ccPair<long> pels(std::string const& name);  // two whole numbers
  std::vector<ccVector<2>> points(std::string const& name);
  std::vector<double> numbers(std::string const& name);
  ccColor color(std::string const& name);
  ccColor color(std::string const& name, ccColor const& otherwise) { return has(name) ? color(name) : otherwise; }
  ccJson const& array(std::string const& name);  // not empty
  ccJson const& object(std::string const& name);

  void done() const;  // fails if there is a field that nobody asked for

private:
  ccJson const& present_(std::string const& name);

  ccJson const& object_;
  std::string where_;
  std::set<std::string> known_;
};

// One of the 16 names, "#rrggbb" or a palette index; false if the value is none of these.
bool cfDrawColor(ccJson const&, ccColor&);
inline constexpr char const* kDrawColorExpected = "a colour: a name as red or dkGreen, \"#rrggbb\" or a palette index 0 to 255";
