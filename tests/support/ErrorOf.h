// The message of the exception a call throws, for tests that pin exact error texts.
#pragma once

#include <functional>
#include <string>

#include "QvExceptions.h"

namespace qvtest {

// What `fn` throws as an `E` (a qv::Exception unless named), or "(no exception)" when it
// returns normally. Other exceptions pass through and fail the test.
template <class E = qv::Exception>
std::string ErrorOf(const std::function<void()>& fn) {
  try {
    fn();
  } catch (const E& e) {
    return e.what();
  }
  return "(no exception)";
}

}  // namespace qvtest
