#include "hosts/desktop/plugin_library.h"

#include <vector>

#include "hosts/common/wide_text.h"
#include "hosts/desktop/surroundings.h"
#include "hosts/desktop/system_paths.h"
#include "platform/files.h"

namespace lumafold {
namespace {

constexpr char kLibraryName[] = "lumafold.dll";

/// A text in a field of at most `room` bytes.
std::string FieldText(const char* text, std::size_t room) {
    std::size_t length = 0;
    while (length < room && text[length] != '\0')
        ++length;
    return {text, length};
}

} // namespace

PluginLibrary::~PluginLibrary() {
    if (module_ != nullptr) FreeLibrary(module_);
}

bool PluginLibrary::Fail(const std::string& problem) {
    problem_ = problem;
    return false;
}

bool PluginLibrary::Load() {
    const std::string folder = ProgramFolder(), path = folder + kLibraryName;
    // By its full path or not at all: a bare name would be looked for elsewhere too.
    if (folder.empty() || !FileExists(path.c_str()))
        return Fail(std::string(kLibraryName) +
                    " is not there. It belongs into the folder of this program:\n" + folder);
    module_ = LoadLibraryExW(Wide(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module_ == nullptr)
        return Fail(path + " cannot be loaded (error " + std::to_string(GetLastError()) +
                    "). It may be damaged, or made for another kind of Windows.");
    std::string missing;
    const auto find = [&](const char* name) {
        const FARPROC found = GetProcAddress(module_, name);
        if (found == nullptr) missing += (missing.empty() ? "" : ", ") + std::string(name);
        return reinterpret_cast<void*>(found);
    };
    find("DllEntryPoint");
    const auto describe = reinterpret_cast<DescribeFunction>(find("PLUGINGetPluginParams"));
    const auto build = reinterpret_cast<BuildFunction>(find("PLUGINDoBuild"));
    if (!missing.empty())
        return Fail(path + " is no plug-in for this program: it does not export " + missing + ".");
    if (!Describe(describe)) return Fail(path + " does not describe itself, or in an unknown version.");
    build_ = build;
    return true;
}

bool PluginLibrary::Describe(DescribeFunction describe) {
    constexpr std::size_t kRoom = 4096;
    std::vector<char> room(kRoom + 1);
    auto* params = reinterpret_cast<PluginParams*>(room.data());
    params->size = kRoom;
    if (describe(params) == 0) return false;
    name_ = FieldText(params->name, sizeof(params->name));
    notice_ = FieldText(room.data() + offsetof(PluginParams, notice), kRoom - offsetof(PluginParams, notice));
    version_ = params->version;
    return version_ == kInterfaceVersion;
}

void PluginLibrary::Run(HWND parent, const HostContext& context) const {
    const Surroundings its(Whose::Plugin);
    if (build_ != nullptr) build_(parent, &context);
}

} // namespace lumafold
