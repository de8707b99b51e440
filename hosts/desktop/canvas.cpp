#include "hosts/desktop/canvas.h"

#include "hosts/desktop/ids.h"

namespace lumafold {
namespace {

constexpr int kMargin = 16;

POINT PointOf(LPARAM lparam) {
    return {static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
}

} // namespace

bool Canvas::Make(HWND parent) {
    return View::Make(parent, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, {});
}

void Canvas::Show(Document* document) {
    if (document != document_) scroll_ = {};
    document_ = document;
    UpdateScrollBars();
    Repaint();
}

void Canvas::SetWelcome(std::string headline, std::string notice, bool canMake) {
    canMake_ = canMake;
    headline_ = std::move(headline);
    notice_ = std::move(notice);
    Repaint();
}

int Canvas::Zoom() const {
    if (!fit_ || document_ == nullptr) return zoom_;
    RECT window{};
    GetWindowRect(window_, &window);
    return FittingZoom(document_->GetAnimation().width, document_->GetAnimation().height,
                       window.right - window.left - 2 * At(kMargin),
                       window.bottom - window.top - 2 * At(kMargin));
}

void Canvas::Fit() {
    fit_ = true;
    UpdateScrollBars();
    Repaint();
}

void Canvas::SetZoom(int percent) {
    RECT area{};
    GetClientRect(window_, &area);
    ZoomAround(percent, {area.right / 2, area.bottom / 2});
}

void Canvas::SetBackdrop(Backdrop backdrop) {
    backdrop_ = backdrop;
    Repaint();
}

LRESULT Canvas::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_SIZE:
        UpdateScrollBars();
        Repaint();
        return 0;
    case WM_HSCROLL:
    case WM_VSCROLL:
        Scroll(message == WM_HSCROLL ? SB_HORZ : SB_VERT, wparam);
        return 0;
    case WM_LBUTTONDOWN:
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        Drag(message, lparam);
        return 0;
    case WM_LBUTTONDBLCLK:
        SendMessageW(GetParent(window_), WM_COMMAND, fit_ ? HOST_ZOOM_ACTUAL : HOST_ZOOM_FIT, 0);
        return 0;
    case WM_MOUSEWHEEL:
        Wheel(wparam, lparam);
        return 0;
    default:
        return Default(message, wparam, lparam);
    }
}

void Canvas::Paint(HDC context, const RECT& area) {
    Fill(context, area, kWorkspace);
    if (document_ == nullptr) {
        PaintWelcome(context, area);
    } else {
        PaintPicture(context, area);
    }
}

void Canvas::PaintWelcome(HDC context, const RECT& area) const {
    const int middle = (area.top + area.bottom) / 2, size = At(48);
    auto* icon = static_cast<HICON>(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(HOST_ICON),
                                               IMAGE_ICON, size, size, LR_SHARED));
    if (icon != nullptr)
        DrawIconEx(context, (area.right - size) / 2, middle - At(96), icon, size, size, 0, nullptr,
                   DI_NORMAL);
    const auto line = [&](const std::string& text, int top, int bottom, Face face, COLORREF colour,
                          UINT format) {
        Text(context, text, {area.left + At(20), middle + At(top), area.right - At(20), middle + At(bottom)},
             look_->Font(face), colour, DT_CENTER | format);
    };
    line(headline_, -38, -6, Face::Title, kBright, DT_SINGLELINE);
    line(notice_, -2, 42, Face::Plain, kDim, DT_WORDBREAK);
    if (canMake_) {
        line("Press F5 to make an animation, or drop your pictures here", 46, 66, Face::Bold, kAccent,
             DT_SINGLELINE);
        line("Drop an animation to play it", 70, 90, Face::Plain, kDim, DT_SINGLELINE);
    } else {
        line("Drop an animation here to play it", 46, 66, Face::Bold, kAccent, DT_SINGLELINE);
    }
}

POINT Canvas::Origin(const RECT& area) const {
    const Animation& animation = document_->GetAnimation();
    const int width = Zoomed(animation.width, Zoom()), height = Zoomed(animation.height, Zoom());
    return {width < area.right ? (area.right - width) / 2 : -scroll_.x,
            height < area.bottom ? (area.bottom - height) / 2 : -scroll_.y};
}

void Canvas::PaintPicture(HDC context, const RECT& area) {
    const Animation& animation = document_->GetAnimation();
    const int zoom = Zoom();
    const POINT origin = Origin(area);
    const RECT picture{origin.x, origin.y, origin.x + Zoomed(animation.width, zoom),
                       origin.y + Zoomed(animation.height, zoom)};
    for (int shade = 4; shade > 0; --shade) {
        const int grey = 4 * shade;
        Fill(context,
             {picture.left - 5 + shade, picture.top + shade, picture.right + 5 - shade,
              picture.bottom + 6 - shade},
             RGB(26 + grey, 29 + grey, 34 + grey));
    }
    RECT seen{};
    if (IntersectRect(&seen, &area, &picture) == 0) return;
    const ViewPart part{seen.left - picture.left, seen.top - picture.top, seen.right - seen.left,
                        seen.bottom - seen.top};
    RenderView(document_->Screen(), animation.width, animation.height, zoom, part, backdrop_, pixels_);
    Pixels(context, seen.left, seen.top, part.width, part.height, pixels_);
}

void Canvas::UpdateScrollBars() {
    if (window_ == nullptr) return;
    RECT window{};
    GetWindowRect(window_, &window);
    int width = 0, height = 0;
    if (document_ != nullptr && !fit_) {
        width = Zoomed(document_->GetAnimation().width, zoom_);
        height = Zoomed(document_->GetAnimation().height, zoom_);
    }
    int roomX = window.right - window.left, roomY = window.bottom - window.top;
    const int bar = GetSystemMetrics(SM_CXVSCROLL);
    const bool across = width > roomX || (height > roomY && width > roomX - bar);
    const bool down = height > roomY || (across && height > roomY - bar);
    if (down) roomX -= bar;
    if (across) roomY -= bar;
    ShowScrollBar(window_, SB_HORZ, across);
    ShowScrollBar(window_, SB_VERT, down);
    scroll_.x = std::clamp<LONG>(scroll_.x, 0, std::max(0, width - roomX));
    scroll_.y = std::clamp<LONG>(scroll_.y, 0, std::max(0, height - roomY));
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, width - 1, static_cast<UINT>(std::max(roomX, 0)),
                    scroll_.x,          0};
    if (across) SetScrollInfo(window_, SB_HORZ, &info, TRUE);
    info.nMax = height - 1;
    info.nPage = static_cast<UINT>(std::max(roomY, 0));
    info.nPos = scroll_.y;
    if (down) SetScrollInfo(window_, SB_VERT, &info, TRUE);
}

void Canvas::Scroll(int bar, WPARAM wparam) {
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
    GetScrollInfo(window_, bar, &info);
    int to = info.nPos;
    switch (LOWORD(wparam)) {
    case SB_LINEUP:
        to -= At(24);
        break;
    case SB_LINEDOWN:
        to += At(24);
        break;
    case SB_PAGEUP:
        to -= static_cast<int>(info.nPage);
        break;
    case SB_PAGEDOWN:
        to += static_cast<int>(info.nPage);
        break;
    case SB_THUMBTRACK:
        to = info.nTrackPos;
        break;
    default:
        return;
    }
    ScrollTo(bar == SB_HORZ ? to : scroll_.x, bar == SB_VERT ? to : scroll_.y);
}

void Canvas::Pan(int across, int down) { ScrollTo(scroll_.x + across * At(48), scroll_.y + down * At(48)); }

void Canvas::ScrollTo(int x, int y) {
    scroll_ = {x, y};
    UpdateScrollBars();
    Repaint();
}

void Canvas::Drag(UINT message, LPARAM lparam) {
    const POINT at = PointOf(lparam);
    if (message == WM_LBUTTONDOWN) {
        SetFocus(GetParent(window_));
        if (fit_ || document_ == nullptr) return;
        dragging_ = true;
        dragFrom_ = at;
        dragScroll_ = scroll_;
        SetCapture(window_);
        SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32646)));
    } else if (message == WM_MOUSEMOVE && dragging_) {
        ScrollTo(dragScroll_.x + dragFrom_.x - at.x, dragScroll_.y + dragFrom_.y - at.y);
    } else if (message != WM_MOUSEMOVE && dragging_) {
        dragging_ = false;
        if (message == WM_LBUTTONUP) ReleaseCapture();
    }
}

void Canvas::Wheel(WPARAM wparam, LPARAM lparam) {
    const int direction = static_cast<short>(HIWORD(wparam)) > 0 ? 1 : -1;
    POINT at = PointOf(lparam);
    ScreenToClient(window_, &at);
    if ((LOWORD(wparam) & MK_CONTROL) != 0) {
        ZoomAround(NextZoom(Zoom(), direction), at);
        SendMessageW(GetParent(window_), WM_COMMAND, MAKEWPARAM(0, 0), 0);
    } else if ((LOWORD(wparam) & MK_SHIFT) != 0) {
        ScrollTo(scroll_.x - direction * At(48), scroll_.y);
    } else {
        ScrollTo(scroll_.x, scroll_.y - direction * At(48));
    }
}

void Canvas::ZoomAround(int percent, POINT point) {
    const int before = Zoom();
    RECT area{};
    GetClientRect(window_, &area);
    const POINT origin = document_ != nullptr ? Origin(area) : POINT{};
    fit_ = false;
    zoom_ = std::clamp(percent, kLeastZoom, kMostZoom);
    const auto moved = [&](LONG at, LONG from) {
        return static_cast<int>(std::int64_t{at - from} * zoom_ / before - at);
    };
    ScrollTo(moved(point.x, origin.x), moved(point.y, origin.y));
}

} // namespace lumafold
