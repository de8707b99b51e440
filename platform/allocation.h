// Plain memory of the engine, and the counters behind every allocation it makes. An array that cannot be had
// is a failed operation, never an exception; tests make any chosen allocation fail and look for what was not
// freed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace lumafold {

/// Zeroed memory for `count` values of `bytes` each, or null. Freed with PlainFree.
void* PlainAlloc(std::size_t count, std::size_t bytes);
void PlainFree(void* memory);

/// A fixed-length array of plain values, zeroed. Check it before use: a failed allocation leaves it empty.
template <typename T>
class Array {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    Array() = default;
    explicit Array(std::size_t length)
        : data_(static_cast<T*>(PlainAlloc(length, sizeof(T)))), size_(data_ == nullptr ? 0 : length) {}
    Array(Array&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
    Array& operator=(Array&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~Array() { PlainFree(data_); }

    /// Makes room for more values, zeroed, or lets the last ones go. False, with all as it was, when there is
    /// no room.
    bool Resize(std::size_t length) {
        if (length > size_) {
            Array larger(length);
            if (!larger) return false;
            std::copy_n(data_, size_, larger.data_);
            *this = std::move(larger);
        }
        size_ = length;
        return true;
    }

    explicit operator bool() const { return data_ != nullptr; }
    std::size_t size() const { return size_; }
    T* data() { return data_; }
    const T* data() const { return data_; }
    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }
    T& operator[](std::size_t index) { return data_[index]; }
    const T& operator[](std::size_t index) const { return data_[index]; }

private:
    T* data_ = nullptr;
    std::size_t size_ = 0;
};

/// Test hooks. They see plain arrays and blocks by handle alike, of all threads of the process.
namespace allocation_hooks {

/// Makes the n-th allocation from now fail (1 is the next one), once; 0 lets all succeed.
void FailNth(std::int64_t n);
/// Whether the failure asked for has happened.
bool HasFailed();
/// Allocations asked for since FailNth was last called.
std::int64_t Requests();
/// What is allocated and not yet freed, and what is locked and not yet unlocked.
std::int64_t LiveBlocks();
std::int64_t LiveLocks();

/// For the allocators of platform/ alone: false tells that this request must fail.
bool Admit();
void CountBlock(int change);
void CountLock(int change);

} // namespace allocation_hooks
} // namespace lumafold
