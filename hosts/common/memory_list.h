// The image list of a host without dialogs: entries in memory, each in a block of its own as the list box
// keeps them, and the numbers that stand for the dialog's controls.
#pragma once

#include <string_view>
#include <vector>

#include "build/image_list.h"

namespace lumafold {

struct GapValues {
    std::int32_t transition; ///< row of the TransitionTable
    std::int32_t pause;      ///< hundredths of a second
    std::int32_t delay;
};

class MemoryList : public ImageList {
public:
    /// `defaults` is what the dialog's controls would say.
    explicit MemoryList(const GapValues& defaults) : defaults_(defaults) {}
    ~MemoryList() override;

    /// Appends a line that owns `picture`. False when there is no memory for it; the picture is freed then.
    bool Add(OwnedDib picture, std::string_view label, const GapValues& gap);

    std::int32_t Count() override { return static_cast<std::int32_t>(entries_.size()); }
    bool Read(std::int32_t index, ImageEntry& entry) override;
    bool Write(std::int32_t index, const ImageEntry& entry) override;
    bool AddTemporary(GlobalHandle entry) override;
    void DeleteFirst() override;
    std::int32_t DefaultTransition() override { return defaults_.transition; }
    std::int32_t DefaultPause() override { return defaults_.pause; }
    std::int32_t DefaultDelay() override { return defaults_.delay; }

private:
    GlobalHandle At(std::int32_t index) const;

    GapValues defaults_;
    std::vector<GlobalHandle> entries_;
};

} // namespace lumafold
