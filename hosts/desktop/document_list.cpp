#include "hosts/desktop/document_list.h"

namespace lumafold {
namespace {

constexpr int kHead = 26, kCard = 70, kPictureWidth = 64, kPictureHeight = 48, kCross = 16;

} // namespace

bool DocumentList::Make(HWND parent) {
    return View::Make(parent, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, {});
}

void DocumentList::Show(std::vector<const Document*> documents, std::size_t current) {
    const bool moved = current != current_ || documents.size() != documents_.size();
    documents_ = std::move(documents);
    current_ = current;
    RECT area{};
    GetClientRect(window_, &area);
    const RECT card = CardAt(current_);
    if (moved && card.top < At(kHead)) ScrollTo(scroll_ - (At(kHead) - card.top));
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
        ScrollTo(scroll_ - static_cast<short>(HIWORD(wparam)) * At(kCard) / WHEEL_DELTA);
        return 0;
    case WM_LBUTTONDOWN:
        Click(lparam);
        return 0;
    default:
        return Default(message, wparam, lparam);
    }
}

RECT DocumentList::CardAt(std::size_t index) const {
    const int top = At(kHead) + static_cast<int>(index) * At(kCard) - scroll_;
    return {0, top, At(kWidth) - 1, top + At(kCard)};
}

void DocumentList::ScrollTo(int y) {
    RECT area{};
    GetClientRect(window_, &area);
    const int content = At(kHead) + static_cast<int>(documents_.size()) * At(kCard);
    const int before = scroll_;
    scroll_ = std::clamp(y, 0, std::max(0, content - static_cast<int>(area.bottom)));
    if (scroll_ != before) Repaint();
}

void DocumentList::Paint(HDC context, const RECT& area) {
    const int head = At(kHead);
    Fill(context, area, kPanel);
    for (std::size_t i = 0; i < documents_.size(); ++i)
        PaintCard(context, *documents_[i], CardAt(i), i == current_);
    Fill(context, {0, 0, area.right, head}, kPanel);
    Text(context, "Animations", {At(10), 0, area.right, head}, look_->Font(Face::Bold), kPanelText,
         DT_SINGLELINE | DT_VCENTER);
    Fill(context, {0, head - 1, area.right, head}, kPanelLine);
    Fill(context, {area.right - 1, 0, area.right, area.bottom}, kPanelLine);
    if (documents_.empty()) {
        Text(context, "Nothing is open.", {At(10), head + At(12), area.right - At(10), head + At(60)},
             look_->Font(Face::Plain), kPanelDim, DT_WORDBREAK);
    }
}

void DocumentList::PaintCard(HDC context, const Document& document, const RECT& card, bool current) const {
    if (current) Fill(context, card, kChosenCard);
    if (current) Fill(context, {card.left, card.top, card.left + At(3), card.bottom}, kAccent);
    const int top = card.top + (At(kCard) - At(kPictureHeight)) / 2;
    PaintThumbnail(context, document.ThumbnailOf(0),
                   {At(10), top, At(10 + kPictureWidth), top + At(kPictureHeight)});
    const RECT cross = CrossOf(card);
    const char* state = document.GetOrigin() == Origin::Test ? "test"
                        : document.IsUnsaved()               ? "not saved"
                                                             : "";
    int lineTop = card.top + At(8);
    const auto line = [&](const std::string& text, LONG right, Face face, COLORREF colour) {
        Text(context, text, {At(18 + kPictureWidth), lineTop, right, lineTop + At(17)}, look_->Font(face),
             colour, DT_SINGLELINE | DT_VCENTER);
        lineTop += At(18);
    };
    line(document.Name(), cross.left - At(2), Face::Bold, kPanelText);
    line(document.FramesText(), card.right - At(4), Face::Plain, kPanelDim);
    line(state[0] != '\0' ? state : document.DurationText(), card.right - At(4), Face::Plain,
         state[0] != '\0' ? RGB(168, 92, 0) : kPanelDim);
    const OwnedGdi<HPEN> pen(CreatePen(PS_SOLID, At(1), kPanelDim));
    const SelectedGdi selected(context, pen.Get());
    for (const int direction : {1, -1}) {
        const int x = (cross.left + cross.right) / 2 - At(3) * direction, y = (cross.top + cross.bottom) / 2;
        MoveToEx(context, x, y - At(3), nullptr);
        LineTo(context, x + (2 * At(3) + 1) * direction, y + At(3) + 1);
    }
    Fill(context, {card.left + (current ? At(3) : 0), card.bottom - 1, card.right, card.bottom}, kPanelLine);
}

RECT DocumentList::CrossOf(const RECT& card) const {
    return {card.right - At(kCross + 4), card.top + At(4), card.right - At(4), card.top + At(4 + kCross)};
}

void DocumentList::PaintThumbnail(HDC context, const Thumbnail& thumbnail, const RECT& room) const {
    if (thumbnail.pixels.empty()) {
        Fill(context, room, kPanelLine);
        return;
    }
    // Thumbnails are taller than the card's room by a quarter, and drawn for the strip.
    const int roomWidth = room.right - room.left, roomHeight = room.bottom - room.top;
    const int most = std::max(thumbnail.width * roomHeight, thumbnail.height * roomWidth);
    const int width = MulDiv(thumbnail.width, roomWidth * roomHeight, most);
    const int height = MulDiv(thumbnail.height, roomWidth * roomHeight, most);
    const int x = (room.left + room.right - width) / 2, y = (room.top + room.bottom - height) / 2;
    const RECT place{x, y, x + width, y + height};
    ScaledPixels(context, place, thumbnail.width, thumbnail.height, thumbnail.pixels);
    Frame(context, {place.left - 1, place.top - 1, place.right + 1, place.bottom + 1}, kPanelLine);
}

void DocumentList::Click(LPARAM lparam) {
    const POINT at{static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
    const HWND owner = GetParent(window_);
    SetFocus(owner);
    if (at.y < At(kHead)) return;
    for (std::size_t i = 0; i < documents_.size(); ++i) {
        const RECT card = CardAt(i), cross = CrossOf(card);
        if (PtInRect(&card, at) == 0) continue;
        SendMessageW(owner, PtInRect(&cross, at) != 0 ? kClosed : kChosen, static_cast<WPARAM>(i), 0);
        return;
    }
}

} // namespace lumafold
