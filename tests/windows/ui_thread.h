// The thread of a host's windows, as the plug-in finds it. Tests stay on their own thread and act on the
// plug-in's dialogs from there, as a person does, so that a test reads in the order in which things happen.
#pragma once

#include <windows.h>

#include <functional>

namespace lumafold::test {

/// Everything that waits gives up after ten seconds by ending the program: a hung dialog cannot be cleaned
/// up.
class UiThread {
public:
    UiThread();
    UiThread(const UiThread&) = delete;
    UiThread& operator=(const UiThread&) = delete;
    ~UiThread();

    HWND Window() const { return window_; }
    /// Starts a piece of work there, which may run message loops of its own.
    void Start(std::function<void()> work);
    /// Until the work is done.
    void Finish();
    /// Until every message and all input has been dealt with.
    void Settle();
    /// The dialog or message box that takes input now, or null.
    HWND ActiveDialog() const;

private:
    static DWORD WINAPI Main(LPVOID self);
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

    HWND window_ = nullptr;
    HANDLE thread_ = nullptr, ready_ = nullptr, settled_ = nullptr, finished_ = nullptr;
    std::function<void()> work_;
};

/// Input as the mouse and the keyboard give it.
void MoveMouse(POINT screen);
enum class MouseButton { Down, Up };
void PressMouse(MouseButton what);
enum class KeyState { Down, Up };
void PressKey(BYTE key, KeyState what);

} // namespace lumafold::test
