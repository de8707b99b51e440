#include "colour/quantizer.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "hosts/common/thread_pool.h"
#include "tests/support/failing_memory.h"
#include "tests/support/pictures.h"

namespace lumafold {
namespace {

using Colours = std::vector<Rgb>;

/// What an optimal palette means: one node at a time, one pixel at a time, one whole pass at a time.
class Definition {
public:
    Definition(const Colours& pixels, int most) {
        int counted = 0;
        for (const Rgb colour : pixels) {
            const bool known = std::find(palette.begin(), palette.end(), colour) != palette.end();
            if (known && counted < 256) continue;
            if (palette.size() < 256) palette.push_back(colour);
            ++counted;
        }
        if (counted <= most) return;
        palette.clear();
        int depth = 0;
        for (int left = most; left > 0; left /= 4)
            ++depth;
        for (const Rgb colour : pixels)
            Classify(colour, std::max(depth, 2));
        while (colours_ > most) {
            threshold_ = std::exchange(next_, 1e300);
            colours_ = 0;
            Visit(root_);
        }
        Read(root_);
    }

    Colours palette;

private:
    struct Node {
        double pixels = 0, red = 0, green = 0, blue = 0, error = 0;
        std::unique_ptr<Node> child[8];
    };

    void Classify(Rgb c, int depth) {
        Node* node = &root_;
        for (int side = 128; side >= 256 >> depth; side /= 2) {
            std::unique_ptr<Node>& child =
                node->child[(c.red / side & 1) * 4 + (c.green / side & 1) * 2 + (c.blue / side & 1)];
            if (!child) {
                child = std::make_unique<Node>();
                if (side == 256 >> depth) ++colours_;
            }
            node = child.get();
            for (const int level : {c.red, c.green, c.blue}) {
                const double off = level % side - (side - 1) / 2.0;
                node->error += off * off;
            }
        }
        node->pixels += 1;
        node->red += c.red, node->green += c.green, node->blue += c.blue;
    }
    void Visit(Node& node) {
        for (auto& child : node.child) {
            if (!child) continue;
            Visit(*child);
            if (child->error <= threshold_) Prune(child, node);
        }
        if (&node != &root_ && node.error <= threshold_) return;
        if (node.pixels > 0) ++colours_;
        if (&node != &root_ && node.error < next_) next_ = node.error;
    }
    static void Prune(std::unique_ptr<Node>& node, Node& parent) {
        for (auto& child : node->child) {
            if (child) Prune(child, *node);
        }
        parent.pixels += node->pixels;
        parent.red += node->red, parent.green += node->green, parent.blue += node->blue;
        node.reset();
    }
    void Read(const Node& node) {
        for (const auto& child : node.child) {
            if (child) Read(*child);
        }
        if (node.pixels == 0) return;
        const auto average = [&](double total) {
            return static_cast<std::uint8_t>(total / node.pixels + 0.5);
        };
        palette.push_back({average(node.red), average(node.green), average(node.blue)});
    }

    int colours_ = 0;
    double threshold_ = 0, next_ = 0;
    Node root_;
};

using Pictures = std::vector<OwnedDib>;

Colours Define(const Pictures& pictures, int most) {
    Colours pixels;
    for (const OwnedDib& picture : pictures) {
        for (std::int32_t i = 0; i < picture->biWidth * picture->biHeight; ++i)
            pixels.push_back(RgbOf(DibGetPixel(*picture, i % picture->biWidth, i / picture->biWidth)));
    }
    return Definition(pixels, most).palette;
}

/// A 24-bit picture of the colours, row by row.
OwnedDib PictureOf(const Colours& colours, std::int32_t height = 1) {
    const auto width = static_cast<std::int32_t>(colours.size()) / height;
    return test::PictureOf(width, height, 24, [&](int x, int y) {
        return ColourOf(colours[static_cast<std::size_t>(y * width + x)]);
    });
}

/// The palette's own entries; the ones behind them must be zero.
Colours Compute(const Pictures& pictures, int most, const Runner& runner) {
    OwnedFrameList frames;
    for (const OwnedDib& picture : pictures)
        EXPECT_TRUE(FrameListAddImage(*frames, DibCopy(*picture), 1));
    Palette palette;
    palette.fill({1, 2, 3});
    int count = most;
    EXPECT_EQ(ComputeOptimalPalette(*frames, count, palette, runner), PaletteResult::Made);
    const auto end = palette.begin() + count;
    EXPECT_TRUE(std::all_of(end, palette.end(), [](Rgb entry) { return entry == Rgb{}; }));
    return {palette.begin(), end};
}

/// Distinct colours, all over the cube.
Colours Distinct(int count) {
    Colours colours;
    for (unsigned i = 0; i < static_cast<unsigned>(count); ++i)
        colours.push_back(RgbOf(MakeColour(i * 7919 & 255, i * 7919 >> 3 & 255, i & 255)));
    return colours;
}

template <typename... Dibs>
Pictures Gather(Dibs... dibs) {
    Pictures pictures;
    (pictures.push_back(std::move(dibs)), ...);
    return pictures;
}

TEST(Quantizer, IsWhatItsDefinitionSays) {
    std::vector<Pictures> sets;
    // About as many colours as a list holds: once each; twice, from the top and over two frames; the last
    // one twice in a row.
    for (const int count : {1, 2, 3, 17, 254, 255, 256, 257, 300}) {
        const Colours listed = Distinct(count);
        Colours pixels = listed;
        sets.push_back(Gather(PictureOf(listed)));
        pixels.insert(pixels.end(), listed.rbegin(), listed.rend());
        sets.push_back(Gather(PictureOf(pixels, 2), PictureOf(listed)));
        pixels.resize(listed.size() + 1);
        sets.push_back(Gather(PictureOf(pixels)));
    }
    // Nodes with as much error as the one above them; then a colour that outweighs its neighbour.
    Colours equal = {{47, 47, 47}, {48, 48, 48}, {175, 175, 175}, {176, 176, 176}};
    Colours heavy = equal;
    equal.insert(equal.end(), {{47, 47, 175}, {47, 47, 175}, {48, 48, 176}, {48, 48, 176}});
    heavy.insert(heavy.end(), {{255, 255, 0}, {255, 255, 0}, {255, 255, 0}, {192, 192, 0}});
    for (const Colours& pixels : {equal, heavy})
        sets.push_back(Gather(PictureOf(pixels)));
    std::uint32_t seed = 0;
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 1}, {61, 47}}) {
        seed += 10;
        sets.push_back(Gather(test::NoisePicture(width, height, 24, seed)));
        sets.push_back(Gather(
            test::BusyPicture(width, height, seed + 2), test::PlainPicture(width, height, 0x654321),
            test::NoisePicture(width, height, 24, seed + 3), test::BusyPicture(width, height, seed + 4)));
    }
    for (std::size_t i = 0; i < sets.size(); ++i) {
        for (const int most : {1, 2, 3, 16, 100, 255, 256, 257, 0, -1}) {
            SCOPED_TRACE(testing::Message() << "set " << i << ", " << most << " wanted");
            const Colours defined = Define(sets[i], most < 1 || most > 256 ? 256 : most);
            EXPECT_EQ(Compute(sets[i], most, Runner()), defined);
            EXPECT_EQ(Compute(sets[i], most, ThreadPool(3)), defined);
        }
    }
}

TEST(Quantizer, RefusesWhatItCannotReadBehindFewColoursAndMany) {
    for (const std::int32_t width : {1, 900}) {
        for (const int depth : {0, 8, 32}) {
            OwnedFrameList frames;
            FrameRecord odd{};
            if (depth != 0) odd.image = DibCreate(3, 3, nullptr, depth).Release();
            ASSERT_TRUE(FrameListAddImage(*frames, test::NoisePicture(width, 1, 24, 1), 1) &&
                        FrameListAppend(*frames, odd));
            Palette palette;
            int count = 255;
            EXPECT_EQ(ComputeOptimalPalette(*frames, count, palette, Runner()), PaletteResult::Failed);
            EXPECT_EQ(count, 255);
            EXPECT_EQ(palette, Palette{});
        }
    }
}

TEST(Quantizer, GoesOnInBlackWithoutATreeAndFailsWithoutNodes) {
    OwnedFrameList frames;
    ASSERT_TRUE(FrameListAddImage(*frames, test::BusyPicture(61, 47, 2), 1));
    Palette palette;
    int count = 0;
    const auto compute = [&] {
        count = 255;
        return ComputeOptimalPalette(*frames, count, palette, Runner());
    };
    auto expected = PaletteResult::NoTree; // of the first allocation
    const auto check = [&](PaletteResult result, bool missed) {
        if (!missed) return;
        EXPECT_EQ(result, std::exchange(expected, PaletteResult::Failed));
        EXPECT_EQ(count, 255);
        EXPECT_EQ(palette, Palette{});
    };
    EXPECT_GE(test::FailEachAllocation(compute, check), 2);
}

TEST(Quantizer, SortsFromDarkToLightAndKeepsEqualsInOrder) {
    // Each product is divided by itself: (3, 1, 9) has luminance 0, as have black and (0, 1, 0).
    Palette palette{{{255, 255, 255}, {3, 1, 9}, {0, 0, 0}, {0, 0, 255}, {0, 1, 0}, {93, 0, 0}, {9, 9, 9}}};
    SortByLuminance(palette, 6);
    const Colours sorted = {{3, 1, 9}, {0, 0, 0}, {0, 1, 0}, {93, 0, 0}, {0, 0, 255}, {255, 255, 255}};
    EXPECT_EQ(Colours(palette.begin(), palette.begin() + 6), sorted);
    EXPECT_EQ(palette[6], (Rgb{9, 9, 9}));
    SortByLuminance(palette, 0);
    EXPECT_EQ(palette[0], sorted[0]);
}

} // namespace
} // namespace lumafold
