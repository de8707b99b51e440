// Picture files of every format: what is read has pixels at every place.
#include "hosts/codecs/decode.h"
#include "image/row_view.h"
#include "tests/fuzz/fuzz_target.h"

using namespace lumafold;
using namespace lumafold::test;

#ifdef LUMAFOLD_FUZZER
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

std::uint32_t ReadBig(const std::uint8_t* at) {
    return static_cast<std::uint32_t>(at[0]) << 24 | static_cast<std::uint32_t>(at[1]) << 16 |
           static_cast<std::uint32_t>(at[2]) << 8 | at[3];
}

std::uint32_t Crc(FuzzInput bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

/// Wrong checksums would keep nearly every change of a PNG from being read at all.
void MendChecksums(std::uint8_t* png, std::size_t size) {
    for (std::size_t at = 8; at + 12 <= size;) {
        const std::size_t length = ReadBig(png + at);
        if (length > size - at - 12) return;
        const std::uint32_t crc = Crc({png + at + 4, length + 4});
        for (std::size_t i = 0; i < 4; ++i) {
            png[at + 8 + length + i] = static_cast<std::uint8_t>(crc >> (24 - 8 * i));
        }
        at += length + 12;
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned) {
    size = LLVMFuzzerMutate(data, size, most);
    if (size > 8 && data[0] == 0x89) MendChecksums(data, size);
    return size;
}
#endif

LUMAFOLD_FUZZ_TARGET(pictures) {
    constexpr std::uint64_t kMostPixels = 1 << 18;
    const DecodedPicture decoded = DecodePicture(input, 0x336699, kMostPixels);
    Require(static_cast<bool>(decoded.picture) == decoded.error.empty(), "either a picture or an error");
    Require(decoded.error.find('\n') == std::string::npos, "an error is one line");
    if (!decoded.picture) return;
    const LockedDib dib(decoded.picture.Get());
    Require(dib && dib->biWidth > 0 && dib->biHeight > 0, "a picture has pixels");
    const ConstRowView rows(dib.Get());
    Require(DibRowsOffset(*dib) + rows.StoredBytes() <= GlobalBytes(decoded.picture.Get()), "all of them");
}
