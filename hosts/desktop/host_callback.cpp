#include "hosts/desktop/host_callback.h"

#include <cstring>

#include "codecs/decode.h"
#include "hosts/desktop/surroundings.h"
#include "hosts/desktop/system_paths.h"
#include "platform/folders.h"
#include "settings/config_file.h"

#undef LoadImage // a command here

namespace lumafold {
namespace {

HWND WindowOf(std::uint32_t handle) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(handle)); // NOLINT(performance-no-int-to-ptr)
}

/// The plug-in frees the picture, so it gets a block of its own.
OwnedDib CopyOfClipboard(HWND owner) {
    if (IsClipboardFormatAvailable(CF_DIB) == 0 || OpenClipboard(owner) == 0) return {};
    const HANDLE block = GetClipboardData(CF_DIB);
    OwnedDib copy(GlobalDuplicate(static_cast<GlobalHandle>(reinterpret_cast<std::uintptr_t>(block))));
    CloseClipboard();
    return copy;
}

} // namespace

PixelValue HostCallbackObject::SavedMatte() {
    PluginSettings saved;
    LoadSettings(DataFolderPath(kConfigFileName), saved);
    return saved.TransitionMattcolour & 0xFFFFFF;
}

void HostCallbackObject::HearFault(const char* what) { ReportFault(what); }

bool HostCallbackObject::CreateTask(const TaskRecord* task, TaskKind kind) {
    // A task that the plug-in forgot to finish is in nobody's way.
    task_.Abandon();
    kind_ = kind;
    return task_.Open(task);
}

bool HostCallbackObject::FinishTask(const TaskRecord* task, TaskEnd end) {
    if (!task_.IsOpen(task)) return false;
    std::optional<Animation> animation = task_.Finish(task, end == TaskEnd::Complete);
    const Surroundings ours(Whose::Program);
    progress_.Close();
    if (animation) services_.TakeAnimation(std::move(*animation), kind_);
    return true;
}

void HostCallbackObject::Caption(const char* text) {
    const Surroundings ours(Whose::Program);
    progress_.Caption(services_.DialogInUse(), text);
}

void HostCallbackObject::Position(std::int32_t position, std::int32_t total) {
    const Surroundings ours(Whose::Program);
    progress_.Position(services_.DialogInUse(), position, total);
}

OwnedDib HostCallbackObject::ClipboardPicture(WindowHandle owner) { return CopyOfClipboard(WindowOf(owner)); }

bool HostCallbackObject::ShowHelp(const char* reference) {
    const Surroundings ours(Whose::Program);
    return reference != nullptr && services_.ShowManual(reference);
}

bool HostCallbackObject::ChooseFiles(WindowHandle owner, char* names) {
    if (names == nullptr) return false;
    const Surroundings ours(Whose::Program);
    const std::vector<std::string> paths = services_.ChoosePictures(WindowOf(owner));
    const std::vector<char> buffer = ChosenNamesBuffer(paths);
    if (buffer.empty()) return false;
    std::memcpy(names, buffer.data(), buffer.size());
    return true;
}

OwnedDib HostCallbackObject::LoadPicture(const char* path) {
    constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 27; // of a 32-bit program's memory
    if (path == nullptr) return {};
    DecodedPicture decoded = DecodePictureFile(path, matte_, kMostPixels);
    readError_ = decoded.picture ? "" : std::string(path) + ": " + decoded.error;
    if (!readError_.empty()) ReportFault(readError_.c_str());
    return std::move(decoded.picture);
}

bool HostCallbackObject::ChooseColour(ColourRecord* record) {
    if (record == nullptr) return false;
    const Surroundings ours(Whose::Program);
    std::uint32_t colour = record->colour & 0xFFFFFF;
    if (!services_.ChooseColour(WindowOf(record->owner), colour, record->customColours)) return false;
    record->colour = colour & 0xFFFFFF;
    return true;
}

} // namespace lumafold
