// Scoped owners of what GDI lends, so that no path leaves an object selected or alive. What could not be
// selected or saved is put back by a call that the system refuses.
#pragma once

#include <windows.h>

#include "platform/non_copyable.h"

namespace lumafold {

/// Owns what `Delete` ends.
template <typename Handle, auto Delete>
class OwnedByGdi : NonCopyable {
public:
    OwnedByGdi() = default;
    explicit OwnedByGdi(Handle handle) : handle_(handle) {}
    ~OwnedByGdi() { Reset(nullptr); }
    explicit operator bool() const { return handle_ != nullptr; }
    Handle Get() const { return handle_; }
    /// Ends what it has and owns this instead.
    void Reset(Handle handle) {
        if (handle_ != nullptr) Delete(handle_);
        handle_ = handle;
    }

private:
    Handle handle_ = nullptr;
};
/// A GDI object.
template <typename Handle>
using OwnedGdi = OwnedByGdi<Handle, DeleteObject>;
/// A memory context.
using OwnedContext = OwnedByGdi<HDC, DeleteDC>;

/// Keeps an object selected into a context while it lives.
class SelectedGdi : NonCopyable {
public:
    SelectedGdi(HDC context, HGDIOBJ object) : context_(context), previous_(SelectObject(context, object)) {}
    ~SelectedGdi() { SelectObject(context_, previous_); }

private:
    HDC context_;
    HGDIOBJ previous_;
};

/// Keeps a palette selected and realised while it lives.
class SelectedPalette : NonCopyable {
public:
    SelectedPalette(HDC context, HPALETTE palette)
        : context_(context), previous_(SelectPalette(context, palette, FALSE)) {
        RealizePalette(context);
    }
    ~SelectedPalette() { SelectPalette(context_, previous_, FALSE); }

private:
    HDC context_;
    HPALETTE previous_;
};

/// Puts back everything that is set in a context, its clipping and origins too, when it ends.
class SavedContext : NonCopyable {
public:
    explicit SavedContext(HDC context) : context_(context), level_(SaveDC(context)) {}
    ~SavedContext() { RestoreDC(context_, level_); }

private:
    HDC context_;
    int level_;
};

} // namespace lumafold
