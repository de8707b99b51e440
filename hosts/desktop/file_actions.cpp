#include "hosts/desktop/file_actions.h"

#include <shellapi.h>

#include "codecs/animation_reader.h"
#include "hosts/common/paths.h"
#include "hosts/common/wide_text.h"
#include "hosts/desktop/background_work.h"
#include "hosts/desktop/saving.h"
#include "hosts/desktop/screen_picture.h"

namespace lumafold {
namespace {

constexpr std::uint64_t kMostPixels = std::uint64_t{192} << 20; // of a 32-bit program's memory

ReadAnimation Read(const std::string& path) {
    const HCURSOR before = SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)));
    ReadAnimation read = DecodeAnimationFile(path, kMostPixels);
    SetCursor(before);
    return read;
}

/// What writing came to. Where it was given up there is nothing to complain about.
struct Written {
    bool saved = false, stopped = false;
};
/// `write` tells in `error` why it did not work; so does this for what it throws, and where it could not even
/// begin.
Written Write(HWND owner, const std::string& caption, std::string& error,
              const std::function<bool(const FrameProgress&)>& write) {
    Written written;
    try {
        WorkBehindProgress(owner, caption, [&](const FrameProgress& progress) {
            written.saved = write([&](std::size_t frame, std::size_t frames) {
                written.stopped = !progress(frame, frames);
                return !written.stopped;
            });
        });
    } catch (const std::bad_alloc&) {
        error = "there is not enough memory";
    } catch (const std::exception& failure) {
        error = failure.what();
    }
    return written;
}

} // namespace

bool FileActions::Open(const std::string& path) {
    ReadAnimation read = Read(path);
    if (!read.animation) {
        Fail(FileNamePart(path) + ": " + read.error + ".");
        return false;
    }
    return Add(std::move(*read.animation), FileNamePart(path), Origin::File, path);
}

bool FileActions::OpenChosen() {
    const std::string path = attendant_.ChooseAnimation(owner_);
    return !path.empty() && Open(path);
}

std::vector<std::string> FileActions::OpenAnimationsOf(const std::vector<std::string>& paths) {
    std::vector<std::string> stills;
    for (const std::string& path : paths) {
        ReadAnimation read = Read(path);
        if (!read.animation) {
            Fail(FileNamePart(path) + ": " + read.error + ".");
        } else if (read.animation->frames.size() == 1 && LowerSuffix(path) != "mng") {
            stills.push_back(path);
        } else {
            Add(std::move(*read.animation), FileNamePart(path), Origin::File, path);
        }
    }
    return stills;
}

bool FileActions::Add(Animation animation, const std::string& name, Origin origin, const std::string& path) {
    try {
        auto document = std::make_unique<Document>(std::move(animation), name, origin, path);
        document->SetThumbnailHeight(thumbnailHeight_);
        document->DrawThumbnails(1); // its card's
        document->Player().Play(GetTickCount());
        documents_.Add(std::move(document));
        if (!path.empty()) settings_.RememberRecent(path);
        return true;
    } catch (const AnimationError& failure) {
        Fail(name + ": " + failure.what() + ".");
    } catch (const std::bad_alloc&) {
        Fail(name + ": there is not enough memory to show it.");
    }
    return false;
}

bool FileActions::Save(const std::string& path) {
    const Document* document = documents_.Current();
    if (document == nullptr) return false;
    const std::string name = FileNamePart(path);
    std::string error;
    std::uint64_t bytes = 0;
    const Written written = Write(owner_, "Saving " + name, error, [&](const FrameProgress& progress) {
        return SaveAnimation(path, document->GetAnimation(), progress, bytes, error);
    });
    if (!written.saved && !written.stopped) Fail(name + " has not been saved: " + error + ".");
    if (!written.saved) return false;
    settings_.RememberRecent(path);
    documents_.MarkSaved(path, bytes);
    return true;
}

bool FileActions::SaveChosen(std::size_t index) {
    documents_.Select(index);
    const Document* document = documents_.Current();
    const std::string path =
        attendant_.ChooseSaveName(owner_, Stem(document->Name()), document->HasTrueColour());
    return !path.empty() && Save(path);
}

bool FileActions::SaveFrames(const std::string& folder) {
    const Document* document = documents_.Current();
    if (document == nullptr) return false;
    std::string error;
    const Written written = Write(owner_, "Saving frames", error, [&](const FrameProgress& progress) {
        return lumafold::SaveFrames(folder, document->GetAnimation(), progress, error);
    });
    if (!written.saved && !written.stopped) Fail("The frames have not been saved: " + error + ".");
    return written.saved;
}

void FileActions::SaveFramesChosen() {
    if (documents_.Current() == nullptr) return;
    const std::string folder =
        attendant_.ChooseFolder(owner_, "Choose a folder for the frames, one PNG picture each.");
    if (!folder.empty()) SaveFrames(folder);
}

FileActions::Settled FileActions::Settle(std::size_t index) {
    if (!documents_.At(index).IsUnsaved()) return Settled::Yes;
    documents_.Select(index);
    const UnsavedAnswer answer = attendant_.AskAboutUnsaved(owner_, documents_.At(index).Name());
    if (answer == UnsavedAnswer::DoNotSave) return Settled::Yes;
    return answer == UnsavedAnswer::Save && SaveChosen(index) ? Settled::Yes : Settled::No;
}

bool FileActions::Close(std::size_t index) {
    if (index >= documents_.Count()) return true;
    if (Settle(index) == Settled::No) return false;
    documents_.Close(index);
    return true;
}

bool FileActions::SettleUnsaved() {
    for (std::size_t i = 0; i < documents_.Count(); ++i) {
        if (Settle(i) == Settled::No) return false;
    }
    return true;
}

void FileActions::CopyFrame() {
    Document* document = documents_.Current();
    if (document == nullptr) return;
    const Animation& animation = document->GetAnimation();
    OwnedDib picture = ScreenPicture(document->Screen(), animation.width, animation.height);
    if (!picture || OpenClipboard(owner_) == 0) return Fail("The frame could not be copied.");
    EmptyClipboard();
    const auto handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(picture.Get()));
    // From then on the block is the system's.
    if (SetClipboardData(CF_DIB, handle) != nullptr) static_cast<void>(picture.Release());
    CloseClipboard();
}

std::vector<std::string> DroppedFiles(HDROP drop) {
    std::vector<std::string> paths;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::wstring path(DragQueryFileW(drop, i, nullptr, 0) + 1, L'\0');
        path.resize(DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size())));
        if (!path.empty()) paths.push_back(Utf8(path));
    }
    DragFinish(drop);
    return paths;
}

} // namespace lumafold
