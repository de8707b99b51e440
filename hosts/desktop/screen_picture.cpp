#include "hosts/desktop/screen_picture.h"

#include "image/row_view.h"

namespace lumafold {

OwnedDib ScreenPicture(const ScreenPixels& screen, std::int32_t width, std::int32_t height) {
    OwnedDib picture(DibCreate(width, height, nullptr, 24));
    const LockedDib locked(picture.Get());
    if (!locked) return OwnedDib();
    const RowView rows(locked.Get());
    const PixelValue* from = screen.data();
    for (std::int32_t y = 0; y < height; ++y) {
        std::uint8_t* out = rows.Row(y);
        for (std::int32_t x = 0; x < width; ++x, ++from, out += 3) {
            const PixelValue colour = *from == kNoPixel ? 0xFFFFFF : *from;
            out[0] = static_cast<std::uint8_t>(BlueOf(colour));
            out[1] = static_cast<std::uint8_t>(GreenOf(colour));
            out[2] = static_cast<std::uint8_t>(RedOf(colour));
        }
    }
    return picture;
}

} // namespace lumafold
