// The plug-in as a host meets it: lumafold.dll loaded from beside this program and called by its exported
// names.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "lumafold_version.h"
#include "plugin/dll/entry_points.h"
#include "ui/module.h"

namespace lumafold {
namespace {

class Plugin : public testing::Test {
protected:
    Plugin() { EXPECT_NE(module_, nullptr) << "error " << GetLastError(); }
    ~Plugin() override { FreeLibrary(module_); }

    const HMODULE module_ = LoadLibraryA("lumafold.dll");
};

TEST_F(Plugin, ExportsItsEntryPointsAndNoMore) {
    for (const char* name : {"DllEntryPoint", "PLUGINDoBuild", "PLUGINGetPluginParams"}) {
        EXPECT_NE(GetProcAddress(module_, name), nullptr) << name;
    }
    EXPECT_EQ(GetProcAddress(module_, MAKEINTRESOURCEA(4)), nullptr) << "a fourth one";
    EXPECT_NE(FindResourceA(module_, MAKEINTRESOURCEA(VS_VERSION_INFO), RT_VERSION), nullptr);
}

TEST_F(Plugin, DescribesItselfWhateverTheSize) {
    const auto describe = reinterpret_cast<decltype(&PLUGINGetPluginParams)>(
        reinterpret_cast<void*>(GetProcAddress(module_, "PLUGINGetPluginParams")));
    const std::string notice = LUMAFOLD_NOTICE;
    EXPECT_NE(notice.find("Lumafold"), std::string::npos);
    EXPECT_EQ(notice.find_first_of("\r\n"), std::string::npos);
    const std::size_t exact = 269 + notice.size() + 1;
    for (const std::size_t size : {std::size_t{0}, std::size_t{100}, exact, exact + 100}) {
        std::vector<char> record(exact + 164, '\x5A');
        const auto declared = static_cast<std::uint32_t>(size);
        std::memcpy(record.data(), &declared, 4);
        // Cleared as far as the size says; the fields written whole; what lies between and behind them kept.
        std::vector<char> expected = record;
        std::memset(expected.data(), 0, size);
        std::memcpy(expected.data(), &declared, 4);
        std::memcpy(expected.data() + 4, "\x01\x02\x00\x00", 4);
        std::memcpy(expected.data() + 8, "Lumafold", 9);
        std::memcpy(expected.data() + 269, notice.c_str(), notice.size() + 1);

        EXPECT_EQ(describe(reinterpret_cast<PluginParams*>(record.data())), 1);
        EXPECT_EQ(record, expected) << "size " << size;
    }
}

TEST_F(Plugin, EntryPointAnswersEveryReasonAndRemembersTheModule) {
    for (DWORD reason = 0; reason <= 4; ++reason) {
        // The library keeps its module to itself, so the same code is asked where it can be seen.
        SetModuleInstance(nullptr);
        EXPECT_EQ(DllEntryPoint(module_, reason, nullptr), 1);
        EXPECT_EQ(ModuleInstance(), module_) << "reason " << reason;
    }
}

} // namespace
} // namespace lumafold
