// What an effect has left to draw from by chance, and what is at work with it: a list within fixed room.
// Entries behind one that is taken move up, since the order decides what the next draws find.
#pragma once

#include <cstring>
#include <span>

#include "platform/allocation.h"

namespace lumafold {

/// Check it before use: its room may not have been had.
template <typename T>
class DrawingList {
public:
    explicit DrawingList(std::int64_t room) : entries_(static_cast<std::size_t>(room)) {}
    explicit operator bool() const { return static_cast<bool>(entries_); }

    std::span<T> Entries() { return {entries_.data(), count_}; }
    std::size_t Count() const { return count_; }
    void Append(const T& entry) { entries_[count_++] = entry; }
    T Take(std::size_t index) {
        const T entry = entries_[index];
        --count_;
        std::memmove(&entries_[index], &entries_[index] + 1, (count_ - index) * sizeof(T));
        return entry;
    }

private:
    Array<T> entries_;
    std::size_t count_ = 0;
};

} // namespace lumafold
