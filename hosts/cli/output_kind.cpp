#include "hosts/cli/output_kind.h"

#include <algorithm>

#include "hosts/cli/failure.h"
#include "hosts/common/paths.h"
#include "settings/settings.h"

namespace lumafold {
namespace {

namespace fs = std::filesystem;

struct KindName {
    const char* name;
    OutputKind kind;
    bool alias; ///< a suffix that is not told of
};
constexpr KindName kNames[] = {
    {"gif", OutputKind::Gif, false},   {"png", OutputKind::Apng, false},
    {"apng", OutputKind::Apng, true},  {"mng", OutputKind::Mng, false},
#if LUMAFOLD_WEBP
    {"webp", OutputKind::Webp, false},
#endif
    {"y4m", OutputKind::Y4m, false},
};

std::string Joined(const std::string& before, const std::string& separator) {
    std::string text;
    for (const KindName& row : kNames) {
        if (!row.alias) text += (text.empty() ? "" : separator) + before + row.name;
    }
    return text;
}

} // namespace

std::optional<OutputKind> OutputKindNamed(const std::string& name) {
    const auto found = std::find_if(std::begin(kNames), std::end(kNames),
                                    [&](const KindName& row) { return row.name == name; });
    if (found == std::end(kNames)) return std::nullopt;
    return found->kind;
}

std::string FormatNames(const std::string& separator) { return Joined("", separator); }

std::string OutputSuffixes() { return Joined(".", ", "); }

OutputKind KindOfOutput(const std::string& path, std::optional<OutputKind> format) {
    if (path == "-") {
        if (!format) Mistake("-o -: say which kind of file, with --format " + FormatNames("|"));
        return *format;
    }
    std::error_code ignored;
    if (EndsInSeparator(path) || fs::is_directory(PathOf(path), ignored)) {
        if (format) Mistake("-o " + path + ": a folder of frames takes no --format");
        return OutputKind::Folder;
    }
    if (format) return *format;
    if (path.empty()) return OutputKind::Gif;
    const std::string suffix = LowerSuffix(path);
    if (const auto kind = OutputKindNamed(suffix)) return *kind;
    Mistake("-o " + path + ": " + (suffix.empty() ? "a name without a suffix" : "the suffix ." + suffix) +
            " means no known kind of file; known are " + OutputSuffixes() +
            ", and a folder's name with / at its end");
}

std::int32_t LongestDelay(OutputKind kind) {
    switch (kind) {
    case OutputKind::Gif:
        return 0xFFFF;
    case OutputKind::Apng:
        return 0xFFFF * 100; // in whole seconds
    case OutputKind::Webp:
        return 0xFFFFFF / 10;
    default:
        return INT32_MAX;
    }
}

std::uint32_t CapabilityFlags(OutputKind kind) {
    return kind == OutputKind::Gif ? kHostTakesSupercompression
                                   : kHostTakesSupercompression | kHostTakesTrueColour;
}

} // namespace lumafold
