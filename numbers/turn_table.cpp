#include "numbers/turn_table.h"

#include "numbers/portable_math.h"

namespace lumafold {

TurnTable::TurnTable() : directions_(kDirections) {
    for (std::size_t i = 0; i < directions_.size(); ++i) {
        const double angle = static_cast<double>(i) * kSpacing;
        directions_[i] = {PortableCos(angle), PortableSin(angle)};
    }
}

} // namespace lumafold
