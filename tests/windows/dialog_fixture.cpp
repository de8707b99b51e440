#include "tests/windows/dialog_fixture.h"

#include <shlobj.h>

#include "ui/list_box.h"
#include "ui/module.h"

namespace lumafold::test {

UserFiles::UserFiles() {
    char roaming[MAX_PATH] = "";
    SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, roaming);
    folder_ = std::string(roaming) + "\\Brackenfield";
    aside_ = folder_ + ".aside";
    MoveFileA(folder_.c_str(), aside_.c_str());
    RemoveFolder(folder_);
    CreateDirectoryA(folder_.c_str(), nullptr);
    CreateDirectoryA((folder_ + "\\Lumafold").c_str(), nullptr);
}

UserFiles::~UserFiles() {
    RemoveFolder(folder_);
    MoveFileA(aside_.c_str(), folder_.c_str());
}

std::int64_t UserFiles::Setting(const std::string& key) const {
    const std::string text = ReadFileBytes(Settings()), start = "\n" + key + " = ";
    const std::size_t at = text.find(start);
    return at == std::string::npos ? -1 : std::stoll(text.substr(at + start.size()));
}

DialogTest::DialogTest(Code code) : code_(code) { Reload(); }

DialogTest::~DialogTest() {
    EXPECT_EQ(Dialog(), nullptr) << "left open: " << Caption();
    // A test that broke off must not leave the host's thread inside the library.
    for (int i = 0; i < 5 && Dialog() != nullptr; ++i) {
        PostMessageA(Dialog(), WM_COMMAND, Dialog() == FindWindowA("#32770", "Message") ? IDOK : IDCANCEL, 0);
        ui.Settle();
    }
    if (library_ != nullptr) FreeLibrary(library_);
}

void DialogTest::Reload(const std::string& path) {
    if (library_ != nullptr) FreeLibrary(library_);
    library_ = LoadLibraryA(path.c_str());
    SetModuleInstance(library_); // its resources are this program's too
    if (code_ == Code::Library) {
        doBuild_ = reinterpret_cast<decltype(PLUGINDoBuild)*>(
            reinterpret_cast<void*>(GetProcAddress(library_, "PLUGINDoBuild")));
    } else {
        doBuild_ = PLUGINDoBuild;
    }
}

void DialogTest::KeepList(const std::vector<std::string>& paths) const {
    std::string lines;
    for (auto path = paths.rbegin(); path != paths.rend(); ++path)
        lines += *path + "\r\n";
    WriteFileBytes(files.List(), lines);
}

void DialogTest::Open(Shift shift) {
    if (shift == Shift::Down) {
        PressKey(VK_SHIFT, KeyState::Down);
        ui.Settle();
    }
    result_ = -1;
    ui.Start([this] { result_ = CallPlugin(); });
    if (shift == Shift::Down) {
        PressKey(VK_SHIFT, KeyState::Up);
        ui.Settle();
    }
}

void DialogTest::Close(int button) {
    Click(button);
    ui.Finish();
    EXPECT_EQ(result_, 1);
}

std::string DialogTest::Caption() const {
    char text[300] = "";
    GetWindowTextA(Dialog(), text, sizeof(text));
    return text;
}

std::string DialogTest::Text(int id) const {
    char text[300] = "";
    GetDlgItemTextA(Dialog(), id, text, sizeof(text));
    return text;
}

void DialogTest::Click(int id) {
    ASSERT_TRUE(Enabled(id)) << "control " << id << " of \"" << Caption() << "\"";
    PostMessageA(Control(id), BM_CLICK, 0, 0);
    ui.Settle();
}

void DialogTest::Type(int editId, const std::string& text) {
    HWND edit = Control(editId);
    SendMessageA(Dialog(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(edit), TRUE);
    SendMessageA(edit, EM_SETSEL, 0, -1);
    for (const char c : text)
        PostMessageA(edit, WM_CHAR, static_cast<WPARAM>(c), 1);
    ui.Settle();
}

void DialogTest::Choose(int comboId, int row) {
    HWND combo = Control(comboId);
    SendMessageA(Dialog(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(combo), TRUE);
    const auto press = [&](WPARAM key) { PostMessageA(combo, WM_KEYDOWN, key, 1); };
    press(VK_F4);
    press(VK_HOME);
    for (int i = 0; i < row; ++i)
        press(VK_DOWN);
    press(VK_RETURN);
    ui.Settle();
    EXPECT_EQ(Chosen(comboId), row);
}

std::string DialogTest::AnswerMessage() {
    if (Caption() != "Message") return "";
    const std::string text = Text(0xFFFF);
    EXPECT_NE(GetWindow(Dialog(), GW_OWNER), nullptr);
    PostMessageA(Dialog(), WM_COMMAND, IDOK, 0);
    ui.Settle();
    return text;
}

void DialogTest::AddFiles(const std::vector<std::string>& paths) {
    std::string bytes = paths.size() == 1 ? paths.front() : pictures.Path();
    for (std::size_t i = 0; paths.size() > 1 && i < paths.size(); ++i)
        bytes += '\0' + paths[i].substr(pictures.Path().size());
    AddBuffer(bytes + std::string(2, '\0'));
}

void DialogTest::AddBuffer(const std::string& bytes) {
    host.files = bytes;
    Click(LUMAFOLD_MAIN_ADD);
}

ImageEntry DialogTest::Entry(int item) const {
    ImageEntry entry{};
    ReadEntry(Control(LUMAFOLD_MAIN_LIST), item, entry);
    return entry;
}

std::string DialogTest::Names() const {
    std::string names;
    for (int i = 0; i < Count(); ++i) {
        const std::string label = Entry(i).label;
        names += (i > 0 ? " " : "") + label.substr(label.rfind('\\') + 1);
    }
    return names;
}

POINT DialogTest::PointIn(int item) const {
    RECT client, rect{};
    GetClientRect(Control(LUMAFOLD_MAIN_LIST), &client);
    const auto measure = [&] {
        Ask(LUMAFOLD_MAIN_LIST, LB_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&rect));
        return rect.top >= 0 && rect.bottom <= client.bottom;
    };
    if (!measure()) {
        Ask(LUMAFOLD_MAIN_LIST, LB_SETTOPINDEX, static_cast<WPARAM>(item));
        measure();
    }
    POINT point{rect.left + 30, rect.top + 40};
    ClientToScreen(Control(LUMAFOLD_MAIN_LIST), &point);
    return point;
}

POINT DialogTest::NextPress(int item) {
    POINT point = PointIn(item);
    if (++presses_ % 2 == 0) point.x += 30;
    return point;
}

void DialogTest::ClickItem(int item) {
    MoveMouse(NextPress(item));
    PressMouse(MouseButton::Down);
    PressMouse(MouseButton::Up);
    ui.Settle();
}

void DialogTest::DoubleClickItem(int item) {
    ClickItem(item);
    ++presses_;
    ClickItem(item);
}

void DialogTest::Drag(int item, POINT to) {
    const POINT from = NextPress(item);
    MoveMouse(from);
    PressMouse(MouseButton::Down);
    ui.Settle();
    for (int i = 1; i <= 4; ++i) {
        MoveMouse({from.x + (to.x - from.x) * i / 4, from.y + (to.y - from.y) * i / 4});
        ui.Settle();
    }
    PressMouse(MouseButton::Up);
    ui.Settle();
}

} // namespace lumafold::test
