// What is done with files: opening, saving, closing and dropping them, and the clipboard.
#pragma once

#include "hosts/desktop/attendant.h"
#include "hosts/desktop/document_set.h"
#include "hosts/desktop/host_settings.h"

namespace lumafold {

class FileActions {
public:
    /// All outlive it.
    FileActions(DocumentSet& documents, HostSettings& settings, Attendant& attendant)
        : documents_(documents), settings_(settings), attendant_(attendant) {}

    /// The window that dialogs and messages belong to, and how high thumbnails are on its screen.
    void SetOwner(HWND owner, std::int32_t thumbnailHeight) {
        owner_ = owner;
        thumbnailHeight_ = thumbnailHeight;
    }
    DocumentSet& Documents() { return documents_; }

    // What cannot be done is told, and false is returned; so it is when the person changed his mind.
    bool Open(const std::string& path);
    bool OpenChosen();
    /// The current one; false where nothing is open.
    bool Save(const std::string& path);
    bool SaveChosen(std::size_t index);
    bool SaveFrames(const std::string& folder);
    void SaveFramesChosen();
    /// Asks about unsaved work first.
    bool Close(std::size_t index);
    /// Whether the program may end, as far as unsaved work goes: what is to be saved has been.
    bool SettleUnsaved();

    bool Add(Animation animation, const std::string& name, Origin origin, const std::string& path = "");
    void CopyFrame();
    /// Opens animations; returns the still pictures among the files, which are for the plug-in.
    std::vector<std::string> OpenAnimationsOf(const std::vector<std::string>& paths);

private:
    enum class Settled { Yes, No };
    Settled Settle(std::size_t index);
    void Fail(const std::string& text) { attendant_.Tell(owner_, text, Attendant::Tone::Error); }

    DocumentSet& documents_;
    HostSettings& settings_;
    Attendant& attendant_;
    HWND owner_ = nullptr;
    std::int32_t thumbnailHeight_ = kThumbnailHeight;
};

/// The files of a drop, which is finished by that.
std::vector<std::string> DroppedFiles(HDROP drop);

} // namespace lumafold
