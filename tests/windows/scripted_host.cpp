#include "tests/windows/scripted_host.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

namespace lumafold::test {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;

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

std::vector<std::string> ScriptedHost::Texts(std::uint32_t command) const {
    std::vector<std::string> texts;
    for (const RecordedCommand& sent : commands) {
        if (sent.command == command) texts.push_back(sent.text);
    }
    return texts;
}

std::int32_t ScriptedHost::Answer(TaskRecord* sent, std::uint32_t command, std::uint32_t wparam,
                                  std::intptr_t lparam) {
    const std::int32_t recorded = RecordingHost::Answer(sent, command, wparam, lparam);
    if (command == 11) std::memcpy(&colour, At<char>(lparam), sizeof(colour));
    if (const auto forced = answer ? answer(command) : std::nullopt) return *forced;
    switch (command) {
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
        return recorded;
    }
}

std::string BytesOf(const OwnedDib& picture) {
    const LockedDib dib(picture.Get());
    return {reinterpret_cast<const char*>(dib.Get()), GlobalBytes(picture.Get())};
}

void FillClipboard(HWND owner, const OwnedDib& picture) {
    ASSERT_TRUE(OpenClipboard(owner));
    EmptyClipboard();
    const auto copy = static_cast<std::uintptr_t>(GlobalDuplicate(picture.Get()));
    if (picture) SetClipboardData(CF_DIB, reinterpret_cast<HANDLE>(copy));
    CloseClipboard();
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
