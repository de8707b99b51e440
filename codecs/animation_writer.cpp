#include "codecs/writers.h"

namespace lumafold {
namespace {

std::vector<std::uint8_t> Encode(AnimationKind kind, const Animation& animation,
                                 const WriteOptions& options) {
    const AnimationFacts facts{animation.width, animation.height, animation.paletteBits, animation.palette,
                               animation.plays};
    const std::unique_ptr<AnimationWriter> writer = NewAnimationWriter(kind, facts, options.effort);
    std::size_t done = 0;
    for (const AnimationFrame& frame : animation.frames) {
        if (options.goOn && !options.goOn(done++, animation.frames.size())) throw AnimationError("cancelled");
        if (!frame.image) throw AnimationError("a frame of the animation has no picture");
        writer->Add({*frame.image, frame.delay, frame.transparentIndex});
    }
    return writer->Finish(animation.comment);
}

} // namespace

std::unique_ptr<AnimationWriter> NewAnimationWriter(AnimationKind kind, const AnimationFacts& facts,
                                                    int effort) {
    switch (kind) {
    case AnimationKind::Gif:
        break;
    case AnimationKind::Apng:
        return NewApngWriter(facts, effort);
    case AnimationKind::Mng:
        return NewMngWriter(facts, effort);
    }
    return NewGifWriter(facts);
}

std::vector<std::uint8_t> EncodeAnimation(AnimationKind kind, const Animation& animation, std::string& error,
                                          const WriteOptions& options) {
    return FileOrError([&] { return Encode(kind, animation, options); }, error);
}

} // namespace lumafold
