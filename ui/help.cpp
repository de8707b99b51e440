#include <cstdio>

#include "resources/texts/strings.h"
#include "ui/dialogs.h"
#include "ui/messages.h"
#include "ui/session.h"

namespace lumafold {

void ShowHelp(HWND owner, const char* anchor) {
    char reference[MAX_PATH];
    const bool anchored = anchor != nullptr && *anchor != '\0';
    std::snprintf(reference, sizeof reference, "%s%s%s", LUMAFOLD_MANUAL, anchored ? "#" : "",
                  anchored ? anchor : "");
    const HostContext* host = Session().host;
    if (host != nullptr && host->callback != nullptr && Host(*host).ShowHelp(reference)) return;
    ShowMessage(owner, LUMAFOLD_TEXT_HELP_ERROR);
}

} // namespace lumafold
