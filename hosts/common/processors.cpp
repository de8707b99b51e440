#include "hosts/common/processors.h"

#include <algorithm>
#include <charconv>
#ifdef _WIN32
#include <bit>

#include <windows.h>
#else
#include <filesystem>
#include <fstream>
#include <string>

#include <sched.h>
#endif

namespace lumafold {
namespace {

#ifdef _WIN32

int Scheduled() {
    DWORD_PTR mine = 0, all = 0;
    if (!GetProcessAffinityMask(GetCurrentProcess(), &mine, &all)) return 1;
    return std::popcount(mine);
}

int WithinShare(int processors) { return processors; }

#else

int Scheduled() {
    cpu_set_t mine;
    return sched_getaffinity(0, sizeof(mine), &mine) == 0 ? CPU_COUNT(&mine) : 1;
}

std::string FirstLine(const std::filesystem::path& file) {
    std::string line;
    std::ifstream stream(file);
    std::getline(stream, line);
    return line;
}

/// The folder of the process's group below that of its kind of groups: lines are "number:kinds:/folder".
std::string GroupOf(std::string_view kind) {
    std::ifstream groups("/proc/self/cgroup");
    for (std::string line; std::getline(groups, line);) {
        const std::size_t first = line.find(':'), second = line.find(':', first + 1);
        if (second == std::string::npos) continue;
        const std::string kinds = "," + line.substr(first + 1, second - first - 1) + ",";
        if (kinds.find("," + std::string(kind) + ",") != std::string::npos) return line.substr(second + 1);
    }
    return "/";
}

// The groups around a group bind it, too.
int WithinShare(int processors) {
    const auto within = [&](const std::filesystem::path& root, std::string_view kind, const auto& shareIn) {
        for (std::filesystem::path group = GroupOf(kind);; group = group.parent_path()) {
            const auto share = ProcessorsOfShare(shareIn(root / group.relative_path()));
            processors = std::min(processors, share.value_or(processors));
            if (!group.has_relative_path()) return;
        }
    };
    within("/sys/fs/cgroup", "", [](const auto& folder) { return FirstLine(folder / "cpu.max"); });
    within("/sys/fs/cgroup/cpu", "cpu", [](const auto& folder) {
        return FirstLine(folder / "cpu.cfs_quota_us") + " " + FirstLine(folder / "cpu.cfs_period_us");
    });
    return processors;
}

#endif

} // namespace

std::optional<int> ProcessorsOfShare(std::string_view share) {
    const std::size_t space = std::min(share.find(' '), share.size());
    const std::string_view words[] = {share.substr(0, space),
                                      share.substr(std::min(space + 1, share.size()))};
    long long times[2] = {};
    for (int i = 0; i < 2; ++i) {
        const char* end = words[i].data() + words[i].size();
        const auto read = std::from_chars(words[i].data(), end, times[i]);
        if (read.ec != std::errc{} || read.ptr != end || times[i] <= 0) return std::nullopt;
    }
    return static_cast<int>(std::min(times[0] / times[1] + (times[0] % times[1] != 0), 4096LL));
}

int UsableProcessors() { return std::max(1, WithinShare(Scheduled())); }

} // namespace lumafold
