// None: a hard cut. The still frame alone stands for the whole gap.
#include "transitions/run.h"

namespace lumafold {
namespace {

struct None {
    static std::optional<None> Plan(const PluginSettings&, CanvasSize) { return None(); }
    std::int64_t Frames() const { return 0; }
    OwnedDib Frame(const Gap&, std::int64_t) const { return {}; }
};

} // namespace

constinit const Effect kNone = EffectOf<None>();

} // namespace lumafold
