#include "QvExceptions.h"

namespace qv {

// Out-of-line destructors anchor the type information in libQvCoreAPI, so that a
// package and the host catch the same exception types.
Exception::Exception(const std::string& message) : std::runtime_error(message) {}
Exception::~Exception() = default;
EFailAction::~EFailAction() = default;
EStringListError::~EStringListError() = default;
EConvertError::~EConvertError() = default;

}  // namespace qv
