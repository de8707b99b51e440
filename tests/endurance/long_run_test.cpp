// A host keeps the library for days. Hundreds of builds in one process, of every effect and every way with
// colours, leave nothing behind and take no more memory than the first of them did.
#include <array>
#include <cstdio>
#ifndef _WIN32
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>
#endif

#include <gtest/gtest.h>

#include "settings/settings.h"
#include "tests/support/build_fixture.h"
#include "tests/support/pictures.h"
#include "transitions/table.h"
#ifdef _WIN32
#include "tests/windows/live_objects.h"
#endif

namespace lumafold::test {
namespace {

constexpr int kRows = static_cast<int>(std::size(TransitionTable));
constexpr int kBuildsOfTurn = 2 * kRows, kTurns = 4;

/// What this process holds.
struct SystemCounts {
    std::size_t memory = 0;  ///< bytes that the system has given: resident, or committed on Windows
    std::size_t files = 0;   ///< open descriptors, or handles
    std::size_t drawing = 0; ///< drawing objects; 0 where there are none
};

SystemCounts CountOfSystem() {
    SystemCounts counts;
#ifdef _WIN32
    const char* at = nullptr;
    for (MEMORY_BASIC_INFORMATION piece; VirtualQuery(at, &piece, sizeof(piece)) != 0;) {
        if (piece.State == MEM_COMMIT && piece.Type == MEM_PRIVATE) counts.memory += piece.RegionSize;
        at = static_cast<const char*>(piece.BaseAddress) + piece.RegionSize;
    }
    counts.files = OpenHandles();
    counts.drawing = static_cast<std::size_t>(GdiObjects());
#else
    std::size_t whole = 0;
    std::ifstream("/proc/self/statm") >> whole >> counts.memory;
    counts.memory *= static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::filesystem::directory_iterator open("/proc/self/fd"), none;
    counts.files = static_cast<std::size_t>(std::distance(open, none));
#endif
    return counts;
}

struct Size {
    std::int32_t width, height;
};
constexpr Size kSizes[] = {{33, 17}, {1, 1}, {7, 5}, {33, 1}, {41, 29}, {1, 19}, {8, 8}};

/// Settings by the bits of a number: true colour, palettes, dithering, supercompression, and how they remap.
PluginSettings ColourSettings(unsigned bits) {
    PluginSettings settings;
    settings.TransitionTruecolour = bits % 5 == 0 ? 1 : 0;
    settings.Supercompress = bits & 1;
    settings.TransitionDither = bits >> 1 & 1;
    settings.FastRemap = bits >> 2 & 1;
    settings.TransitionCustompalette = bits % 3 == 0 ? 1 : 0;
    settings.TransitionPalette = bits % 9;
    settings.TransitionSpiralShear = bits & 1;
    return settings;
}

void BuildOnce(int number) {
    const auto bits = static_cast<unsigned>(number);
    const PluginSettings settings = ColourSettings(bits);
    RecordingHost host;
    TestList list;
    for (unsigned i = 0; i <= bits % 3; ++i) {
        const Size size = kSizes[(bits + 3 * i) % std::size(kSizes)];
        list.Add(BusyPicture(size.width, size.height, bits + i), number % kRows, 20, 3);
    }
    const TaskKind kind = number % 7 == 0 ? TaskKind::Test : TaskKind::Build;
    ASSERT_EQ(host.Build(list, settings, kind), 1) << number;
    ASSERT_FALSE(host.frames.empty()) << number;
}

TEST(LongRun, OfBuildsTakesNoMoreAndLeavesNothing) {
    std::array<SystemCounts, kTurns> after;
    for (SystemCounts& counts : after) {
        const std::int64_t blocks = allocation_hooks::LiveBlocks(), locks = allocation_hooks::LiveLocks();
        for (int number = 0; number < kBuildsOfTurn; ++number) {
            BuildOnce(number);
            if (HasFatalFailure()) return;
        }
        ASSERT_EQ(allocation_hooks::LiveBlocks(), blocks);
        ASSERT_EQ(allocation_hooks::LiveLocks(), locks);
        counts = CountOfSystem();
        std::printf("memory %zu kB, files %zu, drawing objects %zu\n", counts.memory / 1024, counts.files,
                    counts.drawing);
    }
    // What is made once and kept has been by now.
    const SystemCounts &early = after[1], &late = after[kTurns - 1];
    EXPECT_EQ(late.files, early.files);
    EXPECT_EQ(late.drawing, early.drawing);
    if (LUMAFOLD_SANITIZED) return; // they keep for a while what was freed
    EXPECT_LE(late.memory, early.memory + 256 * 1024);
}

} // namespace
} // namespace lumafold::test
