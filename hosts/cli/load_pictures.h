// The pictures named on the command line, read one after another within what memory may hold of all of them.
#pragma once

#include <cstdint>
#include <string>

#include "image/dib.h"

namespace lumafold {

class PictureLoader {
public:
    /// `matte` lies behind clear pixels.
    explicit PictureLoader(PixelValue matte) : matte_(matte) {}

    /// None, with `error` in one line that begins with the path.
    OwnedDib Load(const std::string& path, std::string& error);

private:
    PixelValue matte_;
    std::uint64_t pixelsLeft_ = std::uint64_t{256} << 20;
};

} // namespace lumafold
