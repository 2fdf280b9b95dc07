// How a device is opened.

#pragma once

namespace Ze {

/// Bits of an open mode, which is passed as an int. Reading and writing are allowed by ReadOnly and WriteOnly
/// alone; the other bits say how, and give no access by themselves.
enum OpenModeFlag : int {
    ReadOnly = 0x1,                   ///< Reading is allowed.
    WriteOnly = 0x2,                  ///< Writing is allowed. Alone it also empties a file.
    ReadWrite = ReadOnly | WriteOnly, ///< Both; a file keeps its contents.
    Append = 0x4,                     ///< Every write goes to the end.
    Truncate = 0x8, ///< A file is emptied when it is opened; needs WriteOnly, not with Append.
    Text = 0x10,    ///< Carriage returns (13) are dropped on reading.
};

} // namespace Ze
