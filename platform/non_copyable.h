// A base for classes that own something in place or are known by their address.
#pragma once

namespace lumafold {

/// What derives from it can be neither copied nor moved.
class NonCopyable {
public:
    NonCopyable(const NonCopyable&) = delete;
    NonCopyable& operator=(const NonCopyable&) = delete;

protected:
    NonCopyable() = default;
    ~NonCopyable() = default;
};

} // namespace lumafold
