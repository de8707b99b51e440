// The pictures that a page's worker holds, by number: read, brought to the size of the canvas, and looked at
// as the page's own kind of pixels.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "codecs/resize.h"

namespace lumafold {

struct StoredPicture {
    OwnedDib dib;
    std::int32_t fileWidth = 0, fileHeight = 0; ///< before it was resized
};

/// Red, green, blue and alpha of each pixel, row by row from the top, as a page's canvas takes them.
using CanvasPixels = std::vector<std::uint8_t>;
CanvasPixels PixelsOf(const DibHeader& picture);

class PictureStore {
public:
    /// Reads a picture file and brings it to a size; null, with `error` in one line, when it cannot be read
    /// or there is no memory. The size's matte lies behind clear pixels, too. A picture of the same number
    /// before is gone either way.
    const StoredPicture* Add(int number, std::span<const std::uint8_t> file, const SizeRequest& size,
                             std::string& error);
    void Remove(int number) { pictures_.erase(number); }
    /// Null for a number that none has.
    const StoredPicture* Find(int number) const;

private:
    std::map<int, StoredPicture> pictures_;
};

} // namespace lumafold
