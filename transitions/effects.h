// Every effect of the table: its function, and how many frames it appends, the still frame included.
#pragma once

#include "transitions/table.h"

namespace lumafold {

struct CanvasSize {
    std::int32_t width, height;
};
using FrameCounter = std::int64_t (*)(CanvasSize canvas);

// none.cpp
int None(TransitionContext& context);
std::int64_t NoneFrames(CanvasSize canvas);

// iris.cpp
int SoftIrisDiamond(TransitionContext& context);
int SoftIrisEllipse(TransitionContext& context);
int SilentMovie(TransitionContext& context);
std::int64_t SoftIrisDiamondFrames(CanvasSize canvas);
std::int64_t SoftIrisEllipseFrames(CanvasSize canvas);
std::int64_t SilentMovieFrames(CanvasSize canvas);

// alpha_pieces.cpp
int AlphaHorizontalBarOpaque(TransitionContext& context);
int AlphaHorizontalBarTransparent(TransitionContext& context);
int AlphaVerticalBarOpaque(TransitionContext& context);
int AlphaVerticalBarTransparent(TransitionContext& context);
int AlphaTileOpaque(TransitionContext& context);
int AlphaTileTransparent(TransitionContext& context);
std::int64_t AlphaHorizontalBarOpaqueFrames(CanvasSize canvas);
std::int64_t AlphaHorizontalBarTransparentFrames(CanvasSize canvas);
std::int64_t AlphaVerticalBarOpaqueFrames(CanvasSize canvas);
std::int64_t AlphaVerticalBarTransparentFrames(CanvasSize canvas);
std::int64_t AlphaTileOpaqueFrames(CanvasSize canvas);
std::int64_t AlphaTileTransparentFrames(CanvasSize canvas);

// backscatter.cpp
int BackscatterHorizontal(TransitionContext& context);
int BackscatterVertical(TransitionContext& context);
std::int64_t BackscatterHorizontalFrames(CanvasSize canvas);
std::int64_t BackscatterVerticalFrames(CanvasSize canvas);

// diagonal_raster.cpp
int DiagonalRasterLeft(TransitionContext& context);
int DiagonalRasterRight(TransitionContext& context);
std::int64_t DiagonalRasterLeftFrames(CanvasSize canvas);
std::int64_t DiagonalRasterRightFrames(CanvasSize canvas);

// framework.cpp
int Framework(TransitionContext& context);
std::int64_t FrameworkFrames(CanvasSize canvas);

// hurricane.cpp
int Hurricane(TransitionContext& context);
std::int64_t HurricaneFrames(CanvasSize canvas);

// implode.cpp
int Burp(TransitionContext& context);
int QuantumSingularity(TransitionContext& context);
std::int64_t BurpFrames(CanvasSize canvas);
std::int64_t QuantumSingularityFrames(CanvasSize canvas);

// liquid_metal.cpp
int LiquidMetal(TransitionContext& context);
std::int64_t LiquidMetalFrames(CanvasSize canvas);

// paintball.cpp
int Paintball(TransitionContext& context);
std::int64_t PaintballFrames(CanvasSize canvas);

// quad.cpp
int QuadContract(TransitionContext& context);
int QuadExpand(TransitionContext& context);
std::int64_t QuadContractFrames(CanvasSize canvas);
std::int64_t QuadExpandFrames(CanvasSize canvas);

// rollerblind.cpp
int RollerblindHorizontal(TransitionContext& context);
int RollerblindVertical(TransitionContext& context);
std::int64_t RollerblindHorizontalFrames(CanvasSize canvas);
std::int64_t RollerblindVerticalFrames(CanvasSize canvas);

// moving_masks.cpp
int SoftSlideHorizontal(TransitionContext& context);
int SoftSlideVertical(TransitionContext& context);
int SpikesHorizontal(TransitionContext& context);
int SpikesVertical(TransitionContext& context);
std::int64_t SoftSlideHorizontalFrames(CanvasSize canvas);
std::int64_t SoftSlideVerticalFrames(CanvasSize canvas);
std::int64_t SpikesHorizontalFrames(CanvasSize canvas);
std::int64_t SpikesVerticalFrames(CanvasSize canvas);

// solarize.cpp
int Solarize(TransitionContext& context);
std::int64_t SolarizeFrames(CanvasSize canvas);

// spiral.cpp
int SpiralIn(TransitionContext& context);
int SpiralOut(TransitionContext& context);
std::int64_t SpiralInFrames(CanvasSize canvas);
std::int64_t SpiralOutFrames(CanvasSize canvas);

// submerge.cpp
int Submerge(TransitionContext& context);
std::int64_t SubmergeFrames(CanvasSize canvas);

// unplugged_tv.cpp
int UnpluggedTV(TransitionContext& context);
std::int64_t UnpluggedTVFrames(CanvasSize canvas);

} // namespace lumafold
