#include "hosts/common/task_collector.h"

#include "settings/settings.h"

namespace lumafold {
namespace {

/// Whether a block holds all that its header promises.
bool IsWholePicture(DibHandle handle) {
    const std::size_t bytes = GlobalBytes(handle);
    if (bytes < sizeof(DibHeader)) return false;
    const ReadDib dib(handle);
    if (!dib || dib->biSize != sizeof(DibHeader) || dib->biWidth < 1 || dib->biHeight < 1) return false;
    if (dib->biBitCount == 0 || DibRoundBitDepth(dib->biBitCount) != dib->biBitCount) return false;
    const std::uint64_t rows =
        DibStride(dib->biWidth, dib->biBitCount) * static_cast<std::uint64_t>(dib->biHeight);
    return rows <= bytes - std::min(bytes, DibRowsOffset(*dib));
}

std::int32_t Hundredths(std::int32_t delay, DelayUnit unit) {
    const std::int32_t positive = std::max(delay, 0);
    return unit == DelayUnit::Hundredths ? positive : positive / 10 + (positive % 10 >= 5 ? 1 : 0);
}

} // namespace

DelayUnit DelayUnitFor(std::uint32_t capabilityFlags) {
    return (capabilityFlags & kHostTakesSupercompression) != 0 ? DelayUnit::Hundredths
                                                               : DelayUnit::Milliseconds;
}

bool TaskCollector::Open(const TaskRecord* task) {
    if (task == nullptr || IsOpen() || task->width < 1 || task->height < 1) return false;
    animation_ = {};
    animation_.width = task->width;
    animation_.height = task->height;
    animation_.paletteBits = std::clamp(task->paletteBits, 1, 8);
    animation_.palette = task->palette;
    task_ = task;
    return true;
}

// The picture stays the plug-in's, which frees it as soon as the task is finished.
bool TaskCollector::Add(const TaskRecord* task, const ImageRecord* frame) {
    if (!IsOpen(task) || frame == nullptr) return false;
    if (frame->index != static_cast<std::int32_t>(animation_.frames.size())) return false;
    OwnedDib copy(GlobalDuplicate(frame->image));
    if (!copy || !IsWholePicture(copy.Get())) return false;
    animation_.frames.push_back({std::move(copy), Hundredths(frame->delay, unit_), frame->transparentIndex});
    return true;
}

bool TaskCollector::Comment(const TaskRecord* task, const char* text) {
    if (!IsOpen(task) || text == nullptr) return false;
    animation_.comment = text;
    return true;
}

std::optional<Animation> TaskCollector::Finish(const TaskRecord* task, bool complete) {
    if (!IsOpen(task)) return std::nullopt;
    Animation animation = std::move(animation_);
    Abandon();
    if (!complete || animation.frames.empty()) return std::nullopt;
    return animation;
}

void TaskCollector::Abandon() {
    task_ = nullptr;
    animation_ = {};
}

} // namespace lumafold
