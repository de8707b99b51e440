// The pictures that a page's worker holds, by number: read, brought to the size of the canvas, and looked at
// as the page's own kind of pixels.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "image/dib.h"

namespace lumafold {

/// How a picture comes to its size: as it is; within the box, in proportion and never larger than it is; in
/// the box with the matte beside it; filling the box, cut at its edges; or by a percentage.
enum class FitMode { AsIs, Most, Contain, Cover, Scale };

struct Fit {
    FitMode mode = FitMode::AsIs;
    std::int32_t width = 1, height = 1; ///< of the box, at least 1
    double percent = 100;               ///< of Scale, above 0
};

struct StoredPicture {
    OwnedDib dib;
    std::int32_t fileWidth = 0, fileHeight = 0; ///< before it was fitted
};

/// Red, green, blue and alpha of each pixel, row by row from the top, as a page's canvas takes them.
using CanvasPixels = std::vector<std::uint8_t>;
CanvasPixels PixelsOf(const DibHeader& picture);

class PictureStore {
public:
    /// Reads a picture file; null, with `error` in one line, when it cannot be read or there is no memory.
    /// `matte` lies behind clear pixels. A picture of the same number before is gone either way.
    const StoredPicture* Add(int number, std::span<const std::uint8_t> file, PixelValue matte, const Fit& fit,
                             std::string& error);
    void Remove(int number) { pictures_.erase(number); }
    /// Null for a number that none has.
    const StoredPicture* Find(int number) const;

private:
    std::map<int, StoredPicture> pictures_;
};

} // namespace lumafold
