#include "tests/windows/ui_thread.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <gtest/gtest.h>

namespace lumafold::test {
namespace {

constexpr UINT kStart = WM_APP, kSettle = WM_APP + 1, kQuit = WM_APP + 2;
constexpr UINT_PTR kSettleTimer = 1;
constexpr UINT kSettleMilliseconds = 10; // the shortest there is

[[noreturn]] void GiveUp(const char* why) {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    std::fprintf(stderr, "%s in %s\n", why, test != nullptr ? test->name() : "no test");
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), 3);
    std::abort();
}

void WaitOrGiveUp(HANDLE event, const char* why) {
    constexpr DWORD kPatience = 10000;
    if (WaitForSingleObject(event, kPatience) != WAIT_OBJECT_0) GiveUp(why);
}

BOOL CALLBACK FindEnabledDialog(HWND window, LPARAM found) {
    char name[16] = "";
    GetClassNameA(window, name, sizeof(name));
    if (std::strcmp(name, "#32770") != 0 || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

} // namespace

UiThread::UiThread() {
    ready_ = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    settled_ = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    finished_ = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    thread_ = CreateThread(nullptr, 0, Main, this, 0, nullptr);
    WaitOrGiveUp(ready_, "the host's window did not open");
    Settle();
}

UiThread::~UiThread() {
    PostMessageA(window_, kQuit, 0, 0);
    WaitOrGiveUp(thread_, "the host's thread did not end");
    for (const HANDLE handle : {thread_, ready_, settled_, finished_})
        CloseHandle(handle);
}

DWORD WINAPI UiThread::Main(LPVOID self) {
    auto& thread = *static_cast<UiThread*>(self);
    WNDCLASSA kind{};
    kind.lpfnWndProc = Procedure;
    kind.hInstance = GetModuleHandleA(nullptr);
    kind.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    kind.lpszClassName = "TestHost";
    RegisterClassA(&kind);
    thread.window_ = CreateWindowA("TestHost", "Host", WS_POPUP | WS_VISIBLE, 0, 0, 1024, 768, nullptr,
                                   nullptr, kind.hInstance, nullptr);
    SetWindowLongPtrA(thread.window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    SetForegroundWindow(thread.window_);
    SetEvent(thread.ready_);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return 0;
}

LRESULT CALLBACK UiThread::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* thread = reinterpret_cast<UiThread*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    switch (message) {
    case kStart:
        std::exchange(thread->work_, nullptr)();
        SetEvent(thread->finished_);
        return 0;
    case kSettle:
        // A timer's message comes when nothing else is left, painting included.
        SetTimer(window, kSettleTimer, kSettleMilliseconds, nullptr);
        return 0;
    case WM_TIMER:
        KillTimer(window, kSettleTimer);
        SetEvent(thread->settled_);
        return 0;
    case kQuit:
        DestroyWindow(window);
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, wparam, lparam);
    }
}

void UiThread::Start(std::function<void()> work) {
    work_ = std::move(work);
    PostMessageA(window_, kStart, 0, 0);
    Settle();
}

void UiThread::Finish() { WaitOrGiveUp(finished_, "the plug-in did not come back"); }

void UiThread::Settle() {
    PostMessageA(window_, kSettle, 0, 0);
    WaitOrGiveUp(settled_, "the host's thread does not answer");
}

HWND UiThread::ActiveDialog() const {
    HWND found = nullptr;
    EnumThreadWindows(GetThreadId(thread_), FindEnabledDialog, reinterpret_cast<LPARAM>(&found));
    return found;
}

void MoveMouse(POINT screen) {
    const auto scaled = [](LONG at, int size) { return static_cast<DWORD>((at * 65536 + 32768) / size); };
    mouse_event(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, scaled(screen.x, GetSystemMetrics(SM_CXSCREEN)),
                scaled(screen.y, GetSystemMetrics(SM_CYSCREEN)), 0, 0);
}

void PressMouse(MouseButton what) {
    mouse_event(what == MouseButton::Down ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
}

void PressKey(BYTE key, KeyState what) { keybd_event(key, 0, what == KeyState::Up ? KEYEVENTF_KEYUP : 0, 0); }

} // namespace lumafold::test
