// The program's window: open animations at the left, the current one large, its frames below.
#pragma once

#include <optional>

#include "hosts/desktop/canvas.h"
#include "hosts/desktop/document_list.h"
#include "hosts/desktop/frame_strip.h"
#include "hosts/desktop/menus.h"
#include "hosts/desktop/plugin_session.h"
#include "hosts/desktop/status_bar.h"

namespace lumafold {

class MainWindow : public Window<MainWindow>, private DocumentWatcher {
public:
    static constexpr wchar_t kClassName[] = L"LumafoldHost";

    /// All outlive the window. The settings are kept where `settingsPath` says when the system ends the
    /// program; "" for nowhere.
    MainWindow(const PluginLibrary& plugin, HostSettings& settings, Attendant& attendant,
               std::string settingsPath);
    ~MainWindow() { Destroy(); }

    bool Make(int show);
    /// Offers a message of the program's loop to the keyboard shortcuts first.
    bool TranslateKey(MSG& message) const;

    FileActions& Files() { return files_; }
    DocumentSet& Documents() { return documents_; }
    PluginSession& Plugin() { return session_; }

    void GoTo(std::size_t frame);
    void SetZoom(int percent); ///< 0 fits
    void SetCapabilities(std::uint32_t flags);

    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);

private:
    static constexpr UINT kMeasured = WM_APP + 10; ///< from the thread that measures files

    void BeforeClosing() override;
    void CurrentChanged() override;
    void StateChanged() override;

    LRESULT Create();
    void TakeLook(int dotsPerInch);
    void ChangeScreen(int dotsPerInch, const RECT& place);
    void Layout();
    void Command(int command);
    void FileCommand(int command);
    void ViewCommand(int command);
    void RunPlugin();
    void OpenRecent(std::size_t index);
    void Drop(HDROP drop);
    void Timer(WPARAM timer);
    void ShowStatus();
    void ShowFrame();
    void Play(bool play);
    void Tick();
    void Idle();
    void TakeMeasured();
    Offer Offered() const;
    void Remember();
    bool MayLeave();
    void Leave();
    void About();
    void Wheel(WPARAM wparam, LPARAM lparam) const;

    const PluginLibrary& plugin_;
    HostSettings& settings_;
    Attendant& attendant_;
    std::string settingsPath_;
    DocumentSet documents_{*this};
    FileActions files_;
    PluginSession session_;
    std::optional<Look> look_;
    Toolbar toolbar_;
    StatusBar status_;
    Canvas canvas_;
    FrameStrip strip_;
    DocumentList list_;
    HACCEL keys_ = nullptr;
    HWND toldOfSizes_ = nullptr; ///< the window, for the measuring thread: written once, before there is work
    SizeMeasurer measurer_;      ///< ends before the window that it tells
};

} // namespace lumafold
