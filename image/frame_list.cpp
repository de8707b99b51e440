#include "image/frame_list.h"

namespace lumafold {

bool FrameListAppend(FrameList& list, const FrameRecord& record) {
    if (list.count == INT32_MAX) return false;
    const std::size_t bytes = (static_cast<std::size_t>(list.count) + 1) * sizeof(FrameRecord);
    const GlobalHandle grown =
        list.handle == 0 ? GlobalCreate(GlobalKind::Movable, bytes) : GlobalResize(list.handle, bytes);
    if (grown == 0) return false;
    list.handle = grown;
    const GlobalLocked<FrameRecord> records(grown);
    if (!records) return list.count == 0 ? (FrameListRelease(list), false) : false;
    records.Get()[list.count++] = record;
    return true;
}

bool FrameListAddImage(FrameList& list, OwnedDib image, std::int32_t delay) {
    const FrameRecord record{image.Get(), 0, delay, -1, {}};
    if (!image || !FrameListAppend(list, record)) return false;
    (void)image.Release();
    return true;
}

bool FrameListTakeAll(FrameList& list, FrameList& from) {
    const GlobalLocked<FrameRecord> records(from.handle);
    if (!records) return from.count == 0;
    for (std::int32_t i = 0; i < from.count; ++i) {
        if (!FrameListAppend(list, records.Get()[i])) return false;
        records.Get()[i] = {};
    }
    return true;
}

bool FrameListGet(const FrameList& list, std::int32_t index, FrameRecord& record) {
    const GlobalLocked<const FrameRecord> records(index >= 0 && index < list.count ? list.handle : 0);
    if (!records) return false;
    record = records.Get()[index];
    return true;
}

void FrameRecordRelease(FrameRecord& record) {
    GlobalDestroy(record.image);
    GlobalDestroy(record.mask);
    record = {};
}

void FrameListRelease(FrameList& list) {
    FrameRecord record;
    for (std::int32_t i = 0; FrameListGet(list, i, record); ++i) {
        FrameRecordRelease(record);
    }
    GlobalDestroy(list.handle);
    list = {};
}

} // namespace lumafold
