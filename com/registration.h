// The entries by which clients find the component: classes by identifier and by name, and the type
// library with its interfaces.
#pragma once

namespace kvdm::com {

enum class Scope { kMachine, kUser };

// Writes all entries; those of an earlier version are replaced. Run-time error when one can't be
// written, such as 70 for want of rights.
void Register(Scope scope);

// Removes all entries, also of a registration that was interrupted. Run-time error when one that is
// there can't be removed.
void Unregister(Scope scope);

}  // namespace kvdm::com
