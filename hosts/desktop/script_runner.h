// Runs a script's steps by a timer, so that they go on inside the plug-in's own dialogs.
#pragma once

#include "hosts/desktop/main_window.h"
#include "hosts/desktop/script_answers.h"
#include "hosts/desktop/script_steps.h"

namespace lumafold {

class ScriptRunner {
public:
    /// One at a time; window and answers outlive it.
    ScriptRunner(std::vector<ScriptStep> steps, MainWindow& window, ScriptAnswers& answers);
    ScriptRunner(const ScriptRunner&) = delete;
    ScriptRunner& operator=(const ScriptRunner&) = delete;
    ~ScriptRunner();

    /// 0 once every step worked. The program ends when the script does.
    int Status() const { return status_; }

private:
    enum class State { Done, Waiting, Failed };
    using Run = State (ScriptRunner::*)(const ScriptStep&);
    struct Action;

    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD);
    static Run ActionFor(const std::string& verb);
    void Tick();
    void Advance();
    void Finish();
    State TryStep(const ScriptStep& step) noexcept;
    State RunStep(const ScriptStep& step);

    State OpenDialog(const ScriptStep& step);
    State Add(const ScriptStep& step);
    State RemoveAll(const ScriptStep& step);
    State SelectItem(const ScriptStep& step);
    State Set(const ScriptStep& step);
    State Press(const ScriptStep& step);
    State OpenSubDialog(const ScriptStep& step);
    State CloseDialog(const ScriptStep& step);
    State Build(const ScriptStep& step);
    State Documents(const ScriptStep& step);
    State Drop(const ScriptStep& step);
    State View(const ScriptStep& step);
    State Wait(const ScriptStep& step);
    State Screenshot(const ScriptStep& step);
    State ExpectDocument(const ScriptStep& step);
    State ExpectControl(const ScriptStep& step);
    State ExpectText(const ScriptStep& step);

    State Fail(const std::string& why);
    State Check(bool holds, const std::string& found);
    /// Null, with the failure told, where there is none or it is disabled.
    HWND Button(int id);
    /// A control of the dialog in front.
    HWND Control(const std::string& word);

    std::vector<ScriptStep> steps_;
    MainWindow& window_;
    ScriptAnswers& answers_;
    UINT_PTR timer_ = 0;
    std::size_t at_ = 0;
    bool started_ = false, busy_ = false;
    DWORD startedAt_ = 0;
    HWND dialogBefore_ = nullptr;
    std::string why_;
    int status_ = 1;
};

} // namespace lumafold
