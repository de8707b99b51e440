// What our windows have in common: a class registered once, messages led to the object, and no exception let
// out into the system.
#pragma once

#include <windows.h>

#include <cstdint>
#include <exception>

#include "hosts/desktop/ids.h"

namespace lumafold {

/// Writes a line where a person or a log sees it: what went wrong inside a window.
void ReportFault(const char* text);

/// Self names its class by kClassName and answers messages by Handle(message, wparam, lparam).
template <typename Self>
class Window {
public:
    Window() = default;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() {
        if (window_ != nullptr) DestroyWindow(window_);
    }

    HWND Get() const { return window_; }
    void Repaint() const {
        if (window_ != nullptr) InvalidateRect(window_, nullptr, FALSE);
    }

protected:
    bool Make(HWND parent, const char* title, DWORD style, DWORD extended, const RECT& place) {
        WNDCLASSEXA type{};
        type.cbSize = sizeof(type);
        type.style = CS_DBLCLKS;
        type.lpfnWndProc = &Procedure;
        type.hInstance = GetModuleHandleA(nullptr);
        type.hCursor = LoadCursorA(nullptr, IDC_ARROW);
        type.hIcon = LoadIconA(type.hInstance, MAKEINTRESOURCEA(HOST_ICON));
        type.lpszClassName = Self::kClassName;
        RegisterClassExA(&type); // again is no harm
        return CreateWindowExA(extended, Self::kClassName, title, style, place.left, place.top,
                               place.right - place.left, place.bottom - place.top, parent, nullptr,
                               type.hInstance, static_cast<Self*>(this)) != nullptr;
    }
    LRESULT Default(UINT message, WPARAM wparam, LPARAM lparam) {
        return DefWindowProcA(window_, message, wparam, lparam);
    }

    HWND window_ = nullptr;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_NCCREATE) {
            auto* made = static_cast<Self*>(reinterpret_cast<CREATESTRUCTA*>(lparam)->lpCreateParams);
            made->window_ = window;
            SetWindowLongA(window, GWL_USERDATA, static_cast<LONG>(reinterpret_cast<std::uintptr_t>(made)));
        }
        auto* self =
            reinterpret_cast<Self*>(static_cast<std::uintptr_t>(GetWindowLongA(window, GWL_USERDATA)));
        if (self == nullptr) return DefWindowProcA(window, message, wparam, lparam);
        if (message == WM_NCDESTROY) {
            self->window_ = nullptr;
            SetWindowLongA(window, GWL_USERDATA, 0);
            return DefWindowProcA(window, message, wparam, lparam);
        }
        try {
            return self->Handle(message, wparam, lparam);
        } catch (const std::exception& fault) {
            ReportFault(fault.what());
        } catch (...) {
            ReportFault("unexpected fault");
        }
        return DefWindowProcA(window, message, wparam, lparam);
    }
};

} // namespace lumafold
