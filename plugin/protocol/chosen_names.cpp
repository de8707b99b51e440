#include "plugin/protocol/chosen_names.h"

#include <algorithm>
#include <cstring>

namespace lumafold {
namespace {

constexpr char kSeparator = '\\';

/// Walks over the strings of a buffer; one whose end is missing is none.
class Strings {
public:
    Strings(const char* buffer, std::size_t bytes) : at_(buffer), left_(bytes) {}

    /// The next string, or null at the empty one that ends them and at the buffer's end.
    const char* Next() {
        const auto* end = static_cast<const char*>(left_ == 0 ? nullptr : std::memchr(at_, 0, left_));
        if (end == nullptr || end == at_) return nullptr;
        const char* string = std::exchange(at_, end + 1);
        left_ -= static_cast<std::size_t>(at_ - string);
        return string;
    }

private:
    const char* at_;
    std::size_t left_;
};

bool NeedsSeparator(const char* folder) { return folder[std::strlen(folder) - 1] != kSeparator; }

} // namespace

ChosenNames::ChosenNames(const char* buffer, std::size_t bytes) {
    Strings strings(buffer, bytes);
    const char* first = strings.Next();
    if (first == nullptr) return;
    const char* name = strings.Next();
    if (name == nullptr) {
        name = first;
    } else {
        folder_ = first;
    }
    for (; name != nullptr && count_ < kMaxChosenNames; name = strings.Next()) {
        names_[count_++] = name;
    }
    // As bytes, not as letters of any language: the order must not depend on where it is made.
    std::sort(names_, names_ + count_, [](const char* a, const char* b) { return std::strcmp(a, b) < 0; });
}

std::size_t ChosenNames::Count() const { return count_; }

bool ChosenNames::Path(std::size_t index, char (&path)[kMaxPath]) const {
    if (index >= count_) return false;
    const std::size_t folder = folder_ == nullptr ? 0 : std::strlen(folder_);
    const std::size_t separator = folder != 0 && NeedsSeparator(folder_) ? 1 : 0;
    const std::size_t name = std::strlen(names_[index]);
    if (folder + separator + name >= kMaxPath) return false;
    if (folder != 0) std::memcpy(path, folder_, folder);
    if (separator != 0) path[folder] = kSeparator;
    std::memcpy(path + folder + separator, names_[index], name + 1);
    return true;
}

} // namespace lumafold
