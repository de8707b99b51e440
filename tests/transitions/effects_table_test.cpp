// What holds for all 33 rows: frame counts, checksums, failing memory, seeds, and any value of any setting.
#include <memory>
#include <sstream>

#include "tests/support/failing_memory.h"
#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

std::uint64_t FramesChecksum(EffectResult& result) {
    Checksum sum;
    for (std::int32_t i = 0; i < result.Count(); ++i) {
        const LockedDib image(result.Image(i));
        const std::int32_t delay = result.Delay(i);
        sum.Add(*image);
        sum.Add(&delay, sizeof(delay));
    }
    return sum.Value();
}

std::vector<const SettingDescriptor*> SettingsOf(int row) {
    std::istringstream keys{std::string(TransitionSettings(row))};
    std::vector<const SettingDescriptor*> found;
    for (std::string key; keys >> key;) {
        for (const SettingDescriptor& setting : SettingDescriptors()) {
            if (key == setting.key) found.push_back(&setting);
        }
    }
    return found;
}

class EveryRow : public testing::TestWithParam<int> {
protected:
    int Row() const { return GetParam(); }
    SettingsGuard guard;
};

std::string NameOfRow(const testing::TestParamInfo<int>& row) {
    std::string name = TransitionTable[static_cast<std::size_t>(row.param)].name;
    std::erase_if(name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
    return name;
}
INSTANTIATE_TEST_SUITE_P(Table, EveryRow, testing::Range(0, kTransitionCount), NameOfRow);

struct Known {
    std::int32_t frames;
    std::uint64_t checksum;
};
constexpr Known kKnown[kTransitionCount][2] = {
    // 61x47 and 33x21, default settings
    {{33, 0x6EC8E00FB68A7729}, {30, 0xF4C3EB477BCC570D}}, // Alpha horizontal bar (opaque)
    {{33, 0xB55EB5F9583FBE0A}, {30, 0x372E4AC6D9580B69}}, // Alpha horizontal bar (transparent)
    {{30, 0x83B4BCC4216A111F}, {42, 0xC32DC0B7CD7F5778}}, // Alpha vertical bar (opaque)
    {{30, 0xBC12866FB054AF56}, {42, 0x1168DD1E4F6B8AA7}}, // Alpha vertical bar (transparent)
    {{21, 0x3511720C2CA56883}, {15, 0xBBBBF8C55EE3A623}}, // Alpha tile (opaque)
    {{21, 0xD563CFAAA473605A}, {15, 0x1B08F3E85242D417}}, // Alpha tile (transparent)
    {{22, 0x67D1F7271992F22F}, {22, 0x406694B324B05C64}}, // Backscatter (horizontal)
    {{22, 0x38851AF9FA2104E4}, {22, 0xB7615676F121305}},  // Backscatter (vertical)
    {{20, 0xF27FE235F15DBC1}, {20, 0x3EB01FDABB41B081}},  // Burp
    {{11, 0xE9465F9481AE58A4}, {11, 0xB68B3EDAA8BF1740}}, // Diagonal raster (left)
    {{11, 0x91B954ED1DD9F60E}, {11, 0xF36156D69CDD786C}}, // Diagonal raster (right)
    {{26, 0x4B505790AA6F3D12}, {26, 0xCB322A94818B1F7D}}, // Framework
    {{10, 0x37457F895B726DC6}, {10, 0x751AB1AA10CDADD9}}, // Hurricane
    {{26, 0x41BCA76309DD8011}, {26, 0x364088964F383168}}, // Liquid metal
    {{1, 0xE2FD9B871CDFF367}, {1, 0x1DE5A8C31300446C}},   // None
    {{13, 0xC9E23A5230F3470F}, {7, 0xDEEF975110065AB2}},  // Paintball
    {{9, 0x302E504391208872}, {9, 0x391764350818CCD1}},   // Quad (contract)
    {{9, 0xD00B9A36D3B5D16}, {9, 0x443BDD8E502B78D3}},    // Quad (expand)
    {{20, 0xCEA35BCB8171B36F}, {20, 0x71D9C808E413E3D2}}, // Quantum singularity
    {{11, 0xD94BC16649656B7C}, {11, 0xE6BB4419C638A718}}, // Rollerblind (horizontal)
    {{11, 0x5FE070DEF9CFBD19}, {11, 0xE4B8FD4679CCBF67}}, // Rollerblind (vertical)
    {{21, 0x20B055CC1DD91AE}, {21, 0xD1A8BD284C437FA5}},  // Silent movie
    {{20, 0xEAA2279CB43DEC94}, {20, 0xF87CA5928B06FF04}}, // Soft iris (diamond)
    {{21, 0x2DF1B1BD1B0F9D1}, {21, 0xE37ABF0202940B34}},  // Soft iris (ellipse)
    {{20, 0xEED3DD5A9AEB7021}, {20, 0xF49084B4714BDC3}},  // Soft slide (horizontal)
    {{20, 0x8CC033EC410EB329}, {20, 0xC0F3AF49D85586BE}}, // Soft slide (vertical)
    {{51, 0xB3995672000C3EEB}, {51, 0x21DC772C97655463}}, // Solarize
    {{20, 0xA993C212A0C1EFE5}, {20, 0x8834E6A9F9DD1968}}, // Spikes (horizontal)
    {{20, 0xCC517209DB405D75}, {20, 0xD8E11952E9B2AC3A}}, // Spikes (vertical)
    {{24, 0x4B9452C21B1CCF54}, {24, 0x3CFEB5678C437D9C}}, // Spiral in
    {{24, 0xCD2E0A1591275B3A}, {24, 0x6D9363FEC6599144}}, // Spiral out
    {{51, 0xF64347EE07A18886}, {51, 0x419F04C631A86F4D}}, // Submerge
    {{34, 0x91D6B7447FF707C1}, {34, 0xE41C8264C4819414}}, // Unplugged TV
};

TEST_P(EveryRow, RendersTheSameEverywhere) {
    for (const auto& [width, height, expected] :
         {std::tuple{61, 47, kKnown[Row()][0]}, {33, 21, kKnown[Row()][1]}}) {
        const OwnedDib source = BusyPicture(width, height, 1), target = BusyPicture(width, height, 2);
        const std::uint64_t before = DibChecksum(source.Get()) ^ DibChecksum(target.Get());
        EffectResult result;
        RunEffect(Row(), source.Get(), target.Get(), result);
        ASSERT_EQ(result.returned, 1);
        EXPECT_EQ(result.Count(), expected.frames);
        EXPECT_EQ(result.Count(), FrameCount(Row(), width, height));
        EXPECT_EQ(FramesChecksum(result), expected.checksum) << "0x" << std::hex << FramesChecksum(result);
        EXPECT_EQ(DibChecksum(source.Get()) ^ DibChecksum(target.Get()), before); // borrowed, not changed
    }
}

TEST_P(EveryRow, FailingMemoryLeavesNothing) {
    const OwnedDib source = BusyPicture(9, 7, 1), target = BusyPicture(9, 7, 2);
    // A blur without its kernel gives black and goes on; every other failure ends the effect.
    const std::string_view name = TransitionTable[static_cast<std::size_t>(Row())].name;
    const bool blurs = name.starts_with("Soft") || name.starts_with("Spikes") || name == "Silent movie" ||
                       name == "Unplugged TV";
    const auto run = [&] {
        auto result = std::make_unique<EffectResult>();
        RunEffect(Row(), source.Get(), target.Get(), *result);
        return result;
    };
    const auto check = [&](const std::unique_ptr<EffectResult>& result, bool missed) {
        if (missed && !(blurs && result->returned == 1)) {
            EXPECT_EQ(result->returned, 0);
        } else {
            EXPECT_EQ(result->Count(), FrameCount(Row(), 9, 7));
        }
    };
    EXPECT_GT(FailEachAllocation(run, check), 1);
}

TEST_P(EveryRow, AnyValueOfAnySettingEnds) {
    for (const SettingDescriptor* setting : SettingsOf(Row())) {
        const std::uint32_t usual = pluginSettings.*setting->value;
        std::vector<std::uint32_t> values = {0,     1,     2,          3,          7,          99,
                                             100,   101,   128,        255,        256,        1000,
                                             32767, 65535, 0x7FFFFFFF, 0x80000000, 0xFFFFFF9C, 0xFFFFFFFF};
        values.insert(values.end(), {setting->minimum, setting->maximum});
        for (const std::uint32_t value : values) {
            pluginSettings.*setting->value = value;
            for (const auto& [width, height] : {std::pair{1, 1}, {9, 7}, {33, 1}, {1, 33}}) {
                SCOPED_TRACE(testing::Message()
                             << setting->key << " = " << value << " at " << width << "x" << height);
                const std::int64_t expected = FrameCount(Row(), width, height);
                if (expected > 3000) continue; // bounded, but not worth rendering
                const OwnedDib source = BusyPicture(width, height, 1), target = BusyPicture(width, height, 2);
                EffectResult result;
                RunEffect(Row(), source.Get(), target.Get(), result, static_cast<std::int32_t>(value % 2));
                EXPECT_EQ(result.returned, expected > 0 ? 1 : 0);
                if (expected > 0) {
                    EXPECT_EQ(result.Count(), expected);
                }
            }
        }
        pluginSettings.*setting->value = usual;
    }
}

/// Effects that draw random numbers read the seed; with it they repeat themselves.
TEST_P(EveryRow, SeedsDecideAllThatIsRandom) {
    const std::vector<const SettingDescriptor*> settings = SettingsOf(Row());
    const bool random = std::any_of(settings.begin(), settings.end(), [](const SettingDescriptor* setting) {
        return setting->value == &PluginSettings::RandomSeed;
    });
    pluginSettings.TransitionAlphaTileSize = pluginSettings.TransitionPaintballSize = 8;
    const OwnedDib source = BusyPicture(61, 47, 1), target = BusyPicture(61, 47, 2);
    const auto checksum = [&](std::uint32_t seed) {
        pluginSettings.RandomSeed = seed;
        EffectResult result;
        RunEffect(Row(), source.Get(), target.Get(), result);
        return FramesChecksum(result);
    };
    const std::uint64_t first = checksum(100);
    EXPECT_EQ(checksum(100), first);
    EXPECT_EQ(checksum(101) != first, random);
}

TEST(TransitionTable, KeepsItsOrder) {
    for (std::size_t row = 1; row < TransitionTable.size(); ++row) {
        const std::string_view before = TransitionTable[row - 1].name, name = TransitionTable[row].name;
        // Alphabetical but for the three shapes of alpha pieces, whose tiles come after their bars.
        EXPECT_TRUE(before < name || name == "Alpha tile (opaque)") << name;
        EXPECT_EQ(TransitionTable[row].reserved, 0U);
    }
    EXPECT_STREQ(TransitionTable[0].name, "Alpha horizontal bar (opaque)");
    EXPECT_STREQ(TransitionTable[14].name, "None");
    EXPECT_STREQ(TransitionTable[32].name, "Unplugged TV");
    EXPECT_EQ(FrameCount(-1, 10, 10), 0);
    EXPECT_EQ(FrameCount(kTransitionCount, 10, 10), 0);
}

} // namespace
} // namespace lumafold::test
