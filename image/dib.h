// The picture: its owner, the accessors that define every result, and what makes and copies pictures. Picture
// coordinates are top-down. Whoever owns a picture holds it locked, so that header and rows are at hand;
// borrowed pictures are passed as their headers.
#pragma once

#include "image/row_view.h"
#include "platform/global_memory.h"

namespace lumafold {

/// A picture's block, in records and across the host boundary.
using DibHandle = GlobalHandle;

/// Holds a picture that is another's locked, for reading or for writing in place. Check it before use.
using LockedDib = GlobalLocked<DibHeader>;
using ReadDib = GlobalLocked<const DibHeader>;

/// Owns a picture and keeps it locked; frees it, unless Release gives it away. Check it before use.
class OwnedDib {
public:
    OwnedDib() = default;
    /// Takes over a block. One that cannot be locked is freed, and the owner is empty.
    explicit OwnedDib(DibHandle handle) : block_(handle), header_(handle) {
        if (!header_) block_ = OwnedGlobal();
    }

    explicit operator bool() const { return static_cast<bool>(header_); }
    DibHeader& operator*() { return *header_; }
    const DibHeader& operator*() const { return *header_; }
    DibHeader* operator->() { return header_.Get(); }
    const DibHeader* operator->() const { return header_.Get(); }
    RowView Rows() { return RowView(*header_); }
    ConstRowView Rows() const { return ConstRowView(*header_); }

    /// The block, for records that name a picture without owning it.
    DibHandle Get() const { return block_.Get(); }
    /// Unlocks the picture and gives it away.
    [[nodiscard]] DibHandle Release() {
        header_ = LockedDib();
        return block_.Release();
    }

private:
    OwnedGlobal block_;
    LockedDib header_; // unlocked before the block is freed
};

/// A new picture of all-zero pixels; empty when memory is short or DibBlockBytes allows no such size.
/// `palette` null leaves the table black.
OwnedDib DibCreate(std::int64_t width, std::int64_t height, const Palette* palette, int bits);
/// A new 24-bit picture of one colour; kNoPixel leaves it black.
OwnedDib DibCreateFlat(std::int64_t width, std::int64_t height, PixelValue colour);
/// A new picture of zero pixels with depth and palette of `like`.
OwnedDib DibCreateLike(const DibHeader& like, std::int64_t width, std::int64_t height);
/// A copy in the form that DibCreate gives.
OwnedDib DibCopy(const DibHeader& source);

/// Gives a picture that DibCreate made another colour table.
void DibSetPalette(DibHeader& dib, const Palette& palette);
/// Fills all 256 entries, those beyond the table with zero. The number of colours, 0 above 8 bits.
int DibGetPalette(const DibHeader& dib, Palette& palette);

/// What a picture is, any part of it null when not asked for; false when it cannot be locked.
bool DibQuery(DibHandle dib, std::int32_t* width, std::int32_t* height, int* bits, Palette* palette);

PixelValue DibGetPixel(const DibHeader& dib, std::int64_t x, std::int64_t y);
void DibSetPixel(DibHeader& dib, std::int64_t x, std::int64_t y, PixelValue value);

/// Copies raw values pixel by pixel, clipped by the accessors' own rule; depths and palettes are expected to
/// agree.
void DibCopyRect(DibHeader& target, std::int64_t targetX, std::int64_t targetY, const DibHeader& source,
                 std::int64_t sourceX, std::int64_t sourceY, std::int64_t width, std::int64_t height);

/// Sets every pixel of a 24-bit picture; kNoPixel sets none.
void DibFill(DibHeader& dib, PixelValue colour);

} // namespace lumafold
