// Sizes and fonts for the screen that a window is on. All lengths in this room are told in pixels of a screen
// of 96 dots an inch.
#pragma once

#include <windows.h>

#include "platform/gdi_win32.h"

namespace lumafold {

enum class Face { Plain, Bold, Title };

class Look {
public:
    /// Fonts are the system's own for messages.
    explicit Look(int dotsPerInch);

    int DotsPerInch() const { return dots_; }
    /// A length on this screen.
    int At(int pixels) const { return MulDiv(pixels, dots_, 96); }
    HFONT Font(Face face) const {
        return (face == Face::Plain ? plain_ : face == Face::Bold ? bold_ : title_).Get();
    }

private:
    int dots_;
    OwnedGdi<HFONT> plain_, bold_, title_;
};

/// Dots an inch of the main screen, as they were when the person logged on.
int SystemDotsPerInch();

/// Dots an inch of the screen that a window is on; the whole system's where it tells no single one's.
int DotsPerInchOf(HWND window);

} // namespace lumafold
