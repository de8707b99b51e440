#include "hosts/desktop/document_list.h"

namespace lumafold {
namespace {

constexpr int kHead = 26, kCard = 66, kPictureWidth = 64, kPictureHeight = 48, kCross = 16;

RECT CrossOf(const RECT& card) {
    return {card.right - kCross - 4, card.top + 4, card.right - 4, card.top + 4 + kCross};
}

void PaintThumbnail(HDC context, const Thumbnail& thumbnail, const RECT& room) {
    if (thumbnail.pixels.empty()) {
        Fill(context, room, kPanelLine);
        return;
    }
    // Thumbnails are taller than the card's room by a quarter, and drawn for the strip.
    const int most = std::max(thumbnail.width * kPictureHeight, thumbnail.height * kPictureWidth);
    const int width = thumbnail.width * kPictureWidth * kPictureHeight / most;
    const int height = thumbnail.height * kPictureWidth * kPictureHeight / most;
    const int x = (room.left + room.right - width) / 2, y = (room.top + room.bottom - height) / 2;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = thumbnail.width;
    info.bmiHeader.biHeight = -thumbnail.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    SetStretchBltMode(context, HALFTONE);
    StretchDIBits(context, x, y, width, height, 0, 0, thumbnail.width, thumbnail.height,
                  thumbnail.pixels.data(), &info, DIB_RGB_COLORS, SRCCOPY);
    Frame(context, {x - 1, y - 1, x + width + 1, y + height + 1}, kPanelLine);
}

} // namespace

bool DocumentList::Make(HWND parent) {
    return View::Make(parent, "", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, {});
}

void DocumentList::Show(std::vector<const Document*> documents, std::size_t current) {
    const bool moved = current != current_ || documents.size() != documents_.size();
    documents_ = std::move(documents);
    current_ = current;
    RECT area{};
    GetClientRect(window_, &area);
    const RECT card = CardAt(current_);
    if (moved && card.top < kHead) ScrollTo(scroll_ - (kHead - card.top));
    if (moved && card.bottom > area.bottom) ScrollTo(scroll_ + card.bottom - area.bottom);
    ScrollTo(scroll_);
    Repaint();
}

LRESULT DocumentList::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_SIZE:
        ScrollTo(scroll_);
        Repaint();
        return 0;
    case WM_MOUSEWHEEL:
        ScrollTo(scroll_ - static_cast<short>(HIWORD(wparam)) * kCard / WHEEL_DELTA);
        return 0;
    case WM_LBUTTONDOWN:
        Click(lparam);
        return 0;
    default:
        return Default(message, wparam, lparam);
    }
}

RECT DocumentList::CardAt(std::size_t index) const {
    const int top = kHead + static_cast<int>(index) * kCard - scroll_;
    return {0, top, kWidth - 1, top + kCard};
}

void DocumentList::ScrollTo(int y) {
    RECT area{};
    GetClientRect(window_, &area);
    const int content = kHead + static_cast<int>(documents_.size()) * kCard;
    const int before = scroll_;
    scroll_ = std::clamp(y, 0, std::max(0, content - static_cast<int>(area.bottom)));
    if (scroll_ != before) Repaint();
}

void DocumentList::Paint(HDC context, const RECT& area) {
    Fill(context, area, kPanel);
    for (std::size_t i = 0; i < documents_.size(); ++i)
        PaintCard(context, *documents_[i], CardAt(i), i == current_);
    Fill(context, {0, 0, area.right, kHead}, kPanel);
    Text(context, "Animations", {10, 0, area.right, kHead}, Face::Bold, kPanelText,
         DT_SINGLELINE | DT_VCENTER);
    Fill(context, {0, kHead - 1, area.right, kHead}, kPanelLine);
    Fill(context, {area.right - 1, 0, area.right, area.bottom}, kPanelLine);
    if (documents_.empty()) {
        Text(context, "Nothing is open.", {10, kHead + 12, area.right - 10, kHead + 60}, Face::Plain,
             kPanelDim, DT_WORDBREAK);
    }
}

void DocumentList::PaintCard(HDC context, const Document& document, const RECT& card, bool current) const {
    if (current) Fill(context, card, kChosenCard);
    if (current) Fill(context, {card.left, card.top, card.left + 3, card.bottom}, kAccent);
    const int top = card.top + (kCard - kPictureHeight) / 2;
    PaintThumbnail(context, document.ThumbnailOf(0), {10, top, 10 + kPictureWidth, top + kPictureHeight});
    const int left = 10 + kPictureWidth + 8;
    RECT line{left, card.top + 8, card.right - kCross - 6, card.top + 23};
    Text(context, document.Name(), line, Face::Bold, kPanelText, DT_SINGLELINE | DT_VCENTER);
    line = {left, line.bottom + 2, card.right - 4, line.bottom + 17};
    Text(context, document.FramesText(), line, Face::Plain, kPanelDim, DT_SINGLELINE | DT_VCENTER);
    line = {left, line.bottom + 2, card.right - 4, line.bottom + 17};
    const char* state = document.GetOrigin() == Origin::Test ? "test"
                        : document.IsUnsaved()               ? "not saved"
                                                             : "";
    Text(context, state[0] != '\0' ? state : document.DurationText(), line, Face::Plain,
         state[0] != '\0' ? RGB(190, 110, 0) : kPanelDim, DT_SINGLELINE | DT_VCENTER);
    const RECT cross = CrossOf(card);
    const OwnedGdi<HPEN> pen(CreatePen(PS_SOLID, 1, kPanelDim));
    const SelectedGdi selected(context, pen.Get());
    for (const int direction : {1, -1}) {
        const int x = (cross.left + cross.right) / 2 - 3 * direction, y = (cross.top + cross.bottom) / 2;
        MoveToEx(context, x, y - 3, nullptr);
        LineTo(context, x + 7 * direction, y + 4);
    }
    Fill(context, {card.left + (current ? 3 : 0), card.bottom - 1, card.right, card.bottom}, kPanelLine);
}

void DocumentList::Click(LPARAM lparam) {
    const POINT at{static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
    const HWND owner = GetParent(window_);
    SetFocus(owner);
    if (at.y < kHead) return;
    for (std::size_t i = 0; i < documents_.size(); ++i) {
        const RECT card = CardAt(i), cross = CrossOf(card);
        if (PtInRect(&card, at) == 0) continue;
        SendMessageA(owner, PtInRect(&cross, at) != 0 ? kClosed : kChosen, static_cast<WPARAM>(i), 0);
        return;
    }
}

} // namespace lumafold
