// The generator of the effects that draw random numbers. Each seeds it with the setting when it starts, so
// equal settings give equal animations.
#pragma once

#include <cstdint>

namespace lumafold {

class Random {
public:
    explicit Random(std::uint32_t seed) : state_(seed) {}

    /// 0 to 2^31 - 1.
    std::uint32_t Draw() {
        state_ = state_ * 0x000015A400004E35ULL + 1;
        return static_cast<std::uint32_t>(state_ >> 32) & 0x7FFFFFFF;
    }

private:
    std::uint64_t state_;
};

} // namespace lumafold
