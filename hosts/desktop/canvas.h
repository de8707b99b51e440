// The large view of one frame: zoomed, panned by scroll bars, wheel or dragging.
#pragma once

#include "hosts/desktop/document.h"
#include "hosts/desktop/painting.h"
#include "hosts/desktop/view.h"
#include "hosts/desktop/view_picture.h"

namespace lumafold {

class Canvas : public View<Canvas> {
public:
    static constexpr wchar_t kClassName[] = L"LumafoldHostCanvas";

    ~Canvas() { Destroy(); }

    bool Make(HWND parent);
    /// Null shows what to do first. The document is the owner's.
    void Show(Document* document);
    /// What the empty view says under the icon, and whether an animation can be made.
    void SetWelcome(std::string headline, std::string notice, bool canMake);

    int Zoom() const;
    bool Fits() const { return fit_; }
    void Fit();
    void SetZoom(int percent);
    /// By steps, as the wheel does it.
    void Pan(int across, int down);
    void SetBackdrop(Backdrop backdrop);

    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
    void Paint(HDC context, const RECT& area);

private:
    void PaintWelcome(HDC context, const RECT& area) const;
    void PaintPicture(HDC context, const RECT& area);
    void UpdateScrollBars();
    void Scroll(int bar, WPARAM wparam);
    void ScrollTo(int x, int y);
    void Drag(UINT message, LPARAM lparam);
    void Wheel(WPARAM wparam, LPARAM lparam);
    /// Zooms with one point of the window staying where it is.
    void ZoomAround(int percent, POINT point);
    POINT Origin(const RECT& area) const;

    Document* document_ = nullptr;
    std::string headline_, notice_;
    bool canMake_ = false;
    bool fit_ = true;
    int zoom_ = 100;
    Backdrop backdrop_ = Backdrop::Checkerboard;
    POINT scroll_{}, dragFrom_{}, dragScroll_{};
    bool dragging_ = false;
    std::vector<std::uint32_t> pixels_;
};

} // namespace lumafold
