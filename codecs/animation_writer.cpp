#include <atomic>

#include "codecs/writers.h"

namespace lumafold {
namespace {

std::vector<std::uint8_t> Encode(AnimationKind kind, const Animation& animation,
                                 const WriteOptions& options) {
    const Runner runner;
    const std::unique_ptr<AnimationWriter> writer =
        NewAnimationWriter(kind, FactsOf(animation), options.effort, runner);
    std::size_t done = 0;
    for (const AnimationFrame& frame : animation.frames) {
        if (options.goOn && !options.goOn(done++, animation.frames.size())) throw AnimationError("cancelled");
        if (!frame.image) throw AnimationError("a frame of the animation has no picture");
        writer->Add({*frame.image, frame.delay, frame.transparentIndex});
    }
    return writer->Finish(animation.comment, options.delays);
}

} // namespace

// Several frames for each worker, as they take longer and shorter; one worker packs each at once.
void AnimationWriter::Add(const FrameView& frame) {
    constexpr std::size_t kFramesOfWorker = 6;
    Take(frame);
    ++waiting_;
    const std::size_t workers = runner_.Workers();
    if (waiting_ >= (workers == 1 ? 1 : workers * kFramesOfWorker)) PackAll();
}

std::vector<std::uint8_t> AnimationWriter::Finish(const std::string& comment,
                                                  std::span<const std::int32_t> delays) {
    if (Frames() == 0) throw AnimationError(kNoFrames);
    PackAll();
    for (std::size_t i = 0; i < delays.size(); ++i)
        SetDelay(i, delays[i]);
    return Assemble(comment);
}

void AnimationWriter::PackAll() {
    const std::size_t first = Frames() - waiting_;
    std::atomic<bool> failed = false;
    runner_.ForEach(waiting_, [&](std::size_t i) {
        try {
            Pack(first + i);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    });
    if (failed) throw std::bad_alloc();
    waiting_ = 0;
}

std::unique_ptr<AnimationWriter> NewAnimationWriter(AnimationKind kind, const AnimationFacts& facts,
                                                    int effort, const Runner& runner) {
    switch (kind) {
    case AnimationKind::Gif:
        break;
    case AnimationKind::Apng:
        return NewApngWriter(facts, effort, runner);
    case AnimationKind::Mng:
        return NewMngWriter(facts, effort, runner);
    }
    return NewGifWriter(facts, runner);
}

std::vector<std::uint8_t> EncodeAnimation(AnimationKind kind, const Animation& animation, std::string& error,
                                          const WriteOptions& options) {
    return FileOrError([&] { return Encode(kind, animation, options); }, error);
}

} // namespace lumafold
