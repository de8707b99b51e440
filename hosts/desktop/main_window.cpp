#include "hosts/desktop/main_window.h"

#include <commctrl.h>
#include <shellapi.h>

#include <cstdio>

#include "codecs/animation_reader.h"
#include "hosts/desktop/file_dialogs.h"
#include "hosts/desktop/ids.h"
#include "hosts/desktop/saving.h"
#include "hosts/desktop/screen_picture.h"
#include "lumafold_version.h"
#include "resources/texts/strings.h"

namespace lumafold {
namespace {

constexpr char kProgram[] = "Lumafold Host";
constexpr UINT_PTR kPlayTimer = 1, kIdleTimer = 2;
constexpr int kLeastWidth = 640, kLeastHeight = 440;

enum StatusPart {
    kStatusHint,
    kStatusFrame,
    kStatusSize,
    kStatusColours,
    kStatusDuration,
    kStatusBytes,
    kStatusZoom
};

/// Whether a window kept from the last run would still be seen.
bool IsOnScreen(const RECT& place) {
    const RECT screen{GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_YVIRTUALSCREEN),
                      GetSystemMetrics(SM_XVIRTUALSCREEN) + GetSystemMetrics(SM_CXVIRTUALSCREEN),
                      GetSystemMetrics(SM_YVIRTUALSCREEN) + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    RECT seen{};
    return IntersectRect(&seen, &place, &screen) != 0 && seen.right - seen.left > 100 &&
           seen.bottom - seen.top > 60 && place.top >= screen.top - 8;
}

RECT FirstPlace() {
    RECT work{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    const int width = std::min<int>(980, work.right - work.left - 40);
    const int height = std::min<int>(700, work.bottom - work.top - 40);
    const int left = (work.left + work.right - width) / 2, top = (work.top + work.bottom - height) / 2;
    return {left, top, left + width, top + height};
}

std::string Seconds(std::int64_t milliseconds) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.2f s", static_cast<double>(milliseconds) / 1000);
    return text;
}

int ZoomTo(int command, int zoom) {
    if (command == HOST_ZOOM_ACTUAL) return 100;
    return NextZoom(zoom, command == HOST_ZOOM_IN ? 1 : -1);
}

bool OpenInShell(const std::string& what) {
    return reinterpret_cast<std::intptr_t>(
               ShellExecuteA(nullptr, "open", what.c_str(), nullptr, nullptr, SW_SHOWNORMAL)) > 32;
}

} // namespace

bool MainWindow::Make(int show) {
    const bool kept = IsOnScreen(settings_.window);
    if (!Window::Make(nullptr, kProgram, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, WS_EX_ACCEPTFILES,
                      kept ? settings_.window : FirstPlace()))
        return false;
    SetMenu(window_, LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(HOST_MENU)));
    keys_ = LoadAcceleratorsA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(HOST_ACCELERATORS));
    ShowCurrent();
    ShowWindow(window_, kept && settings_.maximised && show == SW_SHOWNORMAL ? SW_SHOWMAXIMIZED : show);
    UpdateWindow(window_);
    SetForegroundWindow(window_);
    return true;
}

bool MainWindow::TranslateKey(MSG& message) const {
    return TranslateAcceleratorA(window_, keys_, &message) != 0;
}

LRESULT MainWindow::Create() {
    status_ = CreateWindowExA(0, STATUSCLASSNAMEA, "", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                              window_, nullptr, GetModuleHandleA(nullptr), nullptr);
    SendMessageA(status_, WM_SETFONT, reinterpret_cast<WPARAM>(Font(Face::Plain)), FALSE);
    const bool made = status_ != nullptr && toolbar_.Make(window_) && list_.Make(window_) &&
                      canvas_.Make(window_) && strip_.Make(window_);
    if (!made) return -1;
    canvas_.SetWelcome(plugin_.Name(), plugin_.IsLoaded() ? plugin_.Notice() : plugin_.Problem(),
                       plugin_.IsLoaded());
    canvas_.SetBackdrop(settings_.checkerboard ? Backdrop::Checkerboard : Backdrop::Plain);
    DragAcceptFiles(window_, TRUE);
    return 0;
}

LRESULT MainWindow::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_CREATE:
        return Create();
    case WM_SIZE:
        if (wparam != SIZE_MINIMIZED) Layout();
        return 0;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {kLeastWidth, kLeastHeight};
        return 0;
    case WM_COMMAND:
        Command(LOWORD(wparam));
        return 0;
    case WM_INITMENUPOPUP:
        PrepareMenu(reinterpret_cast<HMENU>(wparam));
        return 0;
    case WM_NOTIFY: {
        auto* header = reinterpret_cast<NMHDR*>(lparam);
        if (header->code == TTN_GETDISPINFOA)
            reinterpret_cast<NMTTDISPINFOA*>(lparam)->lpszText =
                const_cast<char*>(ToolbarTip(static_cast<int>(header->idFrom)));
        return 0;
    }
    case WM_TIMER:
        if (wparam == kPlayTimer) Tick();
        if (wparam == kIdleTimer) Idle();
        return 0;
    case WM_MOUSEWHEEL:
        Wheel(wparam, lparam);
        return 0;
    case WM_DROPFILES:
        Drop(reinterpret_cast<HDROP>(wparam));
        return 0;
    case FrameStrip::kChosen:
        GoTo(wparam);
        return 0;
    case DocumentList::kChosen:
        Select(wparam);
        return 0;
    case DocumentList::kClosed:
        Close(wparam);
        return 0;
    case WM_QUERYENDSESSION:
        return !IsRunningPlugin() && IsWindowEnabled(window_) != 0 && CloseAll() ? TRUE : FALSE;
    case WM_ENDSESSION:
        if (wparam != FALSE) RememberPlace();
        if (wparam != FALSE && unattended_ == nullptr) settings_.Save();
        return 0;
    case WM_CLOSE:
        Leave();
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return Default(message, wparam, lparam);
    }
}

void MainWindow::Layout() {
    RECT area{};
    GetClientRect(window_, &area);
    toolbar_.Resize();
    SendMessageA(status_, WM_SIZE, 0, 0);
    RECT status{};
    GetWindowRect(status_, &status);
    const int top = toolbar_.Height(), bottom = area.bottom - (status.bottom - status.top);
    const int left = DocumentList::kWidth, strip = std::max(top, bottom - FrameStrip::Height());
    MoveWindow(list_.Get(), 0, top, left, bottom - top, TRUE);
    MoveWindow(canvas_.Get(), left, top, area.right - left, strip - top, TRUE);
    MoveWindow(strip_.Get(), left, strip, area.right - left, bottom - strip, TRUE);
    const int right = area.right - 20;
    const int parts[] = {right - 562, right - 402, right - 322, right - 222, right - 152, right - 62, -1};
    SendMessageA(status_, SB_SETPARTS, std::size(parts), reinterpret_cast<LPARAM>(parts));
    statusShown_.fill("?");
    ShowStatus();
}

void MainWindow::Command(int command) {
    switch (command) {
    case HOST_RUN_PLUGIN:
        return RunPlugin();
    case HOST_OPEN:
        return OpenChosen();
    case HOST_SAVE:
        if (Current() != nullptr) SaveChosen(current_);
        return;
    case HOST_SAVE_FRAMES:
        return SaveFramesChosen();
    case HOST_CLOSE:
        if (Current() != nullptr) Close(current_);
        return;
    case HOST_EXIT:
        return Leave();
    case HOST_COPY:
        return CopyFrame();
    case HOST_FOR_GIF:
        return SetCapabilities(kHostTakesSupercompression);
    case HOST_FOR_PNG:
        return SetCapabilities(kHostTakesSupercompression | kHostTakesTrueColour);
    case HOST_FOR_PNG_WHOLE:
        return SetCapabilities(kHostTakesTrueColour);
    case HOST_MANUAL:
        if (!ShowManual(LUMAFOLD_MANUAL))
            Tell("The manual, " LUMAFOLD_MANUAL ", is not beside the program.", MB_ICONINFORMATION);
        return;
    case HOST_ABOUT:
        return About();
    default:
        return ViewCommand(command);
    }
}

void MainWindow::ViewCommand(int command) {
    Document* document = Current();
    if (document == nullptr) return;
    switch (command) {
    case HOST_PLAY:
        return Play(!document->Player().IsPlaying());
    case HOST_FIRST:
        return GoTo(0);
    case HOST_LAST:
        return GoTo(document->Player().Count() - 1);
    case HOST_PREVIOUS:
    case HOST_NEXT:
        document->Player().Step(command == HOST_NEXT ? 1 : -1);
        return ShowFrame();
    case HOST_ZOOM_FIT:
        canvas_.Fit();
        return ShowState();
    case HOST_ZOOM_IN:
    case HOST_ZOOM_OUT:
    case HOST_ZOOM_ACTUAL:
        canvas_.SetZoom(ZoomTo(command, canvas_.Zoom()));
        return ShowState();
    case HOST_CHECKERBOARD:
        settings_.checkerboard = !settings_.checkerboard;
        canvas_.SetBackdrop(settings_.checkerboard ? Backdrop::Checkerboard : Backdrop::Plain);
        return ShowState();
    case HOST_NEXT_DOCUMENT:
        return Select((current_ + 1) % documents_.size());
    case HOST_PREVIOUS_DOCUMENT:
        return Select((current_ + documents_.size() - 1) % documents_.size());
    default:
        return ShowState(); // the canvas tells that its zoom changed
    }
}

void MainWindow::Tell(const std::string& text, UINT icon) {
    if (unattended_ != nullptr) {
        unattended_->messages.push_back(text);
        return;
    }
    MessageBoxA(window_, text.c_str(), kProgram, MB_OK | icon);
}

Document* MainWindow::Current() {
    return current_ < documents_.size() ? documents_[current_].get() : nullptr;
}

void MainWindow::RunPlugin() {
    if (IsRunningPlugin()) return;
    if (!plugin_.IsLoaded()) return Tell(plugin_.Problem(), MB_ICONERROR);
    host_ = std::make_unique<HostCallbackObject>(*this, settings_.capabilities);
    toolbar_.Enable(HOST_RUN_PLUGIN, false);
    plugin_.Run(window_, host_->Context());
    host_.reset();
    // A plug-in that ended badly may have left the window without its input.
    EnableWindow(window_, TRUE);
    toolbar_.Enable(HOST_RUN_PLUGIN, true);
    SetActiveWindow(window_);
    ShowState();
}

void MainWindow::TakeAnimation(Animation animation, TaskKind kind) {
    if (kind == TaskKind::Test) {
        // A test is made to be looked at: the next one takes its place.
        const auto before = std::find_if(documents_.begin(), documents_.end(), [](const auto& document) {
            return document->GetOrigin() == Origin::Test;
        });
        CloseWithoutAsking(static_cast<std::size_t>(before - documents_.begin()));
        Add(std::move(animation), "Test", Origin::Test);
        return;
    }
    if (Add(std::move(animation), "Animation " + std::to_string(made_ + 1), Origin::Build)) ++made_;
}

bool MainWindow::Add(Animation animation, const std::string& name, Origin origin) {
    try {
        documents_.push_back(std::make_unique<Document>(std::move(animation), name, origin));
        documents_.back()->DrawThumbnails(1); // its card's
    } catch (const AnimationError& failure) {
        Tell(name + ": " + failure.what() + ".", MB_ICONERROR);
        return false;
    } catch (const std::bad_alloc&) {
        Tell(name + ": there is not enough memory to show it.", MB_ICONERROR);
        return false;
    }
    Select(documents_.size() - 1);
    Play(true);
    return true;
}

HWND MainWindow::DialogInUse() { return GetLastActivePopup(window_); }

std::vector<std::string> MainWindow::ChoosePictures(HWND owner) {
    if (unattended_ == nullptr) return ChoosePictureFiles(owner);
    return std::exchange(unattended_->pictures, {});
}

bool MainWindow::ShowManual(const std::string& reference) {
    const std::size_t anchor = reference.find('#');
    const std::string name = reference.substr(0, anchor);
    // A plug-in's reference is a bare name: nothing else on the disk is opened for it.
    if (name.empty() || name.find_first_of("\\/:") != std::string::npos) return false;
    const std::string path = ProgramFolder() + name;
    if (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) return false;
    if (unattended_ != nullptr) {
        unattended_->manual = reference;
        return true;
    }
    if (anchor == std::string::npos) return OpenInShell(path);
    // Only an address can carry the anchor; where the system does not open one, the whole page is shown.
    std::string address = "file:///";
    for (const char letter : path)
        address += letter == '\\' ? "/" : letter == ' ' ? "%20" : std::string(1, letter);
    return OpenInShell(address + reference.substr(anchor)) || OpenInShell(path);
}

bool MainWindow::ChooseColour(HWND owner, std::uint32_t& colour, std::uint32_t* custom) {
    if (unattended_ != nullptr) {
        if (!unattended_->colour) return false;
        colour = *std::exchange(unattended_->colour, std::nullopt);
        return true;
    }
    std::uint32_t* kept = settings_.customColours.data();
    if (custom != nullptr && !settings_.hasCustomColours) std::copy(custom, custom + 16, kept);
    const bool chosen = ChooseColourDialog(owner, colour, kept);
    settings_.hasCustomColours = true;
    if (custom != nullptr) std::copy(kept, kept + 16, custom);
    return chosen;
}

bool MainWindow::OpenFile(const std::string& path) {
    constexpr std::uint64_t kMostPixels = std::uint64_t{192} << 20; // of a 32-bit program's memory
    SetCursor(LoadCursorA(nullptr, IDC_WAIT));
    ReadAnimation read = DecodeAnimationFile(path, kMostPixels);
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
    if (!read.animation) {
        Tell(FileNamePart(path) + ": " + read.error + ".", MB_ICONERROR);
        return false;
    }
    return Add(std::move(*read.animation), FileNamePart(path), Origin::File);
}

bool MainWindow::SaveCurrent(const std::string& path) {
    Document* document = Current();
    if (document == nullptr) return false;
    std::string error;
    SetCursor(LoadCursorA(nullptr, IDC_WAIT));
    std::uint64_t bytes = 0;
    const bool saved = SaveAnimation(path, document->GetAnimation(), bytes, error);
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
    if (!saved) {
        Tell(FileNamePart(path) + " has not been saved: " + error + ".", MB_ICONERROR);
        return false;
    }
    document->MarkSaved(FileNamePart(path), bytes);
    ShowState();
    return true;
}

bool MainWindow::SaveCurrentFrames(const std::string& folder) {
    Document* document = Current();
    if (document == nullptr) return false;
    std::string error;
    if (SaveFrames(folder, document->GetAnimation(), error)) return true;
    Tell("The frames have not been saved: " + error + ".", MB_ICONERROR);
    return false;
}

void MainWindow::OpenChosen() {
    const std::string path = ChooseAnimationFile(window_);
    if (!path.empty()) OpenFile(path);
}

bool MainWindow::SaveChosen(std::size_t index) {
    Select(index);
    const bool trueColour = Current()->HasTrueColour();
    const std::string path = ChooseSaveName(window_, Stem(Current()->Name()), trueColour);
    return !path.empty() && SaveCurrent(path);
}

void MainWindow::SaveFramesChosen() {
    if (Current() == nullptr) return;
    const std::string folder = ChooseFolder(window_, "Choose a folder for the frames, one PNG picture each.");
    if (!folder.empty()) SaveCurrentFrames(folder);
}

void MainWindow::CopyFrame() {
    Document* document = Current();
    if (document == nullptr) return;
    const Animation& animation = document->GetAnimation();
    OwnedDib picture = ScreenPicture(document->Screen(), animation.width, animation.height);
    if (!picture || OpenClipboard(window_) == 0) return Tell("The frame could not be copied.", MB_ICONERROR);
    EmptyClipboard();
    const auto handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(picture.Get()));
    // From then on the block is the system's.
    if (SetClipboardData(CF_DIB, handle) != nullptr) static_cast<void>(picture.Release());
    CloseClipboard();
}

void MainWindow::Drop(HDROP drop) {
    const UINT count = DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0);
    std::vector<std::string> paths;
    for (UINT i = 0; i < count; ++i) {
        char path[MAX_PATH] = "";
        if (DragQueryFileA(drop, i, path, MAX_PATH) > 0) paths.emplace_back(path);
    }
    DragFinish(drop);
    for (const std::string& path : paths)
        OpenFile(path);
}

void MainWindow::Select(std::size_t index) {
    if (index >= documents_.size()) return;
    if (Document* before = Current(); before != nullptr && index != current_) Play(false);
    current_ = index;
    ShowCurrent();
}

void MainWindow::GoTo(std::size_t frame) {
    if (Current() == nullptr) return;
    Current()->Player().Go(frame);
    ShowFrame();
}

void MainWindow::SetZoom(int percent) {
    if (percent == 0) {
        canvas_.Fit();
    } else {
        canvas_.SetZoom(percent);
    }
    ShowState();
}

void MainWindow::SetCapabilities(std::uint32_t flags) {
    settings_.capabilities = flags;
    ShowState();
}

bool MainWindow::Close(std::size_t index) {
    if (index >= documents_.size()) return true;
    if (documents_[index]->IsUnsaved() && unattended_ == nullptr) {
        Select(index);
        switch (AskAboutUnsaved(window_, documents_[index]->Name())) {
        case UnsavedAnswer::Cancel:
            return false;
        case UnsavedAnswer::Save:
            if (!SaveChosen(index)) return false;
            break;
        case UnsavedAnswer::DoNotSave:
            break;
        }
    }
    CloseWithoutAsking(index);
    return true;
}

void MainWindow::CloseWithoutAsking(std::size_t index) {
    if (index >= documents_.size()) return;
    // The views let go of it first.
    canvas_.Show(nullptr);
    strip_.Show(nullptr);
    list_.Show({}, 0);
    documents_.erase(documents_.begin() + static_cast<std::ptrdiff_t>(index));
    if (current_ > index || (current_ == documents_.size() && current_ > 0)) --current_;
    ShowCurrent();
}

bool MainWindow::CloseAll() {
    while (!documents_.empty()) {
        if (!Close(current_)) return false;
    }
    return true;
}

void MainWindow::Leave() {
    // A disabled window has a dialog open, which must be answered first.
    if (IsRunningPlugin() || IsWindowEnabled(window_) == 0 || !CloseAll()) return;
    RememberPlace();
    DestroyWindow(window_);
}

void MainWindow::RememberPlace() {
    WINDOWPLACEMENT place{};
    place.length = sizeof(place);
    if (GetWindowPlacement(window_, &place) == 0) return;
    settings_.window = place.rcNormalPosition;
    settings_.maximised = place.showCmd == SW_SHOWMAXIMIZED;
}

void MainWindow::ShowCurrent() {
    Document* document = Current();
    canvas_.Show(document);
    strip_.Show(document);
    SetTimer(window_, kIdleTimer, 15, nullptr);
    ShowState();
}

void MainWindow::ShowState() {
    Document* document = Current();
    const bool open = document != nullptr;
    for (const int command :
         {HOST_SAVE, HOST_COPY, HOST_FIRST, HOST_PREVIOUS, HOST_PLAY, HOST_NEXT, HOST_LAST, HOST_ZOOM_IN,
          HOST_ZOOM_OUT, HOST_ZOOM_ACTUAL, HOST_ZOOM_FIT, HOST_CHECKERBOARD})
        toolbar_.Enable(command, open);
    toolbar_.ShowPlaying(open && document->Player().IsPlaying());
    toolbar_.Check(HOST_ZOOM_FIT, canvas_.Fits());
    toolbar_.Check(HOST_CHECKERBOARD, settings_.checkerboard);
    std::vector<const Document*> listed;
    for (const auto& each : documents_)
        listed.push_back(each.get());
    list_.Show(std::move(listed), current_);
    SetWindowTextA(window_, open ? (TitleOf(*document) + " - " + kProgram).c_str() : kProgram);
    ShowStatus();
}

void MainWindow::ShowStatus() {
    Document* document = Current();
    const auto show = [&](StatusPart part, const std::string& text) {
        // The bar paints itself anew for every text, also for the one that it shows.
        if (std::exchange(statusShown_[part], text) == text) return;
        SendMessageA(status_, SB_SETTEXTA, part, reinterpret_cast<LPARAM>((" " + text).c_str()));
    };
    const bool open = document != nullptr;
    const bool gif = (settings_.capabilities & kHostTakesTrueColour) == 0;
    show(kStatusHint, std::string("Builds for ") + (gif ? "GIF" : "PNG and MNG"));
    show(kStatusZoom, open ? std::to_string(canvas_.Zoom()) + " %" : "");
    std::string frame;
    if (open) {
        const Playback& player = document->Player();
        frame = "Frame " + std::to_string(player.Current() + 1) + " of " + std::to_string(player.Count()) +
                " at " + Seconds(player.StartOf(player.Current()));
    }
    show(kStatusFrame, frame);
    show(kStatusSize, open ? std::to_string(document->GetAnimation().width) + "x" +
                                 std::to_string(document->GetAnimation().height)
                           : "");
    show(kStatusColours, open ? document->ColoursText() : "");
    show(kStatusDuration, open ? document->DurationText() : "");
    show(kStatusBytes, open ? document->FileSizeText() : "");
}

void MainWindow::ShowFrame() {
    canvas_.Repaint();
    strip_.Follow();
    if (Current() != nullptr) toolbar_.ShowPlaying(Current()->Player().IsPlaying());
    ShowStatus();
}

void MainWindow::Play(bool play) {
    Document* document = Current();
    if (document == nullptr) return;
    if (play) {
        document->Player().Play(GetTickCount());
    } else {
        document->Player().Pause();
    }
    Tick();
    ShowFrame();
}

void MainWindow::Tick() {
    Document* document = Current();
    if (document == nullptr || !document->Player().IsPlaying()) {
        KillTimer(window_, kPlayTimer);
        return;
    }
    if (document->Player().Advance(GetTickCount())) ShowFrame();
    SetTimer(window_, kPlayTimer, document->Player().MillisecondsLeft(GetTickCount()), nullptr);
}

// Between messages: a few thumbnails at a time, and at last how large the file would be.
void MainWindow::Idle() {
    if (IsBuilding()) return;
    Document* document = Current();
    const bool pending = document != nullptr && document->ThumbnailsDrawn() < document->Player().Count();
    if (pending) {
        const bool first = document->ThumbnailsDrawn() == 0;
        document->DrawThumbnails(3);
        strip_.Repaint();
        if (first) list_.Repaint();
        return;
    }
    KillTimer(window_, kIdleTimer);
    if (document == nullptr || !document->FileSizeText().empty()) return;
    document->MeasureFile();
    ShowState();
}

void MainWindow::PrepareMenu(HMENU menu) const {
    const bool open = !documents_.empty();
    for (const int command :
         {HOST_SAVE, HOST_SAVE_FRAMES, HOST_CLOSE, HOST_COPY, HOST_FIRST, HOST_PREVIOUS, HOST_PLAY, HOST_NEXT,
          HOST_LAST, HOST_ZOOM_FIT, HOST_ZOOM_IN, HOST_ZOOM_OUT, HOST_ZOOM_ACTUAL, HOST_CHECKERBOARD,
          HOST_NEXT_DOCUMENT, HOST_PREVIOUS_DOCUMENT})
        EnableMenuItem(menu, static_cast<UINT>(command), MF_BYCOMMAND | (open ? MF_ENABLED : MF_GRAYED));
    CheckMenuItem(menu, HOST_CHECKERBOARD,
                  MF_BYCOMMAND | (settings_.checkerboard ? MF_CHECKED : MF_UNCHECKED));
    CheckMenuItem(menu, HOST_ZOOM_FIT, MF_BYCOMMAND | (canvas_.Fits() ? MF_CHECKED : MF_UNCHECKED));
    const UINT chosen = settings_.capabilities == kHostTakesSupercompression ? HOST_FOR_GIF
                        : settings_.capabilities == kHostTakesTrueColour     ? HOST_FOR_PNG_WHOLE
                                                                             : HOST_FOR_PNG;
    CheckMenuRadioItem(menu, HOST_FOR_GIF, HOST_FOR_PNG_WHOLE, chosen, MF_BYCOMMAND);
}

void MainWindow::About() {
    char version[16];
    std::snprintf(version, sizeof(version), "%u.%u", plugin_.Version() >> 8, plugin_.Version() & 0xFF);
    Tell(std::string(kProgram) + " " LUMAFOLD_VERSION "\n\n" +
             (plugin_.IsLoaded() ? plugin_.Name() + ", interface " + version + "\n" + plugin_.Notice()
                                 : plugin_.Problem()),
         MB_ICONINFORMATION);
}

void MainWindow::Wheel(WPARAM wparam, LPARAM lparam) const {
    const HWND under =
        WindowFromPoint({static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))});
    if (under != nullptr && under != window_ && GetParent(under) == window_)
        SendMessageA(under, WM_MOUSEWHEEL, wparam, lparam);
}

} // namespace lumafold
