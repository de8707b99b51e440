#include "build/build_driver.h"

#include <atomic>
#include <cassert>
#include <span>

#include "build/estimate.h"
#include "colour/palettes.h"
#include "colour/quantizer.h"
#include "colour/remap.h"
#include "colour/supercompression.h"
#include "image/resample.h"
#include "platform/machine.h"
#include "resources/texts/strings.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

/// One build, from the list to the host. Its steps return false to stop; its end puts everything back.
class AnimationBuild : NonCopyable {
public:
    explicit AnimationBuild(const BuildRequest& request)
        : request_(request), settings_(request.settings), list_(request.list), host_(request.host),
          supercompress_(request.kind == TaskKind::Build && request.settings.Supercompress != 0) {
        request_.observer.Begin();
    }
    ~AnimationBuild() {
        PutBack();
        FrameListRelease(frames_);
        request_.observer.End();
    }

    bool Run() {
        BuildFixedPalette(&palette_, &paletteBits_, static_cast<std::int32_t>(settings_.TransitionPalette));
        if (CountEntries() && MeasureCanvas() && PlaceImages() && RenderGaps() && ChoosePalette() &&
            MarkUnchangedPixels() && ReduceColours()) {
            return HandOver();
        }
        return Fail(BuildFailure::Memory);
    }

private:
    bool Fail(BuildFailure failure) {
        request_.observer.Fail(failure);
        return false;
    }

    bool CountEntries() {
        count_ = list_.Count();
        return count_ > 1 || (count_ == 1 && AddTemporaryEntry());
    }

    /// One picture alone fades to the matte colour and back.
    bool AddTemporaryEntry() {
        ImageEntry only;
        std::int32_t width = 0, height = 0;
        if (!list_.Read(0, only) || !DibQuery(only.image, &width, &height, nullptr, nullptr)) return false;
        OwnedDib background = DibCreateFlat(width, height, settings_.TransitionMattcolour);
        OwnedGlobal block(GlobalCreate(GlobalKind::Movable, sizeof(ImageEntry)));
        if (!background || !block) return false;
        {
            const GlobalLocked<ImageEntry> entry(block.Get());
            if (!entry) return false;
            entry->image = background.Get();
            std::memcpy(entry->label, LUMAFOLD_LABEL_TEMPORARY, sizeof(LUMAFOLD_LABEL_TEMPORARY));
            entry->transition = list_.DefaultTransition();
            entry->pause = list_.DefaultPause();
            entry->delay = list_.DefaultDelay();
        }
        if (!list_.AddTemporary(block.Get())) return false;
        (void)block.Release();
        (void)background.Release();
        hasTemporary_ = true;
        count_ = 2;
        return true;
    }

    bool MeasureCanvas() {
        host_.Caption(LUMAFOLD_CAPTION_CALCULATING);
        for (std::int32_t i = 0; i < count_; ++i) {
            host_.Position(i + 1, count_);
            ImageEntry entry;
            std::int32_t width = 0, height = 0;
            if (!list_.Read(i, entry) || !DibQuery(entry.image, &width, &height, nullptr, nullptr))
                return false;
            canvasWidth_ = std::max(canvasWidth_, width);
            canvasHeight_ = std::max(canvasHeight_, height);
        }
        return true;
    }

    /// Asked where memory would run out: a host sees the same of a build that does not fit.
    bool FitsBudget() {
        BuildEstimate estimate;
        return EstimateBuild(list_, request_.kind, settings_, request_.runner.Workers(), estimate) &&
               estimate.bytes <= request_.budget;
    }

    bool PlaceImages() {
        host_.Caption(LUMAFOLD_CAPTION_ADJUSTING);
        for (std::int32_t i = 0; i < count_; ++i) {
            host_.Position(i + 1, count_);
            ImageEntry entry;
            if (!list_.Read(i, entry)) return false;
            OwnedDib placed = Place(entry.image);
            if (!placed) return false;
            entry.workImage = placed.Get();
            entry.frames = &frames_;
            if (!list_.Write(i, entry)) return false;
            (void)placed.Release();
        }
        return true;
    }

    /// The picture in true colour, centred on a canvas of the matte colour.
    OwnedDib Place(DibHandle image) const {
        const ReadDib loaded(image);
        if (!loaded) return {};
        const OwnedDib source = DibToTrueColour(*loaded);
        if (!source) return {};
        OwnedDib canvas = DibCreateFlat(canvasWidth_, canvasHeight_, settings_.TransitionMattcolour);
        if (!canvas) return {};
        DibCopyRect(*canvas, (canvasWidth_ - source->biWidth) / 2, (canvasHeight_ - source->biHeight) / 2,
                    *source, 0, 0, source->biWidth, source->biHeight);
        return canvas;
    }

    bool RenderGaps() {
        host_.ResetPosition();
        host_.Caption(LUMAFOLD_CAPTION_BUILDING);
        // Gaps whose frames must be rendered in turn keep one worker busy each; all others use every worker.
        const std::size_t most = std::min<std::size_t>(request_.runner.Workers(), kMostGapsAtOnce);
        for (std::int32_t first = 0; first < count_;) {
            std::array<TransitionContext, kMostGapsAtOnce> contexts;
            std::size_t gaps = 0;
            do {
                host_.Position(first + 1, count_);
                if (first == 0 && !FitsBudget()) return false;
                if (!ReadGap(first++, contexts[gaps++])) return false;
            } while (gaps < most && first < count_ && RendersInTurn(contexts[gaps - 1].transition) &&
                     RendersInTurn(TransitionOf(first)));
            if (!RenderGaps({contexts.data(), gaps})) return false;
        }
        host_.ResetPosition();
        return frames_.count >= 2;
    }

    /// -1 where the line cannot be read.
    std::int32_t TransitionOf(std::int32_t index) {
        ImageEntry entry;
        return list_.Read(index, entry) ? entry.transition : -1;
    }

    /// The list wraps: before the first picture comes the last, and the last leads back to the first.
    bool ReadGap(std::int32_t index, TransitionContext& context) {
        ImageEntry previous, next, current;
        if (!list_.Read((index + count_ - 1) % count_, previous) || !list_.Read((index + 1) % count_, next) ||
            !list_.Read(index, current)) {
            return false;
        }
        std::memcpy(&context, &current, sizeof(context));
        context.nextImage = next.workImage;
        context.previousImage = previous.workImage;
        context.carryWord = carryWord_;
        context.paletteBits = paletteBits_;
        context.palette = palette_;
        context.window = request_.window;
        return context.transition >= 0 && context.transition < kTransitionCount;
    }

    /// One gap with every worker, or several with one each; their frames are appended in order.
    bool RenderGaps(std::span<TransitionContext> gaps) {
        std::atomic<bool> failed = false;
        const auto render = [&](TransitionContext& gap, const Runner& runner) {
            const auto& row = TransitionTable[static_cast<std::size_t>(gap.transition)];
            if (row.effect(gap, settings_, runner) == 0) failed = true;
            assert(gap.carryWord == carryWord_ && "no effect changes what it is given to pass on");
        };
        if (gaps.size() == 1) {
            render(gaps[0], request_.runner);
        } else {
            std::array<OwnedFrameList, kMostGapsAtOnce> lists;
            request_.runner.ForEach(gaps.size(), [&](std::size_t i) {
                gaps[i].frames = &*lists[i];
                render(gaps[i], Runner());
            });
            for (std::size_t i = 0; i < gaps.size() && !failed; ++i) {
                if (!FrameListTakeAll(frames_, *lists[i])) failed = true;
            }
        }
        carryWord_ = gaps.back().carryWord;
        return !failed;
    }

    /// A palette for these very frames, darkest colour first, and behind it the slot for what is transparent.
    bool ChoosePalette() {
        if (settings_.TransitionTruecolour != 0 || settings_.TransitionCustompalette == 0) return true;
        host_.Caption(LUMAFOLD_CAPTION_QUANTIZING);
        colourCount_ = supercompress_ ? 255 : 256;
        // Without even a tree the palette is black, and the build goes on with it (docs/quirks.md 61).
        const PaletteResult made = ComputeOptimalPalette(frames_, colourCount_, palette_, request_.runner);
        if (made == PaletteResult::Failed) return false;
        SortByLuminance(palette_, colourCount_);
        paletteBits_ = PaletteBitsFor(supercompress_ ? colourCount_ + 1 : colourCount_);
        if (supercompress_) {
            transparentSlot_ = colourCount_;
            palette_[static_cast<std::size_t>(transparentSlot_)] = RgbOf(settings_.TransitionMattcolour);
        }
        return true;
    }

    /// Calls `work(index, record)` for every frame, several for each worker in turn as they take longer and
    /// shorter. Positions are told in order, each before the work on its frame. False as soon as one fails.
    template <typename Work>
    bool ForEachFrame(Work work) {
        // Locked until all are done, so that no record can be lost that was given another picture.
        const GlobalLocked<FrameRecord> records(frames_.handle);
        if (!records) return false;
        const auto workers = static_cast<std::int32_t>(request_.runner.Workers());
        const std::int32_t atOnce = workers == 1 ? 1 : 4 * workers;
        std::atomic<bool> failed = false;
        for (std::int32_t first = 0; first < frames_.count && !failed; first += atOnce) {
            const std::int32_t count = std::min(atOnce, frames_.count - first);
            for (std::int32_t i = 0; i < count; ++i)
                host_.Position(first + i, frames_.count);
            request_.runner.ForEach(static_cast<std::size_t>(count), [&](std::size_t i) {
                const std::int32_t index = first + static_cast<std::int32_t>(i);
                if (!work(index, records.Get()[index])) failed = true;
            });
        }
        return !failed;
    }

    bool MarkUnchangedPixels() {
        if (!supercompress_) return true;
        host_.Caption(LUMAFOLD_CAPTION_SUPERCOMPRESSING);
        return ForEachFrame([&](std::int32_t index, FrameRecord& frame) {
            // The picture before stays as it is while others are marked.
            return index == 0 || MarkUnchanged((&frame)[-1].image, frame, settings_.TransitionMattcolour);
        });
    }

    bool ReduceColours() {
        host_.ResetPosition();
        host_.Caption(LUMAFOLD_CAPTION_REMAPPING);
        std::optional<Remapper> remapper;
        if (settings_.TransitionTruecolour == 0) {
            remapper.emplace(palette_, paletteBits_, colourCount_, RemapOptionsOf(settings_));
            if (!*remapper) return false;
        }
        return ForEachFrame([&](std::int32_t, FrameRecord& frame) {
            return ReduceFrame(remapper ? &*remapper : nullptr, frame);
        });
    }

    /// Puts the reduced picture in the place of the frame's, which is freed; on failure it keeps the one it
    /// had. `remapper` null keeps true colour.
    bool ReduceFrame(const Remapper* remapper, FrameRecord& frame) const {
        if (remapper != nullptr) {
            OwnedDib reduced;
            if (const ReadDib picture(frame.image); picture) reduced = remapper->Reduce(*picture);
            if (!reduced) return false;
            GlobalDestroy(std::exchange(frame.image, reduced.Release()));
        }
        return PaintUnchanged(frame, transparentSlot_, settings_.TransitionMattcolour);
    }

    bool HandOver() {
        host_.ResetPosition();
        TaskRecord task{};
        task.owner = request_.window;
        task.width = canvasWidth_;
        task.height = canvasHeight_;
        task.paletteBits = paletteBits_;
        task.palette = palette_;
        task.frameCount = frames_.count;
        if (!host_.CreateTask(request_.kind, task)) return Fail(BuildFailure::Task);
        for (std::int32_t i = 0; i < frames_.count; ++i) {
            if (AddFrame(task, i)) continue;
            host_.FinishTask(task, TaskEnd::Abandoned);
            return false;
        }
        if (settings_.AddDescriptiveCommentBlock != 0) host_.AddComment(task, kDescriptiveComment);
        host_.FinishTask(task, TaskEnd::Complete);
        return true;
    }

    bool AddFrame(TaskRecord& task, std::int32_t index) {
        FrameRecord frame;
        if (!FrameListGet(frames_, index, frame)) return Fail(BuildFailure::Memory);
        ImageRecord record{};
        record.image = frame.image;
        record.delay = frame.delay;
        record.index = index;
        record.transparentIndex = frame.transparentIndex;
        return host_.AddFrame(task, record) || Fail(BuildFailure::Frame);
    }

    /// Leaves the list as it was found; the user's own pictures stay.
    void PutBack() {
        ImageEntry entry;
        for (std::int32_t i = 0; i < count_; ++i) {
            if (!list_.Read(i, entry)) continue;
            GlobalDestroy(entry.workImage);
            entry.workImage = 0;
            entry.frames = nullptr;
            list_.Write(i, entry);
        }
        if (!hasTemporary_) return;
        if (list_.Read(0, entry)) {
            GlobalDestroy(entry.image);
            list_.Write(0, ImageEntry{});
        }
        list_.DeleteFirst();
    }

    const BuildRequest& request_;
    const PluginSettings& settings_;
    ImageList& list_;
    const Host host_;
    const bool supercompress_;

    FrameList frames_{}; ///< owned
    Palette palette_{};
    int paletteBits_ = 8;
    // A fixed palette is searched over all 256 entries, the black ones beyond its own count included
    // (docs/quirks.md 60).
    int colourCount_ = 256;
    int transparentSlot_ = -1;
    std::int32_t count_ = 0;
    bool hasTemporary_ = false;
    std::int32_t canvasWidth_ = 0, canvasHeight_ = 0; // of every frame
    std::int32_t carryWord_ = 1;
};

} // namespace

std::uint64_t UsualBudget() { return MemoryRoom() / 8 * 7; }

int BuildAnimation(const BuildRequest& request) {
    AnimationBuild build(request);
    return build.Run() ? 1 : 0;
}

} // namespace lumafold
