// Animations to plain films that programs for films read from a pipe: a line of text, then every frame of a
// constant rate as planes of luma and chroma (YUV4MPEG2). Written in pieces, as such a film may be very
// large.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "codecs/animation.h"

namespace lumafold {

enum class YuvMatrix { Bt601, Bt709 };

struct Y4mOptions {
    enum class Chroma { Full444, Half420 } chroma = Chroma::Half420;
    /// Without one, what players take a film of this size for: BT.709 from 1280 wide or 577 high on.
    std::optional<YuvMatrix> matrix;
    PixelValue behind = 0; ///< 0x00BBGGRR, where no frame has drawn yet
};

/// A film in the making. Its rate follows from the delays of all frames, so it holds the planes of each, half
/// the size of a true-colour picture with halved chroma, until it is written. Members throw AnimationError
/// and std::bad_alloc.
class Y4mWriter {
public:
    Y4mWriter(std::int32_t width, std::int32_t height, const Y4mOptions& options);

    /// What is seen next, 0x00BBGGRR row by row from the top, kNoPixel where nothing has been drawn; for how
    /// many hundredths of a second. What is seen for no time is left out.
    void Add(std::span<const PixelValue> screen, std::int32_t delay);
    /// The film, piece by piece, at the rate of the delays' greatest common measure, for as long as the
    /// writer is left as it is. Throws when there is no frame or none that is seen.
    std::vector<std::span<const std::uint8_t>> Finish();

private:
    struct Frame {
        std::int32_t delay;
        std::vector<std::uint8_t> bytes; ///< with the mark that each frame begins with
    };
    struct Weights {
        std::array<std::int32_t, 3> rgb;
        std::int32_t offset;
        std::uint8_t Of(std::int32_t red, std::int32_t green, std::int32_t blue) const;
    };
    void AddLuma(std::span<const PixelValue> screen, std::vector<std::uint8_t>& to) const;
    void AddChroma(std::span<const PixelValue> screen, const Weights& weights,
                   std::vector<std::uint8_t>& to) const;
    std::int32_t Unit() const;
    std::string Head(std::int32_t unit) const;

    std::int32_t width_, height_, side_; ///< side_: pixels of a chroma sample across and down
    PixelValue behind_;
    YuvMatrix matrix_;
    Weights luma_, blueness_, redness_;
    bool any_ = false; ///< whether there was a frame, seen or not
    std::vector<Frame> frames_;
    std::string head_;
};

} // namespace lumafold
