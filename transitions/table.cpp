#include "transitions/table.h"

#include "transitions/alpha_pieces.h"
#include "transitions/backscatter.h"
#include "transitions/diagonal_raster.h"
#include "transitions/framework.h"
#include "transitions/hurricane.h"
#include "transitions/implode.h"
#include "transitions/iris.h"
#include "transitions/liquid_metal.h"
#include "transitions/moving_masks.h"
#include "transitions/none.h"
#include "transitions/paintball.h"
#include "transitions/quad.h"
#include "transitions/rollerblind.h"
#include "transitions/run.h"
#include "transitions/solarize.h"
#include "transitions/spiral.h"
#include "transitions/submerge.h"
#include "transitions/unplugged_tv.h"

namespace lumafold {
namespace {

struct Row {
    const char* name;
    EffectFunction effect;
    std::int64_t (*count)(const PluginSettings& settings, CanvasSize canvas);
    bool inTurn;
    std::string_view keys;
};
template <typename Family>
constexpr Row RowOf(const char* name, std::string_view keys) {
    return {name, RunEffect<Family>, CountFrames<Family>, !kAnyOrder<Family>, keys};
}

#define LUMAFOLD_BAR_KEYS "TransitionAlphaBarCount TransitionAlphaTileStep RandomSeed"
#define LUMAFOLD_TILE_KEYS                                                                                   \
    "TransitionAlphaTileSize TransitionAlphaTileCount TransitionAlphaTileStep RandomSeed"
#define LUMAFOLD_OPAQUE_KEYS "TransitionAlphaTileColor "
#define LUMAFOLD_SPARKLE_KEYS "TransitionSparkleStep TransitionSparkleSize TransitionSparkleColor RandomSeed"
#define LUMAFOLD_IMPLODE_KEYS                                                                                \
    "TransitionImplodeStep TransitionImplodeMax TransitionImplodeTrack TransitionImplodeXPos "               \
    "TransitionImplodeYPos TransitionMattcolour"
#define LUMAFOLD_RASTER_KEYS "TransitionDiagonalRasterSize TransitionDiagonalRasterStep"
#define LUMAFOLD_QUAD_KEYS "TransitionQuadStepSize"
#define LUMAFOLD_BLIND_KEYS "TransitionRollerblindStep TransitionRollerblindShading"
#define LUMAFOLD_IRIS_KEYS "TransitionIrisStep TransitionIrisRadius"
#define LUMAFOLD_SLIDE_KEYS "TransitionSoftSlideStep TransitionSoftSlideRadius"
#define LUMAFOLD_SPIKE_KEYS "TransitionSpikeCount TransitionSpikeStep TransitionSpikeRadius"
#define LUMAFOLD_SPIRAL_KEYS "TransitionSpiralStep TransitionSpiralShear"

constexpr Row kRows[] = {
    RowOf<AlphaPieces<PieceShape::HorizontalBar, PieceLook::Opaque>>("Alpha horizontal bar (opaque)",
                                                                     LUMAFOLD_OPAQUE_KEYS LUMAFOLD_BAR_KEYS),
    RowOf<AlphaPieces<PieceShape::HorizontalBar, PieceLook::Transparent>>(
        "Alpha horizontal bar (transparent)", LUMAFOLD_BAR_KEYS),
    RowOf<AlphaPieces<PieceShape::VerticalBar, PieceLook::Opaque>>("Alpha vertical bar (opaque)",
                                                                   LUMAFOLD_OPAQUE_KEYS LUMAFOLD_BAR_KEYS),
    RowOf<AlphaPieces<PieceShape::VerticalBar, PieceLook::Transparent>>("Alpha vertical bar (transparent)",
                                                                        LUMAFOLD_BAR_KEYS),
    RowOf<AlphaPieces<PieceShape::Tile, PieceLook::Opaque>>("Alpha tile (opaque)",
                                                            LUMAFOLD_OPAQUE_KEYS LUMAFOLD_TILE_KEYS),
    RowOf<AlphaPieces<PieceShape::Tile, PieceLook::Transparent>>("Alpha tile (transparent)",
                                                                 LUMAFOLD_TILE_KEYS),
    RowOf<Backscatter<PushAxis::Horizontal>>("Backscatter (horizontal)", LUMAFOLD_SPARKLE_KEYS),
    RowOf<Backscatter<PushAxis::Vertical>>("Backscatter (vertical)", LUMAFOLD_SPARKLE_KEYS),
    RowOf<Implode<ImplodeKind::Burp>>("Burp", LUMAFOLD_IMPLODE_KEYS),
    RowOf<DiagonalRaster<RasterFrom::Left>>("Diagonal raster (left)", LUMAFOLD_RASTER_KEYS),
    RowOf<DiagonalRaster<RasterFrom::Right>>("Diagonal raster (right)", LUMAFOLD_RASTER_KEYS),
    RowOf<Framework>("Framework", ""),
    RowOf<Hurricane>("Hurricane", "TransitionMotionBlurStep TransitionMotionBlurAngle "
                                  "TransitionMotionBlurRadius TransitionMattcolour"),
    RowOf<LiquidMetal>("Liquid metal", "TransitionLiquidMetalStep TransitionLiquidMetalViscosity "
                                       "TransitionLiquidMetalCenterX TransitionLiquidMetalCenterY"),
    RowOf<None>("None", ""),
    RowOf<Paintball>("Paintball", "TransitionPaintballSize TransitionPaintballPerturb RandomSeed"),
    RowOf<Quad<QuadDirection::Contract>>("Quad (contract)", LUMAFOLD_QUAD_KEYS),
    RowOf<Quad<QuadDirection::Expand>>("Quad (expand)", LUMAFOLD_QUAD_KEYS),
    RowOf<Implode<ImplodeKind::QuantumSingularity>>("Quantum singularity", LUMAFOLD_IMPLODE_KEYS),
    RowOf<Rollerblind<BlindLine::Row>>("Rollerblind (horizontal)", LUMAFOLD_BLIND_KEYS),
    RowOf<Rollerblind<BlindLine::Column>>("Rollerblind (vertical)", LUMAFOLD_BLIND_KEYS),
    RowOf<SilentMovie>("Silent movie", "TransitionSilentMovieStep TransitionSilentMovieRadius "
                                       "TransitionSilentMovieBackground"),
    RowOf<SoftIris<IrisShape::Diamond>>("Soft iris (diamond)", LUMAFOLD_IRIS_KEYS),
    RowOf<SoftIris<IrisShape::Ellipse>>("Soft iris (ellipse)", LUMAFOLD_IRIS_KEYS),
    RowOf<SoftSlide<Travel::Right>>("Soft slide (horizontal)", LUMAFOLD_SLIDE_KEYS),
    RowOf<SoftSlide<Travel::Down>>("Soft slide (vertical)", LUMAFOLD_SLIDE_KEYS),
    RowOf<Solarize>("Solarize", "TransitionSolarizeStep TransitionSolarizeIntensity"),
    RowOf<Spikes<Travel::Right>>("Spikes (horizontal)", LUMAFOLD_SPIKE_KEYS),
    RowOf<Spikes<Travel::Down>>("Spikes (vertical)", LUMAFOLD_SPIKE_KEYS),
    RowOf<Spiral<SpiralWay::In>>("Spiral in", LUMAFOLD_SPIRAL_KEYS),
    RowOf<Spiral<SpiralWay::Out>>("Spiral out", LUMAFOLD_SPIRAL_KEYS),
    RowOf<Submerge>("Submerge", "TransitionSubmergeStep TransitionSubmergeColor"),
    RowOf<UnpluggedTv>("Unplugged TV", "TransitionUnpluggedTVStep TransitionUnpluggedTVAfterglow"),
};
static_assert(std::size(kRows) == kTransitionCount);

const Row* RowAt(int row) { return row >= 0 && row < kTransitionCount ? &kRows[row] : nullptr; }

} // namespace

constinit const std::array<TransitionRow, kTransitionCount> TransitionTable = [] {
    std::array<TransitionRow, kTransitionCount> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = {kRows[i].effect, kRows[i].name, 0};
    return table;
}();

std::int64_t FrameCount(int row, const PluginSettings& settings, CanvasSize canvas) {
    const Row* known = RowAt(row);
    return known != nullptr ? known->count(settings, canvas) : 0;
}

bool RendersInTurn(int row) {
    const Row* known = RowAt(row);
    return known != nullptr && known->inTurn;
}

std::string_view TransitionSettings(int row) {
    const Row* known = RowAt(row);
    return known != nullptr ? known->keys : std::string_view();
}

} // namespace lumafold
