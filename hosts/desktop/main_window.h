// The program's window: open animations at the left, the current one large, its frames below; and the host
// that the plug-in talks to.
#pragma once

#include <array>
#include <memory>
#include <optional>

#include "hosts/desktop/canvas.h"
#include "hosts/desktop/document_list.h"
#include "hosts/desktop/frame_strip.h"
#include "hosts/desktop/host_callback.h"
#include "hosts/desktop/host_settings.h"
#include "hosts/desktop/plugin_library.h"
#include "hosts/desktop/toolbar.h"

namespace lumafold {

/// What is answered when nobody sits there: scripts fill it, and read what happened.
struct Unattended {
    std::vector<std::string> pictures;   ///< for the next choice of files, then none
    std::optional<std::uint32_t> colour; ///< for the next choice of a colour, then none
    std::vector<std::string> messages;   ///< what a person would have been told
    std::string manual;                  ///< the last reference asked for
};

class MainWindow : public Window<MainWindow>, public HostServices {
public:
    static constexpr char kClassName[] = "LumafoldHost";

    /// All outlive the window; `unattended` is null where a person sits.
    MainWindow(const PluginLibrary& plugin, HostSettings& settings, Unattended* unattended)
        : plugin_(plugin), settings_(settings), unattended_(unattended) {}

    bool Make(int show);
    /// Offers a message of the program's loop to the keyboard shortcuts first.
    bool TranslateKey(MSG& message) const;

    /// False when that was told to the person.
    bool OpenFile(const std::string& path);
    bool SaveCurrent(const std::string& path);
    bool SaveCurrentFrames(const std::string& folder);
    /// Returns when the plug-in's dialog is closed.
    void RunPlugin();
    bool IsRunningPlugin() const { return host_ != nullptr; }
    bool IsBuilding() const { return host_ && host_->IsBuilding(); }

    std::size_t DocumentCount() const { return documents_.size(); }
    Document* Current();
    void Select(std::size_t index);
    void GoTo(std::size_t frame);
    void SetZoom(int percent); ///< 0 fits
    void SetCapabilities(std::uint32_t flags);
    /// False when the person changed his mind.
    bool Close(std::size_t index);
    void CloseWithoutAsking(std::size_t index);

    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);

private:
    void TakeAnimation(Animation animation, TaskKind kind) override;
    HWND DialogInUse() override;
    std::vector<std::string> ChoosePictures(HWND owner) override;
    bool ShowManual(const std::string& reference) override;
    bool ChooseColour(HWND owner, std::uint32_t& colour, std::uint32_t* custom) override;

    LRESULT Create();
    void Layout();
    void Command(int command);
    void ViewCommand(int command);
    void Tell(const std::string& text, UINT icon);
    bool Add(Animation animation, const std::string& name, Origin origin);
    void ShowCurrent();
    void ShowState();
    void ShowStatus();
    void ShowFrame();
    void Play(bool play);
    void Tick();
    void Idle();
    void PrepareMenu(HMENU menu) const;
    void OpenChosen();
    bool SaveChosen(std::size_t index);
    void SaveFramesChosen();
    void CopyFrame();
    void Drop(HDROP drop);
    bool CloseAll();
    void RememberPlace();
    void Leave();
    void About();
    void Wheel(WPARAM wparam, LPARAM lparam) const;

    const PluginLibrary& plugin_;
    HostSettings& settings_;
    Unattended* unattended_;
    std::unique_ptr<HostCallbackObject> host_;
    Toolbar toolbar_;
    Canvas canvas_;
    FrameStrip strip_;
    DocumentList list_;
    HWND status_ = nullptr;
    std::array<std::string, 7> statusShown_; ///< by its parts
    HACCEL keys_ = nullptr;
    std::vector<std::unique_ptr<Document>> documents_;
    std::size_t current_ = 0, made_ = 0;
};

} // namespace lumafold
