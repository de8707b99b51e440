// How the program looks: its colours, painting without flicker, pixels and text.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "hosts/desktop/look.h"
#include "platform/gdi_win32.h"

namespace lumafold {

inline constexpr COLORREF kWorkspace = RGB(46, 50, 58), kStripBack = RGB(34, 37, 43), kCell = RGB(58, 63, 73),
                          kBright = RGB(240, 242, 246), kDim = RGB(150, 157, 170),
                          kAccent = RGB(255, 170, 60), kPanel = RGB(246, 247, 249),
                          kPanelLine = RGB(214, 218, 224), kPanelText = RGB(32, 36, 44),
                          kPanelDim = RGB(110, 118, 132), kChosenCard = RGB(255, 238, 212);

/// A window being painted into memory and shown at once when this ends.
class PaintBuffer {
public:
    explicit PaintBuffer(HWND window);
    PaintBuffer(const PaintBuffer&) = delete;
    PaintBuffer& operator=(const PaintBuffer&) = delete;
    ~PaintBuffer();

    HDC Context() const { return memory_; }
    const RECT& Area() const { return area_; } ///< the whole client area

private:
    HWND window_;
    PAINTSTRUCT paint_{};
    RECT area_{};
    HDC memory_;
    HBITMAP bitmap_;
    HGDIOBJ before_;
};

void Fill(HDC context, const RECT& area, COLORREF colour);
/// A frame of `thickness` pixels inside the rectangle.
void Frame(HDC context, const RECT& area, COLORREF colour, int thickness = 1);
/// `text` is UTF-8, `format` as DrawText takes it; text that does not fit ends in an ellipsis.
void Text(HDC context, const std::string& text, RECT area, HFONT font, COLORREF colour, UINT format);
/// Pixels as 0x00RRGGBB, row by row from the top.
void Pixels(HDC context, int x, int y, int width, int height, const std::vector<std::uint32_t>& pixels);
/// The same, scaled into a place of another size.
void ScaledPixels(HDC context, const RECT& place, int width, int height,
                  const std::vector<std::uint32_t>& pixels);

} // namespace lumafold
