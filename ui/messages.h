// Messages to the person, and what a build tells of itself, as the plug-in shows them.
#pragma once

#include <windows.h>

#include "build/build_observer.h"

namespace lumafold {

/// A message box with the caption "Message", owned by `owner`, that waits until it is answered.
void ShowMessage(HWND owner, const char* text);
/// The same with a text of the module's string table.
void ShowString(HWND owner, UINT number);

/// The wait cursor while a build runs, and a message box when it was given up.
class BuildMessages final : public BuildObserver {
public:
    explicit BuildMessages(HWND owner) : owner_(owner) {}

    void Begin() override;
    void End() override;
    void Fail(BuildFailure failure) override;

private:
    HWND owner_;
    HCURSOR before_ = nullptr;
};

} // namespace lumafold
