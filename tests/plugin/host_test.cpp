#include "plugin/protocol/host.h"

#include <gtest/gtest.h>

#include <vector>

namespace lumafold::test {
namespace {

struct Sent {
    TaskRecord* task;
    std::uint32_t command, wparam;
    std::intptr_t lparam;
    friend bool operator==(const Sent&, const Sent&) = default;
};
std::vector<Sent> sent;
std::int32_t answer = 0;

std::int32_t LUMAFOLD_CALL Callback(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                    std::intptr_t lparam) {
    sent.push_back({task, command, wparam, lparam});
    return answer;
}

TEST(Host, SendsEachCommandWithItsArguments) {
    HostContext context{};
    context.callback = Callback;
    const Host host(context);
    TaskRecord task{};
    ImageRecord frame{};
    ColourRecord colour{};
    char names[8] = {};
    const auto at = [](const void* address) { return reinterpret_cast<std::intptr_t>(address); };
    const std::intptr_t atTask = at(&task), atFrame = at(&frame), atNames = at(names), atColour = at(&colour);
    TaskRecord* const none = nullptr;
    const std::vector<Sent> expected = {
        {none, 1, 0, atTask},  {none, 5, 0, atTask},   {&task, 2, 0, atFrame},  {&task, 3, 0, atNames},
        {&task, 4, 0, 0},      {&task, 4, 1, 0},       {none, 7, 42, atNames},  {none, 8, 0, atNames},
        {none, 9, 0, atNames}, {none, 10, 0, atNames}, {none, 11, 0, atColour}, {none, 13, 3, 9},
        {none, 13, 0, 0},      {none, 14, 42, 0},
    };
    // Handles use all 32 bits, so what looks negative is none the less a picture.
    for (const std::int32_t given : {0, 1, -4}) {
        sent.clear();
        answer = given;
        EXPECT_EQ(host.CreateTask(TaskKind::Build, task), given != 0);
        EXPECT_EQ(host.CreateTask(TaskKind::Test, task), given != 0);
        EXPECT_EQ(host.AddFrame(task, frame), given != 0);
        host.AddComment(task, names);
        host.FinishTask(task, TaskEnd::Abandoned);
        host.FinishTask(task, TaskEnd::Complete);
        EXPECT_EQ(host.ChooseFiles(42, names), given != 0);
        EXPECT_EQ(host.LoadPicture(names), static_cast<DibHandle>(given));
        EXPECT_EQ(host.ShowHelp(names), given != 0);
        host.Caption(names);
        EXPECT_EQ(host.ChooseColour(colour), given != 0);
        host.Position(3, 9);
        host.ResetPosition();
        EXPECT_EQ(host.ClipboardPicture(42), static_cast<DibHandle>(given));
        EXPECT_EQ(sent, expected);
    }
}

} // namespace
} // namespace lumafold::test
