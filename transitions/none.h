// None: a hard cut. The still frame alone stands for the whole gap.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

class None {
public:
    static std::optional<None> Plan(const PluginSettings&, CanvasSize) { return None(); }
    std::int64_t Frames() const { return 0; }
    OwnedDib Frame(const Gap&, std::int64_t) const { return {}; }
};

} // namespace lumafold
