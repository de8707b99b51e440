// Lets the fuzzer change chunked files, PNG and MNG, so that their checksums stay right: wrong ones would
// keep nearly every change from being read at all. Included once in a target.
#pragma once

#include <zlib.h>

#include "tests/fuzz/fuzz_target.h"

#ifdef LUMAFOLD_FUZZER
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

std::uint32_t ReadBig(const std::uint8_t* at) {
    return static_cast<std::uint32_t>(at[0]) << 24 | static_cast<std::uint32_t>(at[1]) << 16 |
           static_cast<std::uint32_t>(at[2]) << 8 | at[3];
}

void MendChecksums(std::uint8_t* file, std::size_t size) {
    for (std::size_t at = 8; at + 12 <= size;) {
        const std::size_t length = ReadBig(file + at);
        if (length > size - at - 12) return;
        const auto crc = static_cast<std::uint32_t>(crc32(0, file + at + 4, static_cast<uInt>(length + 4)));
        for (std::size_t i = 0; i < 4; ++i) {
            file[at + 8 + length + i] = static_cast<std::uint8_t>(crc >> (24 - 8 * i));
        }
        at += length + 12;
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned) {
    size = LLVMFuzzerMutate(data, size, most);
    if (size > 8 && (data[0] == 0x89 || data[0] == 0x8A)) MendChecksums(data, size);
    return size;
}
#endif
