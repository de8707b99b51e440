// Who is asked and told: a person by dialogs, or a script.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lumafold {

enum class UnsavedAnswer { Save, DoNotSave, Cancel };

/// `owner` takes no input while a person is asked. Paths are full ones; "" or none stands for a change of
/// mind.
class Attendant {
public:
    enum class Tone { Information, Error };
    virtual void Tell(HWND owner, const std::string& text, Tone tone) = 0;

    virtual std::vector<std::string> ChoosePictures(HWND owner) = 0;
    virtual std::string ChooseAnimation(HWND owner) = 0;
    /// Where to save, the kind by its suffix.
    virtual std::string ChooseSaveName(HWND owner, const std::string& suggested, bool trueColour) = 0;
    virtual std::string ChooseFolder(HWND owner, const std::string& title) = 0;
    /// `colour` is the one before, and the one chosen when true is returned. `custom` are sixteen that a
    /// person keeps, or null.
    virtual bool ChooseColour(HWND owner, std::uint32_t& colour, std::uint32_t* custom) = 0;
    virtual UnsavedAnswer AskAboutUnsaved(HWND owner, const std::string& name) = 0;
    /// `anchor` is "" or begins with "#". False where the page could not be opened.
    virtual bool ShowPage(const std::string& path, const std::string& anchor) = 0;

protected:
    ~Attendant() = default;
};

} // namespace lumafold
