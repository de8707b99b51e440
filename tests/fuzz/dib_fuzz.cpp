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
            Require(picture->biSize == sizeof(DibHeader) && picture->biWidth > 0 && picture->biHeight > 0,
                    "a sound header");
            Require(DibRowsOffset(*picture) + picture.Rows().StoredBytes() <= GlobalBytes(picture.Get()),
                    "a whole block");
            const OwnedDib colours = DibToTrueColour(*picture);
            Require(static_cast<bool>(colours), "true colour");
            Require(DibGetPixel(*colours, picture->biWidth - 1, picture->biHeight - 1) != kNoPixel,
                    "the last pixel");
        }
    }
    Require(allocation_hooks::LiveBlocks() == blocks, "nothing is left behind");
}
