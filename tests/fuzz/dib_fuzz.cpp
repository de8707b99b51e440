// Bitmaps that a host hands over: what is taken can be drawn, turned into true colour and freed.
#include <cstring>

#include "image/import.h"
#include "image/resample.h"
#include "image/row_view.h"
#include "tests/fuzz/fuzz_target.h"

using namespace lumafold;
using namespace lumafold::test;

LUMAFOLD_FUZZ_TARGET(dib) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks();
    {
        const GlobalHandle foreign = GlobalCreate(GlobalKind::Movable, input.size());
        if (!input.empty()) {
            std::memcpy(GlobalLocked<std::uint8_t>(foreign).Get(), input.data(), input.size());
        }
        const OwnedDib picture = DibImport(foreign);
        if (picture) {
            const LockedDib dib(picture.Get());
            Require(dib->biSize == sizeof(DibHeader) && dib->biWidth > 0 && dib->biHeight > 0,
                    "a sound header");
            const ConstRowView rows(*dib);
            Require(DibRowsOffset(*dib) + rows.StoredBytes() <= GlobalBytes(picture.Get()), "a whole block");
            const OwnedDib colours(DibToTrueColour(picture.Get()));
            Require(static_cast<bool>(colours), "true colour");
            const LockedDib seen(colours.Get());
            Require(DibGetPixel(*seen, dib->biWidth - 1, dib->biHeight - 1) != kNoPixel,
                    "the last pixel");
        }
    }
    Require(allocation_hooks::LiveBlocks() == blocks, "nothing is left behind");
}
