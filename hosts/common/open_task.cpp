#include "hosts/common/open_task.h"

#include "settings/settings.h"

namespace lumafold {

DelayUnit DelayUnitFor(std::uint32_t capabilityFlags) {
    return (capabilityFlags & kHostTakesSupercompression) != 0 ? DelayUnit::Hundredths
                                                               : DelayUnit::Milliseconds;
}

bool OpenTask::Open(const TaskRecord* task) {
    if (task == nullptr || IsOpen() || task->width < 1 || task->height < 1) return false;
    facts_ = {task->width, task->height, std::clamp(task->paletteBits, 1, 8), task->palette, 0};
    toldFrames_ = task->frameCount;
    frames_ = 0;
    task_ = task;
    return true;
}

/// Whether a block holds all that its header promises.
bool OpenTask::IsWholePicture(DibHandle handle) {
    const std::size_t bytes = GlobalBytes(handle);
    if (bytes < sizeof(DibHeader)) return false;
    const ReadDib dib(handle);
    if (!dib || dib->biSize != sizeof(DibHeader) || dib->biWidth < 1 || dib->biHeight < 1) return false;
    if (dib->biBitCount == 0 || DibRoundBitDepth(dib->biBitCount) != dib->biBitCount) return false;
    const std::uint64_t rows =
        DibStride(dib->biWidth, dib->biBitCount) * static_cast<std::uint64_t>(dib->biHeight);
    return rows <= bytes - std::min(bytes, DibRowsOffset(*dib));
}

std::int32_t OpenTask::Hundredths(std::int32_t delay) const {
    const std::int32_t positive = std::max(delay, 0);
    return unit_ == DelayUnit::Hundredths ? positive : positive / 10 + (positive % 10 >= 5 ? 1 : 0);
}

} // namespace lumafold
