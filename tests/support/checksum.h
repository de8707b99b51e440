// One number for a picture, equal on every platform when the pictures are: FNV-1a over its size, its depth
// and the bytes of its pixel rows from the top, without their padding. The colour table does not count.
#pragma once

#include "image/dib.h"

namespace lumafold {

class Checksum {
public:
    void Add(const void* bytes, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            value_ = (value_ ^ static_cast<const std::uint8_t*>(bytes)[i]) * 0x100000001B3;
    }
    void Add(const DibHeader& dib) {
        const std::int32_t shape[] = {dib.biWidth, dib.biHeight, dib.biBitCount};
        Add(shape, sizeof(shape));
        const ConstRowView rows(dib);
        for (std::int32_t y = 0; y < dib.biHeight; ++y)
            Add(rows.Row(y), (static_cast<std::size_t>(dib.biWidth) * dib.biBitCount + 7) / 8);
    }
    std::uint64_t Value() const { return value_; }

private:
    std::uint64_t value_ = 0xCBF29CE484222325;
};

/// 0 when the picture cannot be locked.
inline std::uint64_t DibChecksum(DibHandle dib) {
    const ReadDib locked(dib);
    if (!locked) return 0;
    Checksum sum;
    sum.Add(*locked);
    return sum.Value();
}

} // namespace lumafold
