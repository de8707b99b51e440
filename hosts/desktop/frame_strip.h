// The frames of an animation side by side, the current one marked; a click goes there.
#pragma once

#include "hosts/desktop/document.h"
#include "hosts/desktop/painting.h"
#include "hosts/desktop/view.h"

namespace lumafold {

class FrameStrip : public View<FrameStrip> {
public:
    static constexpr wchar_t kClassName[] = L"LumafoldHostFrames";
    /// The owner is sent this with the frame's index when the person chose one.
    static constexpr UINT kChosen = WM_APP + 1;

    ~FrameStrip() { Destroy(); }

    bool Make(HWND parent);
    int Height() const;
    void Show(const Document* document);
    /// After the current frame changed, or pictures were drawn.
    void Follow();

    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
    void Paint(HDC context, const RECT& area);

private:
    void PaintCell(HDC context, std::size_t index, const RECT& cell) const;
    int CellWidth() const;
    int ContentWidth() const;
    void ScrollTo(int x);
    void Scroll(WPARAM wparam);
    void Choose(LPARAM lparam);

    const Document* document_ = nullptr;
    int scroll_ = 0;
};

} // namespace lumafold
