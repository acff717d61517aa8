// Exceptions. Every failure that a caller can meet is a class of its own with a fixed number; exceptions can cross a
// process boundary in an archive.
#pragma once

#include "foundation/persistent.h"

#include <exception>
#include <string>

class ccException : public ccPersistent, public std::exception {
public:
  virtual long errorNumber() const = 0;
  std::string message() const;  // may be empty; never throws
  char const* what() const noexcept override { return className(); }
  [[noreturn]] virtual void suicideAndRethrow() = 0;  // heap objects only: throws a copy and deletes the object
  void dispatchSerialize(ccArchive&) override;

protected:
  virtual void message_(std::string& out) const;

private:
  void serialize_(ccArchive&, unsigned char version);
};

// An exception that carries a text, which is its message and is archived.
class ccExceptionWithString : public ccException {
public:
  explicit ccExceptionWithString(std::string text = "") : text_(std::move(text)) {}
  void dispatchSerialize(ccArchive&) override;

protected:
  void message_(std::string& out) const override;

private:
  void serialize_(ccArchive&, unsigned char version);
  std::string text_;
};

// Inside a concrete exception class: everything that it has beyond its base. KRS_DEFINE_EXCEPTION in the source file of the
// class defines it; linking that file registers the class.
#define KRS_EXCEPTION                                                                                                  \
public:                                                                                                                \
  static cc_Instantiator sExemplar;                                                                                    \
  char const* className() const override;                                                                              \
  long errorNumber() const override;                                                                                   \
  [[noreturn]] void suicideAndRethrow() override;                                                                      \
  void dispatchSerialize(ccArchive&) override;                                                                         \
                                                                                                                       \
private:                                                                                                               \
  static ccPersistent* make();                                                                                         \
  void serialize_(ccArchive&, unsigned char version);

// Inside the abstract base of a family of exceptions.
#define KRS_EXCEPTION_FAMILY                                                                                           \
public:                                                                                                                \
  void dispatchSerialize(ccArchive&) override;                                                                         \
                                                                                                                       \
private:                                                                                                               \
  void serialize_(ccArchive&, unsigned char version);

class ccBadPointer : public ccException {
  KRS_EXCEPTION
};
