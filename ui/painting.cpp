#include "ui/painting.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "colour/palettes.h"
#include "colour/remap.h"
#include "platform/gdi_win32.h"
#include "resources/texts/resource_ids.h"
#include "settings/settings.h"
#include "ui/module.h"
#include "ui/session.h"

namespace lumafold {
namespace {

constexpr int kFewColours = 8; // bits
constexpr int kManyColours = 24;
constexpr std::uint8_t kLightFace = 200;
constexpr int kTextureMiddle = 168; // the mean level of the texture

HPALETTE CreateLogicalPalette(const Palette& colours, int count) {
    struct {
        WORD version = 0x300;
        WORD count;
        PALETTEENTRY entries[256];
    } logical{};
    static_assert(sizeof logical == sizeof(LOGPALETTE) + 255 * sizeof(PALETTEENTRY));
    logical.count = static_cast<WORD>(count);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        logical.entries[i] = {colours[i].red, colours[i].green, colours[i].blue, 0};
    return CreatePalette(reinterpret_cast<const LOGPALETTE*>(&logical));
}

/// The face of buttons, or its shadow where the face is so light that the texture would not show on it.
COLORREF BaseColour() {
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    const Rgb channels = {GetRValue(face), GetGValue(face), GetBValue(face)};
    return Luminance(channels) > kLightFace ? GetSysColor(COLOR_BTNSHADOW) : face;
}

/// The texture's middle level becomes the base colour, lightened most where it is of middle brightness:
/// etched lines and grey captions still show on a shadow colour, and light text still shows on a dark one.
std::uint8_t Tint(int base, int level) {
    const int ground = base + (255 - base) * base / 384;
    return static_cast<std::uint8_t>(std::min(ground * level / kTextureMiddle, 255));
}

/// Tints the colour table of a texture that is selected in a context, and says what it is then.
int TintTable(HDC texture, COLORREF base, Palette& colours) {
    std::array<RGBQUAD, 256> table = {};
    const UINT count = GetDIBColorTable(texture, 0, 256, table.data());
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t level = Luminance({table[i].rgbRed, table[i].rgbGreen, table[i].rgbBlue});
        colours[i] = {Tint(GetRValue(base), level), Tint(GetGValue(base), level),
                      Tint(GetBValue(base), level)};
        table[i] = {colours[i].blue, colours[i].green, colours[i].red, 0};
    }
    SetDIBColorTable(texture, 0, count, table.data());
    return static_cast<int>(count);
}

void Tile(HDC context, const RECT& area, HDC texture, int width, int height) {
    for (LONG y = area.top; y < area.bottom; y += height)
        for (LONG x = area.left; x < area.right; x += width)
            if (const RECT tile = {x, y, x + width, y + height}; RectVisible(context, &tile))
                BitBlt(context, x, y, width, height, texture, 0, 0, SRCCOPY);
}

/// A copy of the texture, to be tinted.
HBITMAP LoadTexture(BITMAP& bitmap) {
    const HANDLE copy = LoadImageA(ModuleInstance(), MAKEINTRESOURCEA(LUMAFOLD_BITMAP_TEXTURE), IMAGE_BITMAP,
                                   0, 0, LR_CREATEDIBSECTION);
    if (copy != nullptr) GetObjectA(copy, sizeof bitmap, &bitmap);
    return static_cast<HBITMAP>(copy);
}

/// False when there is no texture to be had.
bool PaintTexture(HDC context, const RECT& area) {
    BITMAP bitmap = {};
    const OwnedGdi<HBITMAP> copy(LoadTexture(bitmap));
    const OwnedContext texture(CreateCompatibleDC(context));
    if (!copy || !texture) return false;
    const SelectedGdi selected(texture.Get(), copy.Get());
    Palette colours = {};
    const OwnedGdi<HPALETTE> palette(
        CreateLogicalPalette(colours, TintTable(texture.Get(), BaseColour(), colours)));
    if (!palette) return false;
    const SelectedPalette realised(context, palette.Get());
    Tile(context, area, texture.Get(), bitmap.bmWidth, bitmap.bmHeight);
    return true;
}

bool IsPlain() { return ScreenDepth() <= kFewColours || Session().settings.SolidBackground != 0; }

/// One tile of the background as a brush, or null.
HBRUSH CreateTextureBrush(HDC context) {
    BITMAP bitmap = {};
    const OwnedGdi<HBITMAP> texture(LoadTexture(bitmap));
    const OwnedContext memory(CreateCompatibleDC(context));
    const OwnedGdi<HBITMAP> tile(CreateCompatibleBitmap(context, bitmap.bmWidth, bitmap.bmHeight));
    if (!texture || !memory || !tile) return nullptr;
    {
        const SelectedGdi selected(memory.Get(), tile.Get());
        if (!PaintTexture(memory.Get(), {0, 0, bitmap.bmWidth, bitmap.bmHeight})) return nullptr;
    }
    return CreatePatternBrush(tile.Get());
}

/// What check boxes clear their text with. Windows deletes no brush it is answered, so the last one stays.
HBRUSH BackgroundBrush(HDC context) {
    static OwnedGdi<HBRUSH> brush;
    static COLORREF base = CLR_INVALID;
    if (IsPlain()) return GetSysColorBrush(COLOR_BTNFACE);
    if (!brush || base != BaseColour()) brush.Reset(CreateTextureBrush(context));
    base = BaseColour();
    return brush ? brush.Get() : GetSysColorBrush(COLOR_BTNFACE);
}

bool IsOfClass(HWND control, const char* className) {
    char name[16] = "";
    return control != nullptr && GetClassNameA(control, name, sizeof name) != 0 &&
           _stricmp(name, className) == 0;
}

/// The colour that a swatch's caption names; false when it names none.
bool CaptionColour(HWND button, COLORREF& colour) {
    char caption[32] = "";
    GetWindowTextA(button, caption, sizeof caption);
    int red = 0, green = 0, blue = 0;
    if (std::sscanf(caption, "%d,%d,%d", &red, &green, &blue) != 3) return false;
    colour = RGB(red, green, blue);
    return true;
}

void FillColour(HDC context, const RECT& area, COLORREF colour) {
    const OwnedGdi<HBRUSH> brush(CreateSolidBrush(colour));
    FillRect(context, &area, brush.Get());
}

/// The upper left corner of an area.
void FillCorner(HDC context, const RECT& area, COLORREF colour) {
    const LONG side = area.bottom - area.top;
    const POINT corner[] = {
        {area.left, area.top}, {area.left + side, area.top}, {area.left, area.top + side}};
    const OwnedGdi<HRGN> region(CreatePolygonRgn(corner, 3, ALTERNATE));
    const OwnedGdi<HBRUSH> brush(CreateSolidBrush(colour));
    if (region) FillRgn(context, region.Get(), brush.Get());
}

/// Whether frames will get a fixed palette, as the main dialog's boxes say now.
bool FixedPaletteInUse() {
    HWND dialog = Session().dialog;
    return IsDlgButtonChecked(dialog, LUMAFOLD_MAIN_CUSTOM_PALETTE) != BST_CHECKED &&
           IsDlgButtonChecked(dialog, LUMAFOLD_MAIN_TRUE_COLOUR) != BST_CHECKED;
}

/// The face is the colour itself, on a screen of few colours by way of the selected palette. The corner shows
/// what a fixed palette makes of it, while one is in use and that is another colour.
void FillSwatch(HDC context, const RECT& area, COLORREF colour) {
    Palette colours;
    int bits = 0;
    const int count =
        BuildFixedPalette(&colours, &bits, static_cast<std::int32_t>(Session().settings.TransitionPalette));
    const OwnedGdi<HPALETTE> palette(CreateLogicalPalette(colours, count));
    const SelectedPalette realised(context, palette.Get());
    const int entries = static_cast<int>(colours.size()); // those behind the palette's own are black
    const int index = UnditheredIndex(RgbOf(colour), colours, bits, entries);
    const COLORREF shown = ColourOf(colours[static_cast<std::size_t>(index)]);
    FillColour(context, area, ScreenDepth() > kFewColours ? colour : shown | 0x02000000);
    if (shown != colour && FixedPaletteInUse()) FillCorner(context, area, shown);
}

/// The tinted texture, or a plain fill on few colours or when the settings ask for it.
void PaintBackground(HWND dialog, HDC context) {
    RECT area;
    GetClientRect(dialog, &area);
    if (IsPlain() || !PaintTexture(context, area)) FillRect(context, &area, GetSysColorBrush(COLOR_BTNFACE));
}

/// The brush, after making the label transparent. Check boxes, which ask too, get the background for a brush,
/// and disabled lists a face of their own.
INT_PTR PaintStaticLabel(HDC context, HWND control) {
    if (IsOfClass(control, "ComboBox") || IsOfClass(control, "Edit")) { // disabled, else they would not ask
        SetTextColor(context, GetSysColor(COLOR_GRAYTEXT));
        SetBkColor(context, GetSysColor(COLOR_BTNFACE));
        return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
    }
    SetTextColor(context, GetSysColor(COLOR_WINDOWTEXT));
    SetBkMode(context, TRANSPARENT);
    if (!IsOfClass(control, "Button")) return reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH));
    // Check boxes draw themselves again without their dialog, and must clear what they covered.
    POINT origin = {0, 0};
    MapWindowPoints(control, GetParent(control), &origin, 1);
    SetBrushOrgEx(context, -origin.x, -origin.y, nullptr);
    return reinterpret_cast<INT_PTR>(BackgroundBrush(context));
}

} // namespace

int ScreenDepth() {
    const HDC screen = GetDC(nullptr);
    const int depth = GetDeviceCaps(screen, PLANES) * GetDeviceCaps(screen, BITSPIXEL);
    ReleaseDC(nullptr, screen);
    return depth > kFewColours ? kManyColours : depth;
}

void PaintBehind(HWND control, HDC context) {
    const HWND dialog = GetParent(control);
    POINT origin = {0, 0};
    MapWindowPoints(control, dialog, &origin, 1);
    const SavedContext saved(context);
    OffsetViewportOrgEx(context, -origin.x, -origin.y, nullptr);
    PaintBackground(dialog, context);
}

INT_PTR AnswerPainting(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_CTLCOLORSTATIC:
        return PaintStaticLabel(reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam));
    case WM_ERASEBKGND:
        PaintBackground(dialog, reinterpret_cast<HDC>(wparam));
        SetWindowLongPtrA(dialog, DWLP_MSGRESULT, 1); // or the background is asked for again
        return TRUE;
    default:
        return FALSE;
    }
}

void DrawGroupFrame(const DRAWITEMSTRUCT& item) {
    char caption[64] = "";
    const int length = GetWindowTextA(item.hwndItem, caption, sizeof caption);
    const SavedContext saved(item.hDC);
    SelectObject(item.hDC, reinterpret_cast<HFONT>(SendMessageA(item.hwndItem, WM_GETFONT, 0, 0)));
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(COLOR_WINDOWTEXT));
    SIZE text = {};
    GetTextExtentPoint32A(item.hDC, caption, length, &text);
    const int indent = 9, gap = 3; // pixels before the caption, and on its sides
    TextOutA(item.hDC, item.rcItem.left + indent, item.rcItem.top, caption, length);
    ExcludeClipRect(item.hDC, item.rcItem.left + indent - gap, item.rcItem.top,
                    item.rcItem.left + indent + text.cx + gap, item.rcItem.top + text.cy);
    RECT frame = item.rcItem;
    frame.top += text.cy / 2;
    DrawEdge(item.hDC, &frame, EDGE_ETCHED, BF_RECT);
}

void SetSwatch(HWND button, COLORREF colour) {
    char caption[32];
    std::snprintf(caption, sizeof caption, "%d,%d,%d", GetRValue(colour), GetGValue(colour),
                  GetBValue(colour));
    SetWindowLongA(button, GWL_USERDATA, static_cast<LONG>(colour));
    SetWindowTextA(button, caption);
    InvalidateRect(button, nullptr, TRUE);
}

COLORREF SwatchColour(HWND button) { return static_cast<COLORREF>(GetWindowLongA(button, GWL_USERDATA)); }

void DrawSwatch(const DRAWITEMSTRUCT& item) {
    const bool pressed = (item.itemState & ODS_SELECTED) != 0;
    const bool disabled = (item.itemState & ODS_DISABLED) != 0;
    RECT area = item.rcItem;
    DrawEdge(item.hDC, &area, pressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT | BF_ADJUST);
    FillRect(item.hDC, &area, GetSysColorBrush(COLOR_BTNFACE));
    RECT face = area;
    InflateRect(&face, -2, -2);
    if (pressed) OffsetRect(&face, 1, 1);
    COLORREF colour;
    if (!disabled && CaptionColour(item.hwndItem, colour)) FillSwatch(item.hDC, face, colour);
    FrameRect(item.hDC, &face, GetSysColorBrush(COLOR_BTNSHADOW));
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0)
        DrawFocusRect(item.hDC, &area);
}

bool ChooseColour(HWND owner, COLORREF& colour) {
    static std::uint32_t customColours[16]; // the chooser's own colours, kept from one call to the next
    const HostContext* host = Session().host;
    if (host == nullptr || host->callback == nullptr) return false;
    ColourRecord record = {sizeof(ColourRecord), kInterfaceVersion, customColours, 24, colour, colour,
                           HandleOf(owner)};
    if (!Host(*host).ChooseColour(record)) return false;
    colour = record.colour;
    return true;
}

} // namespace lumafold
