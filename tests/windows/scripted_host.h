// A host for the plug-in's dialogs: it answers as the test's script says, and can take any command amiss.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/build_fixture.h"
#include "tests/support/scratch_folder.h"

namespace lumafold::test {

/// Blocks that the host makes for the plug-in are its own: the plug-in's counters and failures know nothing
/// of them until the plug-in frees them, so making one counts as a live block.
class ScriptedHost : public RecordingHost {
public:
    ColourRecord colour{}; ///< of the last command 11
    std::vector<std::string> Texts(std::uint32_t command) const;
    int Count(std::uint32_t command) const { return static_cast<int>(Texts(command).size()); }

    // The script.
    std::string files;                   ///< the bytes command 7 gives; empty is a cancel
    std::optional<std::uint32_t> chosen; ///< by command 11
    std::string clipboard;               ///< the picture's bytes for command 14; empty is none
    bool helps = true;                   ///< what command 9 answers
    /// Is asked first, on the host's thread; no value leaves the command to the script above.
    std::function<std::optional<std::int32_t>(std::uint32_t command)> answer;

    HostContext context = Context(); ///< what the plug-in is given

private:
    void Hear(HostCommand command, std::uint32_t wparam, std::intptr_t lparam) override;
    std::int32_t Answer(TaskRecord* task, HostCommand command, std::uint32_t wparam,
                        std::intptr_t lparam) override;
    bool ChooseFiles(WindowHandle owner, char* names) override;
    OwnedDib LoadPicture(const char* path) override;
    OwnedDib ClipboardPicture(WindowHandle owner) override;
    bool ShowHelp(const char*) override { return helps; }
    bool ChooseColour(ColourRecord* record) override;
};

std::string BytesOf(const OwnedDib& picture);

/// Puts a copy of a picture on the clipboard, or nothing.
void FillClipboard(HWND owner, const OwnedDib& picture);

/// Pictures of the test's own, in a folder that goes with it.
class PictureFolder {
public:
    const std::string& Path() const { return path_; } ///< "...\"
    /// Writes a picture as a .bmp and returns its path.
    std::string Add(const std::string& name, const OwnedDib& picture) const;

private:
    ScratchFolder folder_;
    const std::string path_ = folder_.Path() + "\\";
};

std::string ReadFileBytes(const std::string& path);
void WriteFileBytes(const std::string& path, const std::string& bytes);
/// Removes a folder with what is in it.
void RemoveFolder(const std::string& path);

} // namespace lumafold::test
