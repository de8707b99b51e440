// How far a build has come. The window keeps the program alive while the plug-in works: paint and timer
// messages are answered, and the window that started the build takes no input until it is done.
#pragma once

#include <cstdint>
#include <optional>

#include "hosts/desktop/painting.h"
#include "hosts/desktop/view.h"

namespace lumafold {

class ProgressWindow : public View<ProgressWindow> {
public:
    static constexpr wchar_t kClassName[] = L"LumafoldHostProgress";

    /// Whether there is a button to give up with.
    enum class Stop { Never, OnRequest };
    explicit ProgressWindow(Stop stop = Stop::Never) : stop_(stop) {}
    ~ProgressWindow() { Destroy(); }

    /// Both show the window over `owner` when it is not there yet, and answer what waits in the queue.
    void Caption(HWND owner, const char* text);
    /// For when it is shown; null is "".
    void SetCaption(const char* text) { caption_ = text != nullptr ? text : ""; }
    /// A total of 0 forgets the position.
    void Position(HWND owner, std::int64_t position, std::int64_t total);
    /// Gives the owner its input back. Nothing happens when there is no window.
    void Close();
    bool IsShown() const { return window_ != nullptr; }
    bool StopWanted() const { return stopWanted_; }

    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
    void Paint(HDC context, const RECT& area);

private:
    void Open(HWND owner);
    void Arrange();
    void Pump();
    void CloseWhenAbandoned();

    Stop stop_;
    bool stopWanted_ = false;
    std::optional<Look> ownLook_; ///< of the screen it is on
    HWND owner_ = nullptr, button_ = nullptr;
    bool ownerWasEnabled_ = false, pumping_ = false;
    std::string caption_;
    std::int64_t position_ = 0, total_ = 0;
    DWORD painted_ = 0;
};

} // namespace lumafold
