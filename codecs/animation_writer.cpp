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
    return writer->Finish(animation.comment, options.delays).Join();
}

} // namespace

void AnimationWriter::Packing::operator()() const {
    try {
        frame.Pack();
    } catch (const std::bad_alloc&) {
        noMemory = true;
    }
}

void AnimationWriter::Add(const FrameView& frame) {
    packings_.push_back({Take(frame), noMemory_});
    runner_.Begin(packings_.back());
    if (noMemory_) throw std::bad_alloc();
}

PiecedFile AnimationWriter::Finish(const std::string& comment, std::span<const std::int32_t> delays) {
    if (Frames() == 0) throw AnimationError(kNoFrames);
    FinishPacking();
    for (std::size_t i = 0; i < delays.size(); ++i)
        SetDelay(i, delays[i]);
    return Assemble(comment);
}

void AnimationWriter::FinishPacking() const {
    AwaitPacking();
    if (noMemory_) throw std::bad_alloc();
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
