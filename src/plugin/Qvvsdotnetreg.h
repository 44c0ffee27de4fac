// Registration of everything the package contributes to the host.
#pragma once

namespace qv {

// Registers, in this order: the build action, its three script methods, the options;
// then (at design time only) the property editors; and last the build-kind constants.
// A failure of a host service propagates to the host.
void QvRegisterPackage(bool registerDesignTime);

}  // namespace qv
