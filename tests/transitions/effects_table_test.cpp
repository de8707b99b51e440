// What holds for all 33 rows: frame counts, checksums, failing memory, seeds, and any value of any setting.
#include <memory>
#include <string>

#include "hosts/common/thread_pool.h"
#include "tests/support/failing_memory.h"
#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

void AddFrames(Checksum& sum, EffectResult& result) {
    for (std::int32_t i = 0; i < result.Count(); ++i) {
        const ReadDib image(result.Image(i));
        const std::int32_t delay = result.Delay(i);
        sum.Add(*image);
        sum.Add(&delay, sizeof(delay));
    }
}

std::vector<const SettingDescriptor*> SettingsOf(int row) {
    const std::string keys = " " + std::string(TransitionSettings(row)) + " ";
    std::vector<const SettingDescriptor*> found;
    for (const SettingDescriptor& setting : SettingDescriptors()) {
        if (keys.find(" " + std::string(setting.key) + " ") != std::string::npos) found.push_back(&setting);
    }
    return found;
}

/// Does the last piece first, as if several threads had met badly.
class BackwardRunner final : public Runner {
public:
    std::size_t Workers() const override { return 3; }

protected:
    void Run(std::size_t count, Piece piece, const void* work) const override {
        for (std::size_t i = count; i > 0; --i)
            piece(work, i - 1);
    }
};

/// Each setting of the row at the ends of its range and at values that only a file can hold, the others as
/// delivered; then all of them drawn at once.
std::vector<PluginSettings> SettingsToSweep(int row) {
    std::vector<PluginSettings> sweep;
    const std::vector<const SettingDescriptor*> read = SettingsOf(row);
    for (const SettingDescriptor* setting : read) {
        std::vector<std::uint32_t> values = {0,     1,     2,          3,          7,          99,
                                             100,   101,   128,        255,        256,        1000,
                                             32767, 65535, 0x7FFFFFFF, 0x80000000, 0xFFFFFF9C, 0xFFFFFFFF};
        values.insert(values.end(), {setting->minimum, setting->maximum});
        for (const std::uint32_t value : values)
            sweep.emplace_back().*setting->value = value;
    }
    Random random(1);
    for (int i = 0; i < 24; ++i) {
        PluginSettings& drawn = sweep.emplace_back();
        for (const SettingDescriptor* setting : read)
            drawn.*setting->value =
                setting->minimum + (random.Draw() >> 4) % (setting->maximum - setting->minimum + 1);
    }
    return sweep;
}

class EveryRow : public testing::TestWithParam<int> {
protected:
    int Row() const { return GetParam(); }
    PluginSettings settings;
};

std::string NameOfRow(const testing::TestParamInfo<int>& row) {
    std::string name = TransitionTable[static_cast<std::size_t>(row.param)].name;
    std::erase_if(name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
    return name;
}
INSTANTIATE_TEST_SUITE_P(Table, EveryRow, testing::Range(0, kTransitionCount), NameOfRow);

struct Known {
    std::int32_t frames;    ///< at 61x47 with default settings
    std::uint64_t checksum; ///< of these
    std::uint64_t swept;    ///< of all frames that any value of any setting gives
};
constexpr Known kKnown[kTransitionCount] = {
    {33, 0x6EC8E00FB68A7729, 0xEB826238A8471BB2}, // Alpha horizontal bar (opaque)
    {33, 0xB55EB5F9583FBE0A, 0xD203E025FCD78283}, // Alpha horizontal bar (transparent)
    {30, 0x83B4BCC4216A111F, 0xBF68A6C060B1397A}, // Alpha vertical bar (opaque)
    {30, 0xBC12866FB054AF56, 0x5F2C8750575887DE}, // Alpha vertical bar (transparent)
    {21, 0x3511720C2CA56883, 0x477E79229734469B}, // Alpha tile (opaque)
    {21, 0xD563CFAAA473605A, 0xC096B0329F568199}, // Alpha tile (transparent)
    {22, 0x67D1F7271992F22F, 0x521B479877F0C571}, // Backscatter (horizontal)
    {22, 0x38851AF9FA2104E4, 0x660E9F98D7570884}, // Backscatter (vertical)
    {20, 0xF27FE235F15DBC1, 0xA5C1F9DC8BFC4CFF},  // Burp
    {11, 0xE9465F9481AE58A4, 0xEEFCB46843E732F9}, // Diagonal raster (left)
    {11, 0x91B954ED1DD9F60E, 0x615ECC85C31D840C}, // Diagonal raster (right)
    {26, 0x4B505790AA6F3D12, 0xF2D96AECA536E505}, // Framework
    {10, 0x37457F895B726DC6, 0x291F84A5BD2EFD64}, // Hurricane
    {26, 0x41BCA76309DD8011, 0x74A473D5EC1A677E}, // Liquid metal
    {1, 0xE2FD9B871CDFF367, 0xB19131BE075C405D},  // None
    {13, 0xC9E23A5230F3470F, 0x2E7644DFB553FED0}, // Paintball
    {9, 0x302E504391208872, 0x23B7C18F189DEED5},  // Quad (contract)
    {9, 0xD00B9A36D3B5D16, 0xAFABB67EE214C9DA},   // Quad (expand)
    {20, 0xCEA35BCB8171B36F, 0x4DE508FD450829C8}, // Quantum singularity
    {11, 0xD94BC16649656B7C, 0x5954083D72100C58}, // Rollerblind (horizontal)
    {11, 0x5FE070DEF9CFBD19, 0x3AE10487542EB5E1}, // Rollerblind (vertical)
    {21, 0x20B055CC1DD91AE, 0xEFFF0F66ADBC20FF},  // Silent movie
    {20, 0xEAA2279CB43DEC94, 0x31FCE8449B31731E}, // Soft iris (diamond)
    {21, 0x2DF1B1BD1B0F9D1, 0x6438D352B1B5157A},  // Soft iris (ellipse)
    {20, 0xEED3DD5A9AEB7021, 0x28E43548D63F1AD9}, // Soft slide (horizontal)
    {20, 0x8CC033EC410EB329, 0x2B35742548EB6CDA}, // Soft slide (vertical)
    {51, 0xB3995672000C3EEB, 0x5E37EFD31EFD405C}, // Solarize
    {20, 0xA993C212A0C1EFE5, 0x8A527E873D1321B7}, // Spikes (horizontal)
    {20, 0xCC517209DB405D75, 0xCE58DC25A4D91DEC}, // Spikes (vertical)
    {24, 0x4B9452C21B1CCF54, 0x4C015B599B7F8BC0}, // Spiral in
    {24, 0xCD2E0A1591275B3A, 0xA577B445AD25BBAF}, // Spiral out
    {51, 0xF64347EE07A18886, 0x61ED40DC0BA65CE7}, // Submerge
    {34, 0x91D6B7447FF707C1, 0xB66ADC49C4EE5699}, // Unplugged TV
};

TEST_P(EveryRow, RendersTheSameEverywhereAndInAnyOrder) {
    const OwnedDib source = BusyPicture(61, 47, 1), target = BusyPicture(61, 47, 2);
    const std::uint64_t before = DibChecksum(source.Get()) ^ DibChecksum(target.Get());
    const Runner inTurn;
    const BackwardRunner backward;
    const ThreadPool threads(3);
    for (const Runner* runner : std::initializer_list<const Runner*>{&inTurn, &backward, &threads}) {
        EffectResult result;
        RunEffect(Row(), settings, source, target, result, kTestDelay, *runner);
        ASSERT_EQ(result.returned, 1);
        EXPECT_EQ(result.Count(), kKnown[Row()].frames);
        EXPECT_EQ(result.Delay(0), kTestPause);
        EXPECT_EQ(DibChecksum(result.Image(0)), DibChecksum(source.Get()));
        Checksum sum;
        AddFrames(sum, result);
        EXPECT_EQ(sum.Value(), kKnown[Row()].checksum);
    }
    EXPECT_EQ(DibChecksum(source.Get()) ^ DibChecksum(target.Get()), before); // borrowed, not changed
}

TEST_P(EveryRow, FailingMemoryLeavesNothing) {
    const OwnedDib source = BusyPicture(9, 7, 1), target = BusyPicture(9, 7, 2);
    // A blur without its kernel gives black and goes on; every other failure ends the effect.
    const std::string_view name = TransitionTable[static_cast<std::size_t>(Row())].name;
    const bool blurs = name.starts_with("Soft") || name.starts_with("Spikes") || name == "Silent movie" ||
                       name == "Unplugged TV";
    const auto run = [&] {
        auto result = std::make_unique<EffectResult>();
        RunEffect(Row(), settings, source, target, *result);
        return result;
    };
    const auto check = [&](const std::unique_ptr<EffectResult>& result, bool missed) {
        if (missed && !(blurs && result->returned == 1)) {
            EXPECT_EQ(result->returned, 0);
        } else {
            EXPECT_EQ(result->Count(), FrameCount(Row(), settings, {9, 7}));
        }
    };
    EXPECT_GT(FailEachAllocation(run, check), 1);
}

TEST_P(EveryRow, AnyValueOfAnySettingGivesTheSameEverywhere) {
    constexpr CanvasSize kSizes[] = {{1, 1}, {9, 7}, {33, 1}, {1, 33}, {33, 21}};
    Checksum sum;
    std::int32_t delay = 0;
    for (const PluginSettings& swept : SettingsToSweep(Row())) {
        for (const CanvasSize size : kSizes) {
            const std::int64_t expected = FrameCount(Row(), swept, size);
            if (expected > (size.width < 33 || size.height < 21 ? 3000 : 120))
                continue; // bounded, but not worth rendering
            const OwnedDib source = BusyPicture(size.width, size.height, 1),
                           target = BusyPicture(size.width, size.height, 2);
            EffectResult result;
            RunEffect(Row(), swept, source, target, result, delay);
            EXPECT_EQ(result.returned, expected > 0 ? 1 : 0);
            if (expected > 0) {
                EXPECT_EQ(result.Count(), expected);
            }
            AddFrames(sum, result);
        }
        delay ^= 1;
    }
    EXPECT_EQ(sum.Value(), kKnown[Row()].swept);
}

TEST(TransitionTable, TurnsTallPicturesHalvedDownToAPixel) {
    constexpr int kSpiralIn = 29;
    PluginSettings settings;
    settings.TransitionSpiralShear = 1;
    EffectResult result;
    RunEffect(kSpiralIn, settings, BusyPicture(7, 19, 1), BusyPicture(7, 19, 2), result);
    Checksum sum;
    AddFrames(sum, result);
    EXPECT_EQ(sum.Value(), 14676330621140205334U);
}

TEST(TransitionTable, KeepsItsOrder) {
    for (std::size_t row = 1; row < TransitionTable.size(); ++row) {
        const std::string_view before = TransitionTable[row - 1].name, name = TransitionTable[row].name;
        // Alphabetical but for the three shapes of alpha pieces, whose tiles come after their bars; and those
        // that came later.
        EXPECT_TRUE(before < name || name == "Alpha tile (opaque)" || row > 32) << name;
        EXPECT_EQ(TransitionTable[row].reserved, 0U);
    }
    EXPECT_STREQ(TransitionTable[0].name, "Alpha horizontal bar (opaque)");
    EXPECT_STREQ(TransitionTable[14].name, "None");
    EXPECT_STREQ(TransitionTable[32].name, "Unplugged TV");
    EXPECT_EQ(FrameCount(-1, {}, {10, 10}), 0);
    EXPECT_EQ(FrameCount(kTransitionCount, {}, {10, 10}), 0);
}

} // namespace
} // namespace lumafold::test
