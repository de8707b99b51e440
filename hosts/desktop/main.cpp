// The program: loads the plug-in, opens its window and the files named on the command line.
#include <windows.h>

#include <commctrl.h>
#include <objbase.h>

#include <cstdio>

#include "codecs/files.h"
#include "hosts/desktop/script_runner.h"

namespace lumafold {

namespace {

struct Words {
    std::vector<std::string> files;
    std::string script, log, problem;
};

Words ReadWords(int count, char** words) {
    Words read;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const bool script = word == "--script", log = word == "--log";
        if (!script && !log) {
            read.files.push_back(word);
        } else if (i + 1 == count) {
            read.problem = word + " needs a file's name";
        } else {
            (script ? read.script : read.log) = words[++i];
        }
    }
    return read;
}

/// A program with windows has no text output of its own, only what it was given or its starter's console.
void PrepareErrors(const Words& words) {
    if (!words.log.empty()) {
        std::freopen(words.log.c_str(), "w", stderr);
        return;
    }
    const HANDLE given = GetStdHandle(STD_ERROR_HANDLE);
    if ((given == nullptr || given == INVALID_HANDLE_VALUE) && AttachConsole(ATTACH_PARENT_PROCESS) != 0)
        std::freopen("CONOUT$", "w", stderr);
}

bool ReadScript(const std::string& path, std::vector<ScriptStep>& steps) {
    Array<std::uint8_t> text;
    std::string error;
    const bool read = ReadWholeFile(path, text, error) &&
                      ParseScript({reinterpret_cast<const char*>(text.data()), text.size()}, steps, error);
    if (!read) ReportFault((path + ": " + error).c_str());
    return read;
}

void RunMessageLoop(const MainWindow& window) {
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (window.TranslateKey(message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

void RunForPerson(const PluginLibrary& plugin, const std::vector<std::string>& files, int show) {
    HostSettings settings;
    settings.Load();
    MainWindow window(plugin, settings, nullptr);
    if (!window.Make(show)) return;
    for (const std::string& file : files)
        window.OpenFile(file);
    RunMessageLoop(window);
    settings.Save();
}

// A script finds the same program on every machine: nothing is kept, nothing is taken from before.
int RunForScript(const PluginLibrary& plugin, std::vector<ScriptStep> steps, int show) {
    HostSettings settings;
    Unattended answers;
    MainWindow window(plugin, settings, &answers);
    if (!window.Make(show)) {
        ReportFault("the window cannot be opened; is there a screen?");
        return 1;
    }
    const ScriptRunner runner(std::move(steps), window, answers);
    RunMessageLoop(window);
    return runner.Status();
}

int Run(const Words& words, int show) {
    PrepareErrors(words);
    if (!words.problem.empty()) {
        ReportFault(words.problem.c_str());
        return 2;
    }
    INITCOMMONCONTROLSEX controls{sizeof(INITCOMMONCONTROLSEX), ICC_BAR_CLASSES | ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    std::vector<ScriptStep> steps;
    if (!words.script.empty() && !ReadScript(words.script, steps)) return 2;
    PluginLibrary plugin;
    plugin.Load();
    if (!words.script.empty()) return RunForScript(plugin, std::move(steps), show);
    RunForPerson(plugin, words.files, show);
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
