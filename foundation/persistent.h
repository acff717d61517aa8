// Base of objects that an archive can write and read back by class name.
#pragma once

#include <cstdint>
#include <string>

class ccArchive;

class ccPersistent {
public:
  virtual ~ccPersistent() = default;

  virtual char const* className() const = 0;  // the full C++ name, such as "ccMenu::cycleDetected"
  virtual void dispatchSerialize(ccArchive&);  // moves the object's state in the archive's direction
  std::uint32_t changeCount() const { return changes_; }

protected:
  // Runs first inside every setter of a persistent class. It marks the change and detaches nothing.
  virtual void mutating_() { ++changes_; }

private:
  std::uint32_t changes_ = 0;
};

// Registers the maker of a persistent class under its name for as long as the process lives. For equal names the
// first registration wins.
class cc_Instantiator {
public:
  cc_Instantiator(char const* name, ccPersistent* (*make)());
  static ccPersistent* make(std::string const& name);  // a new object, null if the name is unknown
};
