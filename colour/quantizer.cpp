#include "colour/quantizer.h"

#include <span>

#include "colour/nearest.h"

namespace lumafold {
namespace {

constexpr int kMostColours = 256;

/// Shows the pictures of frames `first`, `first` + `step` and so on to `visit`. False when one cannot be
/// read.
template <typename Visit>
bool VisitPictures(const FrameList& frames, std::int32_t first, std::int32_t step, Visit visit) {
    for (std::int64_t i = first; i < frames.count; i += step) {
        FrameRecord frame;
        if (!FrameListGet(frames, static_cast<std::int32_t>(i), frame)) return false;
        const ReadDib picture(frame.image);
        if (!picture || picture->biBitCount != 24) return false;
        visit(ConstRowView(*picture));
    }
    return true;
}

/// The colours of the frames in the order they are first seen in, as long as a palette could hold them.
class FirstColours {
public:
    explicit FirstColours(int most) : most_(most) {}

    bool TooMany() const { return count_ > most_; }
    int Count() const { return count_; }
    const Palette& Listed() const { return listed_; }

    void Add(const ConstRowView& rows) {
        for (std::int32_t y = 0; y < rows.Height(); ++y) {
            const std::uint8_t* pixel = rows.Row(y);
            for (std::int32_t x = 0; x < rows.Width(); ++x, pixel += 3) {
                if (TooMany()) return;
                Add(LoadColour(pixel));
            }
        }
    }

private:
    /// A full list knows no colour any more: every further pixel counts, a listed one too. So 256 colours are
    /// kept exactly only if the last of them is the very last pixel.
    void Add(PixelValue colour) {
        if (count_ == kMostColours) {
            ++count_;
            return;
        }
        if (places_.Add(colour, count_) == count_)
            listed_[static_cast<std::size_t>(count_++)] = RgbOf(colour);
    }

    const int most_;
    int count_ = 0;
    Palette listed_{};
    NumberedColours places_; ///< of the colours in the list
};

/// How deep the tree for a palette is. It always allows for dithering: one level less than colours need.
constexpr int TreeDepth(int most) {
    int depth = 0;
    for (; most > 0; most >>= 2)
        ++depth;
    return std::max(depth, 2);
}

/// The number of the first node of a level, in a tree whose levels are numbered one after the other.
constexpr std::size_t LevelStart(int level) { return ((std::size_t{1} << 3 * level) - 1) / 7; }

// A tree of more nodes would have to give up its last level; not even 256 colours make one so deep.
static_assert(TreeDepth(kMostColours) == 5 && LevelStart(TreeDepth(kMostColours) + 1) <= 266817);

/// Pixels that ended in one node: how many, the sums of their channels, the sum of the channels' squares.
struct PixelSums {
    std::uint64_t pixels, red, green, blue, squares;

    PixelSums& operator+=(const PixelSums& other) {
        pixels += other.pixels;
        red += other.red;
        green += other.green;
        blue += other.blue;
        squares += other.squares;
        return *this;
    }
};

/// Pixels go straight to the leaves of the tree; what the nodes above see of them follows from these sums,
/// which depend on no order.
class LeafCounter {
public:
    explicit LeafCounter(int depth) {
        for (unsigned level = 0; level < places_.size(); ++level) {
            for (int bit = 7; bit >= 8 - depth; --bit)
                places_[level] = places_[level] << 3 | (level >> bit & 1);
        }
    }
    void Count(const ConstRowView& rows, PixelSums* leaves) const {
        for (std::int32_t y = 0; y < rows.Height(); ++y) {
            const std::uint8_t* pixel = rows.Row(y);
            for (std::int32_t x = 0; x < rows.Width(); ++x, pixel += 3) {
                const unsigned red = pixel[2], green = pixel[1], blue = pixel[0];
                leaves[places_[red] * 4 + places_[green] * 2 + places_[blue]] +=
                    {1, red, green, blue, red * red + green * green + blue * blue};
            }
        }
    }

private:
    std::array<unsigned, 256> places_{}; ///< a level's bits spread to every third place
};

/// A cube of colours by its darkest corner; the cube of level n has sides of 256 >> n.
struct Cube {
    int level;
    unsigned red, green, blue;

    Cube Child(unsigned id) const {
        const unsigned side = 128U >> level;
        return {level + 1, red + (id >> 2 & 1) * side, green + (id >> 1 & 1) * side, blue + (id & 1) * side};
    }
};

/// Four times the summed squared distance of pixels from their cube's centre. Centres lie between two levels,
/// so this is whole, and no sum depends on the order of the pixels.
std::uint64_t QuarterErrors(const PixelSums& sums, const Cube& cube) {
    const std::uint64_t inner = (256U >> cube.level) - 1;
    const std::uint64_t red = 2 * cube.red + inner, green = 2 * cube.green + inner,
                        blue = 2 * cube.blue + inner;
    return 4 * sums.squares + (red * red + green * green + blue * blue) * sums.pixels -
           4 * (red * sums.red + green * sums.green + blue * sums.blue);
}

/// The octree. Its nodes are numbered level by level: 0 is the root, 8 n + 1 to 8 n + 8 are the children of
/// n, so that a node deeper down always has the larger number. A child's id is its red, green and blue bit.
class ColourTree {
public:
    explicit ColourTree(int depth) : depth_(depth), order_(LevelStart(depth + 1)) {}
    explicit operator bool() const { return static_cast<bool>(order_); }

    /// Makes the nodes, all of them empty. False when memory is short.
    bool MakeNodes() {
        sums_ = Array<PixelSums>(LevelStart(depth_ + 1));
        errors_ = Array<std::uint64_t>(LevelStart(depth_ + 1));
        return sums_ && errors_;
    }
    std::span<PixelSums> Leaves() { return {sums_.begin() + LevelStart(depth_), sums_.end()}; }

    /// Reduces the tree to at most so many colours: pass after pass prunes the nodes with the least error
    /// left. A pass counts nodes as it comes to them, children first: one that stands when its turn comes
    /// counts, and sets the next pass's error, even if the same pass then takes it away with its parent.
    void Prune(int most) {
        Measure(0, {});
        if (colours_ <= most) return;
        const std::size_t listed = ListByError();
        std::uint64_t threshold = errors_[order_[0]];
        std::size_t next = 0;
        for (int counted = colours_; counted > most;) {
            const std::size_t first = next;
            // Nodes that are gone have no error, so they are passed over here.
            while (next < listed && errors_[order_[next]] <= threshold)
                ++next;
            const std::uint64_t nextThreshold = next < listed ? errors_[order_[next]] : 0;
            int takenAlong = 0;
            for (std::size_t i = first; i < next; ++i) {
                if (Exists(order_[i])) takenAlong += CutBranch(order_[i]);
            }
            counted = colours_ + takenAlong;
            threshold = nextThreshold;
        }
    }

    /// Writes the average of each node's pixels, those of a branch from `node` on behind `entries` others.
    /// The number of all.
    int Read(Palette& palette, std::size_t node = 0, int entries = 0) const {
        ForEachChild(node, [&](std::size_t child) { entries = Read(palette, child, entries); });
        const PixelSums& sums = sums_[node];
        if (sums.pixels == 0) return entries;
        const auto average = [&](std::uint64_t total) {
            const double raised = static_cast<double>(total) / static_cast<double>(sums.pixels) + 0.5;
            return static_cast<std::uint8_t>(raised);
        };
        palette[static_cast<std::size_t>(entries)] = {average(sums.red), average(sums.green),
                                                      average(sums.blue)};
        return entries + 1;
    }

private:
    bool Exists(std::size_t node) const { return errors_[node] != 0; }
    bool HasChildren(std::size_t node) const { return node < LevelStart(depth_); }
    template <typename Visit>
    void ForEachChild(std::size_t node, Visit visit) const {
        if (!HasChildren(node)) return;
        for (std::size_t child = 8 * node + 1; child <= 8 * node + 8; ++child) {
            if (Exists(child)) visit(child);
        }
    }

    /// Gives a branch its errors and returns its sums, of which only leaves keep theirs.
    PixelSums Measure(std::size_t node, const Cube& cube) {
        PixelSums sums = sums_[node];
        if (HasChildren(node)) {
            for (unsigned id = 0; id < 8; ++id)
                sums += Measure(8 * node + 1 + id, cube.Child(id));
        } else if (sums.pixels != 0) {
            ++colours_;
        }
        errors_[node] = QuarterErrors(sums, cube);
        return sums;
    }

    /// All nodes but the root, which always has more error than any other and so is never pruned. Those with
    /// the least error come first, deeper ones before higher ones. Their number.
    std::size_t ListByError() {
        std::size_t listed = 0;
        for (std::size_t node = 1; node < errors_.size(); ++node) {
            if (Exists(node)) order_[listed++] = static_cast<std::uint32_t>(node);
        }
        std::sort(order_.begin(), order_.begin() + listed, [&](std::uint32_t a, std::uint32_t b) {
            return errors_[a] != errors_[b] ? errors_[a] < errors_[b] : a > b;
        });
        return listed;
    }

    /// Moves a branch's pixels to the node above it. The number of nodes below `node` that had pixels.
    int CutBranch(std::size_t node) {
        int takenAlong = 0;
        ForEachChild(node, [&](std::size_t child) {
            if (sums_[child].pixels != 0) ++takenAlong;
            takenAlong += CutBranch(child);
        });
        const std::size_t parent = (node - 1) / 8;
        if (sums_[parent].pixels != 0) --colours_;
        sums_[parent] += sums_[node];
        sums_[node] = {};
        errors_[node] = 0;
        return takenAlong;
    }

    const int depth_;
    int colours_ = 0;             ///< nodes with pixels of their own
    Array<PixelSums> sums_;       ///< of the pixels that are the node's own
    Array<std::uint64_t> errors_; ///< four times each node's error; 0 where there is no node
    Array<std::uint32_t> order_;  ///< room for the nodes in the order they are pruned in
};

/// Counts all frames into `leaves`, those of each worker by themselves. False when memory is short or one
/// cannot be read.
bool CountPixels(const FrameList& frames, const LeafCounter& counter, std::span<PixelSums> leaves,
                 const Runner& runner) {
    constexpr std::size_t kMostWorkers = 16; // each but the first has its own megabyte of sums
    const std::size_t workers = std::clamp<std::size_t>(
        std::min(runner.Workers(), static_cast<std::size_t>(frames.count)), 1, kMostWorkers);
    std::array<Array<PixelSums>, kMostWorkers> others;
    std::array<bool, kMostWorkers> counted{};
    runner.ForEach(workers, [&](std::size_t w) {
        if (w > 0) others[w] = Array<PixelSums>(leaves.size());
        PixelSums* const mine = w > 0 ? others[w].data() : leaves.data();
        counted[w] = mine != nullptr &&
                     VisitPictures(frames, static_cast<std::int32_t>(w), static_cast<std::int32_t>(workers),
                                   [&](const ConstRowView& rows) { counter.Count(rows, mine); });
    });
    for (std::size_t w = 0; w < workers; ++w) {
        if (!counted[w]) return false;
        for (std::size_t i = 0; i < others[w].size(); ++i)
            leaves[i] += others[w][i];
    }
    return true;
}

} // namespace

PaletteResult ComputeOptimalPalette(const FrameList& frames, int& count, Palette& palette,
                                    const Runner& runner) {
    palette = {};
    const int most = count < 1 || count > kMostColours ? kMostColours : count;
    ColourTree tree(TreeDepth(most));
    if (!tree) return PaletteResult::NoTree;
    FirstColours first(most);
    if (!VisitPictures(frames, 0, 1, [&](const ConstRowView& rows) { first.Add(rows); })) {
        return PaletteResult::Failed;
    }
    if (!first.TooMany()) {
        palette = first.Listed();
        count = first.Count();
        return PaletteResult::Made;
    }
    if (!tree.MakeNodes() || !CountPixels(frames, LeafCounter(TreeDepth(most)), tree.Leaves(), runner))
        return PaletteResult::Failed;
    tree.Prune(most);
    count = tree.Read(palette);
    return PaletteResult::Made;
}

void SortByLuminance(Palette& palette, int count) {
    const auto isDarker = [](Rgb a, Rgb b) { return Luminance(a) < Luminance(b); };
    // Each moves down to its place among those before it, which takes no memory as a stable sort would.
    for (auto at = palette.begin(); at != palette.begin() + count; ++at)
        std::rotate(std::upper_bound(palette.begin(), at, *at, isDarker), at, at + 1);
}

} // namespace lumafold
