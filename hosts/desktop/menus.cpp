#include "hosts/desktop/menus.h"

#include "hosts/common/paths.h"
#include "hosts/common/wide_text.h"
#include "hosts/desktop/ids.h"

namespace lumafold {
namespace {

/// What needs an open animation.
constexpr int kForDocuments[] = {
    HOST_SAVE,          HOST_SAVE_FRAMES,      HOST_CLOSE,       HOST_COPY,
    HOST_FIRST,         HOST_PREVIOUS,         HOST_PLAY,        HOST_NEXT,
    HOST_LAST,          HOST_TEN_BACK,         HOST_TEN_ON,      HOST_ZOOM_FIT,
    HOST_ZOOM_IN,       HOST_ZOOM_OUT,         HOST_ZOOM_ACTUAL, HOST_PAN_LEFT,
    HOST_PAN_RIGHT,     HOST_PAN_UP,           HOST_PAN_DOWN,    HOST_CHECKERBOARD,
    HOST_NEXT_DOCUMENT, HOST_PREVIOUS_DOCUMENT};

void ListRecent(HMENU menu, const std::vector<std::string>& files) {
    if (files.empty()) return;
    while (DeleteMenu(menu, 0, MF_BYPOSITION) != 0) {
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::string text = "&" + std::to_string(i + 1) + "  ";
        for (const char letter : FileNamePart(files[i]))
            text += letter == '&' ? "&&" : std::string(1, letter);
        AppendMenuW(menu, MF_STRING, HOST_RECENT + i, Wide(text).c_str());
    }
}

UINT BuildsFor(std::uint32_t capabilities) {
    if (capabilities == kHostTakesSupercompression) return HOST_FOR_GIF;
    return capabilities == kHostTakesTrueColour ? HOST_FOR_PNG_WHOLE : HOST_FOR_PNG;
}

} // namespace

void PrepareMenu(HMENU menu, const Offer& offer) {
    const auto checked = [](bool on) {
        return static_cast<UINT>(MF_BYCOMMAND | (on ? MF_CHECKED : MF_UNCHECKED));
    };
    for (const int command : kForDocuments)
        EnableMenuItem(menu, static_cast<UINT>(command),
                       MF_BYCOMMAND | (offer.open ? MF_ENABLED : MF_GRAYED));
    CheckMenuItem(menu, HOST_CHECKERBOARD, checked(offer.settings.checkerboard));
    CheckMenuItem(menu, HOST_ZOOM_FIT, checked(offer.fits));
    CheckMenuRadioItem(menu, HOST_FOR_GIF, HOST_FOR_PNG_WHOLE, BuildsFor(offer.settings.capabilities),
                       MF_BYCOMMAND);
    const UINT first = GetMenuItemID(menu, 0);
    if (first == HOST_RECENT_NONE || first == HOST_RECENT) ListRecent(menu, offer.settings.recentFiles);
}

void PrepareToolbar(const Toolbar& toolbar, const Offer& offer) {
    for (const int command : kForDocuments)
        toolbar.Enable(command, offer.open);
    toolbar.ShowPlaying(offer.playing);
    toolbar.Check(HOST_ZOOM_FIT, offer.fits);
    toolbar.Check(HOST_CHECKERBOARD, offer.settings.checkerboard);
}

} // namespace lumafold
