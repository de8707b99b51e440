// A person, who is asked by the system's dialogs.
#pragma once

#include "hosts/desktop/attendant.h"
#include "hosts/desktop/host_settings.h"

namespace lumafold {

class Person : public Attendant {
public:
    /// The settings keep the person's colours, and outlive this.
    explicit Person(HostSettings& settings) : settings_(settings) {}

    void Tell(HWND owner, const std::string& text, Tone tone) override;
    std::vector<std::string> ChoosePictures(HWND owner) override;
    std::string ChooseAnimation(HWND owner) override;
    std::string ChooseSaveName(HWND owner, const std::string& suggested, bool trueColour) override;
    std::string ChooseFolder(HWND owner, const std::string& title) override;
    bool ChooseColour(HWND owner, std::uint32_t& colour, std::uint32_t* custom) override;
    UnsavedAnswer AskAboutUnsaved(HWND owner, const std::string& name) override;
    bool ShowPage(const std::string& path, const std::string& anchor) override;

private:
    HostSettings& settings_;
};

} // namespace lumafold
