// Animations to files, whole or frame by frame as a host is handed them: GIF, animated PNG, and MNG of low
// complexity. Every frame is cut to what it changes on screen, and packed for itself.
#pragma once

#include <functional>
#include <memory>

#include "codecs/file_kinds.h"
#include "codecs/frame_changes.h"

namespace lumafold {

/// How hard to pack PNG data: 1 is fastest, 12 smallest.
inline constexpr int kLeastEffort = 1, kMostEffort = 12, kUsualEffort = 6;

/// One frame on its way into a file.
class FrameWork {
public:
    virtual ~FrameWork() = default;
    /// Packs it, on any thread and in any order with other frames of the animation. Throws std::bad_alloc.
    virtual void Pack() = 0;
};

/// A file in the making. Members throw AnimationError for what the format cannot hold, and std::bad_alloc.
/// None may be called while a frame is being packed.
class AnimationWriter {
public:
    virtual ~AnimationWriter() = default;

    /// The next frame. What it changes is copied, so that the picture may go; the work stays the writer's.
    virtual FrameWork& Take(const FrameView& frame) = 0;
    void Add(const FrameView& frame) { Take(frame).Pack(); }
    /// The whole file; frames that are not yet packed are packed now. `comment` "" for none. The writer is
    /// spent.
    virtual std::vector<std::uint8_t> Finish(const std::string& comment) = 0;
};

/// Throws AnimationError for sides that the format cannot hold. GIF knows no effort.
std::unique_ptr<AnimationWriter> NewAnimationWriter(AnimationKind kind, const AnimationFacts& facts,
                                                    int effort = kUsualEffort);

/// Told of each frame before it is worked on, on the writer's thread; false gives up. Empty where nobody
/// asks.
using FrameProgress = std::function<bool(std::size_t frame, std::size_t frames)>;

struct WriteOptions {
    int effort = kUsualEffort;
    FrameProgress goOn{};
};

/// The whole file in memory, or empty with `error` set (no frames, what the format cannot hold, given up, no
/// memory).
std::vector<std::uint8_t> EncodeAnimation(AnimationKind kind, const Animation& animation, std::string& error,
                                          const WriteOptions& options = {});

} // namespace lumafold
