// What is written for players that know nothing of palettes: WebP animations as libwebp reads them, films by
// the formulas of their colours, and the delays for both.
#include <gtest/gtest.h>

#include <algorithm>

#include "codecs/delays.h"
#include "codecs/frame_screens.h"
#include "codecs/y4m_writer.h"
#include "tests/support/animations.h"
#include "tests/support/checksum.h"
#include "tests/support/pictures.h"

#if LUMAFOLD_WEBP
#include <webp/demux.h>

#include "codecs/webp_writer.h"
#endif

namespace lumafold::test {
namespace {

using File = std::vector<std::uint8_t>;

TEST(Delays, AreHeldAndTakenFromTheNext) {
    struct Case {
        std::vector<std::int32_t> told, held;
        std::size_t count;
    };
    const Case cases[] = {
        {{}, {}, 0},
        {{8, 2, 50}, {8, 2, 50}, 0},
        {{0, 1, 50}, {2, 2, 47}, 2},
        {{0, 3, 3, 3}, {2, 2, 2, 3}, 1},
        {{50, 1, 2, 0}, {47, 2, 2, 2}, 2}, // from the first again
        {{-5, 1}, {2, 2}, 2},              // there is nothing to take
    };
    for (const Case& one : cases) {
        HeldDelays delays;
        for (const std::int32_t delay : one.told)
            EXPECT_GE(delays.Add(delay), kShortestPlayed);
        EXPECT_EQ(delays.Short(), one.count);
        EXPECT_EQ(delays.Settle(), one.held);
    }
    const std::int32_t mixed[] = {8, 50, -3, 100, 0}, none[] = {0, -1};
    EXPECT_EQ(CommonDelay(mixed), 2);
    EXPECT_EQ(CommonDelay(none), 0);
}

/// The text line, then the planes of every frame as one string each.
struct Film {
    std::string head;
    std::vector<std::string> frames;
};
std::string WriteFilm(const Animation& animation, const Y4mOptions& options, std::string& error) {
    return FileOrError(
        [&] {
            Y4mWriter writer(animation.width, animation.height, options);
            RunningScreen screen(FactsOf(animation));
            for (const AnimationFrame& frame : animation.frames)
                writer.Add(screen.Show({*frame.image, frame.delay, frame.transparentIndex}), frame.delay);
            std::string file;
            for (const auto piece : writer.Finish())
                file.append(piece.begin(), piece.end());
            return file;
        },
        error);
}
Film FilmOf(const Animation& animation, const Y4mOptions& options, std::size_t frameBytes) {
    std::string error;
    const std::string file = WriteFilm(animation, options, error);
    EXPECT_EQ(error, "");
    Film film{file.substr(0, file.find('\n')), {}};
    for (std::size_t at = film.head.size() + 1; at < file.size(); at += 6 + frameBytes) {
        EXPECT_EQ(file.substr(at, 6), "FRAME\n");
        film.frames.push_back(file.substr(at + 6, frameBytes));
    }
    return film;
}

TEST(Y4mWriter, RepeatsStillsAtTheCommonRate) {
    Animation animation = EmptyAnimation(5, 3, 8);
    animation.palette = {Rgb{255, 0, 0}, Rgb{0, 255, 0}, Rgb{255, 255, 255}, Rgb{0, 0, 0}};
    AddFrame(animation, {8, 24, 3, 4, 3},
             [](int x, int) { return x == 2 ? 3U : 0U; }); // a hole, a column left out
    AddFrame(animation, {8, 0}, [](int, int) { return 3U; });
    AddFrame(animation, {8, 16}, [](int, int) { return 2U; });
    const Film film = FilmOf(animation, {Y4mOptions::Chroma::Half420, {}, MakeColour(0, 0, 243)}, 15 + 2 * 6);
    EXPECT_EQ(film.head, "YUV4MPEG2 W5 H3 F25:2 Ip A1:1 C420jpeg XCOLORRANGE=LIMITED XCOLORMATRIX=BT601");
    ASSERT_EQ(film.frames.size(), 5U);
    EXPECT_EQ(film.frames[0], film.frames[2]);
    EXPECT_EQ(film.frames[3], film.frames[4]);
    EXPECT_EQ(film.frames[3], std::string(15, '\xEB') + std::string(12, '\x80'));
    EXPECT_EQ(film.frames[0].substr(0, 5), "\x51\x51\x28\x51\x28") << "red, and the blue behind";
    EXPECT_EQ(film.frames[0].substr(15, 3), std::string("\x5A\xA3\xEB")) << "two of red, one of each, blue";
}

TEST(Y4mWriter, FollowsTheMatrix) {
    std::string error;
    for (const auto& [width, height, end] :
         {std::tuple{1279, 576, "=BT601\n"}, {1280, 1, "=BT709\n"}, {1, 577, "=BT709\n"}}) {
        Animation film = EmptyAnimation(width, height, 8);
        AddFrame(film, {8, 5}, [](int, int) { return 0U; });
        EXPECT_NE(WriteFilm(film, {}, error).find(end), std::string::npos) << width << 'x' << height;
    }
    Animation animation = EmptyAnimation(64, 64, 8);
    AddFrame(animation, {24, 5}, [](int x, int y) {
        const auto step = [](int i) { return static_cast<unsigned>(i % 16 * 17); };
        return MakeColour(step(x), step(y), step(x / 16 * 4 + y / 16));
    });
    // Sums of films whose every sample was no more than 0.52 from the definition.
    for (const auto& [matrix, sum] :
         {std::pair{YuvMatrix::Bt601, 7232985249877307371U}, {YuvMatrix::Bt709, 11842252542223504914U}}) {
        const Film film = FilmOf(animation, {Y4mOptions::Chroma::Full444, matrix}, 3 * 4096);
        ASSERT_EQ(film.frames.size(), 1U);
        Checksum seen;
        seen.Add(film.frames[0].data(), film.frames[0].size());
        EXPECT_EQ(seen.Value(), sum);
    }
}

TEST(Y4mWriter, TellsWhatKeepsItFromWriting) {
    Animation animation = EmptyAnimation(4, 4, 8);
    for (const char* expected : {"the animation has no frames",
                                 "no frame of the animation is seen for any time", "", "5000001 times"}) {
        std::string error;
        EXPECT_EQ(WriteFilm(animation, {}, error).empty(), *expected != 0);
        EXPECT_NE(error.find(expected), std::string::npos) << error;
        EXPECT_EQ(error.empty(), *expected == 0) << error;
        const int delays[] = {0, 9, 45000000, 1};
        AddFrame(animation, {8, delays[animation.frames.size()]}, [](int, int) { return 0U; });
    }
}

#if LUMAFOLD_WEBP
struct Played {
    std::uint32_t plays = 1000;
    int width = 0, height = 0;
    std::vector<std::pair<int, std::vector<PixelValue>>> screens; ///< until when in milliseconds
};

Played Play(const File& file) {
    const WebPData data{file.data(), file.size()};
    WebPAnimDecoderOptions options;
    WebPAnimDecoderOptionsInit(&options);
    WebPAnimDecoder* decoder = WebPAnimDecoderNew(&data, &options);
    Played played;
    WebPAnimInfo info;
    EXPECT_TRUE(decoder != nullptr && WebPAnimDecoderGetInfo(decoder, &info) != 0);
    if (decoder == nullptr) return played;
    played.plays = info.loop_count;
    played.width = static_cast<int>(info.canvas_width);
    played.height = static_cast<int>(info.canvas_height);
    while (WebPAnimDecoderHasMoreFrames(decoder) != 0) {
        std::uint8_t* rgba = nullptr;
        int until = 0;
        EXPECT_NE(WebPAnimDecoderGetNext(decoder, &rgba, &until), 0);
        std::vector<PixelValue> screen;
        for (int i = 0; i < played.width * played.height; ++i, rgba += 4)
            screen.push_back(rgba[3] == 0 ? kNoPixel : MakeColour(rgba[0], rgba[1], rgba[2]));
        played.screens.emplace_back(until, screen);
    }
    WebPAnimDecoderDelete(decoder);
    return played;
}

/// What is on screen at a moment; the last screen ends at its `until`.
const std::vector<PixelValue>& At(const Played& played, int moment) {
    const auto shown = std::find_if(played.screens.begin(), played.screens.end() - 1,
                                    [=](const auto& screen) { return moment < screen.first; });
    return shown->second;
}

TEST(WebpWriter, ShowsEveryFrameWithoutLoss) {
    for (auto& [name, animation] : AnimationCases()) {
        SCOPED_TRACE(name);
        animation.plays = 7;
        std::string error;
        const File file = EncodeWebp(animation, {}, error);
        const Played played = Play(file);
        ASSERT_EQ(error, "");
        // The same with the delays told at the end, as far as they are what the writer wants.
        WebpWriter writer(animation.width, animation.height, animation.plays, {});
        RunningScreen running(FactsOf(animation));
        std::vector<std::int32_t> delays;
        for (const AnimationFrame& frame : animation.frames) {
            writer.Add(running.Show({*frame.image, frame.delay, frame.transparentIndex}), 7);
            delays.push_back(frame.delay);
        }
        EXPECT_EQ(writer.Finish(delays), file);
        EXPECT_EQ(std::pair(played.width, played.height), std::pair(animation.width, animation.height));
        const auto wanted = WantedScreens(animation);
        if (std::all_of(wanted.begin(), wanted.end(), [&](auto& screen) { return screen == wanted[0]; })) {
            ASSERT_EQ(played.screens.size(), 1U) << "a still picture, which has no time";
            EXPECT_EQ(played.screens[0].second, wanted[0]);
            continue;
        }
        EXPECT_EQ(played.plays, 7U);
        int began = 0;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            const int lasts = std::max(animation.frames[i].delay, 0) * 10;
            if (lasts > 0) {
                EXPECT_EQ(At(played, began), wanted[i]) << i;
                EXPECT_EQ(At(played, began + lasts - 1), wanted[i]) << i;
            }
            began += lasts;
        }
        EXPECT_EQ(played.screens.back().first, began);
    }
}

TEST(WebpWriter, IsSmallerWithLoss) {
    Animation animation = EmptyAnimation(90, 60, 8);
    for (const unsigned seed : {1U, 2U})
        animation.frames.push_back({BusyPicture(90, 60, seed), 10, -1});
    std::string error;
    std::size_t last = EncodeWebp(animation, {}, error).size();
    for (const int quality : {90, 0}) {
        const File file = EncodeWebp(animation, {quality}, error);
        EXPECT_LT(file.size(), last);
        EXPECT_EQ(Play(file).screens.size(), 2U);
        last = file.size();
    }
    animation.width = WebpWriter::kMostSide + 1;
    EXPECT_TRUE(EncodeWebp(animation, {}, error).empty());
    EXPECT_NE(error.find("16383"), std::string::npos);
}
#endif

} // namespace
} // namespace lumafold::test
