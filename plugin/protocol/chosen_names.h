// The buffer of file names that a host fills when the person has chosen files: one path, or a folder and the
// names in it.
#pragma once

#include "platform/allocation.h"

namespace lumafold {

inline constexpr std::size_t kMaxChosenNames = 260;
inline constexpr std::size_t kMaxPath = 261; ///< with its zero; what an entry's label holds
/// Room for a folder and as many names as are taken, and the empty string that ends them.
inline constexpr std::size_t kChosenNamesBytes = (kMaxChosenNames + 1) * kMaxPath + 1;

/// The files of such a buffer as paths, names in ascending byte order. Reads nothing beyond `bytes`, whatever
/// ends are missing; at most kMaxChosenNames names are taken.
class ChosenNames {
public:
    ChosenNames(const char* buffer, std::size_t bytes);

    std::size_t Count() const { return count_; }
    /// False when the number is beyond the end or the path is too long.
    bool Path(std::size_t index, char (&path)[kMaxPath]) const;

private:
    const char* folder_ = "";
    const char* names_[kMaxChosenNames] = {};
    std::size_t count_ = 0;
};

} // namespace lumafold
