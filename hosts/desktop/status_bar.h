// The line at the bottom: what is built for, the frame, size, colours, duration, file and zoom.
#pragma once

#include <array>
#include <string>

#include "hosts/desktop/document.h"
#include "hosts/desktop/look.h"

namespace lumafold {

class StatusBar {
public:
    bool Make(HWND parent);
    /// Along the bottom of its parent, in the sizes of the look.
    void Arrange(const Look& look);
    int Height() const;
    /// Null where nothing is open.
    void Show(const Document* document, int zoom, std::uint32_t capabilities);

private:
    static constexpr std::size_t kParts = 7;
    void Put(std::size_t part, const std::string& text);

    HWND bar_ = nullptr;
    std::array<std::string, kParts> shown_;
};

} // namespace lumafold
