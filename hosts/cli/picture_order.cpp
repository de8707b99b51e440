#include "hosts/cli/picture_order.h"

#include <algorithm>

namespace lumafold {

std::vector<ShownPicture> ShownPictures(const BuildOptions& options) {
    constexpr std::int32_t kRowNone = 14;
    std::vector<ShownPicture> shown;
    for (std::size_t i = 0; i < options.images.size(); ++i)
        shown.push_back({i, options.images[i].gap});
    if (options.order == PictureOrder::Reverse) std::reverse(shown.begin(), shown.end());
    if (options.pingPong) {
        const std::size_t first = options.plays.endsOnLast ? 0 : 1;
        for (std::size_t i = shown.size() - 1; i-- > first;)
            shown.push_back(ShownPicture(shown[i]));
    }
    if (options.plays.endsOnLast) shown.back().gap.transition = kRowNone;
    return shown;
}

} // namespace lumafold
