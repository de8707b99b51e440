// The system's dialogs: which file, which colour, and what to do with unsaved work.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lumafold {

/// Full paths of any number of pictures; none when cancelled.
std::vector<std::string> ChoosePictureFiles(HWND owner);
/// One animation to open; "" when cancelled.
std::string ChooseAnimationFile(HWND owner);
/// Where to save, the kind by its suffix; "" when cancelled.
std::string ChooseSaveName(HWND owner, const std::string& suggested, bool trueColour);
/// A folder for the frames; "" when cancelled.
std::string ChooseFolder(HWND owner, const char* title);

/// `custom` are the sixteen colours that the person keeps.
bool ChooseColourDialog(HWND owner, std::uint32_t& colour, std::uint32_t* custom);

enum class UnsavedAnswer { Save, DoNotSave, Cancel };
UnsavedAnswer AskAboutUnsaved(HWND owner, const std::string& name);

} // namespace lumafold
