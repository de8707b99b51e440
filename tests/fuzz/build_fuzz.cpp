// Whole builds: pictures of any size and depth, any value of any setting, memory that runs out, a host that
// refuses. What a build leaves behind must be what it found.
#include "build/build_driver.h"
#include "settings/settings.h"
#include "tests/fuzz/fuzz_target.h"
#include "tests/support/build_fixture.h"
#include "tests/support/pictures.h"

using namespace lumafold;
using namespace lumafold::test;

namespace {

constexpr std::uint64_t kBudget = 300'000;

/// Numbers at which something may end or wrap, or any.
std::uint32_t Setting(FuzzReader& reader, const SettingDescriptor& setting) {
    const std::uint32_t values[] = {setting.minimum, setting.maximum, reader.Word(),
                                    1U << (reader.Byte() % 32), 0U - reader.Byte()};
    const std::uint32_t way = reader.Byte() % 8;
    return way < std::size(values) ? values[way] : reader.Byte();
}

PluginSettings ReadSettings(FuzzReader& reader) {
    PluginSettings made;
    const auto settings = SettingDescriptors();
    for (std::uint32_t changes = reader.Byte() % 16; changes > 0; --changes) {
        const SettingDescriptor& setting = settings[reader.Byte() % settings.size()];
        made.*setting.value = Setting(reader, setting);
    }
    return made;
}

void AddPictures(FuzzReader& reader, TestList& list) {
    constexpr int kDepths[] = {1, 4, 8, 24, 32};
    for (std::uint32_t pictures = reader.Byte() % 4; pictures > 0; --pictures) {
        const auto width = static_cast<std::int32_t>(1 + reader.Byte() % 40);
        const auto height = static_cast<std::int32_t>(1 + reader.Byte() % 40);
        const int bits = kDepths[reader.Byte() % 5];
        const auto row = static_cast<std::int32_t>(reader.Byte() % 36) - 1; // beyond both ends, too
        list.Add(NoisePicture(width, height, bits, reader.Byte()), row,
                 static_cast<std::int32_t>(reader.Word()), static_cast<std::int32_t>(reader.Word()));
    }
}

} // namespace

LUMAFOLD_FUZZ_TARGET(build) {
    FuzzReader reader(input);
    RecordingHost host;
    const std::uint32_t shape = reader.Byte();
    host.refuseTask = shape % 16 == 1;
    host.refuseFrame = shape % 16 == 2 ? static_cast<std::int32_t>(reader.Byte()) : -1;
    host.keepFrames = shape % 16 == 3;
    const TaskKind kind = shape / 16 % 2 == 0 ? TaskKind::Build : TaskKind::Test;
    const std::int64_t failing = shape / 32 % 2 == 0 ? 0 : reader.Byte() + 256 * (reader.Byte() % 4);
    TestList list(static_cast<std::int32_t>(reader.Byte() % 34));
    list.refuseTemporary = shape % 16 == 4;
    AddPictures(reader, list);
    const PluginSettings settings = ReadSettings(reader);

    const std::int32_t count = list.Count();
    const std::int64_t blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
    allocation_hooks::FailNth(failing);
    const int built = host.Build(list, settings, kind, Runner(), kBudget);
    allocation_hooks::FailNth(0);
    Require(host.failures.size() == (built == 1 ? 0U : 1U), "a failure is told once");
    Require(host.waiting == 0, "the build has ended");
    Require(list.Count() == count, "the list is as long as it was");
    const bool finished = !host.commands.empty() && host.commands.back().command == 4;
    Require(built == 0 || (finished && host.commands.back().wparam == 1), "what was built is finished");
    Require(built == 0 || host.task.frameCount >= 2, "it has frames");
    host.frames.clear();
    Require(allocation_hooks::LiveBlocks() == blocks, "no block is left behind");
    Require(allocation_hooks::LiveLocks() == locks, "no lock is left behind");
}
