#include "build/build_driver.h"

#include "build/estimate.h"
#include "colour/palettes.h"
#include "colour/quantizer.h"
#include "colour/remap.h"
#include "colour/supercompression.h"
#include "image/resample.h"
#include "image/row_view.h"
#include "resources/texts/strings.h"
#include "settings/settings.h"
#include "transitions/table.h"

namespace lumafold {
namespace {

/// One build, from the list to the host. Its steps return false to stop; its end puts everything back.
class AnimationBuild {
public:
    AnimationBuild(ImageList& list, WindowHandle window, const HostContext& host, TaskKind kind,
                   std::uint64_t budget)
        : list_(list), window_(window), host_(host), kind_(kind), budget_(budget),
          supercompress_(kind == TaskKind::Build && pluginSettings.Supercompress != 0) {}
    AnimationBuild(const AnimationBuild&) = delete;
    AnimationBuild& operator=(const AnimationBuild&) = delete;
    ~AnimationBuild() { PutBack(); }

    bool Run() {
        BuildFixedPalette(&palette_, &paletteBits_,
                          static_cast<std::int32_t>(pluginSettings.TransitionPalette));
        if (!CountEntries() || !MeasureCanvas() || !FitsBudget() || !PlaceImages() || !RenderGaps() ||
            !ChoosePalette() || !MarkUnchangedPixels() || !ReduceColours()) {
            ShowMessage(window_, LUMAFOLD_TEXT_MEMORY_ERROR);
            return false;
        }
        return HandOver();
    }

private:
    bool CountEntries();
    bool AddTemporaryEntry();
    bool MeasureCanvas();
    bool FitsBudget();
    bool PlaceImages();
    OwnedDib Place(DibHandle image) const;
    bool RenderGaps();
    bool RenderGap(std::int32_t index);
    bool ChoosePalette();
    bool MarkUnchangedPixels();
    bool ReplaceImage(std::int32_t index, FrameRecord& frame, OwnedDib& image);
    bool ReduceColours();
    bool HandOver();
    void PutBack();

    ImageList& list_;
    const WindowHandle window_;
    const Host host_;
    const TaskKind kind_;
    const std::uint64_t budget_;
    const bool supercompress_;

    const WaitCursor cursor_; // declared before the frames, so that they are freed before it goes
    OwnedFrameList frames_;
    Palette palette_{};
    int paletteBits_ = 8;
    // A fixed palette is searched over all 256 entries, the black ones beyond its own count included: wanted.
    int colourCount_ = 256;
    int transparentSlot_ = -1;
    std::int32_t count_ = 0;
    bool hasTemporary_ = false;
    std::int32_t canvasWidth_ = 0, canvasHeight_ = 0;
    std::int32_t frameWidth_ = 0, frameHeight_ = 0;
    std::int32_t carryWord_ = 1;
};

bool AnimationBuild::CountEntries() {
    count_ = list_.Count();
    if (count_ < 1) return false;
    return count_ > 1 || AddTemporaryEntry();
}

/// One picture alone fades to the matte colour and back.
bool AnimationBuild::AddTemporaryEntry() {
    ImageEntry only;
    std::int32_t width = 0, height = 0;
    if (!list_.Read(0, only) || !DibQuery(only.image, &width, &height, nullptr, nullptr)) return false;
    OwnedDib background(DibCreateFlat(width, height, pluginSettings.TransitionMattcolour));
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

bool AnimationBuild::MeasureCanvas() {
    host_.Caption(LUMAFOLD_CAPTION_CALCULATING);
    for (std::int32_t i = 0; i < count_; ++i) {
        host_.Position(i + 1, count_);
        ImageEntry entry;
        std::int32_t width = 0, height = 0;
        if (!list_.Read(i, entry) || !DibQuery(entry.image, &width, &height, nullptr, nullptr)) return false;
        canvasWidth_ = std::max(canvasWidth_, width);
        canvasHeight_ = std::max(canvasHeight_, height);
    }
    return true;
}

/// Asked where memory would run out first: what a host sees of a build that fits is not changed by it.
bool AnimationBuild::FitsBudget() {
    BuildEstimate estimate;
    return EstimateBuild(list_, kind_, estimate) && estimate.bytes <= budget_;
}

bool AnimationBuild::PlaceImages() {
    host_.Caption(LUMAFOLD_CAPTION_ADJUSTING);
    for (std::int32_t i = 0; i < count_; ++i) {
        host_.Position(i + 1, count_);
        ImageEntry entry;
        if (!list_.Read(i, entry)) return false;
        OwnedDib placed = Place(entry.image);
        if (!placed) return false;
        entry.workImage = placed.Get();
        entry.frames = &*frames_;
        if (!list_.Write(i, entry)) return false;
        (void)placed.Release();
    }
    return true;
}

/// The picture in true colour, centred on a canvas of the matte colour.
OwnedDib AnimationBuild::Place(DibHandle image) const {
    const OwnedDib converted(DibToTrueColour(image));
    const LockedDib source(converted.Get());
    if (!source) return {};
    OwnedDib canvas(DibCreateFlat(canvasWidth_, canvasHeight_, pluginSettings.TransitionMattcolour));
    const LockedDib target(canvas.Get());
    if (!target) return {};
    DibCopyRect(target.Get(), (canvasWidth_ - source->biWidth) / 2, (canvasHeight_ - source->biHeight) / 2,
                source.Get(), 0, 0, source->biWidth, source->biHeight);
    return canvas;
}

bool AnimationBuild::RenderGaps() {
    host_.ResetPosition();
    host_.Caption(LUMAFOLD_CAPTION_BUILDING);
    for (std::int32_t i = 0; i < count_; ++i) {
        host_.Position(i + 1, count_);
        if (!RenderGap(i)) return false;
    }
    host_.ResetPosition();
    return frames_->count >= 2;
}

/// The list wraps: before the first picture comes the last, and the last leads back to the first.
bool AnimationBuild::RenderGap(std::int32_t index) {
    ImageEntry previous, next, current;
    if (!list_.Read((index + count_ - 1) % count_, previous) || !list_.Read((index + 1) % count_, next) ||
        !list_.Read(index, current)) {
        return false;
    }
    TransitionContext context;
    std::memcpy(&context, &current, sizeof(context));
    context.nextImage = next.workImage;
    context.previousImage = previous.workImage;
    context.carryWord = carryWord_;
    context.paletteBits = paletteBits_;
    context.palette = palette_;
    context.window = window_;
    if (context.transition < 0 || context.transition >= kTransitionCount) return false;
    const int done = TransitionTable[static_cast<std::size_t>(context.transition)].effect(context);
    carryWord_ = context.carryWord;
    return done != 0;
}

/// A palette for these very frames, darkest colour first, and behind it the slot for what is transparent.
bool AnimationBuild::ChoosePalette() {
    if (pluginSettings.TransitionTruecolour != 0 || pluginSettings.TransitionCustompalette == 0) return true;
    host_.Caption(LUMAFOLD_CAPTION_QUANTIZING);
    colourCount_ = supercompress_ ? 255 : 256;
    // Without even a tree the palette is black, and the build goes on with it: wanted.
    if (ComputeOptimalPalette(*frames_, colourCount_, palette_) == PaletteResult::Failed) return false;
    SortByLuminance(palette_, colourCount_);
    paletteBits_ = PaletteBitsFor(supercompress_ ? colourCount_ + 1 : colourCount_);
    if (supercompress_) {
        const PixelValue matte = pluginSettings.TransitionMattcolour;
        transparentSlot_ = colourCount_;
        palette_[static_cast<std::size_t>(transparentSlot_)] = {static_cast<std::uint8_t>(RedOf(matte)),
                                                                static_cast<std::uint8_t>(GreenOf(matte)),
                                                                static_cast<std::uint8_t>(BlueOf(matte))};
    }
    return true;
}

bool AnimationBuild::MarkUnchangedPixels() {
    if (!supercompress_) return true;
    host_.Caption(LUMAFOLD_CAPTION_SUPERCOMPRESSING);
    OwnedDib reference;
    for (std::int32_t i = 0; i < frames_->count; ++i) {
        host_.Position(i, frames_->count);
        FrameRecord frame;
        if (!FrameListGet(*frames_, i, frame)) return false;
        const bool marked = MarkUnchanged(reference, frame, pluginSettings.TransitionMattcolour);
        // The record is written back either way: a mask it got is the list's to free.
        if (!FrameListPut(*frames_, i, frame) || !marked) return false;
    }
    return true;
}

/// Puts a picture in the place of a frame's, which is freed; on failure the list keeps the one it had.
bool AnimationBuild::ReplaceImage(std::int32_t index, FrameRecord& frame, OwnedDib& image) {
    const DibHandle replaced = std::exchange(frame.image, image.Get());
    if (!FrameListPut(*frames_, index, frame)) return false;
    (void)image.Release();
    GlobalDestroy(replaced);
    return true;
}

bool AnimationBuild::ReduceColours() {
    host_.ResetPosition();
    host_.Caption(LUMAFOLD_CAPTION_REMAPPING);
    Remapper remapper(palette_, paletteBits_, colourCount_);
    for (std::int32_t i = 0; i < frames_->count; ++i) {
        host_.Position(i, frames_->count);
        FrameRecord frame;
        if (!FrameListGet(*frames_, i, frame)) return false;
        if (pluginSettings.TransitionTruecolour == 0) {
            OwnedDib reduced(pluginSettings.TransitionDither != 0 ? remapper.Dither(frame.image)
                                                                  : remapper.Remap(frame.image));
            if (!reduced || !ReplaceImage(i, frame, reduced)) return false;
        }
        if (supercompress_ && frame.mask != 0) {
            if (!PaintUnchanged(frame, transparentSlot_, pluginSettings.TransitionMattcolour) ||
                !FrameListPut(*frames_, i, frame)) {
                return false;
            }
        }
        std::int32_t width = 0, height = 0;
        if (!DibQuery(frame.image, &width, &height, nullptr, nullptr)) return false;
        frameWidth_ = std::max(frameWidth_, width);
        frameHeight_ = std::max(frameHeight_, height);
    }
    return true;
}

bool AnimationBuild::HandOver() {
    host_.ResetPosition();
    TaskRecord task{};
    task.size = sizeof(task);
    task.version = kInterfaceVersion;
    task.owner = window_;
    task.width = frameWidth_;
    task.height = frameHeight_;
    task.paletteBits = paletteBits_;
    task.palette = palette_;
    task.frameCount = frames_->count;
    if (!host_.CreateTask(kind_, task)) {
        ShowMessage(window_, LUMAFOLD_TEXT_TASK_ERROR);
        return false;
    }
    for (std::int32_t i = 0; i < frames_->count; ++i) {
        FrameRecord frame{};
        ImageRecord record{};
        record.size = sizeof(record);
        record.version = kInterfaceVersion;
        const bool known = FrameListGet(*frames_, i, frame);
        record.image = frame.image;
        record.delay = frame.delay;
        record.index = i;
        record.transparentIndex = frame.transparentIndex;
        if (!known || !host_.AddFrame(task, record)) {
            ShowMessage(window_, LUMAFOLD_TEXT_FRAME_ERROR);
            host_.FinishTask(task, TaskEnd::Abandoned);
            return false;
        }
    }
    if (pluginSettings.AddDescriptiveCommentBlock != 0) host_.AddComment(task, kDescriptiveComment);
    host_.FinishTask(task, TaskEnd::Complete);
    return true;
}

/// Leaves the list as it was found; the user's own pictures stay.
void AnimationBuild::PutBack() {
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

} // namespace

int BuildAnimation(ImageList& list, WindowHandle window, const HostContext& host, TaskKind kind,
                   std::uint64_t budget) {
    AnimationBuild build(list, window, host, kind, budget);
    return build.Run() ? 1 : 0;
}

} // namespace lumafold
