#include "tests/windows/scripted_host.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace lumafold::test {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;

ScriptedHost* theHost = nullptr;

template <typename T>
const T* At(std::intptr_t address) {
    return reinterpret_cast<const T*>(address); // NOLINT(performance-no-int-to-ptr)
}

/// A block that no counter made to fail, with these bytes.
std::int32_t ForeignBlock(const void* bytes, std::size_t count) {
    const HGLOBAL block = GlobalAlloc(GHND, count);
    std::memcpy(GlobalLock(block), bytes, count);
    GlobalUnlock(block);
    allocation_hooks::CountBlock(+1);
    return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(block));
}

std::int32_t LoadBitmapFile(const std::string& path) {
    const std::string bytes = ReadFileBytes(path);
    if (bytes.size() <= kFileHeaderBytes || bytes.compare(0, 2, "BM") != 0) return 0;
    return ForeignBlock(bytes.data() + kFileHeaderBytes, bytes.size() - kFileHeaderBytes);
}

} // namespace

ScriptedHost::ScriptedHost(std::uint32_t capabilityFlags) {
    theHost = this;
    context.callback = Callback;
    context.capabilityFlags = capabilityFlags;
}

ScriptedHost::~ScriptedHost() { theHost = nullptr; }

std::vector<std::string> ScriptedHost::Texts(std::uint32_t command) const {
    std::vector<std::string> texts;
    for (const RecordedCommand& sent : commands) {
        if (sent.command == command) texts.push_back(sent.text);
    }
    return texts;
}

int ScriptedHost::Count(std::uint32_t command) const { return static_cast<int>(Texts(command).size()); }

std::int32_t LUMAFOLD_CALL ScriptedHost::Callback(TaskRecord* sent, std::uint32_t command,
                                                  std::uint32_t wparam, std::intptr_t lparam) {
    return theHost->Answer(sent, command, wparam, lparam);
}

std::int32_t ScriptedHost::Answer(TaskRecord* sent, std::uint32_t command, std::uint32_t wparam,
                                  std::intptr_t lparam) {
    RecordedCommand record{command, wparam, ""};
    const bool hasText = command == 3 || command == 8 || command == 9 || command == 10;
    if (hasText) record.text = At<char>(lparam);
    if (command == 13) record.text = std::to_string(lparam);
    // Commands 2 to 4 belong to the task that was made, all others to none.
    if ((sent != nullptr) != (command >= 2 && command <= 4)) record.text += " (task amiss)";
    commands.push_back(record);
    if (command == 1 || command == 5) std::memcpy(&task, At<char>(lparam), sizeof(task));
    if (command == 11) std::memcpy(&colour, At<char>(lparam), sizeof(colour));

    const std::optional<std::int32_t> forced = answer ? answer(command) : std::nullopt;
    if (forced) return *forced;
    switch (command) {
    case 2:
        if (keepFrames) {
            const auto* image = At<ImageRecord>(lparam);
            const auto system = reinterpret_cast<HGLOBAL>(static_cast<std::uintptr_t>(image->image));
            OwnedDib copy(static_cast<DibHandle>(ForeignBlock(GlobalLock(system), GlobalSize(system))));
            GlobalUnlock(system);
            frames.push_back({std::move(copy), image->delay, image->index, image->transparentIndex});
        }
        return 1;
    case 7:
        std::memcpy(const_cast<char*>(At<char>(lparam)), files.data(), files.size());
        return files.empty() ? 0 : 1;
    case 8:
        return LoadBitmapFile(At<char>(lparam));
    case 9:
        return helps ? 1 : 0;
    case 11:
        if (chosen) const_cast<ColourRecord*>(At<ColourRecord>(lparam))->colour = *chosen;
        return chosen ? 1 : 0;
    case 14:
        return clipboard.empty() ? 0 : ForeignBlock(clipboard.data(), clipboard.size());
    default:
        return 1;
    }
}

std::string BytesOf(const OwnedDib& picture) {
    const LockedDib dib(picture.Get());
    return {reinterpret_cast<const char*>(dib.Get()), GlobalBytes(picture.Get())};
}

std::string PictureFolder::Add(const std::string& name, const OwnedDib& picture) const {
    const LockedDib dib(picture.Get());
    BITMAPFILEHEADER header{};
    static_assert(sizeof(header) == kFileHeaderBytes);
    header.bfType = 0x4D42;
    header.bfOffBits = static_cast<DWORD>(kFileHeaderBytes + DibRowsOffset(*dib));
    header.bfSize = static_cast<DWORD>(kFileHeaderBytes + GlobalBytes(picture.Get()));
    WriteFileBytes(path_ + name,
                   std::string(reinterpret_cast<const char*>(&header), sizeof(header)) + BytesOf(picture));
    return path_ + name;
}

std::string ReadFileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFileBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

void RemoveFolder(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

} // namespace lumafold::test
