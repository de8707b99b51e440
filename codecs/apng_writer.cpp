#include <deque>

#include "codecs/free_colour.h"
#include "codecs/png_pictures.h"
#include "codecs/screens.h"
#include "codecs/writers.h"

namespace lumafold {
namespace {

constexpr std::int32_t kMostDelay = 65535;
constexpr std::uint32_t kTicksPerSecond = 100;
enum class Dispose : std::uint8_t { None = 0 };
enum class Blend : std::uint8_t { Source = 0, Over = 1 };

ChunkWriter::Data FrameControl(std::uint32_t sequence, const PngPicture& picture, Blend blend) {
    const Rect& rect = picture.Place();
    ChunkWriter::Data data;
    data.U32(sequence);
    data.U32(static_cast<std::uint32_t>(RectWidth(rect)));
    data.U32(static_cast<std::uint32_t>(RectHeight(rect)));
    data.U32(static_cast<std::uint32_t>(rect.left)).U32(static_cast<std::uint32_t>(rect.top));
    // Hundredths of a second as far as they reach, then seconds.
    const std::int32_t delay = std::max(picture.Delay(), 0), seconds = delay / kTicksPerSecond;
    const bool fits = delay <= kMostDelay;
    data.U16(static_cast<std::uint32_t>(fits ? delay : std::min(seconds, kMostDelay)));
    data.U16(fits ? kTicksPerSecond : 1);
    return data.U8(static_cast<std::uint32_t>(Dispose::None)).U8(static_cast<std::uint32_t>(blend));
}

/// All pictures of a file are of one kind and share their palette: indexes as long as those of all frames so
/// far, and a hole where one is needed, find room in it; from then on colours. What was written by then is
/// read back.
class ApngWriter final : public AnimationWriter {
public:
    ApngWriter(const AnimationFacts& facts, int effort, const Runner& runner)
        : AnimationWriter(runner), facts_(facts), effort_(effort),
          reader_(facts.width, facts.height, facts.palette), screen_(facts.width, facts.height) {}
    ~ApngWriter() override { AwaitPacking(); }

private:
    PackedFrame& Take(const FrameView& frame) override {
        if (!colours_ && frame.picture.biBitCount <= 8) {
            const Rect changed = screen_.Show(reader_.ReadIndexes(frame));
            const Rect rect = frames_.empty() ? screen_.Whole() : changed;
            const IndexUse use(screen_, rect);
            if (Admit(use, frame.transparentIndex)) {
                // A widely used viewer misplaces cropped frames of packed pixels, so only a single picture is
                // packed, when it is known to be the only one.
                return frames_.emplace_back(table_.Cut(screen_, rect, table_.Hole()), 8, frame.delay,
                                            EffortOfFrame(effort_, frames_.size()),
                                            frames_.empty() ? AfterPacking::KeepPixels
                                                            : AfterPacking::DropPixels);
            }
        }
        const FramePixels pixels = reader_.ReadColours(frame);
        if (!colours_) StartAgain(pixels);
        return TakeColours(pixels, frame.delay);
    }

    std::size_t Frames() const override { return frames_.size(); }
    void SetDelay(std::size_t frame, std::int32_t delay) override { frames_[frame].SetDelay(delay); }

    PiecedFile Assemble(const std::string& comment) override {
        const int bits = !colours_ && frames_.size() == 1 ? BitsFor(table_.Entries()) : 8;
        if (bits < 8) frames_.front().Repack(bits);
        ChunkWriter file(kPngSignature);
        file.Put("IHDR", PngHeader(screen_.Whole(), bits, colours_ ? PngColours::True : PngColours::Indexed));
        const auto plays = static_cast<std::uint32_t>(std::max(facts_.plays, 0)); // 0 for ever, as there
        file.Put("acTL", ChunkWriter::Data().U32(static_cast<std::uint32_t>(frames_.size())).U32(plays));
        if (!colours_) file.Put("PLTE", PngPalette(table_.Colours(facts_.palette)));
        if (std::any_of(frames_.begin(), frames_.end(), [](const auto& frame) { return frame.HasHoles(); }))
            file.Put("tRNS", colours_ ? PngTransparentColour(hole_) : TransparentEntry());
        file.PutComment(comment);
        std::uint32_t sequence = 0;
        for (PngPicture& picture : frames_) {
            const bool first = &picture == &frames_.front();
            file.Put("fcTL", FrameControl(sequence++, picture, first ? Blend::Source : Blend::Over));
            ChunkWriter::Data number;
            if (!first) number.U32(sequence++);
            file.Put(first ? "IDAT" : "fdAT", number, picture.TakeData());
        }
        file.Put("IEND");
        return file.TakePieces();
    }

    /// Holes get an entry early, so that what is told of it is short; but not where they might take one that
    /// a colour will need.
    bool Admit(const IndexUse& use, std::int32_t told) {
        const bool toldFree = told >= 0 && told < 256 && !table_.Has(static_cast<PixelValue>(told)) &&
                              use.drawn[static_cast<std::size_t>(told)] == 0;
        const bool first = frames_.empty();
        // Rows begin with a byte 0, which makes runs of holes longer when those are 0, too.
        if (first) table_.ReserveHole();
        if (table_.Hole() < 0 && ((first && HasRoom()) || toldFree || use.holes) && !table_.AdmitHole() &&
            use.holes)
            return false;
        return table_.Admit(use);
    }
    /// Whether some index can never occur, as two of one colour are taken for one.
    bool HasRoom() const {
        const Palette& palette = facts_.palette;
        for (auto colour = palette.begin(); colour != palette.end(); ++colour) {
            if (std::find(palette.begin(), colour, *colour) != colour) return true;
        }
        return false;
    }
    ChunkWriter::Data TransparentEntry() const {
        ChunkWriter::Data data;
        for (int entry = 0; entry < table_.Hole(); ++entry)
            data.U8(255);
        return data.U8(0);
    }

    PngPicture& TakeColours(const FramePixels& pixels, std::int32_t delay) {
        Rect rect = screen_.Show(pixels);
        if (hole_ != kNoPixel && Draws(screen_, rect, hole_)) {
            StartAgain(pixels);
            rect = screen_.Show(pixels);
        }
        if (frames_.empty()) rect = screen_.Whole();
        return frames_.emplace_back(CutColours(screen_, rect, hole_), delay, effort_);
    }

    /// Writes all frames so far in colours, with a hole that neither they nor `next` have.
    void StartAgain(const FramePixels& next) {
        ColourSet taken;
        taken.Add(next.values);
        std::vector<std::uint8_t> before;
        if (!frames_.empty()) {
            FinishPacking();
            before = Assemble("").Join();
            Play(before, [&](const ShownScreen& screen, std::int32_t) { taken.Add(screen.pixels); });
        }
        frames_.clear();
        screen_ = Screen(facts_.width, facts_.height);
        colours_ = true;
        // Black may still come; all is written once more then, with a colour that hardly anything has.
        hole_ = before.empty() && !taken.Has(kZeroColour) ? kZeroColour : taken.Free();
        if (before.empty()) return;
        Play(before, [&](const ShownScreen& screen, std::int32_t delay) {
            TakeColours({screen.width, screen.height, screen.pixels}, delay).Pack();
        });
    }
    static void Play(const std::vector<std::uint8_t>& file, const OnScreen& onScreen) {
        try {
            ShowApng(file, {0, ~std::uint64_t{0}}, onScreen);
        } catch (const DecodeError&) { // sides beyond what is read here
            throw AnimationError("the frames need more colours than a palette has");
        }
    }

    AnimationFacts facts_;
    int effort_;
    FrameReader reader_;
    Screen screen_;
    FileTable table_;
    bool colours_ = false;
    PixelValue hole_ = kNoPixel; ///< of colours
    std::deque<PngPicture> frames_;
};

} // namespace

std::unique_ptr<AnimationWriter> NewApngWriter(const AnimationFacts& facts, int effort,
                                               const Runner& runner) {
    CheckSides(facts.width, facts.height, kMostPngSide, kPngSideError);
    return std::make_unique<ApngWriter>(facts, effort, runner);
}

} // namespace lumafold
