// The enumerations that several classes of the core library take.

#pragma once

namespace Ze {

/// How letters compare. Exactly CaseSensitive compares all units as they are; any other value takes A to Z
/// for a to z, and no other letters for each other.
enum CaseSensitivity : int { CaseInsensitive = 0, CaseSensitive = 1 };

/// Chooses the constructor that allocates and leaves the contents to the caller.
enum Initialization : int { Uninitialized };

} // namespace Ze
