#include "hosts/desktop/plugin_session.h"

#include "hosts/desktop/dialog_driver.h"
#include "hosts/desktop/system_paths.h"
#include "platform/files.h"
#include "resources/texts/resource_ids.h"

namespace lumafold {

void PluginSession::Run(HWND window, std::uint32_t capabilities) {
    if (IsRunning()) return;
    if (!plugin_.IsLoaded()) {
        queued_.clear();
        return attendant_.Tell(window, plugin_.Problem(), Attendant::Tone::Error);
    }
    window_ = window;
    host_ = std::make_unique<HostCallbackObject>(*this, capabilities);
    plugin_.Run(window, host_->Context());
    host_.reset();
    queued_.clear();
    // A plug-in that ended badly may have left the window without its input.
    EnableWindow(window, TRUE);
    SetActiveWindow(window);
}

void PluginSession::TakeAnimation(Animation animation, TaskKind kind) {
    if (kind == TaskKind::Test) {
        // A test is made to be looked at: the next one takes its place.
        files_.Documents().CloseTest();
        files_.Add(std::move(animation), "Test", Origin::Test);
    } else {
        files_.Add(std::move(animation), files_.Documents().NextName(), Origin::Build);
    }
}

// Files of one folder together, and no more of them than a choice may have.
void PluginSession::Queue(HWND owner, const std::vector<std::string>& pictures) {
    for (const std::string& path : pictures) {
        if (ChosenNamesBuffer({path}).empty()) {
            attendant_.Tell(owner, path + ": this path is too long for the plug-in.", Attendant::Tone::Error);
            continue;
        }
        if (!queued_.empty()) {
            queued_.back().push_back(path);
            if (!ChosenNamesBuffer(queued_.back()).empty()) continue;
            queued_.back().pop_back();
        }
        queued_.push_back({path});
    }
}

void PluginSession::Feed() {
    if (feeding_ || queued_.empty() || !IsRunning() || IsBuilding()) return;
    const HWND dialog = DialogInFront();
    const HWND add = dialog != nullptr ? GetDlgItem(dialog, LUMAFOLD_MAIN_ADD) : nullptr;
    if (add == nullptr || IsWindowEnabled(add) == 0) return;
    feeding_ = true;
    const std::size_t before = queued_.size();
    Click(add); // returns when the pictures are in the list
    if (queued_.size() == before) queued_.pop_front();
    feeding_ = false;
}

std::vector<std::string> PluginSession::ChoosePictures(HWND owner) {
    if (!feeding_) {
        std::vector<std::string> chosen = attendant_.ChoosePictures(owner);
        if (chosen.empty() || !ChosenNamesBuffer(chosen).empty()) return chosen;
        // More than the plug-in takes at once, or of several folders: the rest is added after these.
        Queue(owner, chosen);
        SetTimer(window_, kFeedTimer, kFeedMilliseconds, nullptr);
    }
    if (queued_.empty()) return {};
    std::vector<std::string> pictures = std::move(queued_.front());
    queued_.pop_front();
    return pictures;
}

bool PluginSession::ShowManual(const std::string& reference) {
    const std::size_t anchor = std::min(reference.find('#'), reference.size());
    const std::string name = reference.substr(0, anchor);
    // A plug-in's reference is a bare name: nothing else on the disk is opened for it.
    if (name.empty() || name.find_first_of("\\/:") != std::string::npos) return false;
    const std::string path = ProgramFolder() + name;
    return FileExists(path.c_str()) && attendant_.ShowPage(path, reference.substr(anchor));
}

} // namespace lumafold
