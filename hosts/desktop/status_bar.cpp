#include "hosts/desktop/status_bar.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "hosts/common/wide_text.h"
#include "settings/settings.h"

namespace lumafold {
namespace {

enum Part { kHint, kFrame, kSize, kColours, kDuration, kBytes, kZoom };
/// Of all but the first, which takes what is left.
constexpr int kWidths[] = {150, 76, 88, 64, 92, 52};

std::string Seconds(std::int64_t milliseconds) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.2f s", static_cast<double>(milliseconds) / 1000);
    return text;
}

} // namespace

bool StatusBar::Make(HWND parent) {
    bar_ = CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                           parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    return bar_ != nullptr;
}

void StatusBar::Arrange(const Look& look) {
    SendMessageW(bar_, WM_SETFONT, reinterpret_cast<WPARAM>(look.Font(Face::Plain)), FALSE);
    SendMessageW(bar_, WM_SIZE, 0, 0);
    RECT area{};
    GetClientRect(bar_, &area);
    int ends[kParts], end = area.right - look.At(20);
    for (std::size_t part = kParts - 1; part > 0; --part) {
        ends[part] = end;
        end -= look.At(kWidths[part - 1]);
    }
    ends[0] = std::max(end, 0);
    ends[kParts - 1] = -1; // to the right edge
    SendMessageW(bar_, SB_SETPARTS, kParts, reinterpret_cast<LPARAM>(ends));
    shown_.fill("?");
}

int StatusBar::Height() const {
    RECT place{};
    GetWindowRect(bar_, &place);
    return place.bottom - place.top;
}

void StatusBar::Put(std::size_t part, const std::string& text) {
    // The bar paints itself anew for every text, also for the one that it shows.
    if (std::exchange(shown_[part], text) == text) return;
    SendMessageW(bar_, SB_SETTEXTW, part, reinterpret_cast<LPARAM>(Wide(" " + text).c_str()));
}

void StatusBar::Show(const Document* document, int zoom, std::uint32_t capabilities) {
    const bool gif = (capabilities & kHostTakesTrueColour) == 0;
    Put(kHint, std::string("Builds for ") + (gif ? "GIF" : "PNG and MNG"));
    if (document == nullptr) {
        for (std::size_t part = kFrame; part < kParts; ++part)
            Put(part, "");
        return;
    }
    const Playback& player = document->Player();
    Put(kFrame, "Frame " + std::to_string(player.Current() + 1) + " of " + std::to_string(player.Count()) +
                    " at " + Seconds(player.StartOf(player.Current())));
    Put(kSize, std::to_string(document->GetAnimation().width) + "x" +
                   std::to_string(document->GetAnimation().height));
    Put(kColours, document->ColoursText());
    Put(kDuration, document->DurationText());
    Put(kBytes, document->FileSizeText());
    Put(kZoom, std::to_string(zoom) + " %");
}

} // namespace lumafold
