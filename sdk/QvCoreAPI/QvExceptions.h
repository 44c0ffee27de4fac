// Exceptions that cross the host/package boundary.
#pragma once

#include <stdexcept>
#include <string>

namespace qv {

// The general exception: carries a fixed English message and nothing else.
class Exception : public std::runtime_error {
 public:
  explicit Exception(const std::string& message);
  ~Exception() override;
  std::string Message() const { return what(); }
};

// Raised by an action to fail itself; the host logs the message and fails the action.
class EFailAction : public Exception {
 public:
  using Exception::Exception;
  ~EFailAction() override;
};

// Raised by TStringList on an index outside the list: "List index out of bounds (N)".
class EStringListError : public Exception {
 public:
  using Exception::Exception;
  ~EStringListError() override;
};

// Raised when a text does not convert to the type asked for (property values, numbers).
class EConvertError : public Exception {
 public:
  using Exception::Exception;
  ~EConvertError() override;
};

}  // namespace qv
