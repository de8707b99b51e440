// Alpha bars and tiles: pieces of the picture, picked at random, fade to the target, several at a time. An
// opaque piece starts as a block of one colour, a transparent one as the source.
#pragma once

#include <span>

#include "transitions/gap.h"
#include "transitions/random.h"

namespace lumafold {

enum class PieceShape { HorizontalBar, VerticalBar, Tile };
enum class PieceLook { Opaque, Transparent };

struct PieceBox {
    std::int32_t x, y, width, height;
};
struct FadingPiece {
    PieceBox box;
    float alpha; ///< 255 is the start look, 0 the target
};

/// Draws the pieces onto the canvas, which keeps them, and returns a copy of it. `look` is the picture that
/// pieces start from; its last row stands for those below it.
OwnedDib RenderAlphaPieces(DibHeader& canvas, const DibHeader& look, const DibHeader& target,
                           std::span<const FadingPiece> pieces);

/// A list within fixed room. Entries behind a removed one move up: the order decides which piece the next
/// draw picks.
template <typename T>
class PieceList {
public:
    explicit PieceList(std::size_t room) : entries_(room) {}
    explicit operator bool() const { return static_cast<bool>(entries_); }

    std::span<T> Entries() { return {entries_.data(), count_}; }
    std::size_t Count() const { return count_; }
    void Append(const T& entry) { entries_[count_++] = entry; }
    T Take(std::size_t index) {
        const T entry = entries_[index];
        --count_;
        std::memmove(&entries_[index], &entries_[index] + 1, (count_ - index) * sizeof(T));
        return entry;
    }

private:
    Array<T> entries_;
    std::size_t count_ = 0;
};

/// How a canvas falls into pieces, and how they fade.
struct PiecePlan {
    PieceShape shape;
    PieceLook look;
    std::int64_t count; ///< of pieces
    std::int64_t limit; ///< one more than may fade at a time (docs/quirks.md 30), at least 2
    float fade;         ///< what a piece loses of its alpha from frame to frame
};

class AlphaPiecesPainter {
public:
    AlphaPiecesPainter(const Gap& gap, const PiecePlan& plan);
    explicit operator bool() const {
        return waiting_ && fading_ && canvas_ && (block_ || plan_.look == PieceLook::Transparent);
    }
    OwnedDib Frame(std::int64_t index);

private:
    void Admit();
    void Retire();

    const Gap& gap_;
    PiecePlan plan_;
    Random random_;
    PieceList<PieceBox> waiting_;
    PieceList<FadingPiece> fading_;
    OwnedDib canvas_;
    OwnedDib block_; // one row of the colour that opaque pieces start from
};

template <PieceShape Shape, PieceLook Look>
class AlphaPieces {
public:
    static std::optional<AlphaPieces> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    AlphaPiecesPainter Start(const Gap& gap) const { return {gap, plan_}; }

private:
    explicit AlphaPieces(const PiecePlan& plan) : plan_(plan) {}

    PiecePlan plan_;
};

} // namespace lumafold
