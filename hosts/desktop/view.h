// A window that paints all of its inside itself, in one go.
#pragma once

#include "hosts/desktop/painting.h"
#include "hosts/desktop/window.h"

namespace lumafold {

/// Self has Paint(context, area) for the whole client area, and leads what it does not answer itself to
/// Default.
template <typename Self>
class View : public Window<Self> {
public:
    /// How it is painted from now on. The look is the owner's, and outlives the view or is replaced by this.
    void SetLook(const Look& look) {
        look_ = &look;
        this->Repaint();
    }

protected:
    ~View() = default;

    LRESULT Default(UINT message, WPARAM wparam, LPARAM lparam) {
        switch (message) {
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT: {
            const PaintBuffer buffer(this->window_);
            static_cast<Self*>(this)->Paint(buffer.Context(), buffer.Area());
            return 0;
        }
        default:
            return Window<Self>::Default(message, wparam, lparam);
        }
    }
    int At(int pixels) const { return look_->At(pixels); }

    const Look* look_ = nullptr;
};

} // namespace lumafold
