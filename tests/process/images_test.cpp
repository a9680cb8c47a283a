// The game is started with missing, damaged or unusual files in place of its images.
#include "game.h"
#include "image.h"

#include <unistd.h>

static const struct
{
    const char *file;
    std::string loading; // the line before the image is loaded
    std::string without; // the next line if the image is refused; empty: the game quits
} IMAGES[] = {
    {"Map.tga", "Loading image...\n", ""},
    {"MapTex.tga", "Loading image...\n", ""},
    {"TexSkyBox.tga", "Loading skybox texture...\n", "Loading cube"},
    {"TexCube.tga", "Loading cube texture...\n", "Loading image"},
    {"TexNoise.tga", "Loading terrain texture...\n", ""},
    {"TexPerson.tga", "Loading Person texture...\n", "...FAILED TO MAKE PEOPLE LIST\n"},
    {"TexPersonBack.tga", "Loading Person Back texture...\n", "...FAILED TO MAKE PEOPLE LIST\n"},
    {"TexTank.tga", "Loading Tank texture...\n", "...FAILED TO MAKE TANK LIST\n"},
};
constexpr int MAPS = 2; // the first two images are the maps

namespace
{
struct ImageFiles : Process
{
    // The start prints a complaint about an image and then uses the image or does without it.
    void expectStart(int image, const std::string &complaint, bool isUsed) const
    {
        const auto &[file, loading, without] = IMAGES[image];
        const std::string log = startLog();
        const size_t loads = log.find(loading) + loading.size();
        const size_t goesOn = isUsed ? loads : without.empty() ? log.npos : log.find(without);
        const std::string start =
            log.substr(0, loads) + complaint + (goesOn == log.npos ? without : log.substr(goesOn));
        EXPECT_TRUE(isSameText(playGame({}), start));
    }
};
} // namespace

TEST_F(ImageFiles, FilesThatHoldNoImageAreRefused)
{
    const struct
    {
        const char *command;
        bool isOpened; // the game can open the file, but finds no header in it
    } rows[] = {
        {"rm $F", false},
        {"rm $F; mkdir $F", true},
        {"rm $F; mkfifo $F", false},
        {"ln -sf nowhere $F", false},
        {"ln -sf /dev/zero $F", false},
        {": >$F", true},
        {"truncate -s 17 $F", true},
    };
    const std::string noLand = "No land: looked for Map.tga and MapTex.tga in " +
                               std::filesystem::current_path().string() + "\n";
    for (const auto &row : rows)
        for (int i = 0; i < 8; ++i)
        {
            SCOPED_TRACE(IMAGES[i].file + (": " + std::string(row.command)));
            makeImages(side);
            setenv("F", IMAGES[i].file, 1);
            ASSERT_EQ(system(row.command), 0);
            const std::string line = "   ...couldn't load TGA\n";
            expectStart(i, i < MAPS && !row.isOpened ? line + noLand : line, false);
        }
}

TEST_F(ImageFiles, HeaderAndSizeDecideWhetherAnImageIsUsed)
{
    const struct
    {
        const char *what;
        int width, height, depth, type;
        long bytes; // of pixels in the file
        int status;
        bool isUsed;
    } rows[] = {
        {"colour-mapped", 8, 8, 24, 1, 192, TGA_ERROR_COLOUR_MAP, false},
        {"run-length encoded", 8, 8, 24, 10, 192, TGA_ERROR_TYPE, false},
        {"a byte too short", 8, 8, 24, 2, 191, TGA_ERROR_READ, false},
        {"of negative width", -8, 8, 24, 2, 192, TGA_ERROR_MEMORY, false},
        {"of four gigabytes", 32767, 32767, 32, 2, 99, TGA_ERROR_MEMORY, false},
        {"of no pixels", 0, 0, 24, 2, 0, TGA_OK, false},
        {"grey", 8, 8, 8, 3, 64, TGA_OK, false},
        {"of two bytes a pixel", 8, 8, 16, 2, 128, TGA_OK, false},
        {"of one pixel", 1, 1, 24, 2, 3, TGA_OK, true},
        {"of odd sides", 5, 3, 24, 2, 45, TGA_OK, true},
        {"of four bytes a pixel", 26, 7, 32, 2, 728, TGA_OK, true},
    };
    const int lastFile = dup(STDERR_FILENO);
    for (const auto &row : rows)
        for (int i = MAPS; i < 8; ++i)
        {
            SCOPED_TRACE(IMAGES[i].file + (": " + std::string(row.what)));
            makeImages(side);
            writePattern(IMAGES[i].file, row.width, row.height, row.depth, row.type, row.bytes);
            TgaImage *image = tgaLoad(IMAGES[i].file);
            EXPECT_EQ(Ids({image->status, image->width, image->height}),
                      Ids({row.status, row.width, row.height}));
            tgaDestroy(image);
            expectStart(i, row.isUsed ? "" : "   ...couldn't load TGA\n", row.isUsed);
        }
    EXPECT_EQ(dup(STDERR_FILENO), lastFile + 1) << "tgaLoad leaves a file open";
}

TEST_F(ImageFiles, MapsMustBeSquareAndOfOneSizeAndLargeAndDeepEnough)
{
    const struct
    {
        int width, height, depth; // of Map.tga
        int colourWidth, colourHeight, colourDepth;
        bool isUsed;
        const char *complaint;
    } rows[] = {
        {0, 0, 8, 0, 0, 32, false, "Height image is too small"},
        {24, 24, 24, 24, 24, 32, false, "Height image is too small"},
        {64, 32, 8, 64, 32, 32, false, "Height image is not square"},
        {26, 26, 8, 25, 26, 32, false, "Height image is different size than texture image"},
        {26, 25, 8, 26, 26, 32, false, "Height image is different size than texture image"},
        {26, 26, 4, 26, 26, 32, false, "Height image is not of correct format: 0"},
        {26, 26, 8, 26, 26, 8, false, "Texture Image is not of correct format: 1"},
        {26, 26, 8, 26, 26, 16, false, "Texture Image is not of correct format: 2"},
        {25, 25, 8, 25, 25, 24, true, "Texture Image is not of correct format: 3"},
        {26, 26, 16, 26, 26, 32, true, nullptr},
        {27, 27, 32, 27, 27, 40, true, "Texture Image is not of correct format: 5"},
        {4096, 4096, 8, 4096, 4096, 32, true, nullptr},
    };
    const auto write = [](const char *name, int width, int height, int depth)
    {
        const int type = depth > 8 ? 2 : 3;
        writePattern(name, width, height, depth, type, 1L * width * height * (depth / 8));
    };
    for (const auto &row : rows)
    {
        const std::string line = row.complaint ? std::string("   ...") + row.complaint + "\n" : "";
        SCOPED_TRACE(testing::Message() << "Map.tga is " << row.width << " wide: " << line);
        write("Map.tga", row.width, row.height, row.depth);
        write("MapTex.tga", row.colourWidth, row.colourHeight, row.colourDepth);
        side = row.width;
        expectStart(0, line, row.isUsed);
    }
}
