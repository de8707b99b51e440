#include <deque>

#include "codecs/free_colour.h"
#include "codecs/png_pictures.h"
#include "codecs/writers.h"

namespace lumafold {
namespace {

constexpr std::uint32_t kTicksPerSecond = 100, kInfinite = 0x7FFFFFFF;

/// What a reader must be able to do, one bit each.
enum Profile : std::uint32_t {
    kProfileTold = 1 << 0,
    kSimpleFeatures = 1 << 1,
    kTransparency = 1 << 3,
    kMoreBitsTold = 1 << 6,
    kBackgroundSeen = 1 << 7,
};

/// What comes after the last frame.
ChunkWriter::Data Termination(std::int32_t plays) {
    constexpr std::uint32_t kRepeat = 3, kShowLast = 0, kNoPause = 0;
    ChunkWriter::Data data;
    if (plays == 1) return data.U8(kShowLast);
    data.U8(kRepeat).U8(kShowLast).U32(kNoPause);
    return data.U32(plays > 0 ? static_cast<std::uint32_t>(plays) : kInfinite);
}

/// Every picture is a frame over what stands there, and stays for `delay` ticks, like those after it.
ChunkWriter::Data Delay(std::int32_t delay) {
    constexpr std::uint32_t kFrameEach = 1, kNoName = 0, kFromNowOn = 2, kAsBefore = 0;
    ChunkWriter::Data data;
    data.U8(kFrameEach).U8(kNoName).U8(kFromNowOn).U8(kAsBefore).U8(kAsBefore).U8(kAsBefore);
    return data.U32(static_cast<std::uint32_t>(std::max(delay, 0)));
}

ChunkWriter::Data Place(const Rect& rect) {
    constexpr std::uint32_t kNoObject = 0, kVisible = 0, kAbstract = 0;
    ChunkWriter::Data data;
    data.U16(kNoObject).U8(kVisible).U8(kAbstract);
    return data.U32(static_cast<std::uint32_t>(rect.left)).U32(static_cast<std::uint32_t>(rect.top));
}

/// Every picture is a PNG picture for itself, with a palette of its own as long as one is enough: one palette
/// for the whole file would be smaller, but not all readers join it with transparency.
class MngWriter final : public AnimationWriter {
public:
    MngWriter(const AnimationFacts& facts, int effort, const Runner& runner)
        : AnimationWriter(runner), facts_(facts), effort_(effort),
          reader_(facts.width, facts.height, facts.palette), screen_(facts.width, facts.height) {}
    ~MngWriter() override { AwaitPacking(); }

private:
    PackedFrame& Take(const FrameView& frame) override {
        if (!colours_ && frame.picture.biBitCount > 8) UseColours();
        const Rect changed = screen_.Show(colours_ ? reader_.ReadColours(frame) : reader_.ReadIndexes(frame));
        // The first frame is whole: it is what is seen where animations are not understood.
        const Rect rect = frames_.empty() ? screen_.Whole() : changed;
        FileTable table;
        if (!colours_ && !Admit(rect, table)) UseColours();
        if (colours_) {
            const PixelValue hole = Hole(rect);
            PngPicture picture(CutColours(screen_, rect, hole), frame.delay, effort_);
            frames_.push_back({std::move(picture), {}, hole});
            return frames_.back().picture;
        }
        PngPicture picture(table.Cut(screen_, rect, table.Hole()), BitsFor(table.Entries()), frame.delay,
                           EffortOfFrame(effort_, frames_.size()));
        frames_.push_back({std::move(picture), table.Colours(facts_.palette), kNoPixel});
        return frames_.back().picture;
    }

    std::size_t Frames() const override { return frames_.size(); }
    void SetDelay(std::size_t frame, std::int32_t delay) override { frames_[frame].picture.SetDelay(delay); }

    PiecedFile Assemble(const std::string& comment) override {
        ChunkWriter file(kMngSignature);
        file.Put("MHDR", Header());
        file.Put("TERM", Termination(facts_.plays));
        file.PutComment(comment);
        for (std::size_t i = 0; i < frames_.size(); ++i) {
            const std::int32_t delay = frames_[i].picture.Delay();
            // The first frame says everything: the loop comes back to it with the last one's values.
            if (i == 0 || delay != frames_[i - 1].picture.Delay()) file.Put("FRAM", Delay(delay));
            file.Put("DEFI", Place(frames_[i].picture.Place()));
            PutPicture(file, frames_[i]);
        }
        file.Put("MEND");
        return file.TakePieces();
    }

    struct Frame {
        PngPicture picture;
        std::vector<Rgb> colours; ///< the palette, its first entry for holes
        PixelValue hole;          ///< in true colour
    };

    void UseColours() {
        colours_ = true;
        screen_.Recolour(facts_.palette);
    }
    /// False where more is in use than a palette can hold.
    bool Admit(const Rect& rect, FileTable& table) const {
        const IndexUse use(screen_, rect);
        const bool hole = use.anyKept || use.holes;
        if ((!hole || table.AdmitHole()) && table.Admit(use)) return true;
        if (use.holes) return false;
        table = {}; // nothing is left out then
        return table.Admit(use);
    }
    PixelValue Hole(const Rect& rect) const {
        for (const PixelValue likely : {kZeroColour, kLikelyFreeColour})
            if (!Draws(screen_, rect, likely)) return likely;
        ColourSet taken;
        for (std::int32_t y = rect.top; y < rect.bottom; ++y)
            taken.Add({screen_.Row(y) + rect.left, static_cast<std::size_t>(RectWidth(rect))});
        return taken.Free();
    }

    ChunkWriter::Data Header() const {
        std::uint64_t duration = 0;
        std::uint32_t profile = kProfileTold | kSimpleFeatures | kMoreBitsTold;
        for (const Frame& frame : frames_) {
            duration += static_cast<std::uint64_t>(std::max(frame.picture.Delay(), 0));
            if (frame.picture.HasHoles()) profile |= kTransparency | kBackgroundSeen;
        }
        constexpr std::uint32_t kLayersNotTold = 0;
        ChunkWriter::Data data;
        data.U32(static_cast<std::uint32_t>(facts_.width)).U32(static_cast<std::uint32_t>(facts_.height));
        data.U32(kTicksPerSecond).U32(kLayersNotTold).U32(static_cast<std::uint32_t>(frames_.size()));
        return data.U32(static_cast<std::uint32_t>(std::min<std::uint64_t>(duration, kInfinite)))
            .U32(profile);
    }

    static void PutPicture(ChunkWriter& file, Frame& frame) {
        PngPicture& picture = frame.picture;
        const bool palette = picture.HasPalette();
        file.Put("IHDR", PngHeader(picture.Place(), palette ? picture.Bits() : 8,
                                   palette ? PngColours::Indexed : PngColours::True));
        if (palette) file.Put("PLTE", PngPalette(frame.colours));
        if (picture.HasHoles())
            file.Put("tRNS", palette ? ChunkWriter::Data().U8(0) : PngTransparentColour(frame.hole));
        file.Put("IDAT", {}, picture.TakeData());
        file.Put("IEND");
    }

    AnimationFacts facts_;
    int effort_;
    FrameReader reader_;
    Screen screen_;
    bool colours_ = false;
    std::deque<Frame> frames_;
};

} // namespace

std::unique_ptr<AnimationWriter> NewMngWriter(const AnimationFacts& facts, int effort, const Runner& runner) {
    CheckSides(facts.width, facts.height, kMostPngSide, kPngSideError);
    return std::make_unique<MngWriter>(facts, effort, runner);
}

} // namespace lumafold
