#include "transitions/table.h"

#include "transitions/effects.h"

namespace lumafold {
namespace {

struct Row {
    const char* name;
    EffectFunction effect;
    FrameCounter frames;
    std::string_view settings;
};

constexpr std::string_view kBarSettings =
    "TransitionAlphaBarCount TransitionAlphaTileColor TransitionAlphaTileStep RandomSeed";
constexpr std::string_view kClearBarSettings = "TransitionAlphaBarCount TransitionAlphaTileStep RandomSeed";
constexpr std::string_view kTileSettings = "TransitionAlphaTileSize TransitionAlphaTileCount "
                                           "TransitionAlphaTileColor TransitionAlphaTileStep RandomSeed";
constexpr std::string_view kClearTileSettings =
    "TransitionAlphaTileSize TransitionAlphaTileCount TransitionAlphaTileStep RandomSeed";
constexpr std::string_view kSparkleSettings =
    "TransitionSparkleStep TransitionSparkleSize TransitionSparkleColor RandomSeed";
constexpr std::string_view kImplodeSettings =
    "TransitionImplodeStep TransitionImplodeMax TransitionImplodeTrack TransitionImplodeXPos "
    "TransitionImplodeYPos "
    "TransitionMattcolour";
constexpr std::string_view kRasterSettings = "TransitionDiagonalRasterSize TransitionDiagonalRasterStep";
constexpr std::string_view kQuadSettings = "TransitionQuadStepSize";
constexpr std::string_view kBlindSettings = "TransitionRollerblindStep TransitionRollerblindShading";
constexpr std::string_view kIrisSettings = "TransitionIrisStep TransitionIrisRadius";
constexpr std::string_view kSlideSettings = "TransitionSoftSlideStep TransitionSoftSlideRadius";
constexpr std::string_view kSpikeSettings = "TransitionSpikeCount TransitionSpikeStep TransitionSpikeRadius";
constexpr std::string_view kSpiralSettings = "TransitionSpiralStep TransitionSpiralShear";

constexpr Row kRows[kTransitionCount] = {
    {"Alpha horizontal bar (opaque)", AlphaHorizontalBarOpaque, AlphaHorizontalBarOpaqueFrames, kBarSettings},
    {"Alpha horizontal bar (transparent)", AlphaHorizontalBarTransparent, AlphaHorizontalBarTransparentFrames,
     kClearBarSettings},
    {"Alpha vertical bar (opaque)", AlphaVerticalBarOpaque, AlphaVerticalBarOpaqueFrames, kBarSettings},
    {"Alpha vertical bar (transparent)", AlphaVerticalBarTransparent, AlphaVerticalBarTransparentFrames,
     kClearBarSettings},
    {"Alpha tile (opaque)", AlphaTileOpaque, AlphaTileOpaqueFrames, kTileSettings},
    {"Alpha tile (transparent)", AlphaTileTransparent, AlphaTileTransparentFrames, kClearTileSettings},
    {"Backscatter (horizontal)", BackscatterHorizontal, BackscatterHorizontalFrames, kSparkleSettings},
    {"Backscatter (vertical)", BackscatterVertical, BackscatterVerticalFrames, kSparkleSettings},
    {"Burp", Burp, BurpFrames, kImplodeSettings},
    {"Diagonal raster (left)", DiagonalRasterLeft, DiagonalRasterLeftFrames, kRasterSettings},
    {"Diagonal raster (right)", DiagonalRasterRight, DiagonalRasterRightFrames, kRasterSettings},
    {"Framework", Framework, FrameworkFrames, ""},
    {"Hurricane", Hurricane, HurricaneFrames,
     "TransitionMotionBlurStep TransitionMotionBlurAngle TransitionMotionBlurRadius TransitionMattcolour"},
    {"Liquid metal", LiquidMetal, LiquidMetalFrames,
     "TransitionLiquidMetalStep TransitionLiquidMetalViscosity TransitionLiquidMetalCenterX "
     "TransitionLiquidMetalCenterY"},
    {"None", None, NoneFrames, ""},
    {"Paintball", Paintball, PaintballFrames,
     "TransitionPaintballSize TransitionPaintballPerturb RandomSeed"},
    {"Quad (contract)", QuadContract, QuadContractFrames, kQuadSettings},
    {"Quad (expand)", QuadExpand, QuadExpandFrames, kQuadSettings},
    {"Quantum singularity", QuantumSingularity, QuantumSingularityFrames, kImplodeSettings},
    {"Rollerblind (horizontal)", RollerblindHorizontal, RollerblindHorizontalFrames, kBlindSettings},
    {"Rollerblind (vertical)", RollerblindVertical, RollerblindVerticalFrames, kBlindSettings},
    {"Silent movie", SilentMovie, SilentMovieFrames,
     "TransitionSilentMovieStep TransitionSilentMovieRadius TransitionSilentMovieBackground"},
    {"Soft iris (diamond)", SoftIrisDiamond, SoftIrisDiamondFrames, kIrisSettings},
    {"Soft iris (ellipse)", SoftIrisEllipse, SoftIrisEllipseFrames, kIrisSettings},
    {"Soft slide (horizontal)", SoftSlideHorizontal, SoftSlideHorizontalFrames, kSlideSettings},
    {"Soft slide (vertical)", SoftSlideVertical, SoftSlideVerticalFrames, kSlideSettings},
    {"Solarize", Solarize, SolarizeFrames, "TransitionSolarizeStep TransitionSolarizeIntensity"},
    {"Spikes (horizontal)", SpikesHorizontal, SpikesHorizontalFrames, kSpikeSettings},
    {"Spikes (vertical)", SpikesVertical, SpikesVerticalFrames, kSpikeSettings},
    {"Spiral in", SpiralIn, SpiralInFrames, kSpiralSettings},
    {"Spiral out", SpiralOut, SpiralOutFrames, kSpiralSettings},
    {"Submerge", Submerge, SubmergeFrames, "TransitionSubmergeStep TransitionSubmergeColor"},
    {"Unplugged TV", UnpluggedTV, UnpluggedTVFrames,
     "TransitionUnpluggedTVStep TransitionUnpluggedTVAfterglow"},
};

bool IsRow(int row) { return row >= 0 && row < kTransitionCount; }

} // namespace

constinit const std::array<TransitionRow, kTransitionCount> TransitionTable = [] {
    std::array<TransitionRow, kTransitionCount> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = {kRows[i].effect, kRows[i].name, 0};
    }
    return table;
}();

std::int64_t FrameCount(int row, std::int32_t width, std::int32_t height) {
    return IsRow(row) ? kRows[row].frames({width, height}) : 0;
}

std::string_view TransitionSettings(int row) { return IsRow(row) ? kRows[row].settings : std::string_view(); }

} // namespace lumafold
