// Whether the data access layer can be used at all: every operation that is
// about to touch a server asks first.
#pragma once

namespace zov {

/// Version of the data access components, 0 when there are none.
double GetMDACVersion();
/// True for version 2.5 or above; otherwise a critical box says what is missing.
bool CheckMDACVersion();
bool CheckMDACVersion(double version);

}  // namespace zov
