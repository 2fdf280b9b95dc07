// Names that nobody can guess.

#pragma once

namespace ze {

/// Writes `count` random letters and digits and a terminating zero. Any thread may call it.
void writeRandomName(char* name, int count);

} // namespace ze
