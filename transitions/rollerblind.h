// Rollerblind: the source parts at its centre line and its halves slide to the edges. In the opening the
// target's two edges meet at that line, darkened towards it as if the opening were deep.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

/// The line the picture parts at: a row, the halves moving up and down, or a column.
enum class BlindLine { Row, Column };
enum class BlindShading { Off, On };

/// Both pictures have 24 bits and the same size.
OwnedDib RollerblindFrame(const DibHeader& source, const DibHeader& target, BlindLine line,
                          std::int64_t percent, BlindShading shading);

template <BlindLine Line>
class Rollerblind {
public:
    static std::optional<Rollerblind> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    OwnedDib Frame(const Gap& gap, std::int64_t index) const;

private:
    Rollerblind(std::int64_t step, BlindShading shading) : step_(step), shading_(shading) {}

    std::int64_t step_; ///< percent a frame
    BlindShading shading_;
};

} // namespace lumafold
