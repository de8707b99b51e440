// Picture files of every format: what is read has pixels at every place.
#include "codecs/decode.h"
#include "image/row_view.h"
#include "tests/fuzz/fuzz_target.h"
#include "tests/fuzz/png_mutator.h"

using namespace lumafold;
using namespace lumafold::test;

LUMAFOLD_FUZZ_TARGET(pictures) {
    constexpr std::uint64_t kMostPixels = 1 << 18;
    const DecodedPicture decoded = DecodePicture(input, 0x336699, kMostPixels);
    Require(static_cast<bool>(decoded.picture) == decoded.error.empty(), "either a picture or an error");
    Require(decoded.error.find('\n') == std::string::npos, "an error is one line");
    if (!decoded.picture) return;
    const LockedDib dib(decoded.picture.Get());
    Require(dib && dib->biWidth > 0 && dib->biHeight > 0, "a picture has pixels");
    const ConstRowView rows(*dib);
    Require(DibRowsOffset(*dib) + rows.StoredBytes() <= GlobalBytes(decoded.picture.Get()), "all of them");
}
