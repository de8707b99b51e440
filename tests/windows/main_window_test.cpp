// The desktop host's window: unsaved work is asked for before it goes, long work can be given up, and nothing
// is asked of the window for ever.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include "hosts/common/wide_text.h"
#include "hosts/desktop/background_work.h"
#include "hosts/desktop/main_window.h"
#include "hosts/desktop/progress_window.h"
#include "hosts/desktop/script_answers.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

/// One small frame on a screen of this size.
Animation Built(std::int32_t width = 7, std::int32_t height = 5) {
    Animation animation;
    animation.width = width;
    animation.height = height;
    animation.frames.push_back({NoisePicture(7, 5, 24, 1), 10, -1});
    return animation;
}

/// A person who answers the question about unsaved work in one way.
class Decided : public ScriptAnswers {
public:
    UnsavedAnswer answer = UnsavedAnswer::Cancel;
    int asked = 0;
    std::string saveName;
    HWND toldAbove = nullptr;

    void Tell(HWND owner, const std::string& text, Tone tone) override {
        toldAbove = owner;
        ScriptAnswers::Tell(owner, text, tone);
    }
    UnsavedAnswer AskAboutUnsaved(HWND, const std::string&) override {
        ++asked;
        return answer;
    }
    std::string ChooseSaveName(HWND, const std::string&, bool) override { return saveName; }
};

class MainWindowTest : public testing::Test {
protected:
    MainWindowTest() {
        InitCommonControls();
        EXPECT_TRUE(window_.Make(SW_SHOWNORMAL));
    }
    ~MainWindowTest() override {
        DestroyWindow(window_.Get());
        MSG quit;
        while (PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
        } // of the program that would end now
    }
    void Take(TaskKind kind) { window_.Plugin().TakeAnimation(Built(), kind); }

    PluginLibrary plugin_;
    HostSettings settings_;
    Decided person_;
    MainWindow window_{plugin_, settings_, person_, ""};
};

TEST_F(MainWindowTest, AsksBeforeUnsavedWorkGoes) {
    const HWND handle = window_.Get();
    Take(TaskKind::Test);
    EXPECT_TRUE(window_.Files().Close(0) && person_.asked == 0) << "a test is nobody's work";
    Take(TaskKind::Build);
    EXPECT_FALSE(window_.Files().Close(0));
    person_.answer = UnsavedAnswer::Save;
    SendMessageW(handle, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(handle)) << "no name was chosen";
    EXPECT_EQ(window_.Documents().Count(), 1U);
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    person_.saveName = Utf8(folder) + "\xE8\x88\xB9.png";
    EXPECT_EQ(SendMessageW(handle, WM_QUERYENDSESSION, 0, 0), TRUE);
    SendMessageW(handle, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(person_.asked, 3) << "it has been saved";
    EXPECT_EQ(settings_.openFiles, std::vector{person_.saveName});
    EXPECT_EQ(settings_.recentFiles, settings_.openFiles);
    DeleteFileW(Wide(person_.saveName).c_str());
}

TEST_F(MainWindowTest, TakesTheWheelOverWhatDoesNotTurn) {
    for (HWND child = GetWindow(window_.Get(), GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        RECT place{};
        GetWindowRect(child, &place);
        SendMessageW(child, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA),
                     MAKELPARAM(place.left + 3, place.top + 3));
    }
}

TEST_F(MainWindowTest, DrawsAllCardsAgainForAnotherScreen) {
    Take(TaskKind::Build);
    Take(TaskKind::Build); // the current one, whose frames are drawn again in any case
    const RECT place{0, 0, 900, 700};
    SendMessageW(window_.Get(), 0x02E0, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&place));
    EXPECT_EQ(window_.Documents().At(0).ThumbnailOf(0).pixels.size(), 126U * 90U);
}

TEST_F(MainWindowTest, TellsWhyFramesAreNotSavedAndOfPathsThatAreTooLong) {
    window_.Plugin().TakeAnimation(Built(3000, 3000), TaskKind::Test);
    std::vector<void*> taken; // nearly all addresses: no room is left for a screen of 36 MB
    while (void* room = VirtualAlloc(nullptr, 16 << 20, MEM_RESERVE, PAGE_NOACCESS))
        taken.push_back(room);
    EXPECT_FALSE(window_.Files().SaveFrames("frames"));
    for (void* room : taken)
        VirtualFree(room, 0, MEM_RELEASE);
    EXPECT_EQ(person_.messages,
              std::vector<std::string>{"The frames have not been saved: there is not enough memory."});
    person_.pictures = {std::string(300, 'x')};
    HostServices& services = window_.Plugin();
    EXPECT_TRUE(services.ChoosePictures(GetDesktopWindow()).empty());
    EXPECT_EQ(person_.toldAbove, GetDesktopWindow());
}

/// Presses the button of the window that shows how far the work is.
void CALLBACK PressCancel(HWND, UINT, UINT_PTR timer, DWORD) {
    const HWND shown = FindWindowW(ProgressWindow::kClassName, nullptr);
    if (shown == nullptr) return;
    EXPECT_FALSE(IsWindowEnabled(GetWindow(shown, GW_OWNER)));
    SendDlgItemMessageW(shown, IDCANCEL, BM_CLICK, 0, 0);
    KillTimer(nullptr, timer);
}

TEST_F(MainWindowTest, LetsLongWorkBeGivenUp) {
    SetTimer(nullptr, 0, 20, PressCancel);
    std::size_t steps = 0;
    WorkBehindProgress(window_.Get(), "Trying", [&](const FrameProgress& progress) {
        while (steps < 1000 && progress(++steps, 1000))
            Sleep(10);
    });
    EXPECT_LT(steps, 1000U);
    EXPECT_TRUE(IsWindowEnabled(window_.Get()));
    EXPECT_THROW(WorkBehindProgress(window_.Get(), "", [](const FrameProgress&) { throw std::bad_alloc(); }),
                 std::bad_alloc);
}

} // namespace
} // namespace lumafold::test
