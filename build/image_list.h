// The image list as the driver sees it: entries by number, one temporary line, and what stands in the
// dialog's controls. The list box implements it, and so does any host that keeps its list in memory.
#pragma once

#include "build/image_entry.h"
#include "platform/non_copyable.h"

namespace lumafold {

class ImageList : NonCopyable {
public:
    virtual ~ImageList() = default;

    virtual std::int32_t Count() = 0;
    /// Copy a whole record out or in; false when the line has none or it cannot be locked.
    virtual bool Read(std::int32_t index, ImageEntry& entry) = 0;
    virtual bool Write(std::int32_t index, const ImageEntry& entry) = 0;
    /// Adds a line with the text " ", which comes first, for an entry in a block of its own. The list owns
    /// the block on success.
    virtual bool AddTemporary(GlobalHandle entry) = 0;
    /// Deletes the first line and its block, not the entry's pictures.
    virtual void DeleteFirst() = 0;

    /// What the dialog's controls say: the row selected (0 when none is), and the numbers in its boxes.
    virtual std::int32_t DefaultTransition() = 0;
    virtual std::int32_t DefaultPause() = 0;
    virtual std::int32_t DefaultDelay() = 0;
};

} // namespace lumafold
