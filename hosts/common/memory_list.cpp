#include "hosts/common/memory_list.h"

namespace lumafold {

MemoryList::~MemoryList() {
    for (const GlobalHandle handle : entries_) {
        if (const GlobalLocked<ImageEntry> entry(handle); entry) {
            GlobalDestroy(entry->image);
            GlobalDestroy(entry->workImage);
        }
        GlobalDestroy(handle);
    }
}

bool MemoryList::Add(OwnedDib picture, std::string_view label, const GapValues& gap) {
    // One place more than there are pictures: the driver's temporary line must never have to allocate here.
    entries_.reserve(entries_.size() + 2);
    OwnedGlobal block(GlobalCreate(GlobalKind::Movable, sizeof(ImageEntry)));
    {
        const GlobalLocked<ImageEntry> entry(block.Get());
        if (!entry) return false;
        label.copy(entry->label, sizeof(entry->label) - 1);
        entry->transition = gap.transition;
        entry->pause = gap.pause;
        entry->delay = gap.delay;
        entry->flags = kEntryOverride;
        entry->image = picture.Release();
    }
    entries_.push_back(block.Release());
    return true;
}

GlobalHandle MemoryList::At(std::int32_t index) const {
    return index >= 0 && static_cast<std::size_t>(index) < entries_.size()
               ? entries_[static_cast<std::size_t>(index)]
               : 0;
}

bool MemoryList::Read(std::int32_t index, ImageEntry& entry) {
    const GlobalLocked<const ImageEntry> stored(At(index));
    if (!stored) return false;
    entry = *stored;
    return true;
}

bool MemoryList::Write(std::int32_t index, const ImageEntry& entry) {
    const GlobalLocked<ImageEntry> stored(At(index));
    if (!stored) return false;
    *stored = entry;
    return true;
}

bool MemoryList::AddTemporary(GlobalHandle entry) {
    if (entries_.size() == entries_.capacity()) return false;
    entries_.insert(entries_.begin(), entry);
    return true;
}

void MemoryList::DeleteFirst() {
    if (entries_.empty()) return;
    GlobalDestroy(entries_.front());
    entries_.erase(entries_.begin());
}

} // namespace lumafold
