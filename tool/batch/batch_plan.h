// Which files a run over many pictures reads and writes.

#pragma once

#include "tool/pictures/photo_options.h"

#include <string>
#include <vector>

namespace ze::tool {

/// One picture of many.
struct BatchJob {
    std::string input;
    std::string output;
};

struct BatchOptions {
    std::string into; ///< The folder to write to.
    bool recursive = false;
    bool skipExisting = false;
};

/// The pictures among `inputs`, in order, and where in the folder `into` they go under their own names; with
/// another extension where `photo` names a format. A folder stands for the pictures in it, by name, and with
/// `recursive` also for those in its folders, which keep their places; hidden files and `into` itself are
/// passed over there, as are files that are no pictures, with a warning. With `skipExisting` pictures are
/// left out whose output exists.
///
/// Throws `Failure`: `usage` when two pictures would get one name or one of the outputs cannot or must not be
/// written, `badInput` when a folder cannot be read or there is no picture at all.
std::vector<BatchJob> planBatch(const std::vector<std::string>& inputs, const BatchOptions& batch,
                                const PhotoOptions& photo);

} // namespace ze::tool
