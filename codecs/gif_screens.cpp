#include "codecs/gif_reader.h"
#include "codecs/screens.h"

namespace lumafold {
namespace {

enum class Disposal { Keep, Clear, Restore };

/// What is announced before a frame.
struct FrameControl {
    int transparent = -1;
    std::int32_t delay = 0;
    Disposal disposal = Disposal::Keep;
};

class GifPlayer {
public:
    GifPlayer(std::span<const std::uint8_t> file, const DecodeLimits& limits, const OnScreen& onScreen)
        : gif_(file), limits_(limits), onScreen_(onScreen) {}

    std::string Play() {
        for (;;) {
            GifRecordType record = UNDEFINED_RECORD_TYPE;
            gif_.Check(DGifGetRecordType(gif_.Get(), &record));
            if (record == TERMINATE_RECORD_TYPE) break;
            if (record == IMAGE_DESC_RECORD_TYPE) {
                Frame();
            } else {
                Extension();
            }
        }
        if (screen_.pixels.empty()) throw DecodeError{"the GIF holds no picture"};
        return comment_;
    }

private:
    void Extension() {
        int code = 0;
        GifByteType* block = nullptr; // length first
        gif_.Check(DGifGetExtension(gif_.Get(), &code, &block));
        if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr && block[0] >= 4) {
            const int disposal = block[1] >> 2 & 7;
            control_.transparent = (block[1] & 1) != 0 ? block[4] : -1;
            control_.delay = block[2] | block[3] << 8;
            control_.disposal = disposal == 2   ? Disposal::Clear
                                : disposal == 3 ? Disposal::Restore
                                                : Disposal::Keep;
        }
        while (block != nullptr) {
            if (code == COMMENT_EXT_FUNC_CODE) comment_.append(block + 1, block + 1 + block[0]);
            gif_.Check(DGifGetExtensionNext(gif_.Get(), &block));
        }
    }

    void Frame() {
        gif_.Check(DGifGetImageDesc(gif_.Get()));
        const Rect rect{gif_->Image.Left, gif_->Image.Top, gif_->Image.Left + gif_->Image.Width,
                        gif_->Image.Top + gif_->Image.Height};
        if (screen_.pixels.empty()) MakeScreen(rect);
        CheckSize(static_cast<std::uint64_t>(RectWidth(rect)), static_cast<std::uint64_t>(RectHeight(rect)),
                  limits_);
        const std::vector<std::uint8_t> indexes = ReadGifIndexes(gif_);
        std::vector<PixelValue> before;
        if (control_.disposal == Disposal::Restore) before = screen_.pixels;
        Draw(rect, indexes);
        onScreen_(screen_, control_.delay);
        if (control_.disposal == Disposal::Restore) screen_.pixels = std::move(before);
        if (control_.disposal == Disposal::Clear) screen_.Clear(rect);
        control_ = {};
    }

    // Some files tell too small a screen, or none: the first frame is seen whole.
    void MakeScreen(const Rect& rect) {
        const std::int32_t width = std::max(gif_->SWidth, rect.right);
        const std::int32_t height = std::max(gif_->SHeight, rect.bottom);
        CheckSize(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height), limits_);
        screen_ = ShownScreen(width, height);
    }

    void Draw(const Rect& rect, const std::vector<std::uint8_t>& indexes) {
        const ColorMapObject* map = gif_->Image.ColorMap != nullptr ? gif_->Image.ColorMap : gif_->SColorMap;
        if (map == nullptr) throw DecodeError{"the GIF holds no colours"};
        std::array<PixelValue, 256> colours{};
        for (int i = 0; i < std::min(map->ColorCount, 256); ++i) {
            const GifColorType& colour = map->Colors[i];
            colours[static_cast<std::size_t>(i)] = MakeColour(colour.Red, colour.Green, colour.Blue);
        }
        screen_.Each(rect, [&](PixelValue& pixel, std::size_t i) {
            if (indexes[i] != control_.transparent) pixel = colours[indexes[i]];
        });
    }

    GifReader gif_;
    const DecodeLimits& limits_;
    const OnScreen& onScreen_;
    ShownScreen screen_;
    FrameControl control_;
    std::string comment_;
};

} // namespace

std::string ShowGif(std::span<const std::uint8_t> file, const DecodeLimits& limits,
                    const OnScreen& onScreen) {
    return GifPlayer(file, limits, onScreen).Play();
}

} // namespace lumafold
