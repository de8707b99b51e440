#include "hosts/desktop/progress_window.h"

#include <algorithm>

namespace lumafold {
namespace {

constexpr int kWidth = 340, kHeight = 104;
constexpr UINT_PTR kWatchTimer = 1;
constexpr DWORD kBetweenPumps = 15; ///< milliseconds: pumping for every one of a thousand frames would show

} // namespace

void ProgressWindow::Caption(HWND owner, const char* text) {
    Open(owner);
    caption_ = text != nullptr ? text : "";
    position_ = total_ = 0;
    painted_ = GetTickCount() - kBetweenPumps;
    Pump();
}

void ProgressWindow::Position(HWND owner, std::int64_t position, std::int64_t total) {
    // A plug-in that only takes its position back is done: no window for that.
    if (total <= 0 && !IsShown()) return;
    Open(owner);
    total_ = std::max<std::int64_t>(total, 0);
    position_ = std::clamp<std::int64_t>(position, 0, total_);
    Pump();
}

void ProgressWindow::Close() {
    if (window_ == nullptr) return;
    // The owner first, or the system would look for another window to activate.
    if (ownerWasEnabled_ && IsWindow(owner_)) EnableWindow(owner_, TRUE);
    ownerWasEnabled_ = false;
    DestroyWindow(window_);
}

void ProgressWindow::Open(HWND owner) {
    if (window_ != nullptr) return;
    RECT around{};
    GetWindowRect(owner != nullptr ? owner : GetDesktopWindow(), &around);
    const int x = (around.left + around.right - kWidth) / 2, y = (around.top + around.bottom - kHeight) / 2;
    if (!Make(owner, "Lumafold", WS_POPUP | WS_CAPTION, WS_EX_DLGMODALFRAME, {x, y, x + kWidth, y + kHeight}))
        return;
    owner_ = owner;
    ownerWasEnabled_ = owner != nullptr && IsWindowEnabled(owner);
    if (ownerWasEnabled_) EnableWindow(owner, FALSE);
    ShowWindow(window_, SW_SHOWNORMAL);
    SetTimer(window_, kWatchTimer, 50, nullptr);
    painted_ = GetTickCount() - kBetweenPumps;
}

void ProgressWindow::Pump() {
    if (window_ == nullptr || pumping_ || GetTickCount() - painted_ < kBetweenPumps) return;
    Repaint();
    UpdateWindow(window_);
    pumping_ = true;
    MSG message;
    // Bounded, so that timers that are always due cannot keep the build waiting.
    for (int i = 0; i < 64 && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    pumping_ = false;
    painted_ = GetTickCount();
}

// A build that fails says nothing more. Once messages flow without this window's doing, the plug-in is back
// in a loop of its own, with its dialog or with a message that it shows.
void ProgressWindow::CloseWhenAbandoned() {
    if (pumping_) return;
    const HWND popup = GetLastActivePopup(owner_);
    if (popup == owner_ || popup == window_ || !IsWindowVisible(popup)) {
        Close();
    } else {
        ShowWindow(window_, SW_HIDE); // the message keeps the owner to itself
    }
}

LRESULT ProgressWindow::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_TIMER:
        CloseWhenAbandoned();
        return 0;
    case WM_CLOSE:
        return 0;
    case WM_SETCURSOR:
        SetCursor(LoadCursorA(nullptr, IDC_WAIT));
        return TRUE;
    default:
        return Default(message, wparam, lparam);
    }
}

void ProgressWindow::Paint(HDC context, const RECT& area) {
    Fill(context, area, kPanel);
    Text(context, caption_ + "...", {18, 12, area.right - 18, 30}, Face::Bold, kPanelText,
         DT_SINGLELINE | DT_VCENTER);
    if (total_ > 0) {
        Text(context, std::to_string(position_) + " of " + std::to_string(total_),
             {18, 12, area.right - 18, 30}, Face::Plain, kPanelDim, DT_SINGLELINE | DT_VCENTER | DT_RIGHT);
    }
    const RECT bar{18, 38, area.right - 18, 54};
    Fill(context, bar, kPanelLine);
    if (total_ > 0) {
        const auto width = static_cast<int>((bar.right - bar.left - 2) * position_ / total_);
        Fill(context, {bar.left + 1, bar.top + 1, bar.left + 1 + width, bar.bottom - 1}, kAccent);
    }
}

} // namespace lumafold
