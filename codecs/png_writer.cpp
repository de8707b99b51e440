#include "codecs/png_writer.h"

#include <new>

#include "codecs/png_pictures.h"

namespace lumafold {
namespace {

std::vector<std::uint8_t> Encode(const DibHeader& picture) {
    Screen screen(picture.biWidth, picture.biHeight);
    const FrameReader reader(picture.biWidth, picture.biHeight, {});
    screen.Show(reader.ReadColours({picture, 0, -1}));
    PngPicture packed(CutColours(screen, screen.Whole(), kNoPixel), 0, kUsualEffort);
    packed.Pack();
    ChunkWriter file(kPngSignature);
    file.Put("IHDR", PngHeader(packed.Place(), 8, PngColours::True));
    file.Put("IDAT", {}, packed.TakeData());
    file.Put("IEND");
    return file.Take();
}

} // namespace

std::vector<std::uint8_t> EncodePng(DibHandle picture, std::string& error) {
    error.clear();
    const ReadDib dib(picture);
    if (!dib || dib->biBitCount != 24 || dib->biWidth < 1 || dib->biHeight < 1) {
        error = "only true-colour pictures can be written as PNG";
        return {};
    }
    try {
        return Encode(*dib.Get());
    } catch (const std::bad_alloc&) {
        error = "there is not enough memory for the PNG file";
    }
    return {};
}

} // namespace lumafold
