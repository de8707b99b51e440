// What a thread is set to while it runs code of ours or of the plug-in: how windows made now are scaled, and
// which library of controls they are made by.
#pragma once

#include <windows.h>

namespace lumafold {

enum class Whose {
    Program, ///< today's controls, drawn for the dots of the screen that each window is on
    Plugin   ///< the controls that the plug-in was drawn for, and scaled by the system on finer screens
};

/// The thread's surroundings while this lives; then those before. Where the system knows of none, nothing
/// changes.
class Surroundings {
public:
    explicit Surroundings(Whose whose);
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;
    ~Surroundings();

private:
    bool activated_ = false;
    ULONG_PTR cookie_ = 0;
    HANDLE scalingBefore_ = nullptr;
};

} // namespace lumafold
