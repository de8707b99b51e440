// In which order the pictures are shown, and how the last of them ends.
#pragma once

#include <cstddef>
#include <vector>

#include "hosts/cli/build_options.h"

namespace lumafold {

struct ShownPicture {
    std::size_t image; ///< its place among the options' images
    GapValues gap;
};

/// Each picture keeps its own values wherever it is shown. Forth and back shows the first and the last once,
/// unless the whole is to end, which is then on the first.
std::vector<ShownPicture> ShownPictures(const BuildOptions& options);

} // namespace lumafold
