#include "hosts/desktop/surroundings.h"

#include <cstdint>

#include "hosts/desktop/ids.h"
#include "hosts/desktop/system_calls.h"

namespace lumafold {
namespace {

/// The values that SetThreadDpiAwarenessContext takes, which the headers for our oldest system lack.
enum Scaling : std::intptr_t { kBySystem = -1, kPerMonitor = -3, kPerMonitorAndControls = -4 };

HANDLE SetScaling(HANDLE scaling) {
    static const auto set = SystemCall<HANDLE(WINAPI*)(HANDLE)>("SetThreadDpiAwarenessContext");
    return set != nullptr ? set(scaling) : nullptr;
}
HANDLE SetScaling(Scaling scaling) {
    return SetScaling(reinterpret_cast<HANDLE>(scaling)); // NOLINT(performance-no-int-to-ptr)
}

/// Made at the first need, for as long as the program runs.
HANDLE ModernControls() {
    static const HANDLE context = [] {
        ACTCTXW wanted{};
        wanted.cbSize = sizeof(wanted);
        wanted.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
        wanted.hModule = GetModuleHandleW(nullptr);
        wanted.lpResourceName = MAKEINTRESOURCEW(HOST_CONTROLS_MANIFEST);
        return CreateActCtxW(&wanted);
    }();
    return context;
}

} // namespace

Surroundings::Surroundings(Whose whose) {
    // Null stands for the program's own manifest, which asks for no controls.
    const HANDLE context = whose == Whose::Program ? ModernControls() : nullptr;
    activated_ = context != INVALID_HANDLE_VALUE && ActivateActCtx(context, &cookie_) != 0;
    scalingBefore_ = SetScaling(whose == Whose::Program ? kPerMonitorAndControls : kBySystem);
    if (scalingBefore_ == nullptr && whose == Whose::Program) scalingBefore_ = SetScaling(kPerMonitor);
}

Surroundings::~Surroundings() {
    if (scalingBefore_ != nullptr) SetScaling(scalingBefore_);
    if (activated_) DeactivateActCtx(0, cookie_);
}

} // namespace lumafold
