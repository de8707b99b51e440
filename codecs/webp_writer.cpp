#include "codecs/webp_writer.h"

#include <algorithm>
#include <limits>
#include <new>

#include <webp/encode.h>
#include <webp/mux.h>

#include "codecs/frame_screens.h"
#include "codecs/writers.h"

namespace lumafold {
namespace {

constexpr const char* kFailed = "the WebP library could not write the animation";

struct Picture : WebPPicture {
    Picture(std::int32_t pictureWidth, std::int32_t pictureHeight) {
        if (WebPPictureInit(this) == 0) throw AnimationError{kFailed};
        use_argb = 1;
        width = pictureWidth;
        height = pictureHeight;
        if (WebPPictureAlloc(this) == 0) throw std::bad_alloc();
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    ~Picture() { WebPPictureFree(this); }
};

WebPConfig ConfigOf(const WebpOptions& options) {
    WebPConfig config;
    if (WebPConfigInit(&config) == 0) throw AnimationError{kFailed};
    config.lossless = options.quality ? 0 : 1;
    if (options.quality) config.quality = static_cast<float>(std::clamp(*options.quality, 0, 100));
    return config;
}

WebPAnimEncoder* NewEncoder(std::int32_t width, std::int32_t height, std::int32_t plays) {
    if (width < 1 || height < 1) throw AnimationError{"the animation has no pixels"};
    if (width > WebpWriter::kMostSide || height > WebpWriter::kMostSide)
        throw AnimationError{"a side of a WebP animation may have 16383 pixels"};
    WebPAnimEncoderOptions options;
    if (WebPAnimEncoderOptionsInit(&options) == 0) throw AnimationError{kFailed};
    constexpr std::int32_t kMostPlays = 65535;
    options.anim_params.loop_count = std::clamp(plays, 0, kMostPlays);
    WebPAnimEncoder* encoder = WebPAnimEncoderNew(width, height, &options);
    if (encoder == nullptr) throw std::bad_alloc();
    return encoder;
}

/// When each frame begins and the last one ends, in milliseconds.
using Moments = std::vector<std::int64_t>;

void AddFrame(Moments& moments, std::int32_t delay) {
    constexpr std::int32_t kMostDelay = 0xFFFFFF / 10;
    const std::int64_t end = moments.back() + std::int64_t{std::clamp(delay, 0, kMostDelay)} * 10;
    if (end > std::numeric_limits<int>::max()) throw AnimationError{"the animation lasts too long"};
    moments.push_back(end);
}

/// Tells the frames of a finished file other times. The library joins frames that look alike, so a frame of
/// the file is known by the moment at which it began.
void Retime(std::vector<std::uint8_t>& file, const Moments& before, const Moments& after) {
    constexpr std::size_t kFileHead = 12, kChunkHead = 8, kDurationAt = 12;
    const auto number = [&](std::size_t at, int bytes) {
        std::uint32_t value = 0;
        for (int i = bytes - 1; i >= 0; --i)
            value = value << 8 | file[at + static_cast<std::size_t>(i)];
        return value;
    };
    const auto moved = [&](std::int64_t moment) {
        const auto next = std::upper_bound(before.begin(), before.end(), moment);
        const auto at = static_cast<std::size_t>(next - before.begin()) - 1;
        return next == before.end() ? after[at] : std::min(after[at] + moment - before[at], after[at + 1]);
    };
    std::int64_t began = 0;
    for (std::size_t at = kFileHead; at + kChunkHead <= file.size();) {
        const std::size_t bytes = number(at + 4, 4), duration = at + kChunkHead + kDurationAt;
        if (std::equal(file.begin() + static_cast<std::ptrdiff_t>(at),
                       file.begin() + static_cast<std::ptrdiff_t>(at) + 4, "ANMF")) {
            const std::int64_t ended = began + number(duration, 3);
            const std::int64_t lasts = moved(ended) - moved(began);
            for (std::size_t i = 0; i < 3; ++i)
                file[duration + i] = static_cast<std::uint8_t>(lasts >> (8 * i));
            began = ended;
        }
        at += kChunkHead + bytes + bytes % 2;
    }
}

struct FreeEncoder {
    void operator()(WebPAnimEncoder* encoder) const { WebPAnimEncoderDelete(encoder); }
};

} // namespace

struct WebpWriter::State {
    State(std::int32_t width, std::int32_t height, std::int32_t plays, const WebpOptions& options)
        : config(ConfigOf(options)), encoder(NewEncoder(width, height, plays)), picture(width, height) {}

    /// From here on what is added next is seen; null where nothing is.
    void AddNow(WebPPicture* shown) {
        const auto now = static_cast<int>(moments.back());
        if (WebPAnimEncoderAdd(encoder.get(), shown, now, &config) != 0) return;
        if (shown != nullptr && shown->error_code == VP8_ENC_ERROR_OUT_OF_MEMORY) throw std::bad_alloc();
        throw AnimationError{kFailed};
    }

    WebPConfig config;
    std::unique_ptr<WebPAnimEncoder, FreeEncoder> encoder;
    Picture picture;
    Moments moments{0};
};

WebpWriter::WebpWriter(std::int32_t width, std::int32_t height, std::int32_t plays,
                       const WebpOptions& options)
    : state_(std::make_unique<State>(width, height, plays, options)) {}
WebpWriter::WebpWriter(WebpWriter&&) noexcept = default;
WebpWriter::~WebpWriter() = default;

void WebpWriter::Add(std::span<const PixelValue> screen, std::int32_t delay) {
    Picture& picture = state_->picture;
    for (int y = 0; y < picture.height; ++y) {
        const PixelValue* from = screen.data() + static_cast<std::ptrdiff_t>(y) * picture.width;
        std::uint32_t* to = picture.argb + static_cast<std::ptrdiff_t>(y) * picture.argb_stride;
        std::transform(from, from + picture.width, to, [](PixelValue pixel) {
            if (pixel == kNoPixel) return 0U;
            return 0xFF000000U | RedOf(pixel) << 16 | GreenOf(pixel) << 8 | BlueOf(pixel);
        });
    }
    state_->AddNow(&picture);
    AddFrame(state_->moments, delay);
}

std::vector<std::uint8_t> WebpWriter::Finish(std::span<const std::int32_t> delays) {
    state_->AddNow(nullptr);
    WebPData data;
    WebPDataInit(&data);
    const std::unique_ptr<WebPData, decltype(&WebPDataClear)> owner(&data, WebPDataClear);
    if (WebPAnimEncoderAssemble(state_->encoder.get(), &data) == 0) throw AnimationError{kFailed};
    state_->encoder.reset(); // which holds all frames packed, as the data do
    std::vector<std::uint8_t> file(data.bytes, data.bytes + data.size);
    if (delays.empty()) return file;
    Moments moments{0};
    for (const std::int32_t delay : delays)
        AddFrame(moments, delay);
    Retime(file, state_->moments, moments);
    return file;
}

std::vector<std::uint8_t> EncodeWebp(const Animation& animation, const WebpOptions& options,
                                     std::string& error) {
    return FileOrError(
        [&] {
            if (animation.frames.empty()) throw AnimationError(kNoFrames);
            CheckSides(animation.width, animation.height, WebpWriter::kMostSide,
                       "a side of a WebP animation may have 16383 pixels");
            WebpWriter writer(animation.width, animation.height, animation.plays, options);
            FrameScreens screens(animation);
            for (std::size_t i = 0; i < animation.frames.size(); ++i)
                writer.Add(screens.At(i), animation.frames[i].delay);
            return writer.Finish();
        },
        error);
}

} // namespace lumafold
