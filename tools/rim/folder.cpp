#include "folder.h"

#include "image.h"
#include "terrain.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

constexpr int HEADER_BYTES = 18;
constexpr int TRUE_COLOUR = 2, GREY = 3; // image types
constexpr int COMPRESSED = 8;            // is added to the type of a compressed image

namespace
{
enum Use
{
    HEIGHTS,
    COLOURS,
    TEXTURE
};

struct ImageFile
{
    const char *name;
    Use use;
};

// What the header of an image file says, and how long the file is.
struct ImageHeader
{
    int idBytes, colourMapType, type, width, height, depth;
    int64_t fileBytes;
};
} // namespace

// All images that the game reads. It would read two pictures of people only in a mode that is
// switched off.
constexpr ImageFile FILES[] = {{"Map.tga", HEIGHTS},       {"MapTex.tga", COLOURS},
                               {"TexNoise.tga", TEXTURE},  {"TexCube.tga", TEXTURE},
                               {"TexSkyBox.tga", TEXTURE}, {"TexTank.tga", TEXTURE}};
constexpr char MAP[] = "Map.tga";

static const char *toolName = "";
static FILE *complaints = stderr;

void startTool(const char *name)
{
    toolName = name;
    const int copy = dup(STDERR_FILENO);
    FILE *kept = copy < 0 ? nullptr : fdopen(copy, "w");
    if (!kept)
        return;
    complaints = kept;
    setlinebuf(complaints);
    if (!freopen("/dev/null", "w", stderr))
        complain("/dev/null", strerror(errno));
}

void complain(const char *about, const char *fault)
{
    fprintf(complaints, "%s: %s: %s\n", toolName, about, fault);
}

// ---- images -------------------------------------------------------------------------------------

[[gnu::format(printf, 2, 3)]] static int fault(const char *file, const char *format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    complain(file, text);
    return 1;
}

// Returns 0 when the header was read, else 1 after a complaint.
static int readHeader(const char *file, ImageHeader *header)
{
    struct stat info;
    if (stat(file, &info) != 0)
        return fault(file, "%s; paint it, or copy it from a land that can be played",
                     errno == ENOENT ? "it is missing" : strerror(errno));
    if (!S_ISREG(info.st_mode))
        return fault(file, "it is a folder, a pipe or a device; put an image file in its place");
    FILE *stream = fopen(file, "rb");
    if (!stream)
        return fault(file, "%s; make it readable", strerror(errno));
    uint8_t bytes[HEADER_BYTES];
    const size_t read = fread(bytes, 1, HEADER_BYTES, stream);
    fclose(stream);
    if (read < HEADER_BYTES)
        return fault(file, "it ends after %zu bytes; save or copy it again", read);
    const auto word = [&bytes](int at)
    { return static_cast<int16_t>(bytes[at] | bytes[at + 1] << 8); };
    *header = {bytes[0], bytes[1], bytes[2], word(12), word(14), bytes[16], info.st_size};
    return 0;
}

static int64_t announcedBytes(const ImageHeader &header)
{
    return static_cast<int64_t>(header.width) * header.height * (header.depth / 8);
}

static int judgeType(const char *file, int type)
{
    if (type == TRUE_COLOUR || type == GREY)
        return 0;
    if (type > COMPRESSED && type <= COMPRESSED + GREY)
        return fault(file, "it is compressed; save it without compression "
                           "(ImageMagick: -compress none)");
    if (type == 1)
        return fault(file, "its colours are numbers in a colour map; save it as true colour or "
                           "grey (ImageMagick: -type TrueColor)");
    return fault(file, "it is no TGA image of type 2 or 3; convert it to TGA");
}

static int judgeDepth(const char *file, Use use, int depth)
{
    if (use == HEIGHTS && depth != 8 && depth != 24 && depth != 32)
        return fault(file, "it has %d bits per pixel; save it as grey with 8", depth);
    if (use == COLOURS && depth != 24 && depth != 32)
        return fault(file, "it has %d bits per pixel; save it as colour with 32", depth);
    if (use == TEXTURE && depth != 24)
        return fault(file, "it has %d bits per pixel; save it as colour with 24, without alpha",
                     depth);
    return 0;
}

// Judges whether the file has as many pixels as its header says, where the game expects them.
static int judgePixels(const char *file, const ImageHeader &header)
{
    if (header.width < 1 || header.height < 1)
        return fault(file, "it is %d x %d pixels; make it 1 to 32767 wide and high", header.width,
                     header.height);
    if (header.idBytes != 0)
        return fault(file,
                     "its ID field of %d bytes would be read as pixels; save it without a "
                     "comment (ImageMagick: +set comment)",
                     header.idBytes);
    if (header.colourMapType != 0)
        return fault(file, "its colour map would be read as pixels; save it without one");
    const int64_t bytes = announcedBytes(header), found = header.fileBytes - HEADER_BYTES;
    if (found < bytes)
        return fault(file,
                     "it is cut short, with %lld of %lld bytes of pixels; save or copy it "
                     "again",
                     static_cast<long long>(found), static_cast<long long>(bytes));
    return 0;
}

static int judgeImage(const ImageFile &file, ImageHeader *header)
{
    if (readHeader(file.name, header) || judgeType(file.name, header->type))
        return 1;
    return judgeDepth(file.name, file.use, header->depth) | judgePixels(file.name, *header);
}

// If the map has alpha, the game uses the alpha as heights. An opaque map thus has no hills.
static int judgeAlpha()
{
    TgaImage *image = tgaLoad(MAP);
    int bad = 0;
    if (image && image->status == TGA_OK && image->pixelDepth == 32)
    {
        const int64_t pixels = static_cast<int64_t>(image->width) * image->height;
        const uint8_t *alpha = image->imageData + 3;
        bad = 1;
        for (int64_t i = 1; i < pixels && bad; ++i)
            bad = alpha[4 * i] == alpha[0];
    }
    tgaDestroy(image);
    return bad ? fault(MAP, "its heights are its alpha, which is the same everywhere; save it as "
                            "grey with 8 bits per pixel")
               : 0;
}

static int judgeSizes(const ImageHeader &heights, const ImageHeader &colours)
{
    int faults = 0;
    if (heights.width != heights.height)
        faults += fault(MAP, "it is %d x %d pixels; make it square", heights.width, heights.height);
    else if (heights.width < BLOCK_SIDE)
        faults += fault(MAP, "it has %d pixels a side; make it at least %d, better 351",
                        heights.width, BLOCK_SIDE);
    if (colours.width != heights.width || colours.height != heights.height)
        faults += fault("MapTex.tga",
                        "it is %d x %d pixels, but Map.tga is %d x %d; give both the "
                        "same size",
                        colours.width, colours.height, heights.width, heights.height);
    return faults;
}

static int judgeImages()
{
    ImageHeader headers[std::size(FILES)];
    int faults[std::size(FILES)], sum = 0;
    for (size_t i = 0; i < std::size(FILES); ++i)
        sum += faults[i] = judgeImage(FILES[i], &headers[i]);
    if (faults[0] + faults[1] == 0)
        sum += judgeSizes(headers[0], headers[1]);
    return faults[0] ? sum : sum + judgeAlpha();
}

int openFolder(const char *folder)
{
    return chdir(folder) == 0 ? judgeImages() : fault(folder, "%s", strerror(errno));
}

// ---- bounds -------------------------------------------------------------------------------------

static bool conclude(bool isGood, const char *remedy)
{
    puts(isGood ? "good" : "BAD");
    if (!isGood)
        printf("    %s\n", remedy);
    return isGood;
}

bool isAtMost(const char *what, int value, int bound, const char *remedy)
{
    printf("%-36s%4d, at most %2d: ", what, value, bound);
    return conclude(value <= bound, remedy);
}

bool isAtLeast(const char *what, double value, double bound, const char *unit, const char *remedy)
{
    printf("%-20s%6.1f%s, at least %2.0f: ", what, value, unit, bound);
    return conclude(value >= bound, remedy);
}
