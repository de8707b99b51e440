#include "codecs/y4m_writer.h"

#include <array>
#include <cmath>
#include <numeric>
#include <string_view>

#include "codecs/delays.h"
#include "codecs/writers.h"

namespace lumafold {
namespace {

/// Shares of red and blue in what is seen as light and dark.
struct Shares {
    double red, blue;
};
constexpr Shares SharesOf(YuvMatrix matrix) {
    return matrix == YuvMatrix::Bt601 ? Shares{0.299, 0.114} : Shares{0.2126, 0.0722};
}

YuvMatrix MatrixFor(const Y4mOptions& options, std::int32_t width, std::int32_t height) {
    if (options.matrix) return *options.matrix;
    return width >= 1280 || height > 576 ? YuvMatrix::Bt709 : YuvMatrix::Bt601;
}

constexpr int kFractionBits = 16;

/// For samples of 255 steps, in units of 2^-16, with a sum that is exact: greys are to have no colour.
std::array<std::int32_t, 3> Fixed(double red, double blue, double sum) {
    const auto fixed = [](double share) {
        return static_cast<std::int32_t>(std::lround(share / 255 * (1 << kFractionBits)));
    };
    return {fixed(red), fixed(sum) - fixed(red) - fixed(blue), fixed(blue)};
}

std::int32_t Sample(PixelValue pixel, PixelValue behind, int shift) {
    return static_cast<std::int32_t>((pixel == kNoPixel ? behind : pixel) >> shift & 0xFF);
}

} // namespace

std::uint8_t Y4mWriter::Weights::Of(std::int32_t red, std::int32_t green, std::int32_t blue) const {
    const std::int32_t sum = rgb[0] * red + rgb[1] * green + rgb[2] * blue;
    return static_cast<std::uint8_t>(((offset << kFractionBits) + sum + (1 << (kFractionBits - 1))) >>
                                     kFractionBits);
}

Y4mWriter::Y4mWriter(std::int32_t width, std::int32_t height, const Y4mOptions& options)
    : width_(width), height_(height), side_(options.chroma == Y4mOptions::Chroma::Half420 ? 2 : 1),
      behind_(options.behind), matrix_(MatrixFor(options, width, height)) {
    constexpr std::int32_t kMostSide = 1 << 15;
    CheckSides(width, height, kMostSide, "a side of a film may have 32768 pixels");
    const auto [red, blue] = SharesOf(matrix_);
    luma_ = {Fixed(219 * red, 219 * blue, 219), 16};
    blueness_ = {Fixed(-112 * red / (1 - blue), 112, 0), 128};
    redness_ = {Fixed(112, -112 * blue / (1 - red), 0), 128};
}

void Y4mWriter::AddLuma(std::span<const PixelValue> screen, std::vector<std::uint8_t>& to) const {
    for (const PixelValue pixel : screen)
        to.push_back(
            luma_.Of(Sample(pixel, behind_, 0), Sample(pixel, behind_, 8), Sample(pixel, behind_, 16)));
}

/// The mean of the pixels that share a sample, whose place is their middle.
void Y4mWriter::AddChroma(std::span<const PixelValue> screen, const Weights& weights,
                          std::vector<std::uint8_t>& to) const {
    for (std::int32_t top = 0; top < height_; top += side_) {
        for (std::int32_t left = 0; left < width_; left += side_) {
            std::array<std::int32_t, 3> sums{};
            std::int32_t count = 0;
            for (std::int32_t y = top; y < std::min(top + side_, height_); ++y) {
                for (std::int32_t x = left; x < std::min(left + side_, width_); ++x, ++count) {
                    const PixelValue pixel =
                        screen[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                               static_cast<std::size_t>(x)];
                    for (int c = 0; c < 3; ++c)
                        sums[static_cast<std::size_t>(c)] += Sample(pixel, behind_, 8 * c);
                }
            }
            const auto mean = [&](std::size_t c) { return (sums[c] + count / 2) / count; };
            to.push_back(weights.Of(mean(0), mean(1), mean(2)));
        }
    }
}

void Y4mWriter::Add(std::span<const PixelValue> screen, std::int32_t delay) {
    constexpr std::string_view kMark = "FRAME\n";
    any_ = true;
    if (delay < 1) return;
    std::vector<std::uint8_t> bytes(kMark.begin(), kMark.end());
    const auto samples = [&](std::int32_t side) {
        return static_cast<std::size_t>((side + side_ - 1) / side_);
    };
    bytes.reserve(bytes.size() + screen.size() + 2 * samples(width_) * samples(height_));
    AddLuma(screen, bytes);
    AddChroma(screen, blueness_, bytes);
    AddChroma(screen, redness_, bytes);
    frames_.push_back({delay, std::move(bytes)});
}

std::string Y4mWriter::Head(std::int32_t unit) const {
    constexpr std::int32_t kPerSecond = 100;
    const std::int32_t common = std::gcd(kPerSecond, unit);
    return "YUV4MPEG2 W" + std::to_string(width_) + " H" + std::to_string(height_) + " F" +
           std::to_string(kPerSecond / common) + ":" + std::to_string(unit / common) + " Ip A1:1 " +
           (side_ == 2 ? "C420jpeg" : "C444") +
           " XCOLORRANGE=LIMITED XCOLORMATRIX=" + (matrix_ == YuvMatrix::Bt601 ? "BT601" : "BT709") + "\n";
}

/// The greatest time that every frame is a multiple of.
std::int32_t Y4mWriter::Unit() const {
    if (!any_) throw AnimationError(kNoFrames);
    if (frames_.empty()) throw AnimationError{"no frame of the animation is seen for any time"};
    std::vector<std::int32_t> delays;
    for (const Frame& frame : frames_)
        delays.push_back(frame.delay);
    return CommonDelay(delays);
}

std::vector<std::span<const std::uint8_t>> Y4mWriter::Finish() {
    const std::int32_t unit = Unit();
    constexpr std::int64_t kMostPictures = 1 << 22; // two days at 25 a second
    std::int64_t pictures = 0;
    for (const Frame& frame : frames_)
        pictures += frame.delay / unit;
    if (pictures > kMostPictures) {
        throw AnimationError("a film shows pictures at one rate, and would repeat these " +
                             std::to_string(pictures) +
                             " times: use delays that are multiples of a longer time");
    }
    head_ = Head(unit);
    std::vector<std::span<const std::uint8_t>> pieces{
        {reinterpret_cast<const std::uint8_t*>(head_.data()), head_.size()}};
    for (const Frame& frame : frames_)
        pieces.insert(pieces.end(), static_cast<std::size_t>(frame.delay / unit), frame.bytes);
    return pieces;
}

} // namespace lumafold
