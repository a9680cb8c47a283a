#include "image.h"
#include "world.h"

#include <cstring>
#include <tuple>

// Status, type, depth, width, height and pixels.
typedef std::tuple<int, int, int, int, int, Bytes> Loaded;

static Loaded load(const std::string &name, void (*convert)(TgaImage *) = nullptr)
{
    TgaImage *image = tgaLoad(name.c_str());
    if (convert)
        convert(image);
    const auto [status, type, depth, width, height, data] = *image;
    const Bytes pixels(data, data ? data + width * height * (depth / 8) : data);
    tgaDestroy(image);
    return {status, type, depth, width, height, pixels};
}

static uint8_t *allocateCopy(const Bytes &bytes)
{
    return static_cast<uint8_t *>(memcpy(malloc(bytes.size()), bytes.data(), bytes.size()));
}

TEST_F(World, ImagesOfEveryDepthAreSavedAndLoadedAgain)
{
    const struct
    {
        uint8_t type, depth;
        int16_t width;
        Bytes file, memory; // pixels
    } rows[] = {
        {3, 8, 258, Bytes(258, 9), Bytes(258, 9)}, // a width above 255, which needs both bytes
        {3, 16, 2, {1, 2, 3, 4}, {1, 2, 3, 4}},
        {2, 24, 2, {3, 2, 1, 6, 5, 4}, {1, 2, 3, 4, 5, 6}},
        {2, 32, 2, {3, 2, 1, 4, 7, 6, 5, 8}, {1, 2, 3, 4, 5, 6, 7, 8}},
    };
    for (const auto &[type, depth, width, file, memory] : rows)
    {
        const Loaded expected = {TGA_OK, type, depth, width, 1, memory};
        writeFile("a.tga", tga(type, width, 1, depth, file));
        EXPECT_EQ(tgaSave("b.tga", width, 1, depth, allocateCopy(memory)), TGA_OK);
        EXPECT_EQ(load("a.tga"), expected);
        EXPECT_EQ(load("b.tga"), expected);
    }
}

TEST_F(World, GreyWeighsTheColoursAndMagentaBecomesTransparent)
{
    // Files store blue, green and red. In floating point 0.3 * 128 + 0.59 * 128 + 0.11 * 128 is
    // slightly less than 128, and the game cuts it to 127.
    writeFile("a.tga", tga(2, 3, 1, 24, {128, 128, 128, 254, 0, 255, 255, 0, 255}));
    writeFile("b.tga", tga(2, 1, 1, 32, {104, 200, 0, 9}));
    EXPECT_EQ(load("a.tga", tgaRGBtoGreyscale), Loaded(1, 3, 8, 3, 1, {127, 104, 104}));
    EXPECT_EQ(load("b.tga", tgaRGBtoGreyscale), Loaded(1, 3, 8, 1, 1, {129}));
    EXPECT_EQ(load("a.tga", tgaRGBTransparency),
              Loaded(1, 2, 32, 3, 1, {128, 128, 128, 255, 255, 0, 254, 255, 0, 0, 0, 0}));
}

TEST_F(World, FailedSaveDoesNotUseUpANumber)
{
    uint8_t *pixels = allocateCopy({1});
    savedImages = 2147483645;
    EXPECT_EQ(tgaSaveSeries("nowhere/grab", 1, 1, 8, pixels), TGA_ERROR_OPEN);
    free(pixels); // a failed save leaves them to the caller
    EXPECT_EQ(tgaGrabScreenSeries("nowhere/grab", 0, 0, 64, 48), TGA_ERROR_OPEN);
    EXPECT_EQ(tgaSaveSeries("a", 1, 1, 8, allocateCopy({7})), TGA_OK);
    EXPECT_EQ(tgaGrabScreenSeries("b", 10, 20, 13, 22), TGA_OK);
    EXPECT_EQ(load("a2147483645.tga"), Loaded(1, 3, 8, 1, 1, {7}));
    EXPECT_EQ(load("b2147483646.tga"), Loaded(1, 2, 32, 3, 2, Bytes(24)));
    for (int side : {0, -1, 32768})
    {
        EXPECT_EQ(tgaGrabScreenSeries("b", 5, 0, 5 + side, 1), TGA_ERROR_MEMORY) << side;
        EXPECT_EQ(tgaGrabScreenSeries("b", 0, 5, 1, 5 + side), TGA_ERROR_MEMORY) << side;
    }
}
