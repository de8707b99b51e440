// A test at the plug-in's dialogs: a host, its thread, the plug-in, the user's files, and a person who clicks
// and types in whatever dialog takes input. Every action waits until the dialogs have dealt with it.
#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "plugin/dll/entry_points.h"
#include "resources/texts/resource_ids.h"
#include "tests/support/pictures.h"
#include "tests/windows/scripted_host.h"
#include "tests/windows/ui_thread.h"

namespace lumafold::test {

/// The plug-in's own files of the person who runs the tests, put aside while a test runs.
class UserFiles {
public:
    UserFiles();
    UserFiles(const UserFiles&) = delete;
    UserFiles& operator=(const UserFiles&) = delete;
    ~UserFiles();

    std::string Settings() const { return folder_ + "\\LUMAFOLD.INI"; }
    std::string List() const { return folder_ + "\\Lumafold\\LUMAFOLD_LIST.TXT"; }
    /// The number that the settings file gives a key, -1 when it has no such line.
    std::int64_t Setting(const std::string& key) const;

private:
    std::string folder_, aside_;
};

class DialogTest : public testing::Test {
protected:
    /// The library as hosts load it, or its code linked into this program, where its counters can be seen.
    enum class Code { Library, Linked };
    explicit DialogTest(Code code = Code::Library);
    ~DialogTest() override;

    /// Writes the list file for pictures in this order on the screen.
    void KeepList(const std::vector<std::string>& paths) const;

    // Opening and closing. A reloaded library starts with its defaults.
    enum class Shift { Up, Down };
    void Open(Shift shift = Shift::Up);
    void Close(int button = IDCANCEL);
    void Reload(const std::string& path = "lumafold.dll");
    int Result() const { return result_; }
    /// From the host's thread alone.
    int CallPlugin() { return doBuild_(ui.Window(), &host.context); }

    // What a person sees in the dialog that takes input.
    HWND Dialog() const { return ui.ActiveDialog(); }
    HWND Control(int id) const { return GetDlgItem(Dialog(), id); }
    std::string Caption() const;
    std::string Text(int id) const;
    bool Enabled(int id) const { return IsWindowEnabled(Control(id)) != 0; }
    bool Checked(int id) const { return IsDlgButtonChecked(Dialog(), id) == BST_CHECKED; }
    int Chosen(int comboId) const { return static_cast<int>(Ask(comboId, CB_GETCURSEL)); }
    LRESULT Ask(int id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
        return SendMessageA(Control(id), message, wparam, lparam);
    }

    // What a person does.
    void Click(int id);
    void Type(int editId, const std::string& text);
    void Choose(int comboId, int row);
    /// The text of the message box that is open, which is answered; "" when there is none.
    std::string AnswerMessage();
    void AddFiles(const std::vector<std::string>& paths);
    void AddBuffer(const std::string& bytes);

    // The image list of the main dialog.
    int Count() const { return static_cast<int>(Ask(LUMAFOLD_MAIN_LIST, LB_GETCOUNT)); }
    int Current() const { return static_cast<int>(Ask(LUMAFOLD_MAIN_LIST, LB_GETCURSEL)); }
    ImageEntry Entry(int item) const;
    /// The items' file names, joined by blanks.
    std::string Names() const;
    POINT PointIn(int item) const; ///< of the screen, the item scrolled into view
    void ClickItem(int item);
    void DoubleClickItem(int item);
    void Drag(int item, POINT to);

    UserFiles files;
    PictureFolder pictures;
    ScriptedHost host;
    UiThread ui;

private:
    const Code code_;
    HMODULE library_ = nullptr;
    decltype(PLUGINDoBuild)* doBuild_ = nullptr;
    int result_ = -1;
    int presses_ = 0; ///< every other one stands beside the one before, so that two are no double click

    POINT NextPress(int item);
};

} // namespace lumafold::test
