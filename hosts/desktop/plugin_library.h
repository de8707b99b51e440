// lumafold.dll as a host loads it: from beside the program, with the three functions it must export.
#pragma once

#include <windows.h>

#include <string>

#include "plugin/protocol/host_protocol.h"

namespace lumafold {

class PluginLibrary {
public:
    PluginLibrary() = default;
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;
    ~PluginLibrary();

    /// False leaves in Problem() what a person can do something about.
    bool Load();
    bool IsLoaded() const { return build_ != nullptr; }
    const std::string& Problem() const { return problem_; }

    /// As the plug-in describes itself.
    const std::string& Name() const { return name_; }
    const std::string& Notice() const { return notice_; }
    std::uint32_t Version() const { return version_; }

    /// Runs the plug-in's dialog until it is closed. The context must stay in place meanwhile.
    void Run(HWND parent, const HostContext& context) const;

private:
    using DescribeFunction = BOOL(WINAPI*)(PluginParams*);
    using BuildFunction = BOOL(WINAPI*)(HWND, const HostContext*);

    bool Fail(const std::string& problem);
    bool Describe(DescribeFunction describe);

    HMODULE module_ = nullptr;
    BuildFunction build_ = nullptr;
    std::string problem_, name_ = "Lumafold", notice_;
    std::uint32_t version_ = 0;
};

} // namespace lumafold
