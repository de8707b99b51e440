// The frames of a build, in order: a growable array of records in one movable block. The list owns every
// picture in it; effects append, colour reduction rewrites in place, the hand-over to the host reads.
#pragma once

#include "image/dib.h"
#include "platform/non_copyable.h"

namespace lumafold {

#pragma pack(push, 1)
struct FrameRecord {
    DibHandle image;               ///< owned
    DibHandle mask;                ///< owned; one bit, 1 where nothing changed since the frame before; or 0
    std::int32_t delay;            ///< in the host's unit
    std::int32_t transparentIndex; ///< -1 for none
    std::uint8_t reserved[24];
};
struct FrameList {
    GlobalHandle handle; ///< the records; 0 before the first
    std::int32_t count;
};
#pragma pack(pop)
static_assert(sizeof(FrameRecord) == 40 && sizeof(FrameList) == 8);

/// Appends a copy of the record and owns its pictures from then on. False leaves the records as they were.
bool FrameListAppend(FrameList& list, const FrameRecord& record);
/// Appends a picture with nothing special about it, which is freed when the list does not take it; false for
/// no picture.
bool FrameListAddImage(FrameList& list, OwnedDib image, std::int32_t delay);

/// Appends the records of `from`, which no longer owns those that were taken. False when memory is short.
bool FrameListTakeAll(FrameList& list, FrameList& from);

/// Copies one record out; false, touching nothing, when there is no such slot or it cannot be locked.
bool FrameListGet(const FrameList& list, std::int32_t index, FrameRecord& record);

/// Frees the record's pictures and zeroes it.
void FrameRecordRelease(FrameRecord& record);
/// Frees everything and zeroes the list.
void FrameListRelease(FrameList& list);

/// A list that releases itself.
class OwnedFrameList : NonCopyable {
public:
    ~OwnedFrameList() { FrameListRelease(list_); }

    FrameList& operator*() { return list_; }
    FrameList* operator->() { return &list_; }
    const FrameList& operator*() const { return list_; }

private:
    FrameList list_{};
};

} // namespace lumafold
