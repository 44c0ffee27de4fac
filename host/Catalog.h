// What `qvhost actions` prints: the loaded packages' registrations.
#pragma once

#include <string>

#include "HostServices.h"

namespace qvhost {

// The registrations as text, one section per kind, each in registration order: actions (class,
// caption, category, icon), script methods with signatures, constants, global objects,
// enumerations with their values and options classes; with `designTime` also the property
// editors, action pages and option pages. An empty section reads "(none)".
std::string DescribeRegistrations(const THostServices& services, bool designTime);

// What `qvhost describe` prints: every published property of `action` (a fresh instance of
// `type`) in declaration order with its type, default, enumeration values, whether it is
// stored, and the alias and help texts the action gives; as text or as one JSON object.
std::string DescribeAction(const TActionRegistration& type, const qv::TCustomQvAction& action,
                           bool json);

}  // namespace qvhost
