#include "hosts/desktop/look.h"

#include "hosts/desktop/system_calls.h"

namespace lumafold {
Look::Look(int dotsPerInch) : dots_(dotsPerInch) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof(metrics);
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
    LOGFONTW font = metrics.lfMessageFont;
    font.lfQuality = CLEARTYPE_QUALITY;
    font.lfHeight = MulDiv(font.lfHeight, dots_, SystemDotsPerInch());
    plain_.Reset(CreateFontIndirectW(&font));
    LOGFONTW title = font;
    font.lfWeight = FW_BOLD;
    bold_.Reset(CreateFontIndirectW(&font));
    title.lfHeight = MulDiv(title.lfHeight, 9, 5);
    title_.Reset(CreateFontIndirectW(&title));
}

int SystemDotsPerInch() {
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dots > 0 ? dots : 96;
}

int DotsPerInchOf(HWND window) {
    static const auto ask = SystemCall<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    const UINT dots = ask != nullptr ? ask(window) : 0;
    return dots > 0 ? static_cast<int>(dots) : SystemDotsPerInch();
}

} // namespace lumafold
