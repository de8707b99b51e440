// What the formats built on PNG share: chunks, the comment, and an animation cut into the pictures that are
// stored for its frames.
#pragma once

#include <string_view>

#include "codecs/frame_changes.h"
#include "codecs/frame_progress.h"

namespace lumafold {

/// A file of length, type, data and checksum after checksum; numbers have their high byte first.
class ChunkWriter {
public:
    explicit ChunkWriter(std::string_view signature) { bytes_.assign(signature.begin(), signature.end()); }

    class Data {
    public:
        Data& U8(std::uint32_t value);
        Data& U16(std::uint32_t value);
        Data& U32(std::uint32_t value);
        Data& Bytes(const void* bytes, std::size_t length);
        const std::vector<std::uint8_t>& Get() const { return bytes_; }

    private:
        std::vector<std::uint8_t> bytes_;
    };
    void Put(std::string_view type, const Data& data = {});
    /// A text chunk under the keyword for comments; none for an empty text.
    void PutComment(const std::string& text);
    std::vector<std::uint8_t> Take() { return std::move(bytes_); }

private:
    std::vector<std::uint8_t> bytes_;
};

/// A frame as one picture: what it changes, and how that is laid over what stands there.
struct PngFrame {
    Rect rect{};
    std::size_t colours = 0;        ///< entries of the palette up to the last that occurs
    bool hasHoles = false;          ///< whether the transparent value occurs
    std::vector<std::uint8_t> data; ///< the rows, filtered and compressed
};

/// An animation cut into pictures, all of one kind: palette pictures where every frame has a palette, else
/// colours. One value that no frame draws stands for holes.
class PngFrames {
public:
    /// Several pixels a byte where the palette is small enough, or always whole bytes.
    enum class Packing { Tight, WholeBytes };

    /// Throws for an animation that cannot be written.
    PngFrames(const Animation& animation, Packing packing, const FrameProgress& progress);

    const std::vector<PngFrame>& Get() const { return frames_; }
    bool HaveHoles() const;
    ChunkWriter::Data Header(const Rect& rect) const;
    bool HavePalette() const { return depth_ <= 8; }
    ChunkWriter::Data PaletteData() const;
    /// No more of it than the one picture needs.
    ChunkWriter::Data PaletteData(const PngFrame& frame) const;
    /// Only for pictures that have holes.
    ChunkWriter::Data TransparencyData() const;

private:
    enum class Kept { Drawn, LeftOut };
    bool Survey(const Animation& animation, FrameReader::Values values);
    bool ChooseTransparent(const Animation& animation, const std::vector<bool>& used);
    void Cut(const Animation& animation, FrameReader::Values values, const FrameProgress& progress);
    PngFrame PackBest(const Screen& screen, const Rect& rect) const;
    PngFrame Pack(const Screen& screen, const Rect& rect, Kept kept) const;
    PixelValue IndexInFile(PixelValue index) const;

    Packing packing_;
    int depth_ = 8; ///< bits of a pixel: 1, 2, 4, 8, or 24
    PixelValue transparent_ = kNoPixel;
    std::vector<Rgb> colours_;
    std::vector<PngFrame> frames_;
};

} // namespace lumafold
