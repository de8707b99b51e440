// The contact sheet: what lies where, what it shows of frames that let others shine through, and the sheet of
// the transitions.
#include "codecs/decode.h"
#include "hosts/cli/contact_sheet.h"
#include "tests/hosts/cli_fixture.h"
#include "tests/support/animations.h"

namespace lumafold::test {
namespace {

bool Shows(const OwnedDib& sheet, PixelValue colour) {
    const LockedDib dib(sheet.Get());
    for (int i = 0; i < dib->biWidth * dib->biHeight; ++i) {
        if (DibGetPixel(*dib, i % dib->biWidth, i / dib->biWidth) == colour) return true;
    }
    return false;
}

TEST(ContactSheet, PutsLabelsBelowAndLeavesCellsWithoutPictureEmpty) {
    std::vector<SheetCell> cells(2);
    cells[1] = {PlainPicture(20, 10, 0x10), "|"};
    const OwnedDib sheet = LayOutSheet(cells, kSheetColumns);
    const PixelValue paper = PixelAt(sheet.Get(), 0, 0);
    for (const auto& [x, y, shown] :
         {std::tuple{59, 19, 0x10U}, {42, 24, 0xC4BCB8U}, {43, 24, paper}, {12, 10, paper}})
        EXPECT_EQ(PixelAt(sheet.Get(), x, y), shown) << x << ", " << y;
    EXPECT_FALSE(LayOutSheet({}, 6));
}

TEST(ContactSheet, ShrinksLargePicturesAndKeepsAPixelOfTheLongest) {
    for (const auto& [w, h] : {std::pair{481, 47}, {16384, 1}, {1, 16384}, {160, 120}, {7, 5}}) {
        const OwnedDib small = SheetPicture(*PlainPicture(w, h, 0x123456));
        const LockedDib dib(small.Get());
        EXPECT_TRUE(dib->biWidth >= 1 && dib->biWidth <= std::max(kSheetCellWidth, 164)) << dib->biWidth;
        EXPECT_TRUE(dib->biHeight >= 1 && dib->biHeight <= 164) << dib->biHeight;
        EXPECT_EQ(DibGetPixel(*dib, 0, 0), 0x123456u);
    }
}

TEST(ContactSheet, ShowsFirstAndLastOfManyAndWhatShinesThrough) {
    Animation animation = EmptyAnimation(2, 2, 8);
    for (unsigned i = 0; i < 256; ++i)
        animation.palette[i] = {static_cast<std::uint8_t>(i), 7, 9};
    for (unsigned i = 0; i < 99; ++i)
        AddFrame(animation, {8, 5}, [=](int, int) { return i; });
    AddFrame(animation, {8, 5, 200}, [](int x, int) { return x == 0 ? 200U : 99U; });
    SheetCells cells(kMostSheetCells);
    cells.Begin(FactsOf(animation), animation.frames.size());
    for (const AnimationFrame& frame : animation.frames)
        cells.Add({*frame.image, frame.delay, frame.transparentIndex});
    const OwnedDib sheet = LayOutSheet(cells.Take(), kSheetColumns);
    // 48 of 100 are shown, the second not among them; the one before shines through half of the last.
    for (const auto& [colour, shown] : {std::pair{0, true}, {99, true}, {98, true}, {200, false}, {1, false}})
        EXPECT_EQ(Shows(sheet, MakeColour(static_cast<unsigned>(colour), 7, 9)), shown) << colour;
}

TEST_F(CommandLineTest, TheSheetHasARowForEachTransition) {
    PutPicture("a.bmp", 9, 5, 1);
    PutPicture("b.bmp", 7, 5, 77);
    const Ran ran = Run("sheet %/a.bmp %/b.bmp -o %/all.PNG --matte 0,0,0");
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_NE(ran.out.find("33 transitions, 162x868"), std::string::npos) << ran.out;
    const DecodedPicture sheet = DecodePictureFile(Path("all.PNG"), 0, 1 << 20);
    const DecodedPicture first = DecodePictureFile(Path("a.bmp"), 0, 100);
    const DecodedPicture last = DecodePictureFile(Path("b.bmp"), 0, 100);
    ASSERT_TRUE(sheet.picture && first.picture && last.picture);
    const PixelValue paper = PixelAt(sheet.picture.Get(), 0, 0);
    for (int row = 0; row < 33; ++row) {
        const auto shown = [&](int cell, int x) {
            return PixelAt(sheet.picture.Get(), 10 + cell * 19 + x, 10 + 26 * row);
        };
        int cells = 8;
        while (cells > 0 && shown(cells - 1, 0) == paper)
            --cells;
        EXPECT_EQ(cells, row == 14 ? 2 : row == 15 ? 3 : 8) << "frames to show of row " << row;
        EXPECT_EQ(shown(0, 0), PixelAt(first.picture.Get(), 0, 0)) << row;
        EXPECT_EQ(shown(cells - 1, 7), PixelAt(last.picture.Get(), 6, 0)) << row;
        EXPECT_EQ(shown(cells - 1, 8), 0U) << "black is a colour in row " << row;
    }
}

TEST_F(CommandLineTest, TheSheetOfOneTransitionAndItsFailures) {
    PutPicture("a.bmp", 170, 3, 1);
    const Ran ran = Run("sheet %/a.bmp %/a.bmp -o %/one.png --transition 'Soft iris (diamond)'");
    const std::string bytes = "(" + std::to_string(Get("one.png").size()) + " bytes)\n";
    EXPECT_EQ(ran.out.find(In("wrote %/one.png: 22  Soft iris (diamond), 21 frames, 1024x102, ")), 0u);
    EXPECT_NE(ran.out.find(bytes), std::string::npos) << ran.out;
    const struct {
        int status;
        const char *words, *told;
    } kFailures[] = {
        {1, "%/a.bmp -o %/no.png --set TransitionIrisStep=0",
         "lumafold: Soft iris (diamond) cannot run with TransitionIrisStep=0\n"},
        {1,
         "%/a.bmp -o %/no.png --transition 1 --memory-limit 1 --set TransitionAlphaTileStep=5000000 --set "
         "TransitionAlphaTileSize=1",
         "; the limit is 1.0 MB (--memory-limit)\n"},
        {2, "%/a.bmp -o %/x.gif", "a contact sheet is a .png file"},
        {2, "%/one.png -o %/./one.png", "would replace the picture"},
        {1, "%/none.png -o %/x.png", "none.png"},
    };
    for (const auto& row : kFailures) {
        const Ran failed = Run(std::string("sheet -q %/a.bmp ") + row.words);
        EXPECT_EQ(failed.status, row.status) << row.words;
        EXPECT_NE(failed.err.find(row.told), std::string::npos) << failed.err;
    }
    EXPECT_EQ(Names(), (std::vector<std::string>{"a.bmp", "one.png"}));
}

} // namespace
} // namespace lumafold::test
