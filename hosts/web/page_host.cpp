#include "hosts/web/page_host.h"

namespace lumafold {

bool PageHost::CreateTask(const TaskRecord* task, TaskKind) { return !animation_ && task_.Open(task); }
bool PageHost::AddFrame(const TaskRecord* task, const ImageRecord* frame) { return task_.Add(task, frame); }
bool PageHost::AddComment(const TaskRecord* task, const char* text) { return task_.Comment(task, text); }

bool PageHost::FinishTask(const TaskRecord* task, TaskEnd end) {
    if (!task_.IsOpen(task)) return false;
    animation_ = task_.Finish(task, end == TaskEnd::Complete);
    return animation_.has_value() == (end == TaskEnd::Complete);
}

void PageHost::Caption(const char* text) {
    caption_ = text;
    tell_(text, 0, 0);
}

void PageHost::Position(std::int32_t position, std::int32_t total) {
    tell_(caption_.c_str(), position, total);
}

} // namespace lumafold
