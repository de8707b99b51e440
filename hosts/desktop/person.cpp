#include "hosts/desktop/person.h"

#include <commdlg.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>

#include "codecs/picture_kinds.h"
#include "hosts/common/wide_text.h"
#include "hosts/desktop/file_address.h"
#include "plugin/protocol/chosen_names.h"

namespace lumafold {
namespace {

constexpr wchar_t kProgram[] = L"Lumafold Host";
constexpr const char* kSaveSuffixes[] = {".gif", ".png", ".mng"};

/// One line of a file dialog's list: what is shown, a zero, the patterns, a zero.
std::wstring FilterLine(const std::string& shown, const std::string& patterns) {
    return Wide(shown) + L'\0' + Wide(patterns) + L'\0';
}

/// "*.jpg;*.jpeg" for a kind of picture.
std::string Patterns(const PictureKind& kind) {
    std::string patterns = "*" + std::string(kind.suffixes);
    for (std::size_t at = 0; (at = patterns.find(' ', at)) != std::string::npos;)
        patterns.replace(at, 1, ";*");
    return patterns;
}

/// All kinds of pictures that this build reads, then each, then all files.
std::wstring PictureFilter() {
    std::string all;
    std::wstring each;
    for (const PictureKind& kind : PictureKinds()) {
        if (!kind.Readable()) continue;
        all += (all.empty() ? "" : ";") + Patterns(kind);
        each += FilterLine(std::string(kind.name), Patterns(kind));
    }
    return FilterLine("Pictures (" + ReadablePictureKinds("and") + ")", all) + each +
           FilterLine("All files", "*.*");
}

/// Animations and the stills that are opened as animations of one frame.
std::wstring AnimationFilter() {
    std::string all = "*.mng";
    for (const PictureKind& kind : PictureKinds()) {
        if (kind.Readable()) all += ";" + Patterns(kind);
    }
    return FilterLine("Animations and pictures", all) + FilterLine("All files", "*.*");
}

/// The system's dialog for files with the room it writes into.
class FileDialog {
public:
    FileDialog(HWND owner, const std::wstring& filter, const wchar_t* title, std::size_t room)
        : filter_(filter), names_(room, L'\0') {
        fields_.lStructSize = sizeof(fields_);
        fields_.hwndOwner = owner;
        fields_.lpstrFilter = filter_.c_str();
        fields_.nFilterIndex = 1;
        fields_.lpstrFile = names_.data();
        fields_.nMaxFile = static_cast<DWORD>(names_.size());
        fields_.lpstrTitle = title;
        fields_.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
    }

    OPENFILENAMEW& Fields() { return fields_; }
    void Suggest(const std::string& name) {
        const std::wstring wide = Wide(name);
        wide.copy(names_.data(), names_.size() - 1);
    }
    std::string Path() const { return Utf8(names_.data()); }
    /// One path, or a folder and names in it.
    std::vector<std::string> Paths() const {
        const wchar_t* at = names_.data();
        const std::wstring first = at;
        std::vector<std::string> paths;
        for (at += first.size() + 1; *at != L'\0'; at += std::wcslen(at) + 1)
            paths.push_back(Utf8(first + (first.ends_with(L'\\') ? L"" : L"\\") + at));
        if (paths.empty()) paths.push_back(Utf8(first));
        return paths;
    }

private:
    std::wstring filter_;
    std::vector<wchar_t> names_;
    OPENFILENAMEW fields_{};
};

bool OpenInShell(const std::string& what) {
    return reinterpret_cast<std::intptr_t>(
               ShellExecuteW(nullptr, L"open", Wide(what).c_str(), nullptr, nullptr, SW_SHOWNORMAL)) > 32;
}

constexpr std::size_t kPathRoom = 4096;

} // namespace

void Person::Tell(HWND owner, const std::string& text, Tone tone) {
    MessageBoxW(owner, Wide(text).c_str(), kProgram,
                MB_OK | (tone == Tone::Error ? MB_ICONERROR : MB_ICONINFORMATION));
}

std::vector<std::string> Person::ChoosePictures(HWND owner) {
    FileDialog dialog(owner, PictureFilter(), L"Add pictures", kChosenNamesBytes);
    dialog.Fields().Flags |= OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST;
    if (GetOpenFileNameW(&dialog.Fields()) != 0) return dialog.Paths();
    if (CommDlgExtendedError() == FNERR_BUFFERTOOSMALL)
        Tell(owner, "So many files at once are too many. Please add them in several steps.",
             Tone::Information);
    return {};
}

std::string Person::ChooseAnimation(HWND owner) {
    FileDialog dialog(owner, AnimationFilter(), L"Open an animation", kPathRoom);
    dialog.Fields().Flags |= OFN_FILEMUSTEXIST;
    return GetOpenFileNameW(&dialog.Fields()) != 0 ? dialog.Path() : "";
}

std::string Person::ChooseSaveName(HWND owner, const std::string& suggested, bool trueColour) {
    FileDialog dialog(owner,
                      FilterLine("Animated GIF (*.gif)", "*.gif") +
                          FilterLine("Animated PNG (*.png)", "*.png") + FilterLine("MNG (*.mng)", "*.mng"),
                      L"Save the animation", kPathRoom);
    dialog.Suggest(suggested);
    OPENFILENAMEW& fields = dialog.Fields();
    fields.nFilterIndex = trueColour ? 2 : 1;
    fields.lpstrDefExt = trueColour ? L"png" : L"gif";
    fields.Flags |= OFN_OVERWRITEPROMPT;
    if (GetSaveFileNameW(&fields) == 0) return "";
    // The suffix typed decides; without one, the kind chosen in the list does.
    if (fields.nFileExtension != 0 && fields.lpstrFile[fields.nFileExtension] != L'\0') return dialog.Path();
    return dialog.Path() +
           kSaveSuffixes[std::clamp<DWORD>(fields.nFilterIndex, 1, std::size(kSaveSuffixes)) - 1];
}

std::string Person::ChooseFolder(HWND owner, const std::string& title) {
    const std::wstring wide = Wide(title);
    BROWSEINFOW browse{};
    browse.hwndOwner = owner;
    browse.lpszTitle = wide.c_str();
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_USENEWUI;
    LPITEMIDLIST item = SHBrowseForFolderW(&browse);
    if (item == nullptr) return "";
    wchar_t path[MAX_PATH] = L"";
    const bool found = SHGetPathFromIDListW(item, path) != 0;
    CoTaskMemFree(item);
    if (!found) Tell(owner, "The path of this folder is too long.", Tone::Error);
    return found ? Utf8(path) : "";
}

// The custom colours are kept even when none was chosen, as everywhere in the system.
bool Person::ChooseColour(HWND owner, std::uint32_t& colour, std::uint32_t* custom) {
    auto& kept = settings_.customColours;
    if (custom != nullptr && !settings_.hasCustomColours)
        std::copy(custom, custom + kept.size(), kept.begin());
    COLORREF shown[std::tuple_size_v<std::remove_reference_t<decltype(kept)>>];
    std::copy(kept.begin(), kept.end(), shown);
    CHOOSECOLORW dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.rgbResult = colour;
    dialog.lpCustColors = shown;
    dialog.Flags = CC_RGBINIT | CC_FULLOPEN;
    const bool chosen = ChooseColorW(&dialog) != 0;
    std::copy(std::begin(shown), std::end(shown), kept.begin());
    settings_.hasCustomColours = true;
    if (custom != nullptr) std::copy(kept.begin(), kept.end(), custom);
    if (chosen) colour = dialog.rgbResult;
    return chosen;
}

UnsavedAnswer Person::AskAboutUnsaved(HWND owner, const std::string& name) {
    const std::string question = "\"" + name + "\" has not been saved.\n\nSave it before closing?";
    switch (MessageBoxW(owner, Wide(question).c_str(), kProgram, MB_YESNOCANCEL | MB_ICONQUESTION)) {
    case IDYES:
        return UnsavedAnswer::Save;
    case IDNO:
        return UnsavedAnswer::DoNotSave;
    default:
        return UnsavedAnswer::Cancel;
    }
}

// Only an address can carry the anchor; where the system does not open one, the whole page is shown.
bool Person::ShowPage(const std::string& path, const std::string& anchor) {
    return (!anchor.empty() && OpenInShell(FileAddress(path, anchor))) || OpenInShell(path);
}

} // namespace lumafold
