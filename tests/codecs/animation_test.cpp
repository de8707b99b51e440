// Animations written and read back. The reader stands on giflib and libpng, which know nothing of the
// writers; what it forgives is looked at in the files.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "codecs/animation_reader.h"
#include "codecs/animation_writer.h"
#include "codecs/frame_screens.h"
#include "codecs/gif_reader.h"
#include "codecs/png_chunks.h"
#include "codecs/png_writer.h"
#include "tests/support/animations.h"
#include "tests/support/pictures.h"

namespace lumafold::test {
namespace {

using File = std::vector<std::uint8_t>;
constexpr std::uint64_t kPlenty = 1 << 24;

constexpr struct Format {
    const char* name;
    AnimationKind kind;
    std::int32_t mostDelay;
} kGif{"GIF", AnimationKind::Gif, 65535}, kApng{"APNG", AnimationKind::Apng, 6553500},
    kMng{"MNG", AnimationKind::Mng, std::numeric_limits<std::int32_t>::max()};

File Encoded(AnimationKind kind, const Animation& animation) {
    std::string error;
    File file = EncodeAnimation(kind, animation, error);
    EXPECT_EQ(error, "");
    return file;
}

std::vector<ScreenPixels> Screens(const Animation& animation) {
    FrameScreens screens(animation);
    std::vector<ScreenPixels> all;
    for (std::size_t i = 0; i < animation.frames.size(); ++i)
        all.push_back(screens.At(i));
    return all;
}

/// The screens of a file that must be readable.
std::vector<ScreenPixels> ScreensOf(const File& file) {
    const ReadAnimation read = DecodeAnimation(file, kPlenty);
    EXPECT_EQ(read.error, "");
    return read.animation ? Screens(*read.animation) : std::vector<ScreenPixels>{};
}

struct StoredGif {
    int paletteBits = 0;
    std::vector<int> transparent; ///< of each frame, -1 for none
};

/// Codes that never come to their end mark are drawn all the same, but only by forgiving viewers.
StoredGif Look(const File& file) {
    const GifReader gif(file);
    StoredGif stored{gif->SColorMap->BitsPerPixel, {}};
    for (;;) {
        GifRecordType kind = UNDEFINED_RECORD_TYPE;
        gif.Check(DGifGetRecordType(gif.Get(), &kind));
        if (kind == TERMINATE_RECORD_TYPE) return stored;
        int code = 0;
        if (kind == IMAGE_DESC_RECORD_TYPE) {
            gif.Check(DGifGetImageDesc(gif.Get()));
            while (code >= 0)
                gif.Check(DGifGetLZCodes(gif.Get(), &code));
            continue;
        }
        GifByteType* data = nullptr;
        gif.Check(DGifGetExtension(gif.Get(), &code, &data));
        if (code == GRAPHICS_EXT_FUNC_CODE) stored.transparent.push_back((data[1] & 1) != 0 ? data[4] : -1);
        while (data != nullptr)
            gif.Check(DGifGetExtensionNext(gif.Get(), &data));
    }
}

File WriteAndRead(const Format& format, const Animation& animation) {
    SCOPED_TRACE(format.name);
    const File file = Encoded(format.kind, animation);
    const ReadAnimation read = DecodeAnimation(file, kPlenty);
    EXPECT_EQ(read.error, "");
    if (!read.animation) return file;
    EXPECT_EQ(std::tuple(read.animation->width, read.animation->height, read.animation->comment),
              std::tuple(animation.width, animation.height, animation.comment));
    EXPECT_EQ(Screens(*read.animation), WantedScreens(animation));
    for (std::size_t i = 0; i < animation.frames.size(); ++i)
        EXPECT_EQ(read.animation->frames[i].delay,
                  std::clamp(animation.frames[i].delay, 0, format.mostDelay));
    const auto pixels =
        static_cast<std::uint64_t>(animation.width * animation.height) * animation.frames.size();
    EXPECT_TRUE(DecodeAnimation(file, pixels).animation);
    EXPECT_FALSE(DecodeAnimation(file, pixels - 1).animation) << "beyond the bound";
    return file;
}

TEST(AnimationWriters, ShowEveryFrameAndKeepPalettes) {
    for (const auto& [name, animation] : AnimationCases()) {
        SCOPED_TRACE(name);
        const bool trueColour = name == "the same in true colour" || name.find("at 24") != std::string::npos;
        const bool colours = trueColour || name == "the same with a full palette";
        if (!trueColour) {
            EXPECT_EQ(Look(WriteAndRead(kGif, animation)).paletteBits, animation.paletteBits);
        }
        const File apng = WriteAndRead(kApng, animation);
        constexpr std::size_t kDepth = 24, kColourType = 25;
        EXPECT_EQ(apng.at(kColourType), colours ? 2 : 3);
        EXPECT_EQ(apng.at(kDepth), animation.frames.size() > 1 || colours ? 8 : animation.paletteBits);
        WriteAndRead(kMng, animation);
    }
}

/// Every chunk but the end's: its type, how much data, and the data in hexadecimal where it is fixed.
std::string ChunksOf(const File& file) {
    std::string text;
    for (std::size_t at = 8; at + 12 < file.size();) {
        const std::size_t length = file[at + 2] * 256U + file[at + 3];
        const std::string type(&file[at + 4], &file[at + 8]);
        const bool fixed = type != "IDAT" && type != "PLTE";
        text += type;
        for (std::size_t i = 0; fixed && i < (type == "fdAT" ? 4 : length); ++i) {
            char digits[4];
            std::snprintf(digits, sizeof(digits), "%s%02X", i % 4 == 0 ? " " : "", file[at + 8 + i]);
            text += digits;
        }
        text += '\n';
        at += length + 12;
    }
    return text;
}

/// Three frames, of which the second changes one pixel and the third nothing; the delay changes once.
Animation RedThenGreen(std::int32_t height = 1) {
    Animation animation = EmptyAnimation(2, height, 2);
    animation.palette[0] = {255, 0, 0};
    animation.palette[1] = {0, 255, 0};
    animation.comment = "k\xC3\xB6nnen";
    AddFrame(animation, {8, 5}, [](int, int) { return 0U; });
    AddFrame(animation, {8, 5, 3}, [=](int x, int y) { return x == 1 && y == height - 1 ? 1U : 3U; });
    AddFrame(animation, {8, 258, 3}, [](int, int) { return 3U; });
    return animation;
}

TEST(AnimationWriters, PutChunksInOrderWithWhatTheyMustSay) {
    const std::string comment = "iTXt 436F6D6D 656E7400 00000000 6BC3B66E 6E656E\n";
    EXPECT_EQ(ChunksOf(Encoded(AnimationKind::Apng, RedThenGreen(2))),
              "IHDR 00000002 00000002 08030000 00\nacTL 00000003 00000000\nPLTE\n" + comment +
                  "fcTL 00000000 00000002 00000002 00000000 00000000 00050064 0000\nIDAT\n"
                  "fcTL 00000001 00000001 00000001 00000001 00000001 00050064 0001\nfdAT 00000002\n"
                  "fcTL 00000003 00000001 00000001 00000000 00000000 01020064 0001\nfdAT 00000004\n");
    const std::string onePixel = "IHDR 00000001 00000001 01030000 00\nPLTE\nIDAT\nIEND\n";
    EXPECT_EQ(ChunksOf(Encoded(AnimationKind::Mng, RedThenGreen(2))),
              "MHDR 00000002 00000002 00000064 00000000 00000003 0000010C 00000043\n"
              "TERM 03000000 00007FFF FFFF\n" +
                  comment + "FRAM 01000200 00000000 0005\nDEFI 00000000 00000000 00000000\n" +
                  "IHDR 00000002 00000002 01030000 00\nPLTE\nIDAT\nIEND\n" +
                  "DEFI 00000000 00000001 00000001\n" + onePixel +
                  "FRAM 01000200 00000000 0102\nDEFI 00000000 00000000 00000000\n" + onePixel);
    Animation open = EmptyAnimation(2, 1, 1);
    AddFrame(open, {1, 5, 1}, [](int x, int) { return static_cast<unsigned>(x); });
    const std::string chunks = ChunksOf(Encoded(AnimationKind::Mng, open));
    EXPECT_NE(chunks.find("00000001 00000005 000000CB\nTERM"), std::string::npos) << chunks;
    EXPECT_NE(chunks.find("PLTE\ntRNS 00\nIDAT"), std::string::npos) << chunks;
}

TEST(AnimationWriters, RefuseWhatTheFormatsCannotHold) {
    const auto refused = [](const Format& format, const Animation& animation, std::string_view text) {
        std::string error;
        EXPECT_TRUE(EncodeAnimation(format.kind, animation, error).empty());
        EXPECT_NE(error.find(text), std::string::npos) << format.name << ": " << error;
    };
    Animation animation;
    animation.width = animation.height = 4;
    for (const Format& format : {kGif, kApng, kMng})
        refused(format, animation, "no frames");
    AddFrame(animation, {24, 5}, [](int, int) { return 0U; });
    refused(kGif, animation, "true-colour");
    animation.frames.push_back({OwnedDib(), 5, -1});
    refused(kApng, animation, "no picture");
    animation.frames.clear();
    AddFrame(animation, {8, 5}, [](int, int) { return 0U; });
    animation.width = 65536;
    refused(kGif, animation, "65535");
    animation.width = 1000001;
    refused(kApng, animation, "1000000");
}

TEST(GifWriter, IsExact) {
    Animation animation = EmptyAnimation(1, 1, 1);
    animation.palette[0] = {'r', 'e', 'd'};
    animation.palette[1] = {'s', 'k', 'y'};
    AddFrame(animation, {1, 258}, [](int, int) { return 1U; });
    const std::string wanted("GIF89a\1\0\1\0\xF0\0\0skyred\x21\xFF\x0BNETSCAPE2.0\3\1\0\0\0"
                             "\x21\xF9\4\4\2\1\0\0\x2C\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;",
                             62);
    const File file = Encoded(AnimationKind::Gif, animation);
    EXPECT_EQ(std::string(file.begin(), file.end()), wanted);
}

// The code table fills and starts again at every possible length of what follows.
TEST(GifWriter, ShowsPicturesWhoseCodesEndAnywhere) {
    const auto one = [](int width, int bits, const std::function<unsigned(int, int)>& pixelAt) {
        Animation animation = EmptyAnimation(width, 1, bits);
        AddFrame(animation, {bits, 5}, pixelAt);
        Look(WriteAndRead(kGif, animation));
    };
    for (const int bits : {1, 2, 5, 8}) {
        for (int width = 1; width <= 40; ++width)
            one(width, bits, [](int x, int) { return static_cast<unsigned>(x % 2); });
    }
    std::mt19937 random(7);
    for (int width = 3820; width <= 3870; ++width)
        one(width, 8, [&](int, int) { return static_cast<unsigned>(random() & 255); });
}

TEST(GifWriter, LeavesOutUnchangedPixelsWhereThatPacksBetter) {
    Animation made = EmptyAnimation(100, 100, 8);
    const auto noise = [](int x, int y) {
        return static_cast<unsigned>((x * 7919 + y * 104729 + x * y * 31) % 251);
    };
    const auto marked = [&](unsigned mark) {
        return [=](int x, int y) { return x == y && x % 99 == 0 ? mark : noise(x, y); };
    };
    AddFrame(made, {8, 5}, noise);
    AddFrame(made, {8, 5, 255}, marked(252));
    AddFrame(made, {8, 5}, marked(251));
    AddFrame(made, {8, 5}, [](int x, int y) { return (x * y) % 3 == 0 ? 9U : 10U; });
    AddFrame(made, {8, 5, 255}, [](int, int) { return 9U; });
    const std::vector<int> transparent = Look(WriteAndRead(kGif, made)).transparent;
    EXPECT_NE(transparent.at(1), -1);
    EXPECT_NE(transparent.at(2), -1) << "an index that the frame draws nowhere will do";
    EXPECT_EQ(transparent.at(4), -1) << "one colour packs better than one with holes";
}

TEST(GifWriter, WidensTheTableForIndexesBeyondIt) {
    Animation made = EmptyAnimation(8, 8, 5);
    AddFrame(made, {8, 5}, [](int x, int y) { return static_cast<unsigned>(x * 8 + y) % 32 + 20; });
    AddFrame(made, {8, 5, 200}, [](int x, int y) { return x == y ? static_cast<unsigned>(x + 60) : 200; });
    EXPECT_EQ(Look(WriteAndRead(kGif, made)).paletteBits, 6);
}

// What was taken for a hole turns out to be a colour, and indexes turn into colours, when frames are written.
TEST(AnimationWriters, FindAnotherHoleWhenFramesDrawTheirs) {
    Animation indexed = EmptyAnimation(16, 16, 8);
    for (unsigned i = 0; i < 256; ++i)
        indexed.palette[i] = {static_cast<std::uint8_t>(i), 0, 0};
    const auto all = [](int x, int y) { return static_cast<unsigned>(x * 16 + y); };
    AddFrame(indexed, {8, 5, 255}, [&](int x, int y) { return std::min(all(x, y), 254U); });
    AddFrame(indexed, {8, 5}, all);
    AddFrame(indexed, {24, 5}, [](int x, int) { return x % 2 == 0 ? 0xFF00FFU : 0x00FF00U; });
    for (const Format& format : {kApng, kMng}) {
        WriteAndRead(format, indexed);
        for (const unsigned darkest : {0U, 1U}) {
            Animation colours = EmptyAnimation(16, 16, 8);
            const auto many = [&](int x, int y) { return all(x, y) + darkest; };
            AddFrame(colours, {24, 5}, many);
            for (const unsigned colour : {0xFF00FFU, 0xFE01FEU, 0x000000U})
                AddFrame(colours, {24, 5}, [&](int x, int y) { return x == y ? colour : many(x, y); });
            WriteAndRead(format, colours);
        }
    }
}

/// Runs pieces from the last to the first.
class Backwards final : public Runner {
    void Start(Piece piece, const void* work) const override { begun_.emplace_back(piece, work); }
    void Settle() const override {
        for (; !begun_.empty(); begun_.pop_back())
            begun_.back().first(begun_.back().second, 0);
    }
    mutable std::vector<std::pair<Piece, const void*>> begun_;
};

TEST(AnimationWriters, PackFramesInAnyOrderAndTakeOtherDelaysLater) {
    const Backwards runner;
    for (const auto& [name, animation] : AnimationCases()) {
        SCOPED_TRACE(name);
        std::vector<std::int32_t> delays;
        for (const AnimationFrame& frame : animation.frames)
            delays.push_back(frame.delay);
        for (const AnimationKind kind : {AnimationKind::Gif, AnimationKind::Apng, AnimationKind::Mng}) {
            std::string error;
            const auto writer = NewAnimationWriter(kind, FactsOf(animation), kUsualEffort, runner);
            const File whole = EncodeAnimation(kind, animation, error);
            if (whole.empty()) continue; // of true colour
            for (const AnimationFrame& frame : animation.frames) {
                const OwnedDib copy(GlobalDuplicate(frame.image.Get())); // gone before it is packed
                writer->Add({*copy, 3, frame.transparentIndex});
            }
            EXPECT_EQ(writer->Finish(animation.comment, delays).Join(), whole);
        }
        if (name.find("large") == std::string::npos) continue;
        std::string error;
        const auto sizeAt = [&, &made = animation](int effort) {
            return EncodeAnimation(AnimationKind::Apng, made, error, {effort, {}}).size();
        };
        EXPECT_LT(sizeAt(12), sizeAt(1));
        std::size_t told = 0;
        const auto untilTheFirst = [&](std::size_t done, std::size_t) { return (told = done) < 1; };
        EXPECT_TRUE(EncodeAnimation(AnimationKind::Mng, animation, error, {1, untilTheFirst}).empty());
        EXPECT_EQ(told, 1U);
        EXPECT_NE(error, "");
    }
}

TEST(AnimationReader, KeepsPalettesAsLongAsTheyReach) {
    Animation animation = EmptyAnimation(16, 17, 8);
    const auto ramp = [](int x, int y) { return MakeColour(static_cast<unsigned>(x * 17 + y), 0, 0); };
    AddFrame(animation, {24, 5}, [&](int x, int y) { return y < 16 ? ramp(x, 0) : 0U; });
    const ReadAnimation read = DecodeAnimation(Encoded(AnimationKind::Apng, animation), kPlenty);
    ASSERT_TRUE(read.animation) << read.error;
    EXPECT_EQ(LockedDib(read.animation->frames[0].image.Get())->biBitCount, 8);
    EXPECT_EQ(read.animation->paletteBits, 4);
    AddFrame(animation, {24, 5}, ramp);
    AddFrame(animation, {24, 5}, [&](int x, int y) { return ramp(x, y) << 8; });
    EXPECT_EQ(ScreensOf(Encoded(AnimationKind::Apng, animation)), WantedScreens(animation));
}

TEST(AnimationReader, DoesWithAFrameWhatGifSays) {
    File file = Encoded(AnimationKind::Gif, RedThenGreen());
    constexpr std::uint8_t kControl[] = {0x21, 0xF9, 0x04};
    auto control = std::search(file.begin(), file.end(), std::begin(kControl), std::end(kControl));
    control = std::search(control + 1, file.end(), std::begin(kControl), std::end(kControl));
    ASSERT_NE(control, file.end());
    constexpr PixelValue kLeftAfter[] = {0x00FF00, 0x00FF00, 0xFFFFFF, 0x0000FF};
    for (unsigned disposal = 0; disposal < 4; ++disposal) {
        control[3] = static_cast<std::uint8_t>((control[3] & 1) | disposal << 2);
        const auto screens = ScreensOf(file);
        EXPECT_EQ(screens.at(1), (ScreenPixels{0x0000FF, 0x00FF00})) << disposal;
        EXPECT_EQ(screens.at(2), (ScreenPixels{0x0000FF, kLeftAfter[disposal]})) << disposal;
    }
}

/// A PNG file taken apart, so that its chunks can stand in another.
ChunkWriter::Data ChunkOf(const File& png, std::string_view type) {
    const auto at = std::search(png.begin(), png.end(), type.begin(), type.end());
    return ChunkWriter::Data().Bytes({&at[4], at[-2] * 256U + at[-1]});
}

File Apng(std::uint32_t dispose, std::uint32_t blend) {
    std::string error;
    const OwnedDib red = PlainPicture(2, 1, 0x0000FF), green = PlainPicture(1, 1, 0x00FF00);
    const File whole = EncodePng(red.Get(), error), small = EncodePng(green.Get(), error);
    ChunkWriter file("\x89PNG\r\n\x1A\n");
    std::uint32_t sequence = 0;
    const auto frame = [&](const File& png, std::uint32_t width, std::uint32_t disposal) {
        ChunkWriter::Data control;
        control.U32(sequence++).U32(width).U32(1).U32(0).U32(0).U16(1).U16(2).U8(disposal).U8(blend);
        file.Put("fcTL", control);
        const ChunkWriter::Data rows = ChunkOf(png, "IDAT");
        file.Put("fdAT", ChunkWriter::Data().U32(sequence++).Bytes(rows.Get()));
    };
    file.Put("IHDR", ChunkOf(whole, "IHDR"));
    file.Put("acTL", ChunkWriter::Data().U32(2).U32(0));
    file.Put("IDAT", ChunkOf(whole, "IDAT")); // no frame: nothing controls it
    frame(whole, 2, 0);
    frame(small, 1, dispose);
    frame(small, 1, 0);
    file.Put("IEND");
    return file.Take();
}

TEST(AnimationReader, DoesWithAFrameWhatApngSays) {
    for (const std::uint32_t dispose : {0U, 1U, 2U}) {
        const ReadAnimation read = DecodeAnimation(Apng(dispose, dispose % 2), kPlenty);
        ASSERT_TRUE(read.animation) << read.error;
        ASSERT_EQ(read.animation->frames.size(), 3U);
        EXPECT_EQ(read.animation->frames[0].delay, 50);
        EXPECT_EQ(Screens(*read.animation)[2], (ScreenPixels{0x00FF00, 0x0000FF}));
    }
}

TEST(AnimationReader, OpensStillPicturesAndNamesWhatItCannot) {
    std::string error;
    const OwnedDib picture = BusyPicture(7, 5, 3);
    const auto screens = ScreensOf(EncodePng(picture.Get(), error));
    ASSERT_EQ(screens.size(), 1U);
    EXPECT_EQ(screens[0][8], PixelAt(picture.Get(), 1, 1));

    ChunkWriter mng("\x8AMNG\r\n\x1A\n");
    mng.Put("MHDR", ChunkWriter::Data().U32(2).U32(2).U32(100));
    mng.Put("LOOP");
    File damaged = Apng(0, 0);
    damaged[20] ^= 1;
    const std::pair<File, const char*> kCases[] = {
        {mng.Take(), "LOOP"}, {damaged, "checksum"}, {{'h', 'a'}, "no PNG"}};
    for (const auto& [file, text] : kCases)
        EXPECT_NE(DecodeAnimation(file, kPlenty).error.find(text), std::string::npos) << text;
    EXPECT_NE(DecodeAnimationFile("/no/such/file.gif", kPlenty).error, "");
}

} // namespace
} // namespace lumafold::test
