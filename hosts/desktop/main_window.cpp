#include "hosts/desktop/main_window.h"

#include <commctrl.h>
#include <shellapi.h>

#include <cstdio>

#include "hosts/common/wide_text.h"
#include "hosts/desktop/ids.h"
#include "hosts/desktop/window_place.h"
#include "lumafold_version.h"
#include "resources/texts/strings.h"

namespace lumafold {
namespace {

constexpr char kProgram[] = "Lumafold Host";
enum TimerNumber : UINT_PTR { kPlayTimer = 1, kIdleTimer };
static_assert(kIdleTimer < kFeedTimer);
constexpr UINT kDpiChanged = 0x02E0; ///< WM_DPICHANGED, which the headers for our oldest system lack

Backdrop BackdropFor(const HostSettings& settings) {
    return settings.checkerboard ? Backdrop::Checkerboard : Backdrop::Plain;
}

int ZoomTo(int command, int zoom) {
    if (command == HOST_ZOOM_ACTUAL) return 100;
    return NextZoom(zoom, command == HOST_ZOOM_IN ? 1 : -1);
}

int StepOf(int command) {
    switch (command) {
    case HOST_PREVIOUS:
        return -1;
    case HOST_NEXT:
        return 1;
    default:
        return command == HOST_TEN_BACK ? -10 : 10;
    }
}

} // namespace

MainWindow::MainWindow(const PluginLibrary& plugin, HostSettings& settings, Attendant& attendant,
                       std::string settingsPath)
    : plugin_(plugin), settings_(settings), attendant_(attendant), settingsPath_(std::move(settingsPath)),
      files_(documents_, settings, attendant), session_(plugin, files_, attendant),
      measurer_([this] { PostMessageW(toldOfSizes_, kMeasured, 0, 0); }) {}

bool MainWindow::Make(int show) {
    if (!Window::Make(nullptr, Wide(kProgram).c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                      WS_EX_ACCEPTFILES, FirstPlace(settings_)))
        return false;
    SetMenu(window_, LoadMenuW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(HOST_MENU)));
    keys_ = LoadAcceleratorsW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(HOST_ACCELERATORS));
    CurrentChanged();
    ShowWindow(window_, FirstShow(settings_, show));
    UpdateWindow(window_);
    SetForegroundWindow(window_);
    return true;
}

bool MainWindow::TranslateKey(MSG& message) const {
    return TranslateAcceleratorW(window_, keys_, &message) != 0;
}

LRESULT MainWindow::Create() {
    toldOfSizes_ = window_;
    TakeLook(DotsPerInchOf(window_));
    const bool made = status_.Make(window_) && toolbar_.Make(window_, *look_) && list_.Make(window_) &&
                      canvas_.Make(window_) && strip_.Make(window_);
    if (!made) return -1;
    canvas_.SetWelcome(plugin_.Name(), plugin_.IsLoaded() ? plugin_.Notice() : plugin_.Problem(),
                       plugin_.IsLoaded());
    canvas_.SetBackdrop(BackdropFor(settings_));
    DragAcceptFiles(window_, TRUE);
    return 0;
}

void MainWindow::TakeLook(int dotsPerInch) {
    look_.emplace(dotsPerInch);
    canvas_.SetLook(*look_);
    strip_.SetLook(*look_);
    list_.SetLook(*look_);
    files_.SetOwner(window_, look_->At(kThumbnailHeight));
    for (std::size_t i = 0; i < documents_.Count(); ++i) {
        documents_.At(i).SetThumbnailHeight(look_->At(kThumbnailHeight));
        documents_.At(i).DrawThumbnails(1); // its card's
    }
}

// The window came to a screen of other dots, or the person chose others for this one.
void MainWindow::ChangeScreen(int dotsPerInch, const RECT& place) {
    TakeLook(dotsPerInch);
    toolbar_.Make(window_, *look_);
    SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    Layout();
    CurrentChanged();
}

LRESULT MainWindow::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
    case WM_CREATE:
        return Create();
    case WM_SIZE:
        if (wparam != SIZE_MINIMIZED) Layout();
        return 0;
    case kDpiChanged:
        ChangeScreen(LOWORD(wparam), *reinterpret_cast<const RECT*>(lparam));
        return 0;
    case WM_GETMINMAXINFO:
        if (look_)
            reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {look_->At(kLeastWidth),
                                                                     look_->At(kLeastHeight)};
        return 0;
    case WM_COMMAND:
        Command(LOWORD(wparam));
        return 0;
    case WM_INITMENUPOPUP:
        PrepareMenu(reinterpret_cast<HMENU>(wparam), Offered());
        return 0;
    case WM_NOTIFY:
        if (auto* header = reinterpret_cast<NMHDR*>(lparam); header->code == TTN_GETDISPINFOW)
            reinterpret_cast<NMTTDISPINFOW*>(lparam)->lpszText =
                const_cast<wchar_t*>(ToolbarTip(static_cast<int>(header->idFrom)));
        return 0;
    case WM_TIMER:
        Timer(wparam);
        return 0;
    case WM_MOUSEWHEEL:
        Wheel(wparam, lparam);
        return 0;
    case WM_DROPFILES:
        Drop(reinterpret_cast<HDROP>(wparam));
        return 0;
    case kMeasured:
        TakeMeasured();
        return 0;
    case FrameStrip::kChosen:
        GoTo(wparam);
        return 0;
    case DocumentList::kChosen:
        documents_.Select(wparam);
        return 0;
    case DocumentList::kClosed:
        files_.Close(wparam);
        return 0;
    case WM_QUERYENDSESSION:
        return MayLeave() ? TRUE : FALSE;
    case WM_ENDSESSION:
        if (wparam != FALSE) Remember();
        if (wparam != FALSE && !settingsPath_.empty()) settings_.Save(settingsPath_);
        return 0;
    case WM_CLOSE:
        Leave();
        return 0;
    case WM_DESTROY:
        measurer_.Measure(nullptr);
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
    status_.Arrange(*look_);
    const int top = toolbar_.Height(), bottom = area.bottom - status_.Height();
    const int left = look_->At(DocumentList::kWidth), strip = std::max(top, bottom - strip_.Height());
    MoveWindow(list_.Get(), 0, top, left, bottom - top, TRUE);
    MoveWindow(canvas_.Get(), left, top, area.right - left, strip - top, TRUE);
    MoveWindow(strip_.Get(), left, strip, area.right - left, bottom - strip, TRUE);
    ShowStatus();
}

void MainWindow::Command(int command) {
    switch (command) {
    case HOST_RUN_PLUGIN:
        return RunPlugin();
    case HOST_FOR_GIF:
        return SetCapabilities(kHostTakesSupercompression);
    case HOST_FOR_PNG:
        return SetCapabilities(kHostTakesSupercompression | kHostTakesTrueColour);
    case HOST_FOR_PNG_WHOLE:
        return SetCapabilities(kHostTakesTrueColour);
    case HOST_MANUAL:
        if (!session_.ShowManual(LUMAFOLD_MANUAL))
            attendant_.Tell(window_, "The manual, " LUMAFOLD_MANUAL ", is not beside the program.",
                            Attendant::Tone::Information);
        return;
    case HOST_ABOUT:
        return About();
    case HOST_EXIT:
        return Leave();
    default:
        break;
    }
    FileCommand(command);
    if (documents_.Current() != nullptr) ViewCommand(command);
}

void MainWindow::FileCommand(int command) {
    switch (command) {
    case HOST_OPEN:
        files_.OpenChosen();
        return;
    case HOST_SAVE:
        if (documents_.Current() != nullptr) files_.SaveChosen(documents_.CurrentIndex());
        return;
    case HOST_SAVE_FRAMES:
        return files_.SaveFramesChosen();
    case HOST_CLOSE:
        files_.Close(documents_.CurrentIndex());
        return;
    case HOST_COPY:
        return files_.CopyFrame();
    default:
        if (command >= HOST_RECENT) OpenRecent(static_cast<std::size_t>(command - HOST_RECENT));
    }
}

void MainWindow::ViewCommand(int command) {
    Playback& player = documents_.Current()->Player();
    switch (command) {
    case HOST_PLAY:
        return Play(!player.IsPlaying());
    case HOST_FIRST:
        return GoTo(0);
    case HOST_LAST:
        return GoTo(player.Count() - 1);
    case HOST_PREVIOUS:
    case HOST_NEXT:
    case HOST_TEN_BACK:
    case HOST_TEN_ON:
        player.Step(StepOf(command));
        return ShowFrame();
    case HOST_ZOOM_FIT:
        return SetZoom(0);
    case HOST_ZOOM_IN:
    case HOST_ZOOM_OUT:
    case HOST_ZOOM_ACTUAL:
        return SetZoom(ZoomTo(command, canvas_.Zoom()));
    case HOST_PAN_LEFT:
    case HOST_PAN_RIGHT:
        return canvas_.Pan(command == HOST_PAN_RIGHT ? 1 : -1, 0);
    case HOST_PAN_UP:
    case HOST_PAN_DOWN:
        return canvas_.Pan(0, command == HOST_PAN_DOWN ? 1 : -1);
    case HOST_CHECKERBOARD:
        settings_.checkerboard = !settings_.checkerboard;
        canvas_.SetBackdrop(BackdropFor(settings_));
        return StateChanged();
    case HOST_NEXT_DOCUMENT:
    case HOST_PREVIOUS_DOCUMENT:
        return documents_.SelectNeighbour(command == HOST_NEXT_DOCUMENT ? 1 : -1);
    default:
        return StateChanged(); // the canvas tells that its zoom changed
    }
}

void MainWindow::RunPlugin() {
    if (session_.IsRunning()) return;
    toolbar_.Enable(HOST_RUN_PLUGIN, false);
    session_.Run(window_, settings_.capabilities);
    toolbar_.Enable(HOST_RUN_PLUGIN, true);
    StateChanged();
}

void MainWindow::OpenRecent(std::size_t index) {
    if (index < settings_.recentFiles.size()) files_.Open(std::string(settings_.recentFiles[index]));
}

// The plug-in is started by a message: its dialog would keep whoever dropped the files waiting.
void MainWindow::Drop(HDROP drop) {
    std::vector<std::string> dropped = DroppedFiles(drop);
    if (!plugin_.IsLoaded()) {
        for (const std::string& path : dropped)
            files_.Open(path);
        return;
    }
    session_.Queue(window_, files_.OpenAnimationsOf(dropped));
    if (!session_.HasQueued()) return;
    SetTimer(window_, kFeedTimer, kFeedMilliseconds, nullptr);
    PostMessageW(window_, WM_COMMAND, HOST_RUN_PLUGIN, 0);
}

void MainWindow::Timer(WPARAM timer) {
    if (timer == kPlayTimer) Tick();
    if (timer == kIdleTimer) Idle();
    if (timer != kFeedTimer) return;
    session_.Feed();
    if (!session_.HasQueued()) KillTimer(window_, kFeedTimer);
}

void MainWindow::GoTo(std::size_t frame) {
    if (documents_.Current() == nullptr) return;
    documents_.Current()->Player().Go(frame);
    ShowFrame();
}

void MainWindow::SetZoom(int percent) {
    if (percent == 0) {
        canvas_.Fit();
    } else {
        canvas_.SetZoom(percent);
    }
    StateChanged();
}

void MainWindow::SetCapabilities(std::uint32_t flags) {
    settings_.capabilities = flags;
    StateChanged();
}

// A disabled window has a dialog open, which must be answered first.
bool MainWindow::MayLeave() {
    return !session_.IsRunning() && IsWindowEnabled(window_) != 0 && files_.SettleUnsaved();
}

void MainWindow::Leave() {
    if (!MayLeave()) return;
    Remember();
    DestroyWindow(window_);
}

void MainWindow::Remember() {
    RememberPlace(window_, settings_);
    settings_.openFiles = documents_.Paths();
}

void MainWindow::BeforeClosing() {
    measurer_.Measure(nullptr);
    canvas_.Show(nullptr);
    strip_.Show(nullptr);
    list_.Show({}, 0);
}

void MainWindow::CurrentChanged() {
    Document* document = documents_.Current();
    canvas_.Show(document);
    strip_.Show(document);
    measurer_.Measure(document != nullptr && !document->IsMeasured() ? document->Shared() : nullptr);
    SetTimer(window_, kIdleTimer, 15, nullptr);
    Tick();
    StateChanged();
}

void MainWindow::StateChanged() {
    const Document* document = documents_.Current();
    PrepareToolbar(toolbar_, Offered());
    list_.Show(documents_.All(), documents_.CurrentIndex());
    const std::string title = document != nullptr ? TitleOf(*document) + " - " + kProgram : kProgram;
    SetWindowTextW(window_, Wide(title).c_str());
    ShowStatus();
}

Offer MainWindow::Offered() const {
    const Document* document = documents_.Current();
    return {settings_, document != nullptr, document != nullptr && document->Player().IsPlaying(),
            canvas_.Fits()};
}

void MainWindow::ShowStatus() { status_.Show(documents_.Current(), canvas_.Zoom(), settings_.capabilities); }

void MainWindow::ShowFrame() {
    canvas_.Repaint();
    strip_.Follow();
    if (documents_.Current() != nullptr) toolbar_.ShowPlaying(documents_.Current()->Player().IsPlaying());
    ShowStatus();
}

void MainWindow::Play(bool play) {
    Playback& player = documents_.Current()->Player();
    if (play) {
        player.Play(GetTickCount());
    } else {
        player.Pause();
    }
    Tick();
    ShowFrame();
}

void MainWindow::Tick() {
    Document* document = documents_.Current();
    if (document == nullptr || !document->Player().IsPlaying()) {
        KillTimer(window_, kPlayTimer);
        return;
    }
    if (document->Player().Advance(GetTickCount())) ShowFrame();
    SetTimer(window_, kPlayTimer, document->Player().MillisecondsLeft(GetTickCount()), nullptr);
}

// Between messages: a few thumbnails at a time.
void MainWindow::Idle() {
    if (session_.IsBuilding()) return;
    Document* document = documents_.Current();
    if (document == nullptr || document->ThumbnailsDrawn() == document->Player().Count()) {
        KillTimer(window_, kIdleTimer);
        return;
    }
    const bool first = document->ThumbnailsDrawn() == 0;
    document->DrawThumbnails(3);
    strip_.Repaint();
    if (first) list_.Repaint();
}

void MainWindow::TakeMeasured() {
    const auto measured = measurer_.Take();
    for (std::size_t i = 0; measured && i < documents_.Count(); ++i) {
        Document& document = documents_.At(i);
        if (document.Shared() == measured->animation && !document.IsMeasured())
            document.TakeSize(measured->size);
    }
    StateChanged();
}

void MainWindow::About() {
    char version[16];
    std::snprintf(version, sizeof(version), "%u.%u", plugin_.Version() >> 8, plugin_.Version() & 0xFF);
    attendant_.Tell(window_,
                    std::string(kProgram) + " " LUMAFOLD_VERSION "\n\n" +
                        (plugin_.IsLoaded()
                             ? plugin_.Name() + ", interface " + version + "\n" + plugin_.Notice()
                             : plugin_.Problem()),
                    Attendant::Tone::Information);
}

// To the view under the mouse, and to no other window: toolbar and status bar would hand it back to this one.
void MainWindow::Wheel(WPARAM wparam, LPARAM lparam) const {
    const HWND under =
        WindowFromPoint({static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))});
    for (const HWND view : {canvas_.Get(), strip_.Get(), list_.Get()}) {
        if (under == view) SendMessageW(view, WM_MOUSEWHEEL, wparam, lparam);
    }
}

} // namespace lumafold
