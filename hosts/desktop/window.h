// What our windows have in common: a class registered once, messages led to the object, and no exception let
// out into the system.
#pragma once

#include <windows.h>

#include <cstdint>
#include <exception>
#include <string>

#include "hosts/desktop/ids.h"

namespace lumafold {

/// Writes a line where a person or a log sees it: what went wrong inside a window.
void ReportFault(const char* text);
/// The same of what a window threw; kept, so that nobody takes what was under way for done.
void CatchFault(const char* text);
/// What was caught first, "" so far.
const std::string& CaughtFault();

/// Self names its class by kClassName, answers messages by Handle(message, wparam, lparam), and calls Destroy
/// in its own destructor: a window that goes still gets messages, which need the whole object.
template <typename Self>
class Window {
public:
    Window() = default;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    HWND Get() const { return window_; }
    void Repaint() const {
        if (window_ != nullptr) InvalidateRect(window_, nullptr, FALSE);
    }

protected:
    /// No message reaches what is left of the object.
    ~Window() {
        if (window_ == nullptr) return;
        SetWindowLongW(window_, GWL_USERDATA, 0);
        DestroyWindow(window_);
    }

    bool Make(HWND parent, const wchar_t* title, DWORD style, DWORD extended, const RECT& place) {
        WNDCLASSEXW type{};
        type.cbSize = sizeof(type);
        type.style = CS_DBLCLKS;
        type.lpfnWndProc = &Procedure;
        type.hInstance = GetModuleHandleW(nullptr);
        type.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // the arrow
        type.hIcon = LoadIconW(type.hInstance, MAKEINTRESOURCEW(HOST_ICON));
        type.lpszClassName = Self::kClassName;
        RegisterClassExW(&type); // again is no harm
        return CreateWindowExW(extended, Self::kClassName, title, style, place.left, place.top,
                               place.right - place.left, place.bottom - place.top, parent, nullptr,
                               type.hInstance, static_cast<Self*>(this)) != nullptr;
    }
    void Destroy() {
        if (window_ != nullptr) DestroyWindow(window_);
    }
    LRESULT Default(UINT message, WPARAM wparam, LPARAM lparam) {
        return DefWindowProcW(window_, message, wparam, lparam);
    }

    HWND window_ = nullptr;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_NCCREATE) {
            auto* made = static_cast<Self*>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams);
            made->window_ = window;
            SetWindowLongW(window, GWL_USERDATA, static_cast<LONG>(reinterpret_cast<std::uintptr_t>(made)));
        }
        auto* self =
            reinterpret_cast<Self*>(static_cast<std::uintptr_t>(GetWindowLongW(window, GWL_USERDATA)));
        if (self == nullptr) return DefWindowProcW(window, message, wparam, lparam);
        if (message == WM_NCDESTROY) {
            self->window_ = nullptr;
            SetWindowLongW(window, GWL_USERDATA, 0);
            return DefWindowProcW(window, message, wparam, lparam);
        }
        try {
            return self->Handle(message, wparam, lparam);
        } catch (const std::exception& fault) {
            CatchFault(fault.what());
        } catch (...) {
            CatchFault("unexpected fault");
        }
        return DefWindowProcW(window, message, wparam, lparam);
    }
};

} // namespace lumafold
