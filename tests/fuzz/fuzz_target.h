// A target of the fuzzer: any bytes go in, and nothing may break. The fuzzer's own build makes a program of
// each target; the ordinary tests run all of them over the inputs that are kept.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace lumafold::test {

using FuzzInput = std::span<const std::uint8_t>;

struct FuzzTarget {
    FuzzTarget(const char* targetName, void (*targetRun)(FuzzInput))
        : name(targetName), run(targetRun), next(first) {
        first = this;
    }
    const char* name;
    void (*run)(FuzzInput);
    const FuzzTarget* next;

    static inline const FuzzTarget* first = nullptr;
};

/// What must hold whatever the input is. Not an assertion of a test framework: the fuzzer looks for crashes.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Numbers out of the input's bytes; zeros behind its end.
class FuzzReader {
public:
    explicit FuzzReader(FuzzInput input) : left_(input) {}

    std::uint32_t Byte() {
        if (left_.empty()) return 0;
        const std::uint8_t byte = left_.front();
        left_ = left_.subspan(1);
        return byte;
    }
    std::uint32_t Word() {
        std::uint32_t word = 0;
        for (int i = 0; i < 4; ++i)
            word |= Byte() << (8 * i);
        return word;
    }

private:
    FuzzInput left_;
};

} // namespace lumafold::test

/// Followed by the body, which sees `input`.
#ifdef LUMAFOLD_FUZZER
#define LUMAFOLD_FUZZ_TARGET(name)                                                                           \
    static void Fuzz_##name(lumafold::test::FuzzInput input);                                                \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {                      \
        Fuzz_##name({data, size});                                                                           \
        return 0;                                                                                            \
    }                                                                                                        \
    static void Fuzz_##name(lumafold::test::FuzzInput input)
#else
#define LUMAFOLD_FUZZ_TARGET(name)                                                                           \
    static void Fuzz_##name(lumafold::test::FuzzInput input);                                                \
    static const lumafold::test::FuzzTarget target_##name(#name, Fuzz_##name);                               \
    static void Fuzz_##name(lumafold::test::FuzzInput input)
#endif
