#include "fixtures.h"

#include <cstring>

// Status, type, depth, width and height of a file loaded and converted, then its pixels.
static Numbers loaded(const std::string &name, void (*convert)(TgaImage *) = nullptr)
{
    TgaImage *image = tgaLoad(name.c_str());
    if (convert)
        convert(image);
    const auto [status, type, depth, width, height, pixels] = *image;
    Numbers all = {1.0 * status, 1.0 * type, 1.0 * depth, 1.0 * width, 1.0 * height};
    if (pixels)
        all.insert(all.end(), pixels, pixels + width * height * (depth / 8));
    tgaDestroy(image);
    return all;
}

static uint8_t *owned(const Bytes &bytes)
{
    return static_cast<uint8_t *>(memcpy(malloc(bytes.size()), bytes.data(), bytes.size()));
}

TEST_F(World, ImagesOfEveryDepthAreSavedAndLoadedAgain)
{
    const Bytes memory = {1, 2, 3, 4, 5, 6, 7, 8};
    const Bytes stored[] = {{1, 2}, {1, 2, 3, 4}, {3, 2, 1, 6, 5, 4}, {3, 2, 1, 4, 7, 6, 5, 8}};
    for (int bytes = 1; bytes <= 4; ++bytes)
    {
        Numbers expected = {1, bytes < 3 ? 3.0 : 2.0, 8.0 * bytes, 2, 1};
        expected.insert(expected.end(), memory.begin(), memory.begin() + 2 * bytes);
        writeFile("a.tga", tga(bytes < 3 ? 3 : 2, 2, 1, bytes * 8, stored[bytes - 1]));
        EXPECT_EQ(tgaSave("b.tga", 2, 1, static_cast<uint8_t>(bytes * 8), owned(memory)), 1);
        EXPECT_EQ(loaded("a.tga"), expected);
        EXPECT_EQ(loaded("b.tga"), expected);
    }
}

TEST_F(World, StatusTellsWhyAnImageIsRefused)
{
    // Type, width, height and depth of a file with five bytes of pixels; the status
    for (const auto &r :
         table("0 1 1 8 -1 | 1 1 1 8 -3 | 10 1 1 8 -1 | 2 1 2 24 -4 | 2 -1 4 24 -2 | 3 4 -1 8 -2 | "
               "2 30000 30000 24 -2 | 2 20000 20000 32 -4 | 3 9 9 7 1 | 2 0 9 24 1"))
    {
        const auto field = [&](int i) { return static_cast<int>(r[i]); };
        writeFile("a.tga", tga(field(0), field(1), field(2), field(3), {1, 2, 3, 4, 5}));
        EXPECT_EQ(loaded("a.tga"), Numbers({r[4], r[0], r[3], r[1], r[2]}));
    }
    EXPECT_EQ(loaded("none.tga")[0], -5);
}

TEST_F(World, GreyWeighsTheColoursAndMagentaIsTheKey)
{
    // Stored as blue, green, red. 0.3 * 128 + 0.59 * 128 + 0.11 * 128 falls short of 128.
    writeFile("a.tga", tga(2, 3, 1, 24, {128, 128, 128, 254, 0, 255, 255, 0, 255}));
    writeFile("b.tga", tga(2, 1, 1, 32, {0, 255, 0, 9}));
    EXPECT_EQ(loaded("a.tga", tgaRGBtoGreyscale), Numbers({1, 3, 8, 3, 1, 127, 104, 104}));
    EXPECT_EQ(loaded("b.tga", tgaRGBtoGreyscale), Numbers({1, 3, 8, 1, 1, 150}));
    EXPECT_EQ(loaded("a.tga", tgaRGBTransparency),
              Numbers({1, 2, 32, 3, 1, 128, 128, 128, 255, 255, 0, 254, 255, 0, 0, 0, 0}));
}

TEST_F(World, NumberedNamesCountOnlyWhatWasWritten)
{
    uint8_t *kept = owned({1});
    for (int number : {0, 999, 1000, 2147483645})
    {
        savedImages = number;
        EXPECT_EQ(tgaSaveSeries("nowhere/grab", 1, 1, 8, kept), -5);
        EXPECT_EQ(tgaGrabScreenSeries("nowhere/grab", 0, 0, 64, 48), -5) << "and is released";
        EXPECT_EQ(tgaSaveSeries("a", 1, 1, 8, owned({7})), 1);
        EXPECT_EQ(tgaGrabScreenSeries("b", 10, 20, 13, 22), 1);
        EXPECT_EQ(loaded("a" + std::to_string(number) + ".tga"), Numbers({1, 3, 8, 1, 1, 7}));
        EXPECT_EQ(loaded("b" + std::to_string(number + 1) + ".tga").size(), 5u + 3 * 2 * 4);
    }
    free(kept);
}
