// The desktop host's window with a person before it: what has not been saved is asked for before it goes.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include "hosts/desktop/main_window.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

/// Presses a button of the next message box, from inside its loop.
class BoxAnswer {
public:
    explicit BoxAnswer(WPARAM button) {
        button_ = button;
        text_.clear();
        timer_ = SetTimer(nullptr, 0, 20, Press);
    }
    ~BoxAnswer() { KillTimer(nullptr, timer_); }
    const std::string& Text() const { return text_; }

private:
    static void CALLBACK Press(HWND, UINT, UINT_PTR, DWORD) {
        HWND box = FindWindowA("#32770", "Lumafold Host");
        if (box == nullptr) return;
        char text[200] = "";
        GetDlgItemTextA(box, 0xFFFF, text, sizeof(text));
        text_ = text;
        SendMessageA(box, WM_COMMAND, button_, 0);
    }
    static inline WPARAM button_;
    static inline std::string text_;
    UINT_PTR timer_;
};

Animation Built() {
    Animation animation;
    animation.width = 7;
    animation.height = 5;
    animation.frames.push_back({NoisePicture(7, 5, 24, 1), 10, -1});
    return animation;
}

TEST(MainWindowTest, AsksBeforeUnsavedWorkGoes) {
    InitCommonControls();
    const PluginLibrary plugin;
    HostSettings settings;
    MainWindow window(plugin, settings, nullptr);
    ASSERT_TRUE(window.Make(SW_SHOWNORMAL));
    auto& host = static_cast<HostServices&>(window);
    const HWND handle = FindWindowA(MainWindow::kClassName, nullptr);

    host.TakeAnimation(Built(), TaskKind::Test);
    EXPECT_TRUE(window.Close(0)) << "a test is nobody's work";
    EXPECT_EQ(window.DocumentCount(), 0U);

    host.TakeAnimation(Built(), TaskKind::Build);
    {
        const BoxAnswer answer(IDCANCEL);
        EXPECT_FALSE(window.Close(0));
        EXPECT_NE(answer.Text().find("has not been saved"), std::string::npos) << answer.Text();
        EXPECT_EQ(window.DocumentCount(), 1U);
        SendMessageA(handle, WM_CLOSE, 0, 0);
        EXPECT_TRUE(IsWindow(handle)) << "neither does the program end";
    }
    const BoxAnswer answer(IDNO);
    SendMessageA(handle, WM_CLOSE, 0, 0);
    EXPECT_FALSE(answer.Text().empty());
    EXPECT_FALSE(IsWindow(handle));
    MSG quit;
    while (PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
    } // of the program that would end now
}

} // namespace
} // namespace lumafold::test
