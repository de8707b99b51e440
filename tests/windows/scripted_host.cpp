#include "tests/windows/scripted_host.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

namespace lumafold::test {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;

/// A block that no counter made to fail, with these bytes.
OwnedDib ForeignBlock(const void* bytes, std::size_t count) {
    const HGLOBAL block = GlobalAlloc(GHND, count);
    std::memcpy(GlobalLock(block), bytes, count);
    GlobalUnlock(block);
    allocation_hooks::CountBlock(+1);
    return OwnedDib(static_cast<DibHandle>(reinterpret_cast<std::uintptr_t>(block)));
}

} // namespace

std::vector<std::string> ScriptedHost::Texts(std::uint32_t command) const {
    std::vector<std::string> texts;
    for (const RecordedCommand& sent : commands) {
        if (sent.command == command) texts.push_back(sent.text);
    }
    return texts;
}

void ScriptedHost::Hear(HostCommand command, std::uint32_t wparam, std::intptr_t lparam) {
    RecordingHost::Hear(command, wparam, lparam);
    if (command == HostCommand::LoadImage || command == HostCommand::ShowHelp)
        commands.back().text = reinterpret_cast<const char*>(lparam); // NOLINT(performance-no-int-to-ptr)
}

std::int32_t ScriptedHost::Answer(TaskRecord* sent, HostCommand command, std::uint32_t wparam,
                                  std::intptr_t lparam) {
    if (command == HostCommand::ChooseColour)
        colour = *reinterpret_cast<const ColourRecord*>(lparam); // NOLINT(performance-no-int-to-ptr)
    const auto forced = answer ? answer(static_cast<std::uint32_t>(command)) : std::nullopt;
    return forced ? *forced : RecordingHost::Answer(sent, command, wparam, lparam);
}

bool ScriptedHost::ChooseFiles(WindowHandle, char* names) {
    std::memcpy(names, files.data(), files.size());
    return !files.empty();
}

OwnedDib ScriptedHost::LoadPicture(const char* path) {
    const std::string bytes = ReadFileBytes(path);
    if (bytes.size() <= kFileHeaderBytes || bytes.compare(0, 2, "BM") != 0) return {};
    return ForeignBlock(bytes.data() + kFileHeaderBytes, bytes.size() - kFileHeaderBytes);
}

OwnedDib ScriptedHost::ClipboardPicture(WindowHandle) {
    return clipboard.empty() ? OwnedDib() : ForeignBlock(clipboard.data(), clipboard.size());
}

bool ScriptedHost::ChooseColour(ColourRecord* record) {
    if (chosen) record->colour = *chosen;
    return chosen.has_value();
}

std::string BytesOf(const OwnedDib& picture) {
    return {reinterpret_cast<const char*>(&*picture), GlobalBytes(picture.Get())};
}

void FillClipboard(HWND owner, const OwnedDib& picture) {
    ASSERT_TRUE(OpenClipboard(owner));
    EmptyClipboard();
    const auto copy = static_cast<std::uintptr_t>(GlobalDuplicate(picture.Get()));
    if (picture) SetClipboardData(CF_DIB, reinterpret_cast<HANDLE>(copy));
    CloseClipboard();
}

std::string PictureFolder::Add(const std::string& name, const OwnedDib& picture) const {
    std::string header = "BM";
    header.resize(kFileHeaderBytes); // of which the host reads no more
    WriteFileBytes(path_ + name, header + BytesOf(picture));
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
