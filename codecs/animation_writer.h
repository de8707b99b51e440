// Animations to files, whole or frame by frame as a host is handed them: GIF, animated PNG, and MNG of low
// complexity. Every frame is cut to what it changes on screen, and packed for itself.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>

#include "codecs/file_kinds.h"
#include "codecs/frame_changes.h"
#include "codecs/pieced_file.h"
#include "platform/runner.h"

namespace lumafold {

/// How hard to pack PNG data: 1 is fastest, 12 smallest.
inline constexpr int kLeastEffort = 1, kMostEffort = 12, kUsualEffort = 6;

/// A frame that was taken, with all that packing it needs.
class PackedFrame {
public:
    virtual ~PackedFrame() = default;

    /// Packs it on any thread, at once with other frames. Throws std::bad_alloc.
    virtual void Pack() = 0;
};

/// A file in the making. Members throw AnimationError for what the format cannot hold, and std::bad_alloc.
class AnimationWriter {
public:
    virtual ~AnimationWriter() = default;

    /// The next frame. What it changes is copied, so that the picture may go, and packed beside the caller.
    void Add(const FrameView& frame);
    /// The whole file. `comment` "" for none. `delays` has one for each frame and takes the place of those
    /// that they came with; empty leaves them. The writer is spent.
    PiecedFile Finish(const std::string& comment, std::span<const std::int32_t> delays = {});

protected:
    explicit AnimationWriter(const Runner& runner) : runner_(runner) {}
    /// Copies what the frame changes. What it returns stays where it is until packing has ended.
    virtual PackedFrame& Take(const FrameView& frame) = 0;
    virtual std::size_t Frames() const = 0;
    virtual void SetDelay(std::size_t frame, std::int32_t delay) = 0;
    /// The file of frames that are all packed, of which there is one at least.
    virtual PiecedFile Assemble(const std::string& comment) = 0;
    /// Returns when all frames that were taken are packed or have failed; called before any of them goes.
    void AwaitPacking() const { runner_.Settle(); }
    /// The same; throws std::bad_alloc when one has failed.
    void FinishPacking() const;

private:
    /// Packs a frame, and notes when there is no memory for it.
    struct Packing {
        PackedFrame& frame;
        std::atomic<bool>& noMemory;
        void operator()() const;
    };

    const Runner& runner_;
    std::deque<Packing> packings_;
    std::atomic<bool> noMemory_ = false;
};

/// Throws AnimationError for sides that the format cannot hold. GIF knows no effort. `runner` packs, and
/// outlives the writer.
std::unique_ptr<AnimationWriter> NewAnimationWriter(AnimationKind kind, const AnimationFacts& facts,
                                                    int effort, const Runner& runner);

/// Told of each frame before it is worked on, on the writer's thread; false gives up. Empty where nobody
/// asks.
using FrameProgress = std::function<bool(std::size_t frame, std::size_t frames)>;

struct WriteOptions {
    int effort = kUsualEffort;
    FrameProgress goOn{};
    /// One for each frame, in the place of its own; empty where those stay.
    std::span<const std::int32_t> delays{};
};

/// The whole file in memory, or empty with `error` set (no frames, what the format cannot hold, given up, no
/// memory).
std::vector<std::uint8_t> EncodeAnimation(AnimationKind kind, const Animation& animation, std::string& error,
                                          const WriteOptions& options = {});

} // namespace lumafold
