#include "hosts/desktop/script_runner.h"

#include <shlobj.h>

#include <cstring>

#include "codecs/files.h"
#include "codecs/png_writer.h"
#include "hosts/common/wide_text.h"
#include "hosts/desktop/dialog_driver.h"
#include "hosts/desktop/ids.h"
#include "hosts/desktop/surroundings.h"
#include "hosts/desktop/system_paths.h"
#include "hosts/desktop/window_picture.h"
#include "resources/texts/resource_ids.h"

namespace lumafold {
namespace {

constexpr UINT kTick = 10;
constexpr DWORD kPatience = 20000; ///< milliseconds for a dialog to come or go
constexpr DWORD kUntilSeen = 100;  ///< milliseconds for what was drawn to be on the screen

ScriptRunner* current = nullptr;

} // namespace

struct ScriptRunner::Action {
    const char* verb;
    Run run;
};

ScriptRunner::Run ScriptRunner::ActionFor(const std::string& verb) {
    static constexpr Action kActions[] = {
        {"open-dialog", &ScriptRunner::OpenDialog},
        {"add", &ScriptRunner::Add},
        {"paste", &ScriptRunner::Press},
        {"remove-all", &ScriptRunner::RemoveAll},
        {"select-item", &ScriptRunner::SelectItem},
        {"set", &ScriptRunner::Set},
        {"press", &ScriptRunner::Press},
        {"advanced", &ScriptRunner::OpenSubDialog},
        {"override", &ScriptRunner::OpenSubDialog},
        {"ok", &ScriptRunner::CloseDialog},
        {"cancel", &ScriptRunner::CloseDialog},
        {"build", &ScriptRunner::Build},
        {"test", &ScriptRunner::Build},
        {"capabilities", &ScriptRunner::Documents},
        {"open", &ScriptRunner::Documents},
        {"drop", &ScriptRunner::Drop},
        {"save-as", &ScriptRunner::Documents},
        {"save-frames", &ScriptRunner::Documents},
        {"close", &ScriptRunner::Documents},
        {"select", &ScriptRunner::Documents},
        {"frame", &ScriptRunner::View},
        {"play", &ScriptRunner::View},
        {"pause", &ScriptRunner::View},
        {"zoom", &ScriptRunner::View},
        {"copy", &ScriptRunner::View},
        {"wait", &ScriptRunner::Wait},
        {"screenshot", &ScriptRunner::Screenshot},
        {"expect-documents", &ScriptRunner::ExpectDocument},
        {"expect-frames", &ScriptRunner::ExpectDocument},
        {"expect-size", &ScriptRunner::ExpectDocument},
        {"expect-colours", &ScriptRunner::ExpectDocument},
        {"expect-items", &ScriptRunner::ExpectControl},
        {"expect-value", &ScriptRunner::ExpectControl},
        {"expect-enabled", &ScriptRunner::ExpectControl},
        {"expect-title", &ScriptRunner::ExpectText},
        {"expect-message", &ScriptRunner::ExpectText},
        {"expect-manual", &ScriptRunner::ExpectText},
    };
    for (const Action& action : kActions) {
        if (verb == action.verb) return action.run;
    }
    return nullptr;
}

ScriptRunner::ScriptRunner(std::vector<ScriptStep> steps, MainWindow& window, ScriptAnswers& answers)
    : steps_(std::move(steps)), window_(window), answers_(answers),
      timer_(SetTimer(nullptr, 0, kTick, &OnTimer)) {
    current = this;
}

ScriptRunner::~ScriptRunner() {
    KillTimer(nullptr, timer_);
    current = nullptr;
}

void CALLBACK ScriptRunner::OnTimer(HWND, UINT, UINT_PTR, DWORD) {
    if (current != nullptr) current->Tick();
}

// Message boxes are answered at any time, in the middle of a step too: the step waits for that.
void ScriptRunner::Tick() {
    const Surroundings ours(Whose::Program);
    while (std::optional<std::string> text = DismissMessageBox())
        answers_.messages.push_back(*text);
    if (busy_ || window_.Plugin().IsBuilding()) return;
    busy_ = true;
    Advance();
    busy_ = false;
}

// A step that throws has failed. Nothing may reach the system, which called.
ScriptRunner::State ScriptRunner::TryStep(const ScriptStep& step) noexcept {
    try {
        return RunStep(step);
    } catch (const std::exception& fault) {
        why_ = fault.what();
    } catch (...) {
        why_ = "unexpected fault";
    }
    return State::Failed;
}

void ScriptRunner::Advance() {
    if (at_ >= steps_.size() || steps_[at_].verb == "quit") return Finish();
    const ScriptStep& step = steps_[at_];
    const State state = TryStep(step);
    if (state == State::Waiting) return;
    if (state == State::Done) {
        ++at_;
        started_ = false;
        return;
    }
    ReportFault(("line " + std::to_string(step.line) + ": " + StepText(step) + ": " + why_).c_str());
    // The plug-in may be in the middle of anything.
    TerminateProcess(GetCurrentProcess(), 1);
}

ScriptRunner::State ScriptRunner::RunStep(const ScriptStep& step) {
    if (!started_) {
        startedAt_ = GetTickCount();
        dialogBefore_ = DialogInFront();
    }
    if (!answers_.messages.empty() && step.verb != "expect-message")
        return Fail("this message was shown: " + answers_.messages.front());
    const Run run = ActionFor(step.verb);
    if (run == nullptr) return Fail("not known here");
    const State state = (this->*run)(step);
    started_ = true;
    if (!CaughtFault().empty()) return Fail(CaughtFault());
    if (state == State::Waiting && step.verb != "wait" && GetTickCount() - startedAt_ > kPatience)
        return Fail("that took too long");
    return state;
}

void ScriptRunner::Finish() {
    KillTimer(nullptr, timer_);
    if (!answers_.messages.empty()) {
        ReportFault(("at the end: this message was shown: " + answers_.messages.front()).c_str());
    } else if (window_.Plugin().IsRunning()) {
        ReportFault("at the end: the dialog is still open");
        TerminateProcess(GetCurrentProcess(), 1);
    } else {
        status_ = 0;
    }
    DestroyWindow(window_.Get());
}

ScriptRunner::State ScriptRunner::Fail(const std::string& why) {
    why_ = why;
    return State::Failed;
}

ScriptRunner::State ScriptRunner::Check(bool holds, const std::string& found) {
    return holds ? State::Done : Fail("found " + found);
}

HWND ScriptRunner::Control(const std::string& word) {
    const HWND dialog = DialogInFront();
    const std::optional<int> id = ControlNumber(word);
    const HWND control = dialog != nullptr && id ? GetDlgItem(dialog, *id) : nullptr;
    if (control == nullptr)
        why_ = dialog == nullptr ? "no dialog is open" : "the dialog in front has no such control";
    return control;
}

HWND ScriptRunner::Button(int id) {
    const HWND button = Control(std::to_string(id));
    if (button == nullptr || IsWindowEnabled(button) != 0) return button;
    why_ = "the button is disabled";
    return nullptr;
}

ScriptRunner::State ScriptRunner::OpenDialog(const ScriptStep&) {
    if (!started_) {
        if (dialogBefore_ != nullptr) return Fail("it is open already");
        PostMessageW(window_.Get(), WM_COMMAND, HOST_RUN_PLUGIN, 0);
    }
    return DialogInFront() != nullptr ? State::Done : State::Waiting;
}

ScriptRunner::State ScriptRunner::Add(const ScriptStep& step) {
    const auto progress = [&] { return window_.Plugin().HasQueued() ? State::Waiting : State::Done; };
    if (started_) return progress();
    const HWND button = Button(LUMAFOLD_MAIN_ADD);
    if (button == nullptr) return State::Failed;
    answers_.pictures.clear();
    for (const std::string& word : step.words)
        answers_.pictures.push_back(FullPath(word));
    Click(button);
    return answers_.pictures.empty() ? progress() : Fail("the plug-in did not ask for files");
}

ScriptRunner::State ScriptRunner::RemoveAll(const ScriptStep&) {
    const HWND list = Control(std::to_string(LUMAFOLD_MAIN_LIST));
    const auto count = [&] { return SendMessageW(list, LB_GETCOUNT, 0, 0); };
    for (LRESULT left = list != nullptr ? count() : 0; left > 0; --left) {
        const HWND button = SelectListItem(list, 0) ? Button(LUMAFOLD_MAIN_REMOVE) : nullptr;
        if (button == nullptr) return State::Failed;
        Click(button);
    }
    if (list == nullptr) return State::Failed;
    return Check(count() == 0, std::to_string(count()) + " left");
}

ScriptRunner::State ScriptRunner::SelectItem(const ScriptStep& step) {
    const HWND list = Control(std::to_string(LUMAFOLD_MAIN_LIST));
    if (list == nullptr) return State::Failed;
    return SelectListItem(list, WholeNumber(step.words[0]).value_or(0) - 1) ? State::Done
                                                                            : Fail("there is no such item");
}

ScriptRunner::State ScriptRunner::Set(const ScriptStep& step) {
    const HWND control = Control(step.words[0]);
    if (control == nullptr) return State::Failed;
    if (!IsSwatch(control))
        return SetControlValue(control, step.words[1], why_) ? State::Done : State::Failed;
    answers_.colour = ColourNumber(step.words[1]);
    if (!answers_.colour) return Fail("a colour is told as #RRGGBB");
    Click(control);
    return answers_.colour ? Fail("the plug-in did not ask for a colour") : State::Done;
}

ScriptRunner::State ScriptRunner::Press(const ScriptStep& step) {
    const std::optional<int> id = step.verb == "paste" ? LUMAFOLD_MAIN_PASTE : ControlNumber(step.words[0]);
    const HWND button = id ? Button(*id) : nullptr;
    if (button == nullptr) return why_.empty() ? Fail("there is no such control") : State::Failed;
    PostClick(button);
    return State::Done;
}

ScriptRunner::State ScriptRunner::OpenSubDialog(const ScriptStep& step) {
    if (!started_ && step.verb == "advanced") {
        const HWND button = Button(LUMAFOLD_MAIN_ADVANCED);
        if (button == nullptr) return State::Failed;
        PostClick(button);
    } else if (!started_) {
        const State selected = SelectItem(step);
        if (selected != State::Done) return selected;
        PostDoubleClick(Control(std::to_string(LUMAFOLD_MAIN_LIST)));
    }
    const HWND dialog = DialogInFront();
    return dialog != nullptr && dialog != dialogBefore_ ? State::Done : State::Waiting;
}

ScriptRunner::State ScriptRunner::CloseDialog(const ScriptStep& step) {
    if (!started_) {
        const HWND button = Button(step.verb == "ok" ? IDOK : IDCANCEL);
        if (button == nullptr) return State::Failed;
        PostClick(button);
    }
    return IsWindow(dialogBefore_) != 0 ? State::Waiting : State::Done;
}

ScriptRunner::State ScriptRunner::Build(const ScriptStep& step) {
    const bool test = step.verb == "test";
    if (!started_) {
        const HWND button = Button(test ? LUMAFOLD_MAIN_TEST : IDOK);
        if (button == nullptr) return State::Failed;
        started_ = true;
        Click(button); // returns when the build is over
        startedAt_ = GetTickCount();
    }
    return test || !window_.Plugin().IsRunning() ? State::Done : State::Waiting;
}

ScriptRunner::State ScriptRunner::Documents(const ScriptStep& step) {
    const auto worked = [&](bool done) {
        return done || !answers_.messages.empty() ? State::Done : Fail("nothing is open");
    };
    if (step.verb == "open") return worked(window_.Files().Open(FullPath(step.words[0])));
    if (step.verb == "save-as") return worked(window_.Files().Save(FullPath(step.words[0])));
    if (step.verb == "save-frames") return worked(window_.Files().SaveFrames(FullPath(step.words[0])));
    const int number = step.words.empty() ? 0 : WholeNumber(step.words[0]).value_or(0);
    if (step.verb == "capabilities") {
        if (number < 0 || number > 3 || window_.Plugin().IsRunning())
            return Fail("0 to 3, before the dialog is opened");
        window_.SetCapabilities(static_cast<std::uint32_t>(number));
        return State::Done;
    }
    if (step.verb == "select") {
        if (number < 1 || static_cast<std::size_t>(number) > window_.Documents().Count())
            return Fail("there is no such animation");
        window_.Documents().Select(static_cast<std::size_t>(number) - 1);
        return State::Done;
    }
    if (window_.Documents().Current() == nullptr) return Fail("nothing is open");
    SendMessageW(window_.Get(), WM_COMMAND, HOST_CLOSE, 0);
    return State::Done;
}

ScriptRunner::State ScriptRunner::Drop(const ScriptStep& step) {
    // Pictures are in the list of the plug-in's dialog once none of them waits any more.
    if (started_) return window_.Plugin().HasQueued() ? State::Waiting : State::Done;
    std::wstring names;
    for (const std::string& word : step.words)
        (names += Wide(FullPath(word))) += L'\0';
    const std::size_t bytes = names.size() * sizeof(wchar_t);
    OwnedGlobal block(GlobalCreate(GlobalKind::Movable, sizeof(DROPFILES) + bytes + sizeof(wchar_t)));
    {
        const GlobalLocked<DROPFILES> files(block.Get());
        if (!files) return Fail("there is not enough memory");
        files->pFiles = sizeof(DROPFILES);
        files->fWide = TRUE;
        std::memcpy(files.Get() + 1, names.data(), bytes);
    }
    // Who takes the files frees the block.
    SendMessageW(window_.Get(), WM_DROPFILES, block.Release(), 0);
    return State::Waiting;
}

ScriptRunner::State ScriptRunner::View(const ScriptStep& step) {
    const Document* document = window_.Documents().Current();
    if (document == nullptr) return Fail("nothing is open");
    const int number = step.words.empty() ? 0 : WholeNumber(step.words[0]).value_or(0);
    if (step.verb == "frame") {
        if (number < 1 || static_cast<std::size_t>(number) > document->Player().Count())
            return Fail("there is no such frame");
        window_.GoTo(static_cast<std::size_t>(number) - 1);
    } else if (step.verb == "zoom") {
        if (step.words[0] != "fit" && (number < kLeastZoom || number > kMostZoom))
            return Fail("25 to 800, or fit");
        window_.SetZoom(number);
    } else if (step.verb == "copy") {
        SendMessageW(window_.Get(), WM_COMMAND, HOST_COPY, 0);
    } else if (document->Player().IsPlaying() != (step.verb == "play")) {
        SendMessageW(window_.Get(), WM_COMMAND, HOST_PLAY, 0);
    }
    return State::Done;
}

ScriptRunner::State ScriptRunner::Wait(const ScriptStep& step) {
    const auto wanted = static_cast<DWORD>(std::clamp(WholeNumber(step.words[0]).value_or(0), 0, 600000));
    return GetTickCount() - startedAt_ >= wanted ? State::Done : State::Waiting;
}

ScriptRunner::State ScriptRunner::Screenshot(const ScriptStep& step) {
    if (!started_ || GetTickCount() - startedAt_ < kUntilSeen) return State::Waiting;
    const bool whole = step.words.size() > 1 && step.words[1] == "window";
    const HWND dialog = whole ? nullptr : DialogInFront();
    const OwnedDib picture = WindowPicture(dialog != nullptr ? dialog : window_.Get());
    const std::vector<std::uint8_t> file =
        picture ? EncodePng(picture.Get(), why_) : std::vector<std::uint8_t>();
    return !file.empty() && WriteFileSafely(FullPath(step.words[0]), file, why_) ? State::Done
                                                                                 : State::Failed;
}

ScriptRunner::State ScriptRunner::ExpectDocument(const ScriptStep& step) {
    if (step.verb == "expect-documents") {
        const std::string found = std::to_string(window_.Documents().Count());
        return Check(found == step.words[0], found);
    }
    const Document* document = window_.Documents().Current();
    if (document == nullptr) return Fail("nothing is open");
    const Animation& animation = document->GetAnimation();
    if (step.verb == "expect-size") {
        return Check(std::to_string(animation.width) == step.words[0] &&
                         std::to_string(animation.height) == step.words[1],
                     document->FramesText());
    }
    if (step.verb == "expect-colours")
        return Check(document->ColoursText() == step.words[0], document->ColoursText());
    return Check(std::to_string(animation.frames.size()) == step.words[0], document->FramesText());
}

ScriptRunner::State ScriptRunner::ExpectControl(const ScriptStep& step) {
    if (step.verb == "expect-items") {
        const HWND list = Control(std::to_string(LUMAFOLD_MAIN_LIST));
        if (list == nullptr) return State::Failed;
        const std::string found = std::to_string(SendMessageW(list, LB_GETCOUNT, 0, 0));
        return Check(found == step.words[0], found);
    }
    const HWND control = Control(step.words[0]);
    if (control == nullptr) return State::Failed;
    if (step.verb == "expect-value")
        return Check(ControlValue(control) == step.words[1], ControlValue(control));
    const std::string found = IsWindowEnabled(control) != 0 ? "yes" : "no";
    return Check(found == step.words[1], found);
}

ScriptRunner::State ScriptRunner::ExpectText(const ScriptStep& step) {
    if (step.verb == "expect-manual")
        return Check(answers_.manual == step.words[0], "\"" + answers_.manual + "\"");
    if (step.verb == "expect-title") {
        const std::string title = TextOf(window_.Get());
        return Check(title.find(step.words[0]) != std::string::npos, "\"" + title + "\"");
    }
    if (answers_.messages.empty()) return State::Waiting;
    const std::string message = answers_.messages.front();
    answers_.messages.erase(answers_.messages.begin());
    return Check(message.find(step.words[0]) != std::string::npos, "\"" + message + "\"");
}

} // namespace lumafold
