// The program: loads the plug-in, opens its window and the files named on the command line.
#include <windows.h>

#include <commctrl.h>
#include <objbase.h>

#include <cstdio>
#include <cstdlib>

#include "hosts/desktop/main_window.h"

namespace lumafold {

void ReportFault(const char* text) {
    std::fprintf(stderr, "lumafold-host: %s\n", text);
    std::fflush(stderr);
}

namespace {

struct Words {
    std::vector<std::string> files;
};

Words ReadWords(int count, char** words) {
    Words read;
    for (int i = 1; i < count; ++i)
        read.files.emplace_back(words[i]);
    return read;
}

int Run(const Words& words, int show) {
    INITCOMMONCONTROLSEX controls{sizeof(INITCOMMONCONTROLSEX), ICC_BAR_CLASSES | ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    HostSettings settings;
    settings.Load();
    PluginLibrary plugin;
    plugin.Load();
    MainWindow window(plugin, settings, nullptr);
    if (!window.Make(show)) return 1;
    for (const std::string& file : words.files)
        window.OpenFile(file);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (window.TranslateKey(message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    settings.Save();
    return 0;
}

} // namespace
} // namespace lumafold

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int show) {
    CoInitialize(nullptr);
    const int status = lumafold::Run(lumafold::ReadWords(__argc, __argv), show);
    CoUninitialize();
    return status;
}
