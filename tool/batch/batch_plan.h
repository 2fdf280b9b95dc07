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

/// The pictures among `inputs`, in order, and where in the folder `into` they go under their own names; with
/// another extension where `options` names a format. A folder stands for the pictures in it, by name, and
/// with `recursive` also for those in its folders, which keep their places; hidden files, files that are no
/// pictures and `into` itself are passed over there.
///
/// Throws `Failure`: `usage` when two pictures would get one name or one of the outputs cannot or must not be
/// written, `badInput` when a folder cannot be read or there is no picture at all.
std::vector<BatchJob> planBatch(const std::vector<std::string>& inputs, const std::string& into,
                                bool recursive, const PhotoOptions& options);

} // namespace ze::tool
