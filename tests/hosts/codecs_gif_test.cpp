#include <gif_lib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "hosts/codecs/decode.h"
#include "hosts/codecs/gif_writer.h"
#include "tests/support/gif_reader.h"

namespace lumafold {
namespace {

using test::PlayedGif;

class AnimationMaker {
public:
    AnimationMaker(std::int32_t width, std::int32_t height, int bits) {
        made.width = width;
        made.height = height;
        made.paletteBits = bits;
        for (int i = 0; i < 1 << bits; ++i)
            made.palette[static_cast<std::size_t>(i)] = {Byte(), Byte(), Byte()};
    }
    template <typename IndexAt>
    void Add(IndexAt indexAt, std::int32_t delay = 5, std::int32_t transparent = -1, std::int32_t width = 0,
             std::int32_t height = 0) {
        if (width == 0) width = made.width;
        if (height == 0) height = made.height;
        OwnedDib dib(DibCreate(width, height, &made.palette, made.paletteBits));
        const LockedDib lock(dib.Get());
        for (std::int32_t y = 0; y < height; ++y) {
            for (std::int32_t x = 0; x < width; ++x) {
                DibSetPixel(lock.Get(), x, y, static_cast<PixelValue>(indexAt(x, y)));
            }
        }
        made.frames.push_back({std::move(dib), delay, transparent});
    }
    std::uint8_t Byte() { return static_cast<std::uint8_t>(random_()); }

    Animation made;

private:
    std::mt19937 random_{7};
};

/// What the frames themselves say is on screen after each of them.
std::vector<std::vector<PixelValue>> WantedScreens(const Animation& animation) {
    std::vector<std::vector<PixelValue>> wanted;
    std::vector<PixelValue> screen(static_cast<std::size_t>(animation.width * animation.height), kNoPixel);
    for (const AnimationFrame& frame : animation.frames) {
        const LockedDib lock(frame.image.Get());
        for (std::int32_t y = 0; y < lock->biHeight; ++y) {
            for (std::int32_t x = 0; x < lock->biWidth; ++x) {
                const PixelValue index = DibGetPixel(lock.Get(), x, y);
                const Rgb colour = animation.palette[index];
                if (static_cast<std::int32_t>(index) == frame.transparentIndex) continue;
                screen[static_cast<std::size_t>(y * animation.width + x)] =
                    MakeColour(colour.red, colour.green, colour.blue);
            }
        }
        wanted.push_back(screen);
    }
    return wanted;
}

struct MemoryFile {
    std::span<const std::uint8_t> left;
    static int Read(GifFileType* gif, GifByteType* to, int bytes) {
        auto& left = static_cast<MemoryFile*>(gif->UserData)->left;
        const std::size_t length = std::min(left.size(), static_cast<std::size_t>(bytes));
        std::copy_n(left.begin(), length, to);
        left = left.subspan(length);
        return static_cast<int>(length);
    }
};

/// The same screens once more through giflib.
std::vector<std::vector<PixelValue>> GiflibScreens(std::span<const std::uint8_t> file) {
    std::vector<std::vector<PixelValue>> screens;
    MemoryFile source{file};
    int error = 0;
    GifFileType* gif = DGifOpen(&source, MemoryFile::Read, &error);
    if (gif == nullptr || DGifSlurp(gif) == GIF_ERROR) return screens;
    std::vector<PixelValue> screen(static_cast<std::size_t>(gif->SWidth * gif->SHeight), kNoPixel);
    for (int f = 0; f < gif->ImageCount; ++f) {
        const SavedImage& image = gif->SavedImages[f];
        GraphicsControlBlock control{};
        DGifSavedExtensionToGCB(gif, f, &control);
        const GifImageDesc& at = image.ImageDesc;
        for (int i = 0; i < at.Width * at.Height; ++i) {
            const int index = image.RasterBits[i];
            if (index == control.TransparentColor) continue;
            const GifColorType& c = gif->SColorMap->Colors[index];
            screen[static_cast<std::size_t>((at.Top + i / at.Width) * gif->SWidth + at.Left + i % at.Width)] =
                MakeColour(c.Red, c.Green, c.Blue);
        }
        screens.push_back(screen);
    }
    DGifCloseFile(gif, &error);
    return screens;
}

PlayedGif WriteAndPlay(const Animation& animation) {
    std::string error;
    const std::vector<std::uint8_t> file = EncodeGif(animation, error);
    EXPECT_EQ(error, "");
    PlayedGif played = test::PlayGif(file);
    EXPECT_EQ(played.problem, "");
    EXPECT_EQ(played.width, animation.width);
    EXPECT_EQ(played.height, animation.height);
    EXPECT_EQ(played.loops, 0);
    EXPECT_EQ(played.comment, animation.comment);
    const auto wanted = WantedScreens(animation);
    EXPECT_EQ(GiflibScreens(file), wanted);
    EXPECT_EQ(played.frames.size(), wanted.size());
    for (std::size_t i = 0; i < std::min(wanted.size(), played.frames.size()); ++i) {
        EXPECT_EQ(played.frames[i].screen, wanted[i]) << "frame " << i;
        EXPECT_EQ(played.frames[i].delay, std::clamp(animation.frames[i].delay, 0, 65535));
        EXPECT_EQ(played.frames[i].disposal, 1);
    }
    return played;
}

TEST(GifWriter, ShowsNoiseOfEveryDepthAndSize) {
    const std::pair<int, int> sizes[] = {{1, 1}, {7, 5}, {33, 1}, {61, 47}, {300, 211}};
    for (const auto& [width, height] : sizes) {
        for (int bits = 1; bits <= 8; ++bits) {
            SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height) + " at " +
                         std::to_string(bits));
            AnimationMaker maker(width, height, bits);
            const int most = 1 << bits;
            maker.Add([&](int, int) { return maker.Byte() % most; }, 0);
            maker.Add([&](int x, int y) { return (x + y) % most; }, 1);
            maker.Add([&](int x, int y) { return x % 3 == 0 ? maker.Byte() % most : (x + y) % most; }, 65535,
                      most - 1);
            maker.Add([&](int, int) { return maker.Byte() % 4 == 0 ? maker.Byte() % most : most - 1; }, 70000,
                      most - 1);
            maker.Add([&](int, int) { return 0; }, -3);
            const PlayedGif played = WriteAndPlay(maker.made);
            EXPECT_EQ(played.table.size(), static_cast<std::size_t>(most));
        }
    }
}

// The code table fills and starts again at every possible length of what follows.
TEST(GifWriter, ShowsPicturesWhoseCodesEndAnywhere) {
    for (int bits : {1, 2, 5, 8}) {
        for (int width = 1; width <= 40; ++width) {
            AnimationMaker maker(width, 1, bits);
            maker.Add([&](int x, int) { return x % 2; });
            WriteAndPlay(maker.made);
        }
    }
    for (int width = 3820; width <= 3870; ++width) {
        AnimationMaker maker(width, 1, 8);
        maker.Add([&](int, int) { return maker.Byte(); });
        WriteAndPlay(maker.made);
    }
}

TEST(GifWriter, CropsToWhatChangesInColour) {
    AnimationMaker maker(61, 47, 4);
    maker.made.palette[9] = maker.made.palette[3];
    maker.made.comment = std::string(600, 'c') + "\n";
    const auto base = [](int, int) { return 3; };
    maker.Add(base);
    maker.Add([](int x, int) { return x % 2 == 0 ? 3 : 9; });                   // looks the same
    maker.Add([](int x, int y) { return x >= 5 && x < 9 && y == 46 ? 1 : 9; }); // one spot
    maker.Add([](int x, int y) { return x == 60 && y == 0 ? 2 : 15; }, 8, 15);  // all else left as it was
    maker.Add([](int, int) { return 15; }, 9, 15);
    const PlayedGif played = WriteAndPlay(maker.made);
    const std::array<int, 4> wanted[] = {
        {0, 0, 61, 47}, {0, 0, 1, 1}, {5, 46, 4, 1}, {60, 0, 1, 1}, {0, 0, 1, 1}};
    for (std::size_t i = 0; i < std::size(wanted); ++i) {
        const auto& frame = played.frames[i];
        EXPECT_EQ((std::array<int, 4>{frame.left, frame.top, frame.width, frame.height}), wanted[i]) << i;
    }
}

TEST(GifWriter, LeavesOutUnchangedPixelsWhereThatPacksBetter) {
    AnimationMaker maker(100, 100, 8);
    const auto noise = [](int x, int y) { return (x * 7919 + y * 104729 + x * y * 31) % 251; };
    maker.Add(noise);
    maker.Add([&](int x, int y) { return x == y && x % 99 == 0 ? 252 : noise(x, y); }, 5, 255);
    maker.Add([&](int x, int y) { return x == y && x % 99 == 0 ? 251 : noise(x, y); }, 5);
    maker.Add([](int x, int y) { return (x * y) % 3 == 0 ? 9 : 10; }, 5);
    maker.Add([](int, int) { return 9; }, 5, 255);
    const PlayedGif played = WriteAndPlay(maker.made);
    EXPECT_EQ(played.frames[1].transparent, 255);
    EXPECT_NE(played.frames[2].transparent, -1) << "an index that the frame draws nowhere will do";
    EXPECT_EQ(played.frames[4].transparent, -1) << "one colour packs better than one with holes";
}

TEST(GifWriter, PlacesSmallFramesAndKeepsHolesOpen) {
    AnimationMaker maker(9, 8, 3);
    maker.Add([](int x, int y) { return (x + y) % 2 == 0 ? 7 : 4; }, 5, 7, 3, 4); // holes with nothing behind
    maker.Add([](int x, int) { return x % 8; }, 5, 7);
    maker.Add([](int, int) { return 7; }, 5, -1, 2, 2); // here the same index is a colour
    maker.Add([](int x, int) { return x == 0 ? 7 : 1; }, 5, 7);
    WriteAndPlay(maker.made);
}

TEST(GifWriter, WidensTheTableForIndexesBeyondIt) {
    AnimationMaker maker(5, 5, 8);
    maker.Add([](int x, int y) { return x * 5 + y + 20; }); // up to 44
    maker.Add([](int x, int y) { return x == y && x % 4 == 0 ? 1 : x * 5 + y + 20; }, 5,
              200); // nor is 200 in it
    maker.made.paletteBits = 5;
    const PlayedGif played = WriteAndPlay(maker.made);
    EXPECT_EQ(played.table.size(), 64U);
}

TEST(GifWriter, RefusesWhatGifCannotHold) {
    const auto refused = [](const Animation& animation, std::string_view text) {
        std::string error;
        EXPECT_TRUE(EncodeGif(animation, error).empty());
        EXPECT_NE(error.find(text), std::string::npos) << error;
    };
    AnimationMaker maker(4, 4, 8);
    refused(maker.made, "no frames");
    maker.Add([](int, int) { return 0; });
    maker.made.frames.push_back({OwnedDib(DibCreate(4, 4, nullptr, 24)), 5, -1});
    refused(maker.made, "true-colour");
    maker.made.frames.pop_back();
    maker.made.width = 65536;
    refused(maker.made, "65535");
}

constexpr PixelValue kMatte = MakeColour(1, 2, 3);

Rgb ColourAt(DibHandle picture, int x, int y) {
    const LockedDib lock(picture);
    Palette palette;
    DibGetPalette(lock.Get(), palette);
    const PixelValue value = DibGetPixel(lock.Get(), x, y);
    if (lock->biBitCount <= 8) return palette[value];
    return {static_cast<std::uint8_t>(RedOf(value)), static_cast<std::uint8_t>(GreenOf(value)),
            static_cast<std::uint8_t>(BlueOf(value))};
}

// The decoder of still pictures reads the first frame.
TEST(GifDecoder, KeepsThePaletteAndFillsWithTheMatte) {
    const Rgb matte{1, 2, 3};
    for (const int bits : {1, 2, 3, 4, 7, 8}) {
        for (const bool hole : {false, true}) {
            for (const int frameWidth : {20, 33}) {
                SCOPED_TRACE(std::to_string(bits) + (hole ? " hole " : " ") + std::to_string(frameWidth));
                AnimationMaker maker(33, 17, bits);
                const int most = 1 << bits;
                const auto index = [&](int x, int y) { return (x + y * 16) % most; };
                maker.Add(index, 5, hole ? most - 1 : -1, frameWidth, 17);
                std::string error;
                const DecodedPicture got = DecodePicture(EncodeGif(maker.made, error), kMatte, 1 << 20);
                ASSERT_EQ(got.error, "");
                const LockedDib lock(got.picture.Get());
                // A matte entry of its own needs a place in the table.
                const int needed = hole || frameWidth == 33 ? most : most + 1;
                EXPECT_EQ(lock->biBitCount, needed > 256 ? 24 : needed > 16 ? 8 : needed > 2 ? 4 : 1);
                for (int y = 0; y < 17; ++y) {
                    for (int x = 0; x < 33; ++x) {
                        const bool open = x >= frameWidth || (hole && index(x, y) == most - 1);
                        ASSERT_EQ(ColourAt(got.picture.Get(), x, y),
                                  open ? matte : maker.made.palette[static_cast<std::size_t>(index(x, y))])
                            << x << ", " << y;
                    }
                }
            }
        }
    }
}

// Written by giflib: interlaced, off the screen's corner, with colours of its own, on a screen told too
// small.
TEST(GifDecoder, ReadsInterlacedFramesWithLocalColours) {
    std::vector<std::uint8_t> file;
    int error = 0;
    GifFileType* gif = EGifOpen(
        &file,
        [](GifFileType* to, const GifByteType* bytes, int length) {
            auto& out = *static_cast<std::vector<std::uint8_t>*>(to->UserData);
            out.insert(out.end(), bytes, bytes + length);
            return length;
        },
        &error);
    GifColorType colours[4] = {{10, 0, 0}, {0, 20, 0}, {0, 0, 30}, {40, 40, 40}};
    ColorMapObject* map = GifMakeMapObject(4, colours);
    EGifPutScreenDesc(gif, 10, 4, 8, 0, nullptr);
    EGifPutImageDesc(gif, 2, 3, 9, 13, true, map);
    const auto index = [](int x, int y) { return static_cast<GifPixelType>((x + y * y) % 4); };
    for (const auto& [first, step] : {std::pair{0, 8}, {4, 8}, {2, 4}, {1, 2}}) {
        for (int y = first; y < 13; y += step) {
            GifPixelType row[9];
            for (int x = 0; x < 9; ++x)
                row[x] = index(x, y);
            EGifPutLine(gif, row, 9);
        }
    }
    GifFreeMapObject(map);
    EGifCloseFile(gif, &error);

    const DecodedPicture got = DecodePicture(file, kMatte, 1 << 20);
    ASSERT_EQ(got.error, "");
    const LockedDib lock(got.picture.Get());
    ASSERT_EQ(lock->biWidth, 11);
    ASSERT_EQ(lock->biHeight, 16);
    EXPECT_EQ(lock->biBitCount, 4);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 11; ++x) {
            const GifColorType& c = colours[index(x - 2, y - 3) & 3];
            const Rgb wanted = x < 2 || y < 3 ? Rgb{1, 2, 3} : Rgb{c.Red, c.Green, c.Blue};
            ASSERT_EQ(ColourAt(got.picture.Get(), x, y), wanted) << x << ", " << y;
        }
    }
}

} // namespace
} // namespace lumafold
