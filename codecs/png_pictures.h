// The single pictures that animated PNG and MNG files are made of: each what one frame changes, packed for
// itself.
#pragma once

#include "codecs/animation_writer.h"
#include "codecs/index_frames.h"
#include "codecs/png_chunks.h"
#include "codecs/png_rows.h"

namespace lumafold {

inline constexpr std::int32_t kMostPngSide = 1000000; // libpng's own bound, on either side of the file
inline constexpr char kPngSideError[] = "PNG cannot hold sides above 1000000 pixels";

enum class PngColours : std::uint32_t { True = 2, Indexed = 3 };
/// `bits` of a sample: 1, 2, 4 or 8.
ChunkWriter::Data PngHeader(const Rect& rect, int bits, PngColours colours);
/// How many bits palette pictures need for so many entries.
int BitsFor(int entries);
ChunkWriter::Data PngPalette(std::span<const Rgb> colours);
ChunkWriter::Data PngTransparentColour(PixelValue colour);

/// A rectangle of a frame in true colour, like an IndexCut. kFreePixel marks colours that need not be drawn.
struct ColourCut {
    Rect rect{};
    PixelValue hole = kNoPixel; ///< a colour that is drawn nowhere, kNoPixel for none
    bool mayLeaveOut = false;
    std::vector<PixelValue> pixels; ///< kNoPixel where nothing was ever drawn
};
inline constexpr PixelValue kFreePixel = 0x01000000;

/// What `screen` shows in `rect` as colours.
ColourCut CutColours(const Screen& screen, const Rect& rect, PixelValue hole);
/// Whether the frame shown last draws `colour` in `rect`.
bool Draws(const Screen& screen, const Rect& rect, PixelValue colour);

/// How hard to pack a frame of indexes by its number. Noise packs worse at 8 and 9 than at 7, and much better
/// at 10, but that takes three times as long: at 6 to 9 a growing share of the frames is packed at 10.
int EffortOfFrame(int effort, std::size_t frame);

/// What becomes of a picture's pixels once they are packed.
enum class AfterPacking { DropPixels, KeepPixels };

class PngPicture final : public PackedFrame {
public:
    /// `bits` of a pixel, 1, 2, 4 or 8.
    PngPicture(IndexCut cut, int bits, std::int32_t delay, int effort,
               AfterPacking after = AfterPacking::DropPixels);
    PngPicture(ColourCut cut, std::int32_t delay, int effort);

    void Pack() override;
    void SetDelay(std::int32_t delay) { delay_ = delay; }
    /// Indexes that were kept may be packed once more, at fewer bits a pixel.
    void Repack(int bits);

    const Rect& Place() const { return rect_; }
    std::int32_t Delay() const { return delay_; }
    bool HasPalette() const { return bits_ <= 8; }
    int Bits() const { return bits_; }
    // These are known once it is packed.
    bool HasHoles() const { return hasHoles_; }
    /// Gives the packed data away.
    std::vector<std::uint8_t> TakeData() { return std::move(data_); }

private:
    enum class Kept { Drawn, LeftOut };
    enum class Rows { All, Sample };
    enum class Saying { Repetitions, Runs };
    struct Way {
        Kept kept;
        RowFilter filter;
        Saying saying;
    };
    struct Filled {
        std::vector<std::uint8_t> bytes;
        bool hasHoles = false;
    };

    std::vector<Way> Ways() const;
    std::vector<Way> WaysToTry() const;
    std::vector<std::uint8_t> Packed(const Way& way, std::span<const std::uint8_t> rows) const;
    Filled Fill(Kept kept, Rows rows) const;
    void FillRow(std::size_t y, Kept kept, Filled& to) const;
    std::vector<std::uint8_t> Filtered(const Way& way, Rows rows, bool& hasHoles) const;
    std::size_t Width() const { return static_cast<std::size_t>(RectWidth(rect_)); }
    std::size_t Height() const { return static_cast<std::size_t>(RectHeight(rect_)); }

    Rect rect_;
    int bits_; ///< of a pixel, 24 for colours
    std::int32_t delay_;
    int effort_;
    AfterPacking after_ = AfterPacking::DropPixels;
    bool hasHoles_ = false;
    IndexCut indexes_;
    ColourCut colours_;
    std::vector<std::uint8_t> data_;
};

} // namespace lumafold
