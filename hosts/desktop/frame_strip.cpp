#include "hosts/desktop/frame_strip.h"

namespace lumafold {
namespace {

constexpr int kGap = 6, kLabel = 15;

} // namespace

bool FrameStrip::Make(HWND parent) {
    return View::Make(parent, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_HSCROLL, 0, {});
}

int FrameStrip::Height() const {
    return At(kThumbnailHeight + 4 * kGap + kLabel) + GetSystemMetrics(SM_CYHSCROLL);
}

void FrameStrip::Show(const Document* document) {
    document_ = document;
    ScrollTo(0);
    Follow();
}

void FrameStrip::Follow() {
    if (document_ != nullptr) {
        // The current frame is kept in sight, with a neighbour on each side.
        RECT area{};
        GetClientRect(window_, &area);
        const int width = CellWidth(), left = static_cast<int>(document_->Player().Current()) * width;
        if (left - width < scroll_) ScrollTo(left - width);
        if (left + 2 * width > scroll_ + area.right) ScrollTo(left + 2 * width - area.right);
    }
    Repaint();
}

LRESULT FrameStrip::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_SIZE:
        ScrollTo(scroll_);
        return 0;
    case WM_HSCROLL:
        Scroll(wparam);
        return 0;
    case WM_MOUSEWHEEL:
        ScrollTo(scroll_ - static_cast<short>(HIWORD(wparam)) * CellWidth() / WHEEL_DELTA);
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        Choose(lparam);
        return 0;
    default:
        return Default(message, wparam, lparam);
    }
}

int FrameStrip::CellWidth() const {
    return document_ != nullptr ? document_->ThumbnailOf(0).width + 2 * At(kGap) + 2 : 1;
}

int FrameStrip::ContentWidth() const {
    return document_ != nullptr ? CellWidth() * static_cast<int>(document_->Player().Count()) + At(kGap) : 0;
}

void FrameStrip::Paint(HDC context, const RECT& area) {
    Fill(context, area, kStripBack);
    if (document_ == nullptr) return;
    const int width = CellWidth();
    const auto count = static_cast<int>(document_->Player().Count());
    for (int index = std::max(0, scroll_ / width); index < count; ++index) {
        const int left = At(kGap) / 2 + index * width - scroll_;
        if (left >= area.right) break;
        PaintCell(context, static_cast<std::size_t>(index),
                  {left, At(kGap), left + width, At(kGap + kThumbnailHeight + 2 * kGap + kLabel)});
    }
}

void FrameStrip::PaintCell(HDC context, std::size_t index, const RECT& cell) const {
    const bool current = index == document_->Player().Current();
    const Thumbnail& thumbnail = document_->ThumbnailOf(index);
    const int x = (cell.left + cell.right - thumbnail.width) / 2;
    const int y = cell.top + 3 + (At(kThumbnailHeight) - thumbnail.height) / 2;
    const RECT picture{x, y, x + thumbnail.width, y + thumbnail.height};
    if (thumbnail.pixels.empty()) {
        Fill(context, picture, kCell);
    } else {
        Pixels(context, x, y, thumbnail.width, thumbnail.height, thumbnail.pixels);
    }
    if (current) Frame(context, {x - 3, y - 3, picture.right + 3, picture.bottom + 3}, kAccent, 2);
    const RECT label{cell.left, cell.bottom - At(kLabel + 4), cell.right, cell.bottom};
    Text(context, std::to_string(index + 1), label, look_->Font(current ? Face::Bold : Face::Plain),
         current ? kAccent : kDim, DT_CENTER | DT_SINGLELINE | DT_VCENTER);
}

void FrameStrip::ScrollTo(int x) {
    RECT area{};
    GetClientRect(window_, &area);
    const int before = scroll_;
    scroll_ = std::clamp(x, 0, std::max(0, ContentWidth() - static_cast<int>(area.right)));
    SCROLLINFO info{sizeof(SCROLLINFO),
                    SIF_ALL | SIF_DISABLENOSCROLL,
                    0,
                    std::max(0, ContentWidth() - 1),
                    static_cast<UINT>(area.right),
                    scroll_,
                    0};
    SetScrollInfo(window_, SB_HORZ, &info, TRUE);
    if (scroll_ != before) Repaint();
}

void FrameStrip::Scroll(WPARAM wparam) {
    RECT area{};
    GetClientRect(window_, &area);
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_TRACKPOS, 0, 0, 0, 0, 0};
    GetScrollInfo(window_, SB_HORZ, &info);
    switch (LOWORD(wparam)) {
    case SB_LINELEFT:
        return ScrollTo(scroll_ - CellWidth());
    case SB_LINERIGHT:
        return ScrollTo(scroll_ + CellWidth());
    case SB_PAGELEFT:
        return ScrollTo(scroll_ - area.right);
    case SB_PAGERIGHT:
        return ScrollTo(scroll_ + area.right);
    case SB_THUMBTRACK:
        return ScrollTo(info.nTrackPos);
    default:
        return;
    }
}

void FrameStrip::Choose(LPARAM lparam) {
    const HWND owner = GetParent(window_);
    SetFocus(owner);
    if (document_ == nullptr) return;
    const int index = (static_cast<short>(LOWORD(lparam)) + scroll_ - At(kGap) / 2) / CellWidth();
    if (index >= 0 && index < static_cast<int>(document_->Player().Count()))
        SendMessageW(owner, kChosen, static_cast<WPARAM>(index), 0);
}

} // namespace lumafold
