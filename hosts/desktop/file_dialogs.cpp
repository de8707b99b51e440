#include "hosts/desktop/file_dialogs.h"

#include <commdlg.h>
#include <shlobj.h>

#include <algorithm>

#include "plugin/protocol/chosen_names.h"

namespace lumafold {
namespace {

constexpr char kPictureFilter[] =
    "Pictures (PNG, JPEG, GIF, BMP)\0*.png;*.jpg;*.jpeg;*.jpe;*.jfif;*.gif;*.bmp;*.dib\0"
    "PNG pictures\0*.png\0"
    "JPEG pictures\0*.jpg;*.jpeg;*.jpe;*.jfif\0"
    "GIF pictures\0*.gif\0"
    "Windows bitmaps\0*.bmp;*.dib\0"
    "All files\0*.*\0";
constexpr char kAnimationFilter[] = "Animations and pictures\0*.gif;*.png;*.apng;*.mng;*.jpg;*.jpeg;*.bmp\0"
                                    "All files\0*.*\0";
constexpr char kSaveFilter[] = "Animated GIF (*.gif)\0*.gif\0"
                               "Animated PNG (*.png)\0*.png\0"
                               "MNG (*.mng)\0*.mng\0";

OPENFILENAMEA Dialog(HWND owner, const char* filter, char* buffer, std::size_t room, const char* title) {
    OPENFILENAMEA dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter;
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = buffer;
    dialog.nMaxFile = static_cast<DWORD>(room);
    dialog.lpstrTitle = title;
    dialog.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
    return dialog;
}

} // namespace

std::vector<std::string> ChoosePictureFiles(HWND owner) {
    std::vector<char> names(kChosenNamesBytes, '\0');
    OPENFILENAMEA dialog = Dialog(owner, kPictureFilter, names.data(), names.size(), "Add pictures");
    dialog.Flags |= OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST;
    if (GetOpenFileNameA(&dialog) == 0) {
        if (CommDlgExtendedError() == FNERR_BUFFERTOOSMALL)
            MessageBoxA(owner, "So many files at once are too many. Please add them in several steps.",
                        "Lumafold Host", MB_OK | MB_ICONINFORMATION);
        return {};
    }
    const ChosenNames chosen(names.data(), names.size());
    std::vector<std::string> paths;
    char path[kMaxPath];
    for (std::size_t i = 0; i < chosen.Count(); ++i) {
        if (chosen.Path(i, path)) paths.emplace_back(path);
    }
    return paths;
}

std::string ChooseAnimationFile(HWND owner) {
    char name[MAX_PATH] = "";
    OPENFILENAMEA dialog = Dialog(owner, kAnimationFilter, name, sizeof(name), "Open an animation");
    dialog.Flags |= OFN_FILEMUSTEXIST;
    return GetOpenFileNameA(&dialog) != 0 ? name : "";
}

std::string ChooseSaveName(HWND owner, const std::string& suggested, bool trueColour) {
    char name[MAX_PATH] = "";
    suggested.copy(name, sizeof(name) - 1);
    OPENFILENAMEA dialog = Dialog(owner, kSaveFilter, name, sizeof(name), "Save the animation");
    dialog.nFilterIndex = trueColour ? 2 : 1;
    dialog.lpstrDefExt = trueColour ? "png" : "gif";
    dialog.Flags |= OFN_OVERWRITEPROMPT;
    if (GetSaveFileNameA(&dialog) == 0) return "";
    std::string path = name;
    // The suffix typed decides; without one, the kind chosen in the list does.
    if (dialog.nFileExtension == 0 || name[dialog.nFileExtension] == '\0') {
        constexpr const char* kSuffixes[] = {".gif", ".png", ".mng"};
        path += kSuffixes[dialog.nFilterIndex >= 1 && dialog.nFilterIndex <= 3 ? dialog.nFilterIndex - 1 : 0];
    }
    return path;
}

std::string ChooseFolder(HWND owner, const char* title) {
    BROWSEINFOA browse{};
    browse.hwndOwner = owner;
    browse.lpszTitle = title;
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_USENEWUI;
    LPITEMIDLIST item = SHBrowseForFolderA(&browse);
    if (item == nullptr) return "";
    char path[MAX_PATH] = "";
    const bool found = SHGetPathFromIDListA(item, path) != 0;
    CoTaskMemFree(item);
    return found ? path : "";
}

bool ChooseColourDialog(HWND owner, std::uint32_t& colour, std::uint32_t* custom) {
    COLORREF kept[16] = {};
    if (custom != nullptr) std::copy(custom, custom + 16, kept);
    CHOOSECOLORA dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.rgbResult = colour;
    dialog.lpCustColors = kept;
    dialog.Flags = CC_RGBINIT | CC_FULLOPEN;
    const bool chosen = ChooseColorA(&dialog) != 0;
    // The custom colours are kept even when none was chosen, as everywhere in the system.
    if (custom != nullptr) std::copy(kept, kept + 16, custom);
    if (chosen) colour = dialog.rgbResult;
    return chosen;
}

UnsavedAnswer AskAboutUnsaved(HWND owner, const std::string& name) {
    const std::string question = "\"" + name + "\" has not been saved.\n\nSave it before closing?";
    switch (MessageBoxA(owner, question.c_str(), "Lumafold Host", MB_YESNOCANCEL | MB_ICONQUESTION)) {
    case IDYES:
        return UnsavedAnswer::Save;
    case IDNO:
        return UnsavedAnswer::DoNotSave;
    default:
        return UnsavedAnswer::Cancel;
    }
}

} // namespace lumafold
