#include "hosts/desktop/file_size.h"

#include <span>

namespace lumafold {
namespace {

/// What is written within moments, in pixels.
constexpr std::uint64_t kQuickIndexes = 24'000'000, kQuickColours = 4'000'000;

Animation Beginning(const Animation& animation, std::size_t frames) {
    Animation beginning;
    beginning.width = animation.width;
    beginning.height = animation.height;
    beginning.paletteBits = animation.paletteBits;
    beginning.palette = animation.palette;
    for (const AnimationFrame& frame : std::span(animation.frames).first(frames))
        beginning.frames.push_back(
            {OwnedDib(GlobalDuplicate(frame.image.Get())), frame.delay, frame.transparentIndex});
    return beginning;
}

} // namespace

FileSize MeasureFile(const Animation& animation, const FrameProgress& progress) {
    const bool trueColour = HasTrueColour(animation);
    const auto encoded = [&](const Animation& part) {
        std::string error;
        const AnimationKind kind = trueColour ? AnimationKind::Apng : AnimationKind::Gif;
        return static_cast<std::uint64_t>(EncodeAnimation(kind, part, error, {.goOn = progress}).size());
    };
    const std::uint64_t framePixels =
        static_cast<std::uint64_t>(animation.width) * static_cast<std::uint64_t>(animation.height);
    const std::uint64_t affordable = (trueColour ? kQuickColours : kQuickIndexes) / framePixels;
    const std::uint64_t count = animation.frames.size();
    if (affordable >= count) return {encoded(animation), false};
    const std::uint64_t sample = std::max<std::uint64_t>(affordable, 1);
    return {encoded(Beginning(animation, static_cast<std::size_t>(sample))) * count / sample, true};
}

SizeMeasurer::SizeMeasurer(std::function<void()> done) : done_(std::move(done)), thread_([this] { Run(); }) {}

SizeMeasurer::~SizeMeasurer() {
    {
        const std::lock_guard lock(mutex_);
        leaving_ = true;
        wanted_ = nullptr;
    }
    changed_.notify_all();
    thread_.join();
}

void SizeMeasurer::Measure(std::shared_ptr<const Animation> animation) {
    const std::lock_guard lock(mutex_);
    wanted_ = std::move(animation);
    changed_.notify_all();
}

std::optional<SizeMeasurer::Measured> SizeMeasurer::Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(measured_, std::nullopt);
}

void SizeMeasurer::Run() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return leaving_ || wanted_ != nullptr; });
        if (leaving_) return;
        const std::shared_ptr<const Animation> animation = wanted_;
        lock.unlock();
        FileSize size;
        try {
            size = MeasureFile(*animation, [&](std::size_t, std::size_t) {
                const std::lock_guard inside(mutex_);
                return wanted_ == animation;
            });
        } catch (const std::exception&) {
            // Without the memory for it, the size stays unknown.
        }
        lock.lock();
        if (wanted_ != animation) continue;
        wanted_ = nullptr;
        measured_ = {animation, size};
        lock.unlock();
        done_();
        lock.lock();
    }
}

} // namespace lumafold
