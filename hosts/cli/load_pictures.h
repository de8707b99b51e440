// The pictures named on the command line, read one after another within what memory may hold of all of them.
#pragma once

#include <cstdint>
#include <istream>
#include <string>

#include "image/dib.h"

namespace lumafold {

class PictureLoader {
public:
    /// `matte` lies behind clear pixels; "-" is read from `standardInput`.
    PictureLoader(PixelValue matte, std::istream& standardInput)
        : matte_(matte), standardInput_(standardInput) {}

    /// Throws Failure, with a line that begins with the path.
    OwnedDib Load(const std::string& path);
    /// Another one of a picture that was loaded from there, within the same bounds.
    OwnedDib Copy(DibHandle picture, const std::string& path);

private:
    void Count(DibHandle picture);

    PixelValue matte_;
    std::istream& standardInput_;
    std::uint64_t pixelsLeft_ = std::uint64_t{256} << 20;
};

} // namespace lumafold
