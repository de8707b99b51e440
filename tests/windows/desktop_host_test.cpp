// The desktop program's side of the protocol, called as a plug-in would, and as one that has gone wrong
// would.
#include <gtest/gtest.h>

#include <cstring>

#include "hosts/desktop/host_callback.h"
#include "hosts/desktop/system_paths.h"
#include "plugin/protocol/chosen_names.h"
#include "tests/windows/scripted_host.h"
#include "tests/windows/snapshot.h"

namespace lumafold::test {
namespace {

class DesktopHostTest : public testing::Test, public HostServices {
protected:
    DesktopHostTest() {
        window_ = CreateWindowExA(0, "Static", "", WS_POPUP | WS_VISIBLE, 0, 0, 400, 200, nullptr, nullptr,
                                  nullptr, nullptr);
    }
    ~DesktopHostTest() override { DestroyWindow(window_); }

    void TakeAnimation(Animation animation, TaskKind) override { taken_.push_back(std::move(animation)); }
    HWND DialogInUse() override { return window_; }
    std::vector<std::string> ChoosePictures(HWND) override { return pictures_; }
    bool ShowManual(const std::string& reference) override { return reference == "LUMAFOLD.HTML#ABOUT"; }
    bool ChooseColour(HWND, std::uint32_t& colour, std::uint32_t* custom) override {
        if (custom != nullptr) custom[15] = colour;
        colour = 0xFF445566;
        return true;
    }

    std::int32_t Call(std::uint32_t command, std::uint32_t wparam = 0, std::intptr_t lparam = 0,
                      TaskRecord* task = nullptr) {
        return host_.Context().callback(task, command, wparam, lparam);
    }
    static std::intptr_t At(const void* record) { return reinterpret_cast<std::intptr_t>(record); }

    /// Opens a task and adds one frame.
    void Begin(std::uint32_t command) {
        task_.width = 5;
        task_.height = 4;
        const OwnedDib picture = NoisePicture(5, 4, 8, 1);
        ImageRecord frame{};
        frame.image = picture.Get();
        frame.delay = 3;
        EXPECT_EQ(Call(command, 0, At(&task_)), 1);
        EXPECT_EQ(Call(2, 0, At(&frame), &task_), 1);
    }

    HWND window_;
    HostCallbackObject host_{*this, 1};
    TaskRecord task_{};
    std::vector<Animation> taken_;
    std::vector<std::string> pictures_;
};

TEST_F(DesktopHostTest, RefusesNonsense) {
    for (std::uint32_t command = 0; command < 20; ++command) {
        const std::int32_t answer = Call(command);
        EXPECT_TRUE(answer == 0 || command == 10 || command == 13 || command == 14) << command;
    }
    Begin(1);
    Call(4, 1, 0, &task_);
    EXPECT_EQ(Call(4, 1, 0, &task_), 0) << "finished already";
    EXPECT_EQ(taken_.size(), 1U);
}

TEST_F(DesktopHostTest, KeepsInputFromTheDialogWhileItWorks) {
    for (const bool finished : {true, false}) {
        EXPECT_EQ(Call(13, 0, 0), 1);
        EXPECT_FALSE(host_.IsBuilding()) << "nothing to show";
        Call(10, 0, At("Building"));
        Call(13, 2, 9);
        EXPECT_TRUE(host_.IsBuilding());
        EXPECT_FALSE(IsWindowEnabled(window_));
        if (finished) {
            Begin(1);
            Call(4, 1, 0, &task_);
        }
        // A build that failed says nothing: the plug-in's loop runs on.
        const DWORD start = GetTickCount();
        MSG message;
        while (!finished && host_.IsBuilding() && GetTickCount() - start < 5000) {
            if (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
        }
        EXPECT_FALSE(host_.IsBuilding());
        EXPECT_TRUE(IsWindowEnabled(window_));
    }
}

TEST_F(DesktopHostTest, ShowsHowFarItIs) {
    int before = 0;
    for (const std::int32_t position : {2, 7}) {
        Call(10, 0, At("Building"));
        Sleep(100); // it does not draw more often
        Call(13, static_cast<std::uint32_t>(position), 9);
        const int filled = Snapshot(GetLastActivePopup(window_)).CountOf(kAccent);
        EXPECT_GT(filled, before);
        before = 2 * filled;
    }
}

TEST_F(DesktopHostTest, HandsFilesOverAsThePluginReadsThem) {
    std::vector<char> buffer(kChosenNamesBytes, '\x5A');
    const auto chosen = [&](std::vector<std::string> paths) {
        pictures_ = std::move(paths);
        const bool answer = Call(7, 0, At(buffer.data())) != 0;
        std::string names;
        const ChosenNames read(buffer.data(), buffer.size());
        char path[kMaxPath];
        for (std::size_t i = 0; answer && i < read.Count(); ++i)
            names += read.Path(i, path) ? std::string(path) + "|" : "?";
        return names;
    };
    EXPECT_EQ(chosen({"C:\\a b\\c.png"}), "C:\\a b\\c.png|");
    EXPECT_EQ(chosen({"C:\\p\\b.png", "C:\\p\\a.png"}), "C:\\p\\a.png|C:\\p\\b.png|");
    EXPECT_EQ(chosen({"C:\\a.png", "C:\\b.png"}), "C:\\a.png|C:\\b.png|");
    EXPECT_EQ(chosen({}), "");
    EXPECT_EQ(chosen({"C:\\p\\a.png", "C:\\q\\a.png"}), "") << "two folders";
    EXPECT_EQ(chosen(std::vector<std::string>(kMaxChosenNames + 1, "C:\\a.png")), "") << "too many";
    EXPECT_EQ(chosen({"C:\\" + std::string(kMaxPath, 'a')}), "") << "too long";
}

TEST_F(DesktopHostTest, AnswersForHelpColoursAndTheClipboard) {
    EXPECT_EQ(Call(9, 0, At("LUMAFOLD.HTML#ABOUT")), 1);
    EXPECT_EQ(Call(9, 0, At("LUMAFOLD.HTML")), 0);
    std::uint32_t custom[16] = {};
    ColourRecord record{};
    record.colour = 0x010203;
    record.customColours = custom;
    EXPECT_EQ(Call(11, 0, At(&record)), 1);
    EXPECT_EQ(record.colour, 0x445566U);
    EXPECT_EQ(custom[15], 0x010203U);

    const OwnedDib picture = NoisePicture(7, 5, 24, 2);
    FillClipboard(window_, picture);
    const OwnedDib first(static_cast<DibHandle>(Call(14))), second(static_cast<DibHandle>(Call(14)));
    ASSERT_TRUE(first && second);
    EXPECT_NE(first.Get(), second.Get()) << "blocks of their own";
    EXPECT_GE(GlobalBytes(first.Get()), GlobalBytes(picture.Get()));
    FillClipboard(window_, OwnedDib());
    EXPECT_EQ(Call(14), 0);
    EXPECT_EQ(Call(8, 0, At("C:\\no\\such.png")), 0);
}

} // namespace
} // namespace lumafold::test
