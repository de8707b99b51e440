#include "hosts/desktop/host_callback.h"

#include <cstring>

#include "codecs/decode.h"
#include "platform/folders.h"
#include "plugin/protocol/chosen_names.h"
#include "settings/config_file.h"

#undef LoadImage // a command here

namespace lumafold {
namespace {

HostCallbackObject* current = nullptr;

/// What a command's last argument points to.
template <typename T>
T* At(std::intptr_t lparam) {
    return reinterpret_cast<T*>(lparam); // NOLINT(performance-no-int-to-ptr): the protocol's own way
}

HWND WindowOf(std::uint32_t handle) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(handle)); // NOLINT(performance-no-int-to-ptr)
}

/// The colour behind clear parts of pictures is the plug-in's: the one that it saved last.
PixelValue Matte() {
    PluginSettings saved;
    LoadSettings(DataFolderPath(kConfigFileName), saved);
    return saved.TransitionMattcolour & 0xFFFFFF;
}

/// The plug-in frees the picture, so it gets a block of its own.
DibHandle ClipboardPicture(HWND owner) {
    if (IsClipboardFormatAvailable(CF_DIB) == 0 || OpenClipboard(owner) == 0) return 0;
    const HANDLE block = GetClipboardData(CF_DIB);
    const auto copy = GlobalDuplicate(static_cast<GlobalHandle>(reinterpret_cast<std::uintptr_t>(block)));
    CloseClipboard();
    return copy;
}

} // namespace

HostCallbackObject::HostCallbackObject(HostServices& services, std::uint32_t capabilityFlags)
    : services_(services), task_(DelayUnitFor(capabilityFlags)) {
    context_.callback = &Callback;
    context_.capabilityFlags = capabilityFlags;
    current = this;
}

HostCallbackObject::~HostCallbackObject() {
    progress_.Close();
    current = nullptr;
}

// The plug-in knows no exceptions, so none may reach it: what went wrong here is a command that failed.
std::int32_t LUMAFOLD_CALL HostCallbackObject::Callback(TaskRecord* task, std::uint32_t command,
                                                        std::uint32_t wparam, std::intptr_t lparam) {
    if (current == nullptr) return 0;
    try {
        return current->Answer(task, command, wparam, lparam);
    } catch (const std::exception& fault) {
        ReportFault(fault.what());
    } catch (...) {
        ReportFault("unexpected fault");
    }
    return 0;
}

std::int32_t HostCallbackObject::Answer(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                        std::intptr_t lparam) {
    switch (static_cast<HostCommand>(command)) {
    case HostCommand::CreateTask:
        return Open(At<const TaskRecord>(lparam), TaskKind::Build) ? 1 : 0;
    case HostCommand::CreateTestTask:
        return Open(At<const TaskRecord>(lparam), TaskKind::Test) ? 1 : 0;
    case HostCommand::AddFrame:
        return task_.Add(task, At<const ImageRecord>(lparam)) ? 1 : 0;
    case HostCommand::AddComment:
        return task_.Comment(task, At<const char>(lparam)) ? 1 : 0;
    case HostCommand::FinishTask:
        return Finish(task, wparam == 1) ? 1 : 0;
    case HostCommand::Caption:
        progress_.Caption(services_.DialogInUse(), At<const char>(lparam));
        return 1;
    case HostCommand::Position:
        progress_.Position(services_.DialogInUse(), static_cast<std::int32_t>(wparam), lparam);
        return 1;
    case HostCommand::ChooseFiles:
        return ChooseFiles(WindowOf(wparam), At<char>(lparam)) ? 1 : 0;
    case HostCommand::LoadImage:
        return static_cast<std::int32_t>(LoadPicture(At<const char>(lparam)));
    case HostCommand::ShowHelp:
        return lparam != 0 && services_.ShowManual(At<const char>(lparam)) ? 1 : 0;
    case HostCommand::ChooseColour:
        return ChooseColour(At<ColourRecord>(lparam)) ? 1 : 0;
    case HostCommand::ClipboardImage:
        return static_cast<std::int32_t>(ClipboardPicture(WindowOf(wparam)));
    }
    return 0;
}

bool HostCallbackObject::Open(const TaskRecord* task, TaskKind kind) {
    // A task that the plug-in forgot to finish is in nobody's way.
    task_.Abandon();
    kind_ = kind;
    return task_.Open(task);
}

bool HostCallbackObject::Finish(const TaskRecord* task, bool complete) {
    if (!task_.IsOpen(task)) return false;
    std::optional<Animation> animation = task_.Finish(task, complete);
    progress_.Close();
    if (animation) services_.TakeAnimation(std::move(*animation), kind_);
    return true;
}

bool HostCallbackObject::ChooseFiles(HWND owner, char* names) {
    if (names == nullptr) return false;
    const std::vector<std::string> paths = services_.ChoosePictures(owner);
    const std::vector<char> buffer = ChosenNamesBuffer(paths);
    if (buffer.empty()) return false;
    std::memcpy(names, buffer.data(), buffer.size());
    return true;
}

DibHandle HostCallbackObject::LoadPicture(const char* path) {
    constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 27; // of a 32-bit program's memory
    if (path == nullptr) return 0;
    DecodedPicture decoded = DecodePictureFile(path, Matte(), kMostPixels);
    readError_ = decoded.picture ? "" : std::string(path) + ": " + decoded.error;
    if (!readError_.empty()) ReportFault(readError_.c_str());
    return decoded.picture.Release();
}

bool HostCallbackObject::ChooseColour(ColourRecord* record) {
    if (record == nullptr) return false;
    std::uint32_t colour = record->colour & 0xFFFFFF;
    if (!services_.ChooseColour(WindowOf(record->owner), colour, record->customColours)) return false;
    record->colour = colour & 0xFFFFFF;
    return true;
}

std::vector<char> ChosenNamesBuffer(const std::vector<std::string>& paths) {
    if (paths.empty() || paths.size() > kMaxChosenNames) return {};
    const auto folderOf = [](const std::string& path) { return path.substr(0, path.find_last_of('\\') + 1); };
    const std::string folder = folderOf(paths.front());
    std::string names = paths.size() == 1 ? paths.front() : folder;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (paths[i].size() >= kMaxPath || folderOf(paths[i]) != folder) return {};
        if (paths.size() > 1) (names += '\0') += paths[i].substr(folder.size());
    }
    names.append(2, '\0');
    if (names.size() > kChosenNamesBytes) return {};
    return {names.begin(), names.end()};
}

} // namespace lumafold
