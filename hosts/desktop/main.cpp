// The program: loads the plug-in, opens its window and the files named on the command line.
#include <windows.h>

#include <commctrl.h>
#include <objbase.h>
#include <shellapi.h>

#include <cstdio>

#include "codecs/files.h"
#include "hosts/common/wide_text.h"
#include "hosts/desktop/person.h"
#include "hosts/desktop/script_runner.h"
#include "hosts/desktop/surroundings.h"
#include "hosts/desktop/system_paths.h"

namespace lumafold {

namespace {

struct Words {
    std::vector<std::string> files;
    std::string script, log, problem;
};

std::vector<std::string> CommandLineWords() {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> all;
    for (int i = 1; words != nullptr && i < count; ++i)
        all.push_back(Utf8(words[i]));
    LocalFree(words);
    return all;
}

Words ReadWords(const std::vector<std::string>& words) {
    Words read;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool script = words[i] == "--script", log = words[i] == "--log";
        if (!script && !log) {
            read.files.push_back(FullPath(words[i]));
        } else if (i + 1 == words.size()) {
            read.problem = words[i] + " needs a file's name";
        } else {
            (script ? read.script : read.log) = words[i + 1];
            ++i;
        }
    }
    return read;
}

/// A program with windows has no text output of its own, only what it was given or its starter's console.
void PrepareErrors(const Words& words) {
    if (!words.log.empty()) {
        _wfreopen(Wide(words.log).c_str(), L"w", stderr);
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
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (window.TranslateKey(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

/// The files named, or else those that were open the last time and are still there.
std::vector<std::string> FirstFiles(const std::vector<std::string>& named, const HostSettings& settings) {
    if (!named.empty()) return named;
    std::vector<std::string> files = settings.openFiles;
    std::erase_if(files, [](const std::string& path) { return !FileExists(path.c_str()); });
    return files;
}

int RunForPerson(const PluginLibrary& plugin, const std::vector<std::string>& files, int show) {
    const std::string path = HostSettingsPath();
    HostSettings settings;
    settings.Load(path);
    Person person(settings);
    MainWindow window(plugin, settings, person, path);
    if (!window.Make(show)) {
        person.Tell(nullptr, "The window cannot be opened.", Attendant::Tone::Error);
        return 1;
    }
    const std::vector<std::string> recent = settings.recentFiles;
    for (const std::string& file : FirstFiles(files, settings))
        window.Files().Open(file);
    if (files.empty()) settings.recentFiles = recent; // opening them again was nobody's wish
    RunMessageLoop(window);
    settings.Save(path);
    return 0;
}

// A script finds the same program on every machine: nothing is kept, nothing is taken from before.
int RunForScript(const PluginLibrary& plugin, std::vector<ScriptStep> steps, int show) {
    HostSettings settings;
    ScriptAnswers answers;
    MainWindow window(plugin, settings, answers, "");
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
    const Surroundings ours(Whose::Program);
    INITCOMMONCONTROLSEX controls{sizeof(INITCOMMONCONTROLSEX), ICC_BAR_CLASSES | ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    std::vector<ScriptStep> steps;
    if (!words.script.empty() && !ReadScript(words.script, steps)) return 2;
    PluginLibrary plugin;
    plugin.Load();
    if (!words.script.empty()) return RunForScript(plugin, std::move(steps), show);
    return RunForPerson(plugin, words.files, show);
}

} // namespace
} // namespace lumafold

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int show) {
    CoInitialize(nullptr);
    const int status = lumafold::Run(lumafold::ReadWords(lumafold::CommandLineWords()), show);
    CoUninitialize();
    return status;
}
