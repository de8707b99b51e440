// How large the file of an animation will be, worked out on a thread of its own.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "codecs/animation_writer.h"

namespace lumafold {

struct FileSize {
    std::uint64_t bytes = 0; ///< 0 while it is not known
    bool estimated = false;
};

/// The file that saving as GIF, or in true colour as PNG, would write. It is written in memory; of a long
/// animation only the beginning, the rest taken to be like it. 0 when it cannot be written or is given up.
FileSize MeasureFile(const Animation& animation, const FrameProgress& progress);

/// Measures one animation at a time; the next one takes the place of what is under way.
class SizeMeasurer {
public:
    /// `done` is called on the measuring thread when there is something to Take.
    explicit SizeMeasurer(std::function<void()> done);
    SizeMeasurer(const SizeMeasurer&) = delete;
    SizeMeasurer& operator=(const SizeMeasurer&) = delete;
    ~SizeMeasurer();

    /// Nothing happens for the animation that is being measured. Null gives up.
    void Measure(std::shared_ptr<const Animation> animation);

    struct Measured {
        std::shared_ptr<const Animation> animation;
        FileSize size;
    };
    std::optional<Measured> Take();

private:
    void Run();

    std::function<void()> done_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::shared_ptr<const Animation> wanted_; ///< guarded by the mutex, like the next two
    std::optional<Measured> measured_;
    bool leaving_ = false;
    std::thread thread_; ///< last: it uses all of the above
};

} // namespace lumafold
