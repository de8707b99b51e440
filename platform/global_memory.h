// Movable memory blocks by 32-bit handle, the container of every picture, list and record. On Windows they
// are the system's own global blocks, so a host can take them; elsewhere a handle table keeps the same
// contract. Any thread may make, lock and free blocks.
#pragma once

#include <memory>

#include "platform/allocation.h"

namespace lumafold {

/// A block's name; 0 is no block. Whoever allocated it owns it until another owner is named.
using GlobalHandle = std::uint32_t;

/// The system's values, as hosts see them on the blocks.
enum class GlobalKind : std::uint32_t {
    Movable = 0x42,         ///< movable, zero-initialised
    MovableShared = 0x2042, ///< the same, shared
};

/// A zeroed block of `bytes` (at least one), or 0.
GlobalHandle GlobalCreate(GlobalKind kind, std::size_t bytes);
/// Changes a block's size; new bytes are zero. The new handle, or 0, which leaves the block as it was: a
/// locked block has no new size.
GlobalHandle GlobalResize(GlobalHandle handle, std::size_t bytes);
/// The block's address until GlobalRelease is called as often as GlobalAcquire; null when it cannot be
/// locked.
void* GlobalAcquire(GlobalHandle handle);
void GlobalRelease(GlobalHandle handle);
/// The block's size in bytes as the platform tells it, at least what was asked for; 0 for no such block.
std::size_t GlobalBytes(GlobalHandle handle);
/// Frees a block; 0 is allowed.
void GlobalDestroy(GlobalHandle handle);

/// A copy of the whole block, or 0.
GlobalHandle GlobalDuplicate(GlobalHandle handle);

/// Owns one block and frees it, unless Release gives it away.
class OwnedGlobal {
public:
    OwnedGlobal() = default;
    explicit OwnedGlobal(GlobalHandle handle) : handle_(handle) {}
    OwnedGlobal(OwnedGlobal&& other) noexcept : handle_(other.Release()) {}
    OwnedGlobal& operator=(OwnedGlobal&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~OwnedGlobal() { GlobalDestroy(handle_); }

    explicit operator bool() const { return handle_ != 0; }
    GlobalHandle Get() const { return handle_; }
    [[nodiscard]] GlobalHandle Release() { return std::exchange(handle_, 0); }

private:
    GlobalHandle handle_ = 0;
};

/// Holds a block locked while it lives, seen as a T. Check it before use.
template <typename T>
class GlobalLocked {
public:
    GlobalLocked() = default;
    explicit GlobalLocked(GlobalHandle handle)
        : lock_(static_cast<T*>(handle == 0 ? nullptr : GlobalAcquire(handle)), Unlock{handle}) {}

    explicit operator bool() const { return lock_ != nullptr; }
    T* Get() const { return lock_.get(); }
    T* operator->() const { return lock_.get(); }
    T& operator*() const { return *lock_; }

private:
    struct Unlock {
        GlobalHandle handle;
        void operator()(T*) const { GlobalRelease(handle); }
    };
    std::unique_ptr<T, Unlock> lock_;
};

} // namespace lumafold
