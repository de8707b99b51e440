// Pictures that come from outside: whatever a host hands over becomes a sound picture of our own form, or
// none.
#pragma once

#include "image/dib.h"

namespace lumafold {

/// Takes over a host's packed bitmap and gives a picture the engine can trust, looking as that one did: depth
/// 1, 4, 8 or 24, bottom-up, uncompressed, with a whole colour table and as many bytes as its header says.
/// Top-down rows, short colour tables, larger headers, 16 and 32 bits and bit fields are put right; the block
/// is kept when it is sound as it is. Empty, and the block freed, when no picture can be made of it.
OwnedDib DibImport(DibHandle foreign);

} // namespace lumafold
