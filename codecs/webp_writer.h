// Animations to animated WebP files, whole or screen by screen. Only in builds with LUMAFOLD_WEBP.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "codecs/animation.h"

namespace lumafold {

struct WebpOptions {
    std::optional<int> quality; ///< 0 (smallest) to 100; without one every colour is kept as it is
};

/// A file in the making. Members throw AnimationError for what the format cannot hold, and std::bad_alloc.
class WebpWriter {
public:
    static constexpr std::int32_t kMostSide = 16383;

    /// `plays` 0 for ever.
    WebpWriter(std::int32_t width, std::int32_t height, std::int32_t plays, const WebpOptions& options);
    WebpWriter(WebpWriter&&) noexcept;
    ~WebpWriter();

    /// What is seen next, 0x00BBGGRR row by row from the top, kNoPixel where one looks through; and for how
    /// many hundredths of a second. Nothing of it is kept but what it changes.
    void Add(std::span<const PixelValue> screen, std::int32_t delay);
    /// The whole file; there must be a frame. `delays` has one for each frame and takes the place of those
    /// that they came with, which were all above 0 then; empty leaves them. The writer is spent.
    std::vector<std::uint8_t> Finish(std::span<const std::int32_t> delays = {});

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The whole file in memory, or empty with `error` set. Frames may be of any depth.
std::vector<std::uint8_t> EncodeWebp(const Animation& animation, const WebpOptions& options,
                                     std::string& error);

} // namespace lumafold
