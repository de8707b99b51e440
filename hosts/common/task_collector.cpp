#include "hosts/common/task_collector.h"

namespace lumafold {

bool TaskCollector::Open(const TaskRecord* task) {
    if (!task_.Open(task)) return false;
    const AnimationFacts& facts = task_.Facts();
    animation_ = {};
    animation_.width = facts.width;
    animation_.height = facts.height;
    animation_.paletteBits = facts.paletteBits;
    animation_.palette = facts.palette;
    return true;
}

// The picture stays the plug-in's, which frees it as soon as the task is finished.
bool TaskCollector::Add(const TaskRecord* task, const ImageRecord* frame) {
    return task_.Add(task, frame, [&](const FrameView& view) {
        OwnedDib copy(GlobalDuplicate(frame->image));
        if (!copy) return false;
        animation_.frames.push_back({std::move(copy), view.delay, view.transparentIndex});
        return true;
    });
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
    task_.Close();
    animation_ = {};
}

} // namespace lumafold
