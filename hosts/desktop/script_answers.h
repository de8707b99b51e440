// A script, which has its answers ready and takes down what it is told.
#pragma once

#include <optional>
#include <utility>

#include "hosts/desktop/attendant.h"

namespace lumafold {

class ScriptAnswers : public Attendant {
public:
    std::vector<std::string> pictures;   ///< for the next choice of files, then none
    std::optional<std::uint32_t> colour; ///< for the next choice of a colour, then none
    std::vector<std::string> messages;   ///< what a person would have been told
    std::string manual;                  ///< the last page asked for, its name and anchor

    void Tell(HWND, const std::string& text, Tone) override { messages.push_back(text); }
    std::vector<std::string> ChoosePictures(HWND) override { return std::exchange(pictures, {}); }
    // Steps name their files and folders themselves.
    std::string ChooseAnimation(HWND) override { return ""; }
    std::string ChooseSaveName(HWND, const std::string&, bool) override { return ""; }
    std::string ChooseFolder(HWND, const std::string&) override { return ""; }
    bool ChooseColour(HWND, std::uint32_t& chosen, std::uint32_t*) override {
        if (!colour) return false;
        chosen = *std::exchange(colour, std::nullopt);
        return true;
    }
    UnsavedAnswer AskAboutUnsaved(HWND, const std::string&) override { return UnsavedAnswer::DoNotSave; }
    bool ShowPage(const std::string& path, const std::string& anchor) override {
        manual = path.substr(path.find_last_of('\\') + 1) + anchor;
        return true;
    }
};

} // namespace lumafold
