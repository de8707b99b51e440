#include "ui/logo.h"

#include <cstdint>

#include "platform/gdi_win32.h"
#include "resources/texts/resource_ids.h"
#include "ui/module.h"
#include "ui/painting.h"

namespace lumafold {
namespace {

constexpr UINT kTimerId = 99;
constexpr UINT kPeriod = 60; // milliseconds
constexpr int kEdge = 2;     // pixels of the sunken edge on each side

/// The button's window data: bits 0 to 7 the timer, 8 to 15 the next frame, 16 to 23 the screen's depth, 24
/// whether it runs.
struct LogoState {
    unsigned timer, frame, depth;
    bool running;
};

LogoState ReadState(HWND button) {
    const auto word = static_cast<std::uint32_t>(GetWindowLongA(button, GWL_USERDATA));
    return {word & 0xFF, (word >> 8) & 0xFF, (word >> 16) & 0xFF, ((word >> 24) & 1) != 0};
}

void WriteState(HWND button, const LogoState& state) {
    const std::uint32_t word = (state.timer & 0xFF) | (state.frame & 0xFF) << 8 | (state.depth & 0xFF) << 16 |
                               (state.running ? 1U : 0U) << 24;
    SetWindowLongA(button, GWL_USERDATA, static_cast<LONG>(word));
}

void SetRunning(HWND dialog, int buttonId, bool running) {
    const HWND button = GetDlgItem(dialog, buttonId);
    LogoState state = ReadState(button);
    state.running = running;
    WriteState(button, state);
}

HBITMAP LoadFrame(unsigned frame) {
    return static_cast<HBITMAP>(LoadImageA(ModuleInstance(), MAKEINTRESOURCEA(LUMAFOLD_BITMAP_LOGO + frame),
                                           IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
}

/// The frame's size, false without a frame.
bool SizeOf(HBITMAP frame, SIZE& size) {
    BITMAP bitmap = {};
    if (frame == nullptr || GetObjectA(frame, sizeof bitmap, &bitmap) == 0) return false;
    size = {bitmap.bmWidth, bitmap.bmHeight};
    return true;
}

void DrawFrame(const DRAWITEMSTRUCT& item, unsigned number) {
    RECT rect = item.rcItem;
    DrawEdge(item.hDC, &rect, EDGE_SUNKEN, BF_RECT | BF_SOFT);
    const OwnedGdi<HBITMAP> frame(LoadFrame(number));
    SIZE size;
    if (!SizeOf(frame.Get(), size)) return;
    const OwnedContext memory(CreateCompatibleDC(item.hDC));
    if (!memory) return;
    const SelectedGdi selected(memory.Get(), frame.Get());
    BitBlt(item.hDC, item.rcItem.left + kEdge, item.rcItem.top + kEdge, size.cx, size.cy, memory.Get(), 0, 0,
           SRCCOPY);
}

/// Few colours leave the logo blank.
void DrawLogo(const DRAWITEMSTRUCT& item) {
    LogoState state = ReadState(item.hwndItem);
    if (state.depth <= 8) return;
    DrawFrame(item, state.frame);
    state.frame = state.frame + 1 < LUMAFOLD_LOGO_FRAMES ? state.frame + 1 : 0;
    WriteState(item.hwndItem, state);
}

} // namespace

void StartLogo(HWND dialog, int buttonId) {
    const HWND button = GetDlgItem(dialog, buttonId);
    const OwnedGdi<HBITMAP> frame(LoadFrame(0));
    if (SIZE size; SizeOf(frame.Get(), size))
        SetWindowPos(button, nullptr, 0, 0, size.cx + 2 * kEdge, size.cy + 2 * kEdge,
                     SWP_NOMOVE | SWP_NOZORDER);
    if (SetTimer(dialog, kTimerId, kPeriod, nullptr) != 0)
        WriteState(button, {kTimerId, 0, static_cast<unsigned>(ScreenDepth()), true});
}

void PauseLogo(HWND dialog, int buttonId) { SetRunning(dialog, buttonId, false); }
void ResumeLogo(HWND dialog, int buttonId) { SetRunning(dialog, buttonId, true); }

void StopLogo(HWND dialog, int buttonId) {
    const unsigned timer = ReadState(GetDlgItem(dialog, buttonId)).timer;
    if (timer != 0) KillTimer(dialog, timer);
}

bool OfferToLogo(HWND dialog, int buttonId, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_TIMER) {
        const HWND button = GetDlgItem(dialog, buttonId);
        const LogoState state = ReadState(button);
        if (!state.running || wparam != state.timer) return false;
        InvalidateRect(button, nullptr, FALSE);
        return true;
    }
    if (message == WM_DRAWITEM) {
        const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lparam);
        if (item.CtlType != ODT_BUTTON || item.CtlID != static_cast<UINT>(buttonId)) return false;
        DrawLogo(item);
        return true;
    }
    return false;
}

} // namespace lumafold
