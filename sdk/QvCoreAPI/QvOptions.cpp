#include "QvOptions.h"

namespace qv {

const TPropertyTable TQvOptionsObject::PropertyTable{"TQvOptionsObject", nullptr, {}};

TQvOptionsObject::~TQvOptionsObject() = default;

// The base object stores nothing of its own; a freshly loaded object is unmodified.
void TQvOptionsObject::LoadOptions(IQvOptionsReader&) {
  FModified = false;
}
void TQvOptionsObject::SaveOptions(IQvOptionsWriter&) {
  FModified = false;
}

}  // namespace qv
