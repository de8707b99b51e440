#include "codecs/colour_profile.h"

#if LUMAFOLD_COLOUR_PROFILES
#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>
#include <vector>

#include <lcms2.h>
#endif

namespace lumafold {

#if LUMAFOLD_COLOUR_PROFILES
namespace {

template <auto free>
struct FreedBy {
    void operator()(void* thing) const { free(thing); }
};
using Profile = std::unique_ptr<void, FreedBy<cmsCloseProfile>>;
using Transform = std::unique_ptr<void, FreedBy<cmsDeleteTransform>>;
using Curve =
    std::unique_ptr<cmsToneCurve,
                    FreedBy<[](void* curve) { cmsFreeToneCurve(static_cast<cmsToneCurve*>(curve)); }>>;

/// What the library calls samples of this layout.
cmsUInt32Number FormatOf(const SampleLayout& layout) {
    const auto channels = static_cast<cmsUInt32Number>(layout.colours);
    const cmsUInt32Number space = layout.colours == SampleLayout::Colours::Grey  ? PT_GRAY
                                  : layout.colours == SampleLayout::Colours::Rgb ? PT_RGB
                                                                                 : PT_CMYK;
    const auto bytes = static_cast<cmsUInt32Number>(layout.bytes);
    return COLORSPACE_SH(space) | CHANNELS_SH(channels) | BYTES_SH(bytes) |
           ENDIAN16_SH(bytes == 2 ? 1U : 0U) | EXTRA_SH(layout.alpha ? 1U : 0U);
}

cmsColorSpaceSignature SpaceOf(SampleLayout::Colours colours) {
    switch (colours) {
    case SampleLayout::Colours::Grey:
        return cmsSigGrayData;
    case SampleLayout::Colours::Rgb:
        return cmsSigRgbData;
    default:
        return cmsSigCmykData;
    }
}

/// light = sample^gamma, or sRGB's curve.
Curve CurveOf(double gamma) {
    if (gamma > 0) return Curve(cmsBuildGamma(nullptr, gamma));
    constexpr cmsFloat64Number kSrgb[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return Curve(cmsBuildParametricToneCurve(nullptr, 4, kSrgb));
}

Profile GreyProfile(double gamma) {
    const Curve curve = CurveOf(gamma);
    return Profile(curve ? cmsCreateGrayProfile(cmsD50_xyY(), curve.get()) : nullptr);
}

Profile RgbProfile(const ColourNumbers& numbers) {
    const cmsCIExyY white{numbers.white[0], numbers.white[1], 1};
    const cmsCIExyYTRIPLE primaries{{numbers.red[0], numbers.red[1], 1},
                                    {numbers.green[0], numbers.green[1], 1},
                                    {numbers.blue[0], numbers.blue[1], 1}};
    const Curve curve = CurveOf(numbers.gamma);
    cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
    return Profile(curve ? cmsCreateRGBProfile(&white, &primaries, curves) : nullptr);
}

/// Whether a profile says what samples of this kind look like. Links and names say something else.
bool Describes(cmsHPROFILE profile, SampleLayout::Colours colours) {
    const cmsProfileClassSignature kind = cmsGetDeviceClass(profile);
    return cmsGetColorSpace(profile) == SpaceOf(colours) &&
           (kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass ||
            kind == cmsSigColorSpaceClass);
}

Transform TransformOf(cmsHPROFILE profile, const SampleLayout& layout) {
    const bool grey = layout.colours == SampleLayout::Colours::Grey;
    const bool inks = layout.colours == SampleLayout::Colours::Cmyk;
    const Profile srgb = grey ? GreyProfile(0) : RgbProfile({});
    if (!srgb) return nullptr;
    // Tables for 16 bits and for greys would be too coarse in the shadows, and curves are quick without.
    const bool exact = (grey || layout.bytes == 2) && cmsIsMatrixShaper(profile);
    return Transform(cmsCreateTransform(profile, FormatOf(layout), srgb.get(),
                                        inks ? TYPE_BGR_8 : FormatOf(layout), INTENT_PERCEPTUAL,
                                        exact ? cmsFLAGS_NOOPTIMIZE : 0));
}

/// Whether colours spread over the whole range stay what they are, to within one step.
bool ChangesColours(cmsHPROFILE profile, SampleLayout::Colours colours) {
    const Transform transform = TransformOf(profile, {colours});
    if (!transform) return false;
    std::vector<std::uint8_t> samples;
    constexpr unsigned kStep = 17;
    if (colours == SampleLayout::Colours::Grey) {
        for (unsigned grey = 0; grey < 256; ++grey)
            samples.push_back(static_cast<std::uint8_t>(grey));
    } else {
        for (unsigned place = 0; place < 16 * 16 * 16; ++place) {
            for (const unsigned shift : {0U, 4U, 8U})
                samples.push_back(static_cast<std::uint8_t>((place >> shift & 15) * kStep));
        }
    }
    std::vector<std::uint8_t> converted(samples.size());
    const std::size_t pixels = samples.size() / static_cast<std::size_t>(colours);
    cmsDoTransform(transform.get(), samples.data(), converted.data(), static_cast<cmsUInt32Number>(pixels));
    return !std::equal(samples.begin(), samples.end(), converted.begin(),
                       [](int one, int other) { return std::abs(one - other) <= 1; });
}

} // namespace

struct ToSrgb::State {
    Transform transform;
    SampleLayout layout;

    static std::unique_ptr<State> For(cmsHPROFILE profile, SampleLayout layout) {
        const bool inks = layout.colours == SampleLayout::Colours::Cmyk;
        if (profile == nullptr || !Describes(profile, layout.colours)) return nullptr;
        if (!inks && !ChangesColours(profile, layout.colours)) return nullptr;
        Transform transform = TransformOf(profile, layout);
        if (!transform) return nullptr;
        return std::unique_ptr<State>(new State{std::move(transform), layout});
    }
};

ToSrgb::ToSrgb(std::span<const std::uint8_t> profile, SampleLayout layout)
    : state_(State::For(
          Profile(cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size()))).get(),
          layout)) {}

ToSrgb::ToSrgb(const ColourNumbers& numbers, SampleLayout layout)
    : state_(State::For(layout.colours == SampleLayout::Colours::Grey ? GreyProfile(numbers.gamma).get()
                                                                      : RgbProfile(numbers).get(),
                        layout)) {}

void ToSrgb::Convert(std::uint8_t* samples, std::size_t pixels) const {
    if (state_)
        cmsDoTransform(state_->transform.get(), samples, samples, static_cast<cmsUInt32Number>(pixels));
}

void ToSrgb::ConvertInks(const std::uint8_t* inks, std::uint8_t* row, std::size_t pixels) const {
    cmsDoTransform(state_->transform.get(), inks, row, static_cast<cmsUInt32Number>(pixels));
}

void ToSrgb::Convert(Palette& palette) const {
    if (!state_) return;
    if (state_->layout.colours == SampleLayout::Colours::Rgb) {
        Convert(&palette[0].red, palette.size());
        return;
    }
    for (Rgb& entry : palette) {
        std::uint8_t grey = entry.red;
        Convert(&grey, 1);
        entry = {grey, grey, grey};
    }
}
#else
struct ToSrgb::State {};
ToSrgb::ToSrgb(std::span<const std::uint8_t>, SampleLayout) {}
ToSrgb::ToSrgb(const ColourNumbers&, SampleLayout) {}
void ToSrgb::Convert(std::uint8_t*, std::size_t) const {}
void ToSrgb::ConvertInks(const std::uint8_t*, std::uint8_t*, std::size_t) const {}
void ToSrgb::Convert(Palette&) const {}
#endif

ToSrgb::ToSrgb() = default;
ToSrgb::ToSrgb(ToSrgb&&) noexcept = default;
ToSrgb& ToSrgb::operator=(ToSrgb&&) noexcept = default;
ToSrgb::~ToSrgb() = default;

} // namespace lumafold
