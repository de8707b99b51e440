#include "hosts/common/paths.h"

#ifdef _WIN32
#include "hosts/common/wide_text.h"
#endif

namespace lumafold {
namespace {

#ifdef _WIN32
constexpr char kSeparators[] = "\\/:";
#else
constexpr char kSeparators[] = "/";
#endif

} // namespace

#ifdef _WIN32

std::filesystem::path PathOf(const std::string& name) { return Wide(name); }

std::string NameOf(const std::filesystem::path& path) { return Utf8(path.native()); }

bool EndsInSeparator(const std::string& name) { return name.ends_with('/') || name.ends_with('\\'); }

#else

std::filesystem::path PathOf(const std::string& name) { return name; }

std::string NameOf(const std::filesystem::path& path) { return path.string(); }

bool EndsInSeparator(const std::string& name) { return name.ends_with('/'); }

#endif

std::string FileNamePart(const std::string& path) { return path.substr(path.find_last_of(kSeparators) + 1); }

std::string Stem(const std::string& path) {
    const std::string name = FileNamePart(path);
    const std::size_t dot = name.find_last_of('.');
    return dot == 0 ? name : name.substr(0, dot);
}

std::string LowerSuffix(const std::string& path) {
    std::string suffix = FileNamePart(path).substr(Stem(path).size());
    suffix.erase(0, 1);
    for (char& letter : suffix)
        letter = static_cast<char>(letter | (letter >= 'A' && letter <= 'Z' ? 0x20 : 0));
    return suffix;
}

} // namespace lumafold
