#include "hosts/desktop/screen_picture.h"

#include "image/row_view.h"

namespace lumafold {

OwnedDib ScreenPicture(const ScreenPixels& screen, std::int32_t width, std::int32_t height) {
    OwnedDib picture = DibCreate(width, height, nullptr, 24);
    if (!picture) return picture;
    const RowView rows = picture.Rows();
    const PixelValue* from = screen.data();
    for (std::int32_t y = 0; y < height; ++y) {
        std::uint8_t* out = rows.Row(y);
        for (std::int32_t x = 0; x < width; ++x, ++from, out += 3) {
            StoreColour(out, *from == kNoPixel ? PixelValue{0xFFFFFF} : *from);
        }
    }
    return picture;
}

} // namespace lumafold
