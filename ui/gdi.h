// Scoped owners of what GDI lends, so that no path leaves an object selected or alive.
#pragma once

#include <windows.h>

namespace lumafold {

/// Owns a GDI object and deletes it.
template <typename Handle>
class OwnedGdi {
public:
    OwnedGdi() = default;
    explicit OwnedGdi(Handle handle) : handle_(handle) {}
    OwnedGdi(const OwnedGdi&) = delete;
    OwnedGdi& operator=(const OwnedGdi&) = delete;
    ~OwnedGdi() {
        if (handle_ != nullptr) DeleteObject(handle_);
    }
    explicit operator bool() const { return handle_ != nullptr; }
    Handle Get() const { return handle_; }

private:
    Handle handle_ = nullptr;
};

/// Keeps an object selected into a context while it lives.
class SelectedGdi {
public:
    SelectedGdi(HDC context, HGDIOBJ object) : context_(context), previous_(SelectObject(context, object)) {}
    SelectedGdi(const SelectedGdi&) = delete;
    SelectedGdi& operator=(const SelectedGdi&) = delete;
    ~SelectedGdi() {
        if (previous_ != nullptr) SelectObject(context_, previous_);
    }

private:
    HDC context_;
    HGDIOBJ previous_;
};

} // namespace lumafold
