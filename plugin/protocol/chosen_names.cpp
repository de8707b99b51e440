#include "plugin/protocol/chosen_names.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace lumafold {

ChosenNames::ChosenNames(const char* buffer, std::size_t bytes) {
    const char* const bufferEnd = buffer + bytes;
    // The next string, or null at the empty one that ends them and where an end is missing.
    const auto next = [&]() -> const char* {
        const char* end = std::find(buffer, bufferEnd, '\0');
        if (end == bufferEnd || end == buffer) return nullptr;
        return std::exchange(buffer, end + 1);
    };
    const char* name = next();
    if (const char* second = next()) folder_ = std::exchange(name, second);
    for (; name != nullptr && count_ < kMaxChosenNames; name = next())
        names_[count_++] = name;
    // As bytes, not as letters of any language: the order must not depend on where it is made.
    std::sort(names_, names_ + count_, [](const char* a, const char* b) { return std::strcmp(a, b) < 0; });
}

bool ChosenNames::Path(std::size_t index, char (&path)[kMaxPath]) const {
    if (index >= count_) return false;
    const std::string_view folder = folder_;
    const bool separates = !folder.empty() && folder.back() != '\\';
    return std::snprintf(path, kMaxPath, "%s%s%s", folder_, separates ? "\\" : "", names_[index]) <
           static_cast<int>(kMaxPath);
}

} // namespace lumafold
