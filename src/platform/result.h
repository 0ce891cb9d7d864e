// Errors as values, for every layer. A function that can fail returns Result<T>: the value, or an
// Error that says what was wrong in one sentence a person can act on. No exceptions cross folders.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace tabelion {

enum class ErrorKind {
  kNotFound,     // no such file, folder, field, …
  kCannotOpen,   // it is there, but cannot be read
  kCannotWrite,  // it cannot be written; what was there before is unharmed
  kWarning,      // it is done, but the text tells what may still go wrong with it
  kLocked,       // another program holds it; the text names the holder
  kNotDatabase,  // readable, but not a file of this system
  kDamaged,      // a file of this system whose bytes contradict each other
  kInvalid,      // an input (text, number, description) that is not accepted
  kRefused,      // accepted as input, but not allowed (limit reached, rights, wrong state)
};

struct Error {
  ErrorKind kind = ErrorKind::kInvalid;
  std::string text;  // UTF-8, one sentence, names what and where
};

template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::move(value)) {}      // NOLINT: a value is a result
  Result(Error error) : state_(std::move(error)) {}  // NOLINT: and so is an error

  bool ok() const { return state_.index() == 0; }
  explicit operator bool() const { return ok(); }

  T& value() & { return std::get<0>(state_); }
  const T& value() const& { return std::get<0>(state_); }
  T&& value() && { return std::get<0>(std::move(state_)); }
  T& operator*() & { return value(); }
  const T& operator*() const& { return value(); }
  T&& operator*() && { return std::move(*this).value(); }
  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }

  const Error& error() const { return std::get<1>(state_); }

 private:
  std::variant<T, Error> state_;
};

struct Done {};
using Status = Result<Done>;

inline Error makeError(ErrorKind kind, std::string text) {
  return Error{kind, std::move(text)};
}

}  // namespace tabelion
