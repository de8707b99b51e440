#include "tests/support/animations.h"

#include <random>

#include "tests/support/pictures.h"

namespace lumafold::test {

void AddFrame(Animation& to, FrameKind kind, const std::function<unsigned(int x, int y)>& pixelAt) {
    const std::int32_t width = kind.width == 0 ? to.width : kind.width;
    const std::int32_t height = kind.height == 0 ? to.height : kind.height;
    to.frames.push_back(
        {PictureOf(width, height, kind.bits, pixelAt, &to.palette), kind.delay, kind.transparent});
}

Animation EmptyAnimation(std::int32_t width, std::int32_t height, int bits) {
    std::mt19937 random(5);
    Animation made;
    made.width = width;
    made.height = height;
    made.paletteBits = bits;
    for (Rgb& colour : made.palette)
        colour = RgbOf(static_cast<PixelValue>(random()));
    return made;
}

namespace {

/// Noise, a pattern, changes here and there, one spot, nothing at all. `hole` is what marks unchanged pixels.
Animation Busy(std::int32_t width, std::int32_t height, int bits, int depth, std::int32_t hole) {
    std::mt19937 random(9);
    Animation made = EmptyAnimation(width, height, std::min(bits, 8));
    const unsigned values = bits == 24 ? 1U << 24 : hole > 0 ? static_cast<unsigned>(hole) : 1U << bits;
    const auto noise = [&](int, int) { return static_cast<unsigned>(random()) % values; };
    const auto left = static_cast<unsigned>(hole);
    AddFrame(made, {depth, 0}, noise);
    AddFrame(made, {depth, 7, hole},
             [&](int x, int y) { return static_cast<unsigned>(x * 70001 + y) % values; });
    if (hole >= 0) {
        AddFrame(made, {depth, 65535, hole},
                 [&](int x, int y) { return random() % 3 == 0 ? noise(x, y) : left; });
        AddFrame(made, {depth, 70000, hole},
                 [&](int x, int y) { return x == width / 2 && y == height - 1 ? 1U : left; });
        AddFrame(made, {depth, 7, hole}, [&](int, int) { return left; });
    }
    AddFrame(made, {depth, -3}, noise);
    return made;
}

/// The second frame draws what is a hole in the first.
Animation HolesWithNothingBehind(unsigned values, int depth) {
    Animation made = EmptyAnimation(20, 16, 8);
    const auto pattern = [&](int x, int y) { return static_cast<unsigned>(x * 16 + y) % values; };
    AddFrame(made, {depth, 5, 3, 19, 16}, pattern);
    AddFrame(made, {depth, 6}, [&](int x, int y) { return pattern(x, y + 1); });
    return made;
}

Animation TwinColours() {
    Animation made = EmptyAnimation(61, 47, 4);
    made.palette[9] = made.palette[3];
    made.comment = "k\xC3\xB6nnen";
    AddFrame(made, {4, 5}, [](int, int) { return 3U; });
    AddFrame(made, {4, 5}, [](int x, int) { return x % 2 == 0 ? 3U : 9U; });
    AddFrame(made, {4, 5, 3}, [](int x, int y) { return x >= 5 && x < 9 && y == 46 ? 1U : 9U; });
    AddFrame(made, {4, 8, 15}, [](int x, int y) { return x == 60 && y == 0 ? 2U : 15U; });
    AddFrame(made, {4, 9, 15}, [](int, int) { return 15U; });
    return made;
}

/// An index that is a hole in one frame and a colour in the next.
Animation SmallFrames() {
    Animation made = EmptyAnimation(9, 8, 3);
    AddFrame(made, {4, 5, 7, 3, 4}, [](int x, int y) { return (x + y) % 2 == 0 ? 7U : 4U; });
    AddFrame(made, {4, 5, 7}, [](int x, int) { return static_cast<unsigned>(x % 8); });
    AddFrame(made, {4, 5, -1, 2, 2}, [](int, int) { return 7U; });
    AddFrame(made, {4, 5, 7}, [](int x, int) { return x == 0 ? 7U : 1U; });
    return made;
}

} // namespace

std::vector<AnimationCase> AnimationCases() {
    std::vector<AnimationCase> cases;
    const std::pair<int, int> sizes[] = {{1, 1}, {7, 5}, {33, 1}, {61, 47}};
    for (const auto& [width, height] : sizes) {
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        for (const int bits : {1, 2, 4, 5, 8, 24}) {
            const int depth = bits == 1 ? 1 : bits <= 4 ? 4 : bits <= 8 ? 8 : 24;
            const std::string name = size + " at " + std::to_string(bits);
            cases.push_back({name, Busy(width, height, bits, depth, -1)});
            cases.push_back(
                {name + " with holes", Busy(width, height, bits, depth, bits == 24 ? 0 : (1 << bits) - 1)});
        }
    }
    for (const int hole : {-1, 255})
        cases.push_back({"large with hole " + std::to_string(hole), Busy(300, 211, 8, 8, hole)});
    cases.push_back({"twin colours", TwinColours()});
    cases.push_back({"small frames", SmallFrames()});
    cases.push_back({"holes with nothing behind", HolesWithNothingBehind(100, 8)});
    cases.push_back({"the same with a full palette", HolesWithNothingBehind(256, 8)});
    cases.back().animation.comment = std::string(600, 'c') + "\n";
    cases.push_back({"the same in true colour", HolesWithNothingBehind(100, 24)});
    cases.back().animation.comment = "f\xFCr";
    return cases;
}

std::vector<std::vector<PixelValue>> WantedScreens(const Animation& animation) {
    std::vector<std::vector<PixelValue>> wanted;
    std::vector<PixelValue> screen(static_cast<std::size_t>(animation.width * animation.height), kNoPixel);
    for (const AnimationFrame& frame : animation.frames) {
        const DibHeader& dib = *frame.image;
        for (std::int32_t y = 0; y < dib.biHeight; ++y) {
            for (std::int32_t x = 0; x < dib.biWidth; ++x) {
                const PixelValue pixel = DibGetPixel(dib, x, y);
                if (static_cast<std::int32_t>(pixel) == frame.transparentIndex) continue;
                screen[static_cast<std::size_t>(y * animation.width + x)] =
                    dib.biBitCount > 8 ? pixel : ColourOf(animation.palette[pixel]);
            }
        }
        wanted.push_back(screen);
    }
    return wanted;
}

} // namespace lumafold::test
