// From the colours a file says it has to those of sRGB, which everything else takes for granted. Inside this
// room only.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "image/dib.h"

namespace lumafold {

/// Samples of a pixel as a decoder delivers them.
struct SampleLayout {
    enum class Colours : std::uint8_t { Grey = 1, Rgb = 3, Cmyk = 4 };
    Colours colours;
    int bytes = 1;      ///< of a sample; of two the high one is first
    bool alpha = false; ///< behind the colours, and left alone
};

/// Colours told by numbers in place of a profile. Places in the chromaticity diagram, x and y.
struct ColourNumbers {
    double gamma = 0; ///< light = sample^gamma; 0 for sRGB's own curve
    double white[2] = {0.3127, 0.3290};
    double red[2] = {0.64, 0.33}, green[2] = {0.30, 0.60}, blue[2] = {0.15, 0.06};
};

/// Changes nothing where the file's colours are sRGB's to within one step of 255, where its profile is of
/// another kind of colours or damaged, and in builds without the library for profiles.
class ToSrgb {
public:
    ToSrgb();
    ToSrgb(std::span<const std::uint8_t> profile, SampleLayout layout);
    ToSrgb(const ColourNumbers& numbers, SampleLayout layout);
    ToSrgb(ToSrgb&&) noexcept;
    ToSrgb& operator=(ToSrgb&&) noexcept;
    ~ToSrgb();

    /// Whether colours change.
    explicit operator bool() const { return state_ != nullptr; }
    /// In place. Not for inks.
    void Convert(std::uint8_t* samples, std::size_t pixels) const;
    /// Inks, 255 for the most of each, to pixels of 24 bits as they are stored.
    void ConvertInks(const std::uint8_t* inks, std::uint8_t* row, std::size_t pixels) const;
    /// The table of an indexed picture, its layout being that of plain RGB or grey.
    void Convert(Palette& palette) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumafold
