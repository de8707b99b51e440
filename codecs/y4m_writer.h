// Animations to plain films that programs for films read from a pipe: a line of text, then every frame of a
// constant rate as planes of luma and chroma (YUV4MPEG2). Written in pieces, as such a film may be very
// large.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
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

/// Takes the next bytes of a file; false when it will have no more.
using ByteSink = std::function<bool(std::span<const std::uint8_t> bytes)>;

/// A film in the making. Members throw AnimationError when the sink wants no more, and std::bad_alloc.
class Y4mWriter {
public:
    /// `unit` is the time that each frame of the film is seen, in hundredths of a second, at least 1. The
    /// sink must outlive this.
    Y4mWriter(std::int32_t width, std::int32_t height, std::int32_t unit, const Y4mOptions& options,
              const ByteSink& sink);

    /// What is seen next, 0x00BBGGRR row by row from the top, kNoPixel where nothing has been drawn; as often
    /// as the whole unit goes into its time. There is no end to write.
    void Add(std::span<const PixelValue> screen, std::int32_t delay);

private:
    struct Weights {
        std::array<std::int32_t, 3> rgb;
        std::int32_t offset;
        std::uint8_t Of(std::int32_t red, std::int32_t green, std::int32_t blue) const;
    };
    void AddLuma(std::span<const PixelValue> screen);
    void AddChroma(std::span<const PixelValue> screen, const Weights& weights);

    std::int32_t width_, height_, unit_, side_; ///< side_: pixels of a chroma sample across and down
    PixelValue behind_;
    Weights luma_, blueness_, redness_;
    const ByteSink& sink_;
    std::vector<std::uint8_t> frame_;
};

/// One play of the animation, at the rate of the delays' greatest common measure; frames of no delay are not
/// seen. False leaves why in `error` (no frames, none that is seen, the sink wanted no more, no memory).
bool WriteY4m(const Animation& animation, const Y4mOptions& options, const ByteSink& sink,
              std::string& error);

} // namespace lumafold
