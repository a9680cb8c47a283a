#include "terrain.h"

#include "image.h"
#include "texture.h"
#include "view.h"

#include <GL/gl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

constexpr char HEIGHT_MAP[] = "Map.tga";
constexpr char COLOUR_MAP[] = "MapTex.tga";
constexpr float SAMPLE_SPACING = 25.0f;
constexpr float INVERSE_SPACING = 0.04f;
constexpr float HEIGHT_RANGE = 600.0f; // world units between grey 0 and grey 256
constexpr double GREY_LEVELS = 256.0;
constexpr double SMOOTHING = 0.5; // fraction of its own height that a sample keeps
constexpr int SMOOTHINGS = 3;
constexpr double TEXTURE_STEP = 0.05;    // from sample to sample; the texture repeats every 20
constexpr int DIRTY_REACH = 5;           // samples; blocks this near to a change are rebuilt too
constexpr double EDGE_MARGIN = 2000.0;   // units from the edges of the land to the living space
constexpr float DENT_THRESHOLD = -50.0f; // a corner falling slower than this leaves no dent
constexpr float STRONGEST_DEFORMATION = 20.0f;

// Units. A change at the corner of four blocks marks only three of them (see terrainFlagDLDirty).
// The list of the fourth block may show the corner sample higher than it is now. The difference is
// as a rule much smaller than this: only dozens of weak dents on this one sample could exceed it.
constexpr float STALE_HEIGHT = 100.0f;

// ---- life cycle ---------------------------------------------------------------------------------

static int fail(const char *line)
{
    fputs(line, stderr);
    return 0;
}

template <typename Sample> static void freeColumns(Sample **columns, int count)
{
    for (int i = 0; columns && i < count; ++i)
        free(columns[i]);
}

template <typename Sample> static Sample **allocateColumns(int columns, int rows)
{
    Sample **array = static_cast<Sample **>(calloc(columns, sizeof(Sample *)));
    for (int i = 0; array && i < columns; ++i)
        array[i] = static_cast<Sample *>(calloc(rows, sizeof(Sample)));
    return array;
}

template <typename Sample> static bool isWhole(Sample **columns, int count)
{
    return columns && std::all_of(columns, columns + count, [](Sample *c) { return c != nullptr; });
}

static int allocateSamples(Terrain *terrain)
{
    fputs("Allocating memory for Terrain...\n", stderr);
    terrain->map = allocateColumns<float>(terrain->width, terrain->height);
    terrain->normals = allocateColumns<Vector>(terrain->width, terrain->height);
    terrain->colours = allocateColumns<Colour>(terrain->width, terrain->height);
    if (!isWhole(terrain->map, terrain->width))
        return fail("   ...map array not initialised\n");
    if (!isWhole(terrain->normals, terrain->width))
        return fail("   ...normals array not initialised\n");
    if (!isWhole(terrain->colours, terrain->width))
        return fail("   ...colours array not initialised\n");
    fputs("   ...done\n", stderr);
    return 1;
}

// The usual cause is that the game was started in another folder than that of its images.
static void printWhereMapsAreMissing()
{
    char folder[4096]; // the longest path that Linux knows
    const char *here = getcwd(folder, sizeof(folder)) ? folder : "a folder that is gone";
    fprintf(stderr, "No land: looked for %s and %s in %s\n", HEIGHT_MAP, COLOUR_MAP, here);
}

static bool isMissing(const TgaImage *image)
{
    return image && image->status == TGA_ERROR_OPEN;
}

static int refuseMaps(const TgaImage *heights, const TgaImage *colours)
{
    fputs("   ...couldn't load TGA\n", stderr);
    if (isMissing(heights) || isMissing(colours))
        printWhereMapsAreMissing();
    return 0;
}

// Checks whether the two maps fit together and have a size and a format that the land can use.
static int acceptMaps(TgaImage *heights, const TgaImage *colours)
{
    if (!heights || heights->status != TGA_OK || !colours || colours->status != TGA_OK)
        return refuseMaps(heights, colours);
    if (heights->width != colours->width || heights->height != colours->height)
        return fail("   ...Height image is different size than texture image\n");
    if (tgaBytesPerPixel(heights) == 3)
        tgaRGBtoGreyscale(heights);
    if (tgaBytesPerPixel(colours) != 4)
        fprintf(stderr, "   ...Texture Image is not of correct format: %d\n",
                tgaBytesPerPixel(colours));
    if (heights->width != heights->height)
        return fail("   ...Height image is not square\n");
    if (heights->width < BLOCK_SIDE)
        return fail("   ...Height image is too small\n");
    const int heightBytes = tgaBytesPerPixel(heights);
    if (heightBytes == 0 || heightBytes == 3) // 3: there was no memory to turn it to grey
    {
        fprintf(stderr, "   ...Height image is not of correct format: %d\n", heightBytes);
        return 0;
    }
    if (tgaBytesPerPixel(colours) < 3)
        return 0; // the line about it has been printed above
    fputs("   ...done\n", stderr);
    return 1;
}

static void setSize(Terrain *terrain, const TgaImage *heights)
{
    fputs("Setting Terrain width and height...\n", stderr);
    terrain->width = heights->width;
    terrain->height = heights->height;
    fprintf(stderr, "   ...done.  Width: %d, height: %d\n", terrain->width, terrain->height);
    terrain->worldWidth = static_cast<float>(terrain->width) * terrain->scale;
    terrain->worldDepth = static_cast<float>(terrain->height) * terrain->scale;
}

// The row of a pixel gives x, its column gives z.
static void constructSamples(Terrain *terrain, const TgaImage *heights, const TgaImage *colours)
{
    fputs("Constructing map heights\n", stderr);
    const int heightBytes = tgaBytesPerPixel(heights);
    const int colourBytes = tgaBytesPerPixel(colours);
    for (int x = 0; x < terrain->width; ++x)
        for (int z = 0; z < terrain->height; ++z)
        {
            const int64_t pixel = static_cast<int64_t>(x) * terrain->width + z;
            const uint8_t level = heights->imageData[pixel * heightBytes + heightBytes - 1];
            terrain->map[x][z] = static_cast<float>(level / GREY_LEVELS) * HEIGHT_RANGE;
            for (int c = 0; c < 3; ++c)
                terrain->colours[x][z][c] =
                    static_cast<float>(colours->imageData[pixel * colourBytes + c] / GREY_LEVELS);
        }
    fputs("   ...done\n", stderr);
}

static int buildSamples(Terrain *terrain)
{
    fputs("Loading image...\n", stderr);
    TgaImage *heights = tgaLoad(HEIGHT_MAP);
    TgaImage *colours = tgaLoad(COLOUR_MAP);
    int built = acceptMaps(heights, colours);
    if (built)
    {
        setSize(terrain, heights);
        built = allocateSamples(terrain);
    }
    if (built)
        constructSamples(terrain, heights, colours);
    tgaDestroy(heights);
    tgaDestroy(colours);
    return built;
}

static int compileBlocks(Terrain *terrain)
{
    terrain->blocksX = terrain->width / BLOCK_SIDE;
    terrain->blocksZ = terrain->height / BLOCK_SIDE;
    fputs("Generating Terrain Display Lists...\n", stderr);
    fprintf(stderr, "   ...Terrain Size: (%d * %d)\n", terrain->width, terrain->height);
    fprintf(stderr, "   ...Number of blocks: (%d * %d)\n", terrain->blocksX, terrain->blocksZ);
    terrain->displayLists = allocateColumns<uint32_t>(terrain->blocksX, terrain->blocksZ);
    if (!isWhole(terrain->displayLists, terrain->blocksX))
        return fail("   ...display list array not initialised\n");
    for (int bx = 0; bx < terrain->blocksX; ++bx)
        for (int bz = 0; bz < terrain->blocksZ; ++bz)
        {
            terrain->displayLists[bx][bz] = glGenLists(1);
            generateTerrainDL(terrain, bx, bz);
        }
    fputs("   ...done\n", stderr);
    return 1;
}

int initTerrain(Terrain *terrain)
{
    terrain->scale = SAMPLE_SPACING;
    terrain->inverseScale = INVERSE_SPACING;
    if (!buildSamples(terrain))
        return 0;
    fputs("Smoothing Terrain\n", stderr);
    for (int i = 0; i < SMOOTHINGS; ++i)
        smoothTerrain(terrain);
    fputs("   ...done\n", stderr);
    fputs("Computing Terrain Normals\n", stderr);
    computeTerrainNormals(terrain);
    fputs("   ...done\n", stderr);
    return loadTexture("Loading terrain texture...\n", "TexNoise.tga", GL_RGBA, &terrain->image,
                       &terrain->texture) &&
           compileBlocks(terrain);
}

void deleteTerrain(Terrain *terrain)
{
    tgaDestroy(terrain->image);
    freeColumns(terrain->map, terrain->width);
    freeColumns(terrain->normals, terrain->width);
    freeColumns(terrain->colours, terrain->width);
    fputs("Freeing Terrain...\n", stderr);
    freeColumns(terrain->displayLists, terrain->blocksX);
    fputs("   ...freed array entries\n", stderr);
    free(terrain->map);
    free(terrain->normals);
    free(terrain->colours);
    free(terrain->displayLists);
    fputs("   ...done\n", stderr);
    *terrain = {};
}

// ---- queries ------------------------------------------------------------------------------------

static int nearestSample(float world, float extent, float inverseScale, int samples)
{
    const int i = truncateToInt((world + extent * 0.5) * inverseScale + 0.5);
    return i < 0 ? 0 : std::min(i, samples - 1);
}

int worldToTerrainX(const Terrain *terrain, float x)
{
    return nearestSample(x, terrain->worldWidth, terrain->inverseScale, terrain->width);
}

int worldToTerrainZ(const Terrain *terrain, float z)
{
    return nearestSample(z, terrain->worldDepth, terrain->inverseScale, terrain->height);
}

static float sampleX(const Terrain *terrain, int x)
{
    return static_cast<float>(static_cast<float>(x) * terrain->scale - terrain->worldWidth * 0.5);
}

static float sampleZ(const Terrain *terrain, int z)
{
    return static_cast<float>(static_cast<float>(z) * terrain->scale - terrain->worldDepth * 0.5);
}

float getHeightAt(const Terrain *terrain, float x, float z)
{
    const float fx = static_cast<float>((x + terrain->worldWidth * 0.5) * terrain->inverseScale);
    const float fz = static_cast<float>((z + terrain->worldDepth * 0.5) * terrain->inverseScale);
    const bool inside = fx > 0 && fx < static_cast<float>(terrain->width - 1) && fz > 0 &&
                        fz < static_cast<float>(terrain->height - 1);
    if (!inside)
        return 0;
    const int ix = static_cast<int>(fx);
    const int iz = static_cast<int>(fz);
    // findYvalue, simplified: the first two corners have the same z, the last two have the same x.
    const float x0 = sampleX(terrain, ix), spanX = sampleX(terrain, ix + 1) - x0;
    const float z0 = sampleZ(terrain, iz), spanZ = sampleZ(terrain, iz + 1) - z0;
    const float y0 = terrain->map[ix][iz];
    const double rise = terrain->map[ix + 1][iz] - y0;
    const double riseAcross = terrain->map[ix + 1][iz + 1] - y0;
    const float nx = static_cast<float>(rise * spanZ);
    const float ny = static_cast<float>(-static_cast<double>(spanZ) * spanX);
    const float nz = static_cast<float>(spanX * riseAcross - spanX * rise);
    const double dx = static_cast<double>(x) - x0, dz = static_cast<double>(z) - z0;
    return static_cast<float>(y0 - (nx * dx + nz * dz) / ny);
}

// Callers pass the extent along x for both axes.
Span livingSpace(double extent)
{
    return {static_cast<float>(truncateToInt(extent * -0.5 + EDGE_MARGIN)),
            static_cast<float>(truncateToInt(extent * 0.5 - EDGE_MARGIN))};
}

// ---- changes ------------------------------------------------------------------------------------

static void blend(float *height, float neighbour)
{
    *height = static_cast<float>((1.0 - SMOOTHING) * neighbour + SMOOTHING * *height);
}

void smoothTerrain(Terrain *terrain)
{
    smoothSelectedArea(terrain, 0, terrain->width, 0, terrain->height);
}

void smoothSelectedArea(Terrain *terrain, int x0, int x1, int z0, int z1)
{
    float **map = terrain->map;
    x0 = std::max(x0, 0);
    z0 = std::max(z0, 0);
    x1 = std::min(x1, terrain->width);
    z1 = std::min(z1, terrain->height);
    for (int x = x0 + 1; x < x1; ++x)
        for (int z = z0; z < z1; ++z)
            blend(&map[x][z], map[x - 1][z]);
    for (int x = x1 - 2; x >= x0; --x)
        for (int z = z0; z < z1; ++z)
            blend(&map[x][z], map[x + 1][z]);
    for (int x = x0; x < x1; ++x)
        for (int z = z0 + 1; z < z1; ++z)
            blend(&map[x][z], map[x][z - 1]);
    for (int x = x0; x < x1; ++x)
        for (int z = z1 - 2; z >= z0; --z)
            blend(&map[x][z], map[x][z + 1]);
}

static Vector gridPoint(const Terrain *terrain, int x, int z)
{
    return vectorInit(static_cast<float>(x) * terrain->scale, terrain->map[x][z],
                      static_cast<float>(z) * terrain->scale);
}

// The far edges have no triangle of their own: their samples copy the nearest computed normal.
static void extendNormals(Terrain *terrain)
{
    const int lastX = terrain->width - 1;
    const int lastZ = terrain->height - 1;
    for (int x = 0; x < lastX; ++x)
        terrain->normals[x][lastZ] = terrain->normals[x][lastZ - 1];
    std::copy_n(terrain->normals[lastX - 1], terrain->height, terrain->normals[lastX]);
}

void computeTerrainNormals(Terrain *terrain)
{
    computeSelectedNormals(terrain, 0, terrain->width, 0, terrain->height);
}

void computeSelectedNormals(Terrain *terrain, int x0, int x1, int z0, int z1)
{
    x0 = std::max(x0, 0);
    z0 = std::max(z0, 0);
    x1 = std::min(x1, terrain->width - 1);
    z1 = std::min(z1, terrain->height - 1);
    for (int x = x0; x < x1; ++x)
        for (int z = z0; z < z1; ++z)
            terrain->normals[x][z] = normal(gridPoint(terrain, x, z), gridPoint(terrain, x, z + 1),
                                            gridPoint(terrain, x + 1, z + 1));
    const bool hasCells = terrain->width > 1 && terrain->height > 1;
    if (hasCells && (x1 == terrain->width - 1 || z1 == terrain->height - 1))
        extendNormals(terrain);
}

// Strength of a deformation, 0 (none) to 20.
static float deformationStrength(float v, int mode)
{
    double strength = 0;
    if (mode == DEFORM_DENT && v < DENT_THRESHOLD)
        strength = -v * 0.02;
    else if (mode == DEFORM_CRATER && v > 0)
        strength = v * 20.0 * 0.1;
    return std::min(static_cast<float>(strength), STRONGEST_DEFORMATION);
}

// Fraction of a crater's full depth at offset (i, j) from its centre. It falls linearly with
// |i| + |j|.
static float craterShare(float strength, int i, int j)
{
    const double radius = strength * 0.2;
    const double share =
        ((radius - mod(static_cast<float>(i))) - mod(static_cast<float>(j))) / radius;
    return std::clamp(static_cast<float>(share), 0.0f, 1.0f);
}

static void digCrater(Terrain *terrain, int x, int z, float strength, float share)
{
    float *height = &terrain->map[x][z];
    *height = static_cast<float>(*height - static_cast<double>(share) * strength * 0.5);
    terrainFlagDLDirty(terrain, x, z);
    colourTerrainArray(terrain, x, z, 0, 0, 0, static_cast<float>(share * 0.5));
}

static void pressDent(Terrain *terrain, int x, int z, float strength)
{
    terrain->map[x][z] = static_cast<float>(terrain->map[x][z] - strength * 0.4);
    terrainFlagDLDirty(terrain, x, z);
}

void deformTerrain(Terrain *terrain, Vector position, float v, int mode)
{
    const int ix = worldToTerrainX(terrain, position.x);
    const int iz = worldToTerrainZ(terrain, position.z);
    const float strength = deformationStrength(v, mode);
    if (!(strength > 0))
        return;
    const int reach = static_cast<int>(strength / 10.0);
    for (int i = -reach; i <= reach; ++i)
        for (int j = -reach; j <= reach; ++j)
        {
            const int x = ix + i, z = iz + j;
            if (x < 0 || x >= terrain->width || z < 0 || z >= terrain->height)
                continue;
            if (mode == DEFORM_DENT)
                pressDent(terrain, x, z, strength);
            else
                digCrater(terrain, x, z, strength, craterShare(strength, i, j));
        }
    const double half = strength * 0.5;
    computeSelectedNormals(terrain, truncateToInt(ix - half), truncateToInt(ix + half),
                           truncateToInt(iz - half), truncateToInt(iz + half));
}

void colourTerrain(Terrain *terrain, Vector position, float red, float green, float blue, float t)
{
    const int i = worldToTerrainX(terrain, position.x);
    const int j = worldToTerrainZ(terrain, position.z);
    colourTerrainArray(terrain, i, j, red, green, blue, t);
    terrainFlagDLDirty(terrain, i, j);
}

void colourTerrainArray(Terrain *terrain, int i, int j, float red, float green, float blue, float t)
{
    const float target[3] = {red, green, blue};
    for (int c = 0; c < 3; ++c)
    {
        float *component = &terrain->colours[i][j][c];
        *component =
            static_cast<float>((1.0 - t) * *component + static_cast<double>(t) * target[c]);
    }
}

static void markBlock(Terrain *terrain, int bx, int bz)
{
    if (bx < 0 || bx >= terrain->blocksX || bz < 0 || bz >= terrain->blocksZ)
        return;
    uint32_t *list = &terrain->displayLists[bx][bz];
    if (*list == DIRTY_LIST)
        return;
    glDeleteLists(*list, 1);
    *list = DIRTY_LIST;
}

void terrainFlagDLDirty(Terrain *terrain, int i, int j)
{
    const int bx = i / BLOCK_SIDE;
    const int bz = j / BLOCK_SIDE;
    markBlock(terrain, bx, bz);
    markBlock(terrain, (i + DIRTY_REACH) / BLOCK_SIDE, bz);
    markBlock(terrain, bx, (j + DIRTY_REACH) / BLOCK_SIDE);
    markBlock(terrain, (i - DIRTY_REACH) / BLOCK_SIDE, bz);
    markBlock(terrain, bx, (j - DIRTY_REACH) / BLOCK_SIDE);
}

// ---- drawing ------------------------------------------------------------------------------------

// World coordinate of the centre of block b along one axis.
static float blockCentre(int b, float scale, float extent)
{
    return static_cast<float>(b * static_cast<double>(BLOCK_SIDE) * scale +
                              static_cast<double>(scale) * BLOCK_SIDE * 0.5 - extent * 0.5);
}

void generateTerrainDL(Terrain *terrain, int bx, int bz)
{
    glNewList(terrain->displayLists[bx][bz], GL_COMPILE);
    compileTerrain(terrain, blockCentre(bx, terrain->scale, terrain->worldWidth),
                   blockCentre(bz, terrain->scale, terrain->worldDepth),
                   terrain->scale * BLOCK_SIDE);
    glEndList();
}

static void setGroundSurface(const Terrain *terrain)
{
    constexpr float WHITE[] = {1, 1, 1, 1};
    glMaterialfv(GL_FRONT, GL_AMBIENT, WHITE);
    glMaterialfv(GL_FRONT, GL_SPECULAR, WHITE);
    glMaterialfv(GL_FRONT, GL_DIFFUSE, WHITE);
    glMaterialf(GL_FRONT, GL_SHININESS, 10);
    useTexture(terrain->texture, GL_MODULATE, GL_REPEAT);
}

static void emitSample(const Terrain *terrain, int i, int j)
{
    glTexCoord2f(static_cast<float>(i * TEXTURE_STEP), static_cast<float>(j * TEXTURE_STEP));
    const Vector &n = terrain->normals[i][j];
    glNormal3f(n.x, n.y, n.z);
    glColor3fv(terrain->colours[i][j]);
    glVertex3f(static_cast<float>(i) * terrain->scale + terrain->worldWidth * -0.5f,
               terrain->map[i][j],
               static_cast<float>(j) * terrain->scale + terrain->worldDepth * -0.5f);
}

void compileTerrain(const Terrain *terrain, float cx, float cz, float size)
{
    const float offX = terrain->worldWidth * -0.5f, offZ = terrain->worldDepth * -0.5f;
    const float minX = cx - size * 0.5f, maxX = cx + size * 0.5f;
    const float minZ = cz - size * 0.5f, maxZ = cz + size * 0.5f;
    glPushMatrix();
    setGroundSurface(terrain);
    // The loops start and end one sample outside the square. The comparisons below then choose the
    // samples that are in the square.
    const int endI = std::min(worldToTerrainX(terrain, maxX) + 2, terrain->width - 1);
    const int firstJ = std::max(worldToTerrainZ(terrain, minZ) - 1, 0);
    const int endJ = std::min(worldToTerrainZ(terrain, maxZ) + 2, terrain->height);
    for (int i = std::max(worldToTerrainX(terrain, minX) - 1, 0); i < endI; ++i)
    {
        const float xi = static_cast<float>(i) * terrain->scale + offX;
        if (xi < minX || xi > maxX)
            continue;
        glBegin(GL_TRIANGLE_STRIP);
        for (int j = firstJ; j < endJ; ++j)
        {
            const float zj = static_cast<float>(j) * terrain->scale + offZ;
            if (zj < minZ || zj > maxZ)
                continue;
            emitSample(terrain, i + 1, j);
            emitSample(terrain, i, j);
        }
        glEnd();
    }
    glPopMatrix();
    glBindTexture(GL_TEXTURE_2D, 0);
}

namespace
{
struct Range // of samples along one axis; half open
{
    int first, end;
};
} // namespace

// The samples that block b shows along x. The next block draws the last strip of block b again.
static Range columnsOf(const Terrain *terrain, int b)
{
    return {b * BLOCK_SIDE, std::min(b * BLOCK_SIDE + BLOCK_SIDE + 2, terrain->width)};
}

static Range rowsOf(const Terrain *terrain, int b)
{
    return {b * BLOCK_SIDE, std::min(b * BLOCK_SIDE + BLOCK_SIDE + 1, terrain->height)};
}

// Whether a sample fulfils the condition. In a block that is in view, mostly the first one does.
template <typename Condition>
static bool hasSample(const Terrain *terrain, Range columns, Range rows, Condition condition)
{
    for (int x = columns.first; x < columns.end; ++x)
    {
        const float *column = terrain->map[x];
        if (std::any_of(column + rows.first, column + rows.end, condition))
            return true;
    }
    return false;
}

static void drawBlock(Terrain *terrain, int bx, int bz)
{
    uint32_t *list = &terrain->displayLists[bx][bz];
    if (*list == DIRTY_LIST)
    {
        *list = glGenLists(1);
        generateTerrainDL(terrain, bx, bz);
    }
    glCallList(*list);
}

// Draws those of the blocks (bx, firstZ) to (bx, endZ - 1) that are in view.
static void drawBlocksAlongZ(Terrain *terrain, int bx, int firstZ, int endZ)
{
    const Range columns = columnsOf(terrain, bx);
    const Span x = {sampleX(terrain, columns.first), sampleX(terrain, columns.end - 1)};
    const Span seen = viewSpan(x);
    for (int bz = firstZ; bz < endZ; ++bz)
    {
        const Range rows = rowsOf(terrain, bz);
        const Span z = {sampleZ(terrain, rows.first), sampleZ(terrain, rows.end - 1)};
        if (z.high < seen.low || seen.high < z.low)
            continue;
        const Span heights = viewHeights(x, z);
        const float low = heights.low - STALE_HEIGHT, high = heights.high;
        if (hasSample(terrain, columns, rows, [low](float y) { return y >= low; }) &&
            hasSample(terrain, columns, rows, [high](float y) { return y <= high; }))
            drawBlock(terrain, bx, bz);
    }
}

void drawTerrain(Terrain *terrain, float x, float z, float distance)
{
    const float half = distance * 0.5f;
    const int bx0 = worldToTerrainX(terrain, x - half) / BLOCK_SIDE;
    const int bz0 = worldToTerrainZ(terrain, z - half) / BLOCK_SIDE;
    const int bx1 = worldToTerrainX(terrain, x + half) / BLOCK_SIDE;
    const int bz1 = worldToTerrainZ(terrain, z + half) / BLOCK_SIDE;
    for (int bx = bx0; bx < bx1; ++bx)
        drawBlocksAlongZ(terrain, bx, bz0, bz1);
}
