// The row of buttons under the menu.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "hosts/desktop/look.h"

namespace lumafold {

class Toolbar {
public:
    Toolbar() = default;
    Toolbar(const Toolbar&) = delete;
    Toolbar& operator=(const Toolbar&) = delete;
    ~Toolbar();

    /// Once more for another look.
    bool Make(HWND parent, const Look& look);
    HWND Get() const { return toolbar_; }
    int Height() const;
    void Resize() const;
    void Enable(int command, bool enabled) const;
    void Check(int command, bool checked) const;
    /// The play button shows what it would do.
    void ShowPlaying(bool playing) const;

private:
    void ForgetIcons();

    HWND toolbar_ = nullptr;
    HIMAGELIST icons_ = nullptr, fadedIcons_ = nullptr;
};

/// The tip of a toolbar button.
const wchar_t* ToolbarTip(int command);

} // namespace lumafold
