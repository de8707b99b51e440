// The pictures named on the command line, read one after another within what memory may hold of all of them.
#pragma once

#include <cstdint>
#include <istream>
#include <string>

#include "codecs/resize.h"

namespace lumafold {

class PictureLoader {
public:
    /// `matte` lies behind clear pixels, `size` is what every picture comes to; "-" is read from
    /// `standardInput`.
    PictureLoader(PixelValue matte, const SizeRequest& size, std::istream& standardInput)
        : matte_(matte), size_(size), standardInput_(standardInput) {}

    /// Throws Failure, with a line that begins with the path.
    OwnedDib Load(const std::string& path);
    /// Another one of a picture that was loaded from there, within the same bounds.
    OwnedDib Copy(DibHandle picture, const std::string& path);

private:
    void Count(DibHandle picture);

    PixelValue matte_;
    SizeRequest size_;
    std::istream& standardInput_;
    std::uint64_t pixelsLeft_ = std::uint64_t{256} << 20;
};

} // namespace lumafold
