#include "colour/quantizer.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/pictures.h"

namespace lumafold {
namespace {

using Colours = std::vector<Rgb>;

/// What an optimal palette means: one node at a time, one run at a time, one whole pass at a time.
class Definition {
public:
    Definition(const Colours& scanned, const std::vector<Colours>& storedRows, int most) : most_(most) {
        for (int left = most; left > 0; left /= 4)
            ++depth_;
        depth_ = std::clamp(depth_, 2, 8);
        Colours listed;
        std::size_t counted = 0;
        for (const Rgb colour : scanned) {
            const bool known = std::find(listed.begin(), listed.end(), colour) != listed.end();
            if (known && counted < 256) continue;
            if (listed.size() < 256) listed.push_back(colour);
            ++counted;
        }
        for (const Colours& row : storedRows) {
            for (std::size_t x = 0, run = 0; x < row.size(); x += run) {
                for (run = 1; x + run < row.size() && row[x + run] == row[x];)
                    ++run;
                Classify(row[x], static_cast<double>(run));
            }
        }
        if (counted <= static_cast<std::size_t>(most)) {
            palette = listed;
        } else {
            Reduce();
            Read(root_);
        }
    }

    Colours palette;

private:
    struct Node {
        double unique = 0, red = 0, green = 0, blue = 0, error = 0;
        Node* parent = nullptr;
        std::unique_ptr<Node> child[8];
    };

    void Classify(Rgb colour, double weight) {
        double half = 128, r = 127.5, g = 127.5, b = 127.5;
        Node* node = &root_;
        for (int level = 1; level <= depth_; ++level) {
            half /= 2;
            const int bit = 8 - level;
            const int red = colour.red >> bit & 1, green = colour.green >> bit & 1,
                      blue = colour.blue >> bit & 1;
            r += red ? half : -half, g += green ? half : -half, b += blue ? half : -half;
            std::unique_ptr<Node>& child = node->child[red * 4 + green * 2 + blue];
            if (!child) {
                child = std::make_unique<Node>();
                child->parent = node;
                if (level == depth_) ++colours_;
            }
            node = child.get();
            node->error +=
                weight * ((colour.red - r) * (colour.red - r) + (colour.green - g) * (colour.green - g) +
                          (colour.blue - b) * (colour.blue - b));
            root_.error += node->error;
        }
        node->unique += weight;
        node->red += weight * colour.red;
        node->green += weight * colour.green;
        node->blue += weight * colour.blue;
    }

    void Reduce() {
        for (next_ = 0; colours_ > most_;) {
            threshold_ = next_;
            next_ = root_.error - 1;
            colours_ = 0;
            Visit(root_);
        }
    }
    void Visit(Node& node) {
        for (auto& child : node.child) {
            if (!child) continue;
            Visit(*child);
            if (child->error <= threshold_) Prune(child);
        }
        if (node.error <= threshold_) return;
        if (node.unique > 0) ++colours_;
        if (node.error < next_) next_ = node.error;
    }
    static void Prune(std::unique_ptr<Node>& node) {
        for (auto& child : node->child) {
            if (child) Prune(child);
        }
        Node& parent = *node->parent;
        parent.unique += node->unique;
        parent.red += node->red, parent.green += node->green, parent.blue += node->blue;
        node.reset();
    }
    void Read(const Node& node) {
        for (const auto& child : node.child) {
            if (child) Read(*child);
        }
        if (node.unique == 0) return;
        const auto average = [&](double total) {
            return static_cast<std::uint8_t>(total / node.unique + 0.5);
        };
        palette.push_back({average(node.red), average(node.green), average(node.blue)});
    }

    const int most_;
    int depth_ = 0, colours_ = 0;
    double threshold_ = 0, next_ = 0;
    Node root_;
};

using Pictures = std::vector<OwnedDib>;

Colours RowOf(DibHandle picture, std::int32_t y) {
    std::int32_t width = 0;
    DibQuery(picture, &width, nullptr, nullptr, nullptr);
    Colours row;
    for (std::int32_t x = 0; x < width; ++x) {
        const PixelValue v = test::PixelAt(picture, x, y);
        row.push_back({static_cast<std::uint8_t>(RedOf(v)), static_cast<std::uint8_t>(GreenOf(v)),
                       static_cast<std::uint8_t>(BlueOf(v))});
    }
    return row;
}

Colours Define(const Pictures& pictures, int most) {
    Colours scanned;
    std::vector<Colours> stored;
    for (const OwnedDib& picture : pictures) {
        std::int32_t height = 0;
        DibQuery(picture.Get(), nullptr, &height, nullptr, nullptr);
        for (std::int32_t y = 0; y < height; ++y) {
            const Colours row = RowOf(picture.Get(), y);
            scanned.insert(scanned.end(), row.begin(), row.end());
            stored.push_back(RowOf(picture.Get(), height - 1 - y));
        }
    }
    return Definition(scanned, stored, most).palette;
}

/// The palette's own entries; the ones behind them must be zero.
Colours Compute(const Pictures& pictures, int most, PaletteResult expected = PaletteResult::Made) {
    OwnedFrameList frames;
    for (const OwnedDib& picture : pictures)
        EXPECT_TRUE(FrameListAddImage(*frames, GlobalDuplicate(picture.Get()), 1));
    Palette palette;
    palette.fill({1, 2, 3});
    int count = most;
    EXPECT_EQ(ComputeOptimalPalette(*frames, count, palette), expected);
    const auto end = palette.begin() + count;
    EXPECT_TRUE(std::all_of(end, palette.end(), [](Rgb entry) { return entry == Rgb{}; }));
    return {palette.begin(), end};
}

OwnedDib Row(const Colours& colours, std::int32_t height = 1) {
    const auto width = static_cast<std::int32_t>(colours.size()) / height;
    OwnedDib picture(DibCreate(width, height, nullptr, 24));
    const LockedDib dib(picture.Get());
    for (std::int32_t i = 0; i < width * height; ++i) {
        const Rgb c = colours[static_cast<std::size_t>(i)];
        DibSetPixel(dib.Get(), i % width, i / width, MakeColour(c.red, c.green, c.blue));
    }
    return picture;
}

/// Distinct colours, all over the cube.
Colours Distinct(int count) {
    Colours colours;
    for (int i = 0; i < count; ++i) {
        const int n = i * 7919;
        colours.push_back(
            {static_cast<std::uint8_t>(n), static_cast<std::uint8_t>(n >> 3), static_cast<std::uint8_t>(i)});
    }
    return colours;
}

Rgb Gray(int level) {
    const auto v = static_cast<std::uint8_t>(level);
    return {v, v, v};
}

template <typename... Dibs>
Pictures Gather(Dibs... dibs) {
    Pictures pictures;
    (pictures.push_back(std::move(dibs)), ...);
    return pictures;
}

TEST(Quantizer, PrunesSmallTreesAsWorkedOutByHand) {
    const struct {
        Colours row;
        int most;
        Colours palette;
    } cases[] = {
        // Three leaves: 0 and 10 (error 4363.5), 100 (60.75), 200 (1656.75; above it 216.75).
        {{Gray(0), Gray(10), Gray(100), Gray(200)}, 3, {Gray(5), Gray(100), Gray(200)}},
        // 100 joins the node above; 200 rises to the root, but counts as it stood; 0 and 10 join 100.
        {{Gray(0), Gray(10), Gray(100), Gray(200)}, 2, {Gray(37), Gray(200)}},
        // Five leaves for four colours. Those of 190 and 200 are counted before the node above them, whose
        // error is less (223.5), takes both away; so another pass comes, and their error (1656.75) is what it
        // prunes. That is also the error of the leaves of 72 and of the blue.
        {{Gray(0), Gray(10), Gray(72), {55, 55, 72}, Gray(190), Gray(200)},
         4,
         {Gray(5), {64, 64, 72}, Gray(195)}},
        // 79 and 80 have the same error in their leaf and in the node above (1537.5): the leaf goes first and
        // does not count. The root already has 200; the two reds (2854.75 and 2976.75) stay.
        {{Gray(79), Gray(80), Gray(200), {255, 0, 0}, {130, 0, 0}}, 3, {{130, 0, 0}, {255, 0, 0}, Gray(120)}},
        // Averages round half up; a run weighs what it is long.
        {{Gray(0), Gray(1), Gray(255), Gray(255), Gray(254)}, 2, {Gray(1), Gray(255)}},
    };
    for (const auto& [row, most, palette] : cases) {
        Pictures pictures = Gather(Row(row));
        EXPECT_EQ(Compute(pictures, most), palette);
        EXPECT_EQ(Define(pictures, most), palette);
    }
}

TEST(Quantizer, KeepsFewColoursAsTheyAreFirstSeen) {
    const struct {
        int colours, most;
        bool exact;
    } cases[] = {{1, 1, true},     {2, 1, false},     {3, 3, true},     {17, 16, false},   {254, 255, true},
                 {255, 255, true}, {256, 255, false}, {255, 256, true}, {257, 256, false}, {300, 255, false}};
    for (const auto& [colours, most, exact] : cases) {
        SCOPED_TRACE(testing::Message() << colours << " colours, " << most << " wanted");
        Colours pixels = Distinct(colours);
        const Colours listed = pixels;
        pixels.insert(pixels.end(), listed.rbegin(), listed.rend());
        // Rows count from the top, and the list spans both frames.
        const Pictures pictures = Gather(Row(pixels, 2), Row(listed));
        const Colours palette = Compute(pictures, most);
        EXPECT_EQ(palette == listed, exact);
        EXPECT_EQ(palette, Define(pictures, most));
        EXPECT_LE(palette.size(), static_cast<std::size_t>(most));
    }
    // A full list knows no colour: after 256 even one more pixel of the last is one too many.
    Colours pixels = Distinct(256);
    EXPECT_EQ(Compute(Gather(Row(pixels, 16)), 256), pixels);
    pixels.push_back(pixels.back());
    const Pictures again = Gather(Row(pixels));
    EXPECT_EQ(Compute(again, 256), Define(again, 256));
    EXPECT_NE(Compute(again, 256), Distinct(256));
}

TEST(Quantizer, IsWhatItsDefinitionSays) {
    std::uint32_t seed = 0;
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {33, 1}, {61, 47}}) {
        seed += 10;
        const Pictures sets[] = {
            Gather(test::NoisePicture(width, height, 24, seed)),
            Gather(test::BusyPicture(width, height, seed + 1)),
            Gather(test::BusyPicture(width, height, seed + 2), test::PlainPicture(width, height, 0x654321),
                   test::NoisePicture(width, height, 24, seed + 3),
                   test::BusyPicture(width, height, seed + 4)),
        };
        for (const Pictures& pictures : sets) {
            for (const int most : {1, 2, 3, 16, 100, 255, 256}) {
                SCOPED_TRACE(testing::Message() << width << 'x' << height << ", " << most << " wanted");
                EXPECT_EQ(Compute(pictures, most), Define(pictures, most));
            }
        }
    }
}

TEST(Quantizer, TakesOddCountsAndRefusesWhatItCannotRead) {
    const Pictures pictures = Gather(test::BusyPicture(33, 9, 5));
    for (const int most : {0, 257, -1}) {
        OwnedFrameList frames;
        ASSERT_TRUE(FrameListAddImage(*frames, GlobalDuplicate(pictures[0].Get()), 1));
        Palette palette;
        int count = most;
        ASSERT_EQ(ComputeOptimalPalette(*frames, count, palette), PaletteResult::Made);
        EXPECT_EQ(Colours(palette.begin(), palette.begin() + count), Define(pictures, 256));
    }
    // Unreadable frames are found behind few colours and behind many.
    for (const int first : {0, 1}) {
        for (const DibHandle second :
             {DibHandle{0}, DibCreate(3, 3, nullptr, 8), DibCreate(3, 3, nullptr, 32)}) {
            OwnedFrameList frames;
            const DibHandle picture = first == 0 ? test::PlainPicture(4, 4, 7).Release()
                                                 : test::NoisePicture(40, 20, 24, 1).Release();
            ASSERT_TRUE(FrameListAddImage(*frames, picture, 1) && FrameListAddImage(*frames, second, 1));
            Palette palette;
            int count = 255;
            EXPECT_EQ(ComputeOptimalPalette(*frames, count, palette), PaletteResult::Failed);
            EXPECT_EQ(count, 255);
            EXPECT_EQ(palette, Palette{});
        }
    }
}

TEST(Quantizer, GoesOnInBlackWithoutATreeAndFailsWithoutNodes) {
    OwnedFrameList frames;
    ASSERT_TRUE(FrameListAddImage(*frames, test::BusyPicture(61, 47, 2).Release(), 1));
    const auto blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
    int failures = 0;
    for (int n = 1; failures == n - 1; ++n) {
        Palette palette;
        int count = 255;
        allocation_hooks::FailNth(n);
        const PaletteResult result = ComputeOptimalPalette(*frames, count, palette);
        const bool failed = allocation_hooks::HasFailed();
        allocation_hooks::FailNth(0);
        EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
        EXPECT_EQ(allocation_hooks::LiveLocks(), locks);
        if (!failed) break;
        ++failures;
        EXPECT_EQ(result, n == 1 ? PaletteResult::NoTree : PaletteResult::Failed);
        EXPECT_EQ(count, 255);
        EXPECT_EQ(palette, Palette{});
    }
    EXPECT_GE(failures, 2);
}

TEST(Quantizer, SortsFromDarkToLightAndKeepsEqualsInOrder) {
    // Each product is divided by itself: (3, 1, 9) has luminance 0, as have black and (0, 1, 0).
    Palette palette{{{255, 255, 255}, {3, 1, 9}, {0, 0, 0}, {0, 0, 255}, {0, 1, 0}, {93, 0, 0}, {9, 9, 9}}};
    SortByLuminance(palette, 6);
    const Colours sorted = {{3, 1, 9}, {0, 0, 0}, {0, 1, 0}, {93, 0, 0}, {0, 0, 255}, {255, 255, 255}};
    EXPECT_EQ(Colours(palette.begin(), palette.begin() + 6), sorted);
    EXPECT_EQ(palette[6], Gray(9));
    SortByLuminance(palette, 0);
    EXPECT_EQ(palette[0], sorted[0]);
}

TEST(Quantizer, IsTheSameOnEveryPlatform) {
    Checksum sum;
    for (const int most : {2, 16, 255, 256}) {
        const Colours palette =
            Compute(Gather(test::BusyPicture(61, 47, 12), test::NoisePicture(33, 21, 24, 4)), most);
        sum.Add(palette.data(), palette.size() * sizeof(Rgb));
    }
    EXPECT_EQ(sum.Value(), 16073879190107823146U);
}

} // namespace
} // namespace lumafold
