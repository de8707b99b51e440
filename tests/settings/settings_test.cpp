#include "settings/settings.h"

#include <gtest/gtest.h>

namespace lumafold::test {
namespace {

TEST(Settings, TurnOffWhatTheHostCannotTake) {
    for (const std::uint32_t asked : {0U, 1U}) {
        for (const std::uint32_t flags : {0U, 1U, 2U, 3U, 0xFFFFFFFCU}) {
            PluginSettings settings;
            settings.Supercompress = settings.TransitionTruecolour = asked;
            ApplyCapabilities(settings, flags);
            EXPECT_EQ(settings.Supercompress, (flags & 1) != 0 ? asked : 0) << flags;
            EXPECT_EQ(settings.TransitionTruecolour, (flags & 2) != 0 ? asked : 0) << flags;
        }
    }
}

} // namespace
} // namespace lumafold::test
