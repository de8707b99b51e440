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
        state_ = state_ * kFactor + 1;
        return static_cast<std::uint32_t>(state_ >> 32) & 0x7FFFFFFF;
    }

    /// Takes `draws` draws that nobody looks at, in as many steps as their number has bits.
    void Skip(std::uint64_t draws) {
        std::uint64_t factor = kFactor, summand = 1; // of 1, 2, 4, ... draws in one
        for (; draws != 0; draws >>= 1) {
            if ((draws & 1) != 0) state_ = state_ * factor + summand;
            summand *= factor + 1;
            factor *= factor;
        }
    }

private:
    static constexpr std::uint64_t kFactor = 0x000015A400004E35;

    std::uint64_t state_;
};

} // namespace lumafold
