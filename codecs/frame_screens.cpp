#include "codecs/frame_screens.h"

#include <iterator>

namespace lumafold {
namespace {

constexpr std::ptrdiff_t kNothing = -1;
constexpr std::size_t kKeptEvery = 16;
constexpr std::size_t kMostKeptPixels = std::size_t{16} << 20;

} // namespace

RunningScreen::RunningScreen(const AnimationFacts& facts)
    : width_(static_cast<std::size_t>(facts.width)), reader_(facts.width, facts.height, facts.palette),
      shown_(width_ * static_cast<std::size_t>(facts.height), kNoPixel) {}

const ScreenPixels& RunningScreen::Show(const FrameView& view) {
    const FramePixels frame = reader_.ReadColours(view);
    const PixelValue* from = frame.values.data();
    for (std::int32_t y = 0; y < frame.height; ++y) {
        PixelValue* to = shown_.data() + static_cast<std::size_t>(y) * width_;
        for (std::int32_t x = 0; x < frame.width; ++x, ++from)
            to[x] = *from == kNoPixel ? to[x] : *from;
    }
    return shown_;
}

FrameScreens::FrameScreens(const Animation& animation) : animation_(animation), screen_(FactsOf(animation)) {}

const ScreenPixels& FrameScreens::At(std::size_t index) {
    const auto wanted = static_cast<std::ptrdiff_t>(index);
    if (wanted == shown_) return screen_.Shown();
    // From what is shown, from a screen that was kept, or from the beginning: whichever is nearest before.
    const auto after = kept_.upper_bound(index);
    const std::ptrdiff_t nearest =
        after == kept_.begin() ? kNothing : static_cast<std::ptrdiff_t>(std::prev(after)->first);
    if (shown_ > wanted || shown_ < nearest || shown_ < 0) {
        shown_ = kNothing;
        if (nearest >= 0) {
            screen_.Return(std::prev(after)->second);
        } else {
            screen_.Clear();
        }
        shown_ = nearest;
    }
    std::ptrdiff_t first = wanted;
    while (first > shown_ + 1 && !Covers(static_cast<std::size_t>(first)))
        --first;
    for (std::ptrdiff_t next = first; next <= wanted; ++next) {
        shown_ = kNothing; // in case that memory runs out amid the frame
        Draw(static_cast<std::size_t>(next));
        shown_ = next;
        Keep(static_cast<std::size_t>(next));
    }
    return screen_.Shown();
}

void FrameScreens::Draw(std::size_t index) {
    const AnimationFrame& held = animation_.frames.at(index);
    if (!held.image) throw AnimationError("a frame of the animation has no picture");
    screen_.Show({*held.image, held.delay, held.transparentIndex});
}

bool FrameScreens::Covers(std::size_t index) const {
    const AnimationFrame& frame = animation_.frames.at(index);
    return frame.image && frame.transparentIndex < 0 && frame.image->biWidth >= animation_.width &&
           frame.image->biHeight >= animation_.height;
}

void FrameScreens::Keep(std::size_t index) {
    if (index == 0 || index % kKeptEvery != 0 || kept_.contains(index)) return;
    const ScreenPixels& shown = screen_.Shown();
    if ((kept_.size() + 1) * shown.size() <= kMostKeptPixels) kept_.emplace(index, shown);
}

} // namespace lumafold
