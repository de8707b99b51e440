#include "hosts/desktop/progress_window.h"

#include <algorithm>

namespace lumafold {
namespace {

/// Of the inside.
constexpr int kWidth = 334, kHeight = 70, kButtonRoom = 38, kButtonWidth = 84, kButtonHeight = 26,
              kMargin = 18;
constexpr UINT_PTR kWatchTimer = 1;
constexpr DWORD kBetweenPumps = 15; ///< milliseconds: pumping for every one of a thousand frames would show

} // namespace

void ProgressWindow::Caption(HWND owner, const char* text) {
    Open(owner);
    SetCaption(text);
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
    button_ = nullptr;
}

void ProgressWindow::Open(HWND owner) {
    if (window_ != nullptr) return;
    if (!Make(owner, L"Lumafold", WS_POPUP | WS_CAPTION | WS_CLIPCHILDREN, WS_EX_DLGMODALFRAME, {})) return;
    owner_ = owner;
    ownerWasEnabled_ = owner != nullptr && IsWindowEnabled(owner);
    if (ownerWasEnabled_) EnableWindow(owner, FALSE);
    Arrange();
    ShowWindow(window_, SW_SHOWNORMAL);
    if (button_ != nullptr) SetFocus(button_);
    SetTimer(window_, kWatchTimer, 50, nullptr);
    painted_ = GetTickCount() - kBetweenPumps;
}

// Over the middle of its owner, in the sizes of the screen that this is on.
void ProgressWindow::Arrange() {
    RECT around{};
    GetWindowRect(owner_ != nullptr ? owner_ : GetDesktopWindow(), &around);
    SetWindowPos(window_, nullptr, around.left, around.top, 0, 0, SWP_NOZORDER | SWP_NOSIZE | SWP_NOACTIVATE);
    SetLook(ownLook_.emplace(DotsPerInchOf(window_)));
    const bool stops = stop_ == Stop::OnRequest;
    RECT place{0, 0, At(kWidth), At(kHeight + (stops ? kButtonRoom : 0))};
    AdjustWindowRectEx(&place, WS_POPUP | WS_CAPTION, FALSE, WS_EX_DLGMODALFRAME);
    const int width = place.right - place.left, height = place.bottom - place.top;
    SetWindowPos(window_, nullptr, (around.left + around.right - width) / 2,
                 (around.top + around.bottom - height) / 2, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    if (!stops) return;
    button_ =
        CreateWindowExW(0, L"BUTTON", L"Cancel", WS_CHILD | WS_VISIBLE | WS_TABSTOP,
                        At(kWidth - kMargin - kButtonWidth), At(kHeight), At(kButtonWidth), At(kButtonHeight),
                        window_, reinterpret_cast<HMENU>(IDCANCEL), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(button_, WM_SETFONT, reinterpret_cast<WPARAM>(look_->Font(Face::Plain)), FALSE);
}

void ProgressWindow::Pump() {
    if (window_ == nullptr || pumping_ || GetTickCount() - painted_ < kBetweenPumps) return;
    Repaint();
    UpdateWindow(window_);
    pumping_ = true;
    MSG message;
    // Bounded, so that timers that are always due cannot keep the build waiting.
    for (int i = 0; i < 64 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        // Escape and the button's own keys.
        if (button_ != nullptr && IsDialogMessageW(window_, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
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
    case WM_COMMAND:
        stopWanted_ = stopWanted_ || LOWORD(wparam) == IDCANCEL;
        return 0;
    case WM_CLOSE:
        return 0;
    case WM_SETCURSOR:
        // Over the button it is the arrow.
        if (reinterpret_cast<HWND>(wparam) != window_) return Default(message, wparam, lparam);
        SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)));
        return TRUE;
    default:
        return Default(message, wparam, lparam);
    }
}

void ProgressWindow::Paint(HDC context, const RECT& area) {
    Fill(context, area, kPanel);
    const int left = At(kMargin), right = area.right - At(kMargin);
    const RECT line{left, At(12), right, At(32)};
    Text(context, caption_ + "...", line, look_->Font(Face::Bold), kPanelText, DT_SINGLELINE | DT_VCENTER);
    const RECT bar{left, At(38), right, At(54)};
    Fill(context, bar, kPanelLine);
    if (total_ <= 0) return;
    Text(context, std::to_string(position_) + " of " + std::to_string(total_), line, look_->Font(Face::Plain),
         kPanelDim, DT_SINGLELINE | DT_VCENTER | DT_RIGHT);
    const auto width = static_cast<int>((bar.right - bar.left - 2) * position_ / total_);
    Fill(context, {bar.left + 1, bar.top + 1, bar.left + 1 + width, bar.bottom - 1}, kAccent);
}

} // namespace lumafold
