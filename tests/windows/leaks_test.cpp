// Nothing stays behind: not after many openings, and not after any allocation that failed on the way.
#include "tests/support/failing_memory.h"
#include "tests/windows/dialog_fixture.h"
#include "tests/windows/live_objects.h"

namespace lumafold::test {
namespace {

class Leaks : public DialogTest {
protected:
    explicit Leaks(Code code = Code::Library) : DialogTest(code) {
        WriteFileBytes(files.List(), pictures.Add("a", BusyPicture(300, 200, 3)) + "\r\n");
        WriteFileBytes(files.Settings(), "TransitionType = 23\r\n");
        host.helps = false;
    }
};

TEST_F(Leaks, FiftyOpeningsLeaveNothingOfTheSystem) {
    const auto open = [&](bool everything) {
        Reload();
        Open();
        if (everything) {
            Click(LUMAFOLD_ID_HELP);
            AnswerMessage();
            for (const int button : {LUMAFOLD_MAIN_ADVANCED, LUMAFOLD_MAIN_ABOUT}) {
                Click(button);
                Click(IDOK);
            }
            DoubleClickItem(0);
            Click(IDOK);
            Drag(0, {900, 700});
            Click(LUMAFOLD_MAIN_TEST);
            host.frames.clear();
        }
        Close();
    };
    for (int i = 0; i < 2; ++i)
        open(true); // what is made once and kept
    const int objects = GdiObjects(), windows = WindowsBeside(ui.Window());
    const std::size_t handles = OpenHandles();
    for (int i = 0; i < 50; ++i)
        open(i % 10 == 0);
    EXPECT_EQ(GdiObjects(), objects);
    EXPECT_EQ(WindowsBeside(ui.Window()), windows);
    EXPECT_EQ(OpenHandles(), handles);
}

class FailingAllocations : public Leaks {
protected:
    FailingAllocations() : Leaks(Code::Linked) {}

    /// Every message is one that tells of the failure.
    void AnswerAll() {
        for (std::string text = AnswerMessage(); !text.empty(); text = AnswerMessage())
            EXPECT_TRUE(text == "Memory error" || text == "Error reading file") << text;
    }
};

TEST_F(FailingAllocations, LeaveTheListUsable) {
    const std::string second = pictures.Add("b", BusyPicture(200, 300, 4));
    const std::string list = ReadFileBytes(files.List());
    const auto session = [&] {
        WriteFileBytes(files.List(), list);
        Open();
        AnswerAll();
        AddFiles({second});
        AnswerAll();
        if (Count() > 0) {
            DoubleClickItem(0);
            if (Caption() != "Message") Click(IDOK);
            AnswerAll();
        }
        Close();
        return GdiObjects();
    };
    const int objects = session(); // with what is made once and kept
    EXPECT_GT(FailEachAllocation(session, [=](int after, bool) { EXPECT_EQ(after, objects); }), 20);
}

} // namespace
} // namespace lumafold::test
