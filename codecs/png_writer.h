// True-colour pictures to PNG files, for contact sheets and single frames.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "image/dib.h"

namespace lumafold {

/// The whole file in memory, or empty with `error` set. The picture must be 24 bits deep and not empty.
std::vector<std::uint8_t> EncodePng(DibHandle picture, std::string& error);

} // namespace lumafold
