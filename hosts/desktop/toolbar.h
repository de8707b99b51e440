// The row of buttons under the menu, with icons of its own.
#pragma once

#include <windows.h>

#include <commctrl.h>

namespace lumafold {

class IconPainter;

class Toolbar {
public:
    Toolbar() = default;
    Toolbar(const Toolbar&) = delete;
    Toolbar& operator=(const Toolbar&) = delete;
    ~Toolbar();

    bool Make(HWND parent);
    HWND Get() const { return toolbar_; }
    int Height() const;
    void Resize() const;
    void Enable(int command, bool enabled) const;
    void Check(int command, bool checked) const;
    /// The play button shows what it would do.
    void ShowPlaying(bool playing) const;

private:
    /// Its number in both lists.
    int AddIcons(void (*draw)(IconPainter&)) const;

    HWND toolbar_ = nullptr;
    HIMAGELIST icons_ = nullptr, fadedIcons_ = nullptr;
};

/// The tip of a toolbar button.
const char* ToolbarTip(int command);

} // namespace lumafold
