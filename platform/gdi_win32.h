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
    ~OwnedGdi() { Reset(nullptr); }
    explicit operator bool() const { return handle_ != nullptr; }
    Handle Get() const { return handle_; }
    /// Deletes what it has and owns this instead.
    void Reset(Handle handle) {
        if (handle_ != nullptr) DeleteObject(handle_);
        handle_ = handle;
    }

private:
    Handle handle_ = nullptr;
};

/// Owns a memory context.
class OwnedContext {
public:
    explicit OwnedContext(HDC context) : context_(context) {}
    OwnedContext(const OwnedContext&) = delete;
    OwnedContext& operator=(const OwnedContext&) = delete;
    ~OwnedContext() {
        if (context_ != nullptr) DeleteDC(context_);
    }
    explicit operator bool() const { return context_ != nullptr; }
    HDC Get() const { return context_; }

private:
    HDC context_;
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

/// Keeps a palette selected and realised while it lives.
class SelectedPalette {
public:
    SelectedPalette(HDC context, HPALETTE palette)
        : context_(context), previous_(SelectPalette(context, palette, FALSE)) {
        RealizePalette(context);
    }
    SelectedPalette(const SelectedPalette&) = delete;
    SelectedPalette& operator=(const SelectedPalette&) = delete;
    ~SelectedPalette() {
        if (previous_ != nullptr) SelectPalette(context_, previous_, FALSE);
    }

private:
    HDC context_;
    HPALETTE previous_;
};

/// Puts back everything that is set in a context, its clipping and origins too, when it ends.
class SavedContext {
public:
    explicit SavedContext(HDC context) : context_(context), level_(SaveDC(context)) {}
    SavedContext(const SavedContext&) = delete;
    SavedContext& operator=(const SavedContext&) = delete;
    ~SavedContext() {
        if (level_ != 0) RestoreDC(context_, level_);
    }

private:
    HDC context_;
    int level_;
};

} // namespace lumafold
