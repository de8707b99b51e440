// Hard-edged white shapes on a black canvas: the platform's own drawing where there is one, and elsewhere the
// rules that give the same pixels. Effects draw their masks with it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/non_copyable.h"
#include "platform/window_handle.h"

namespace lumafold {

struct ShapePoint {
    std::int32_t x, y;
};

/// A canvas of one byte a pixel, 0 black and 255 white, with white pen and brush in hand. Rows run from the
/// top without padding; what lies outside is clipped. `width` and `height` are above 0.
class ShapeCanvas : NonCopyable {
public:
    static constexpr std::size_t kMaxPoints = 128;

    /// `pixels` must be all black; they stay the caller's and must outlive the canvas. `window` gives the
    /// drawing context to be compatible with; 0 is the screen. Check it before use.
    ShapeCanvas(WindowHandle window, std::int32_t width, std::int32_t height, std::uint8_t* pixels);
    ~ShapeCanvas(); // NOLINT(performance-trivially-destructible): not where the system draws

    explicit operator bool() const { return usable_; }

    /// Right and bottom are not part of the shape; a box without any pixel draws nothing.
    void FillRect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom);
    /// The ellipse inside the box whose right and bottom lines are not part of it.
    void Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom);
    /// Even-odd interior and the outline, closed by itself. From 2 to kMaxPoints points; any other number
    /// draws nothing.
    void Polygon(std::span<const ShapePoint> points);

    /// Brings what was drawn between rows `top` and `bottom` (not included) into the pixels; more may be
    /// drawn afterwards. False when the platform could not.
    bool Finish(std::int32_t top, std::int32_t bottom);
    bool Finish() { return Finish(0, height_); }

private:
    bool usable_ = false;
    std::int32_t width_, height_;
    std::uint8_t* pixels_;
    [[maybe_unused]] void* context_ = nullptr; // these are the platform's, where it draws by itself
    [[maybe_unused]] void* bitmap_ = nullptr;
    [[maybe_unused]] void* bits_ = nullptr;
};

} // namespace lumafold
