// terrain.h - the height field: build it from images, sample it, dent and stain it, draw it.
// World units; y up, x and z span the ground. The grid is centred on the world origin: sample
// (x, z) lies at (x * scale - worldWidth / 2, map[x][z], z * scale - worldDepth / 2).
#pragma once

#include "util.h"

#include <cstdint>

struct TgaImage;

typedef float Colour[3]; // red, green, blue, each 0 to 1

struct Terrain
{
    float **map;             // [width][height] world y of each sample; owned, like all arrays here
    Vector **normals;        // [width][height] unit normal of the surface at each sample
    Colour **colours;        // [width][height] colour of each sample
    float scale;             // world units between neighbouring samples
    float inverseScale;      // 1 / scale
    float worldWidth;        // width * scale, the extent along x
    float worldDepth;        // height * scale, the extent along z
    int32_t width;           // samples along x
    int32_t height;          // samples along z
    TgaImage *image;         // picture of the ground texture; owned
    uint32_t texture;        // OpenGL name of the ground texture
    uint32_t **displayLists; // [blocksX][blocksZ] OpenGL list of each block, or DIRTY_LIST
    int32_t blocksX;         // blocks along x
    int32_t blocksZ;         // blocks along z
};

constexpr int BLOCK_SIDE = 25;               // samples along the side of a display-list block
constexpr uint32_t DIRTY_LIST = 0xFFFFFFFFu; // the block's list must be compiled before it is drawn

constexpr int DEFORM_DENT = 0;   // deformTerrain: a corner of the cube pressed into the ground
constexpr int DEFORM_CRATER = 1; // deformTerrain: an explosion

// Life cycle. initTerrain builds the record from Map.tga, MapTex.tga and TexNoise.tga of the
// working directory, reporting on standard error. Returns 1, or 0 when the terrain could not be
// completed: the game cannot be played on it, but deleteTerrain accepts it. Without an OpenGL
// context everything but drawing works; texture is not set and the names of the lists are 0.
int initTerrain(Terrain *terrain);
// Frees what the record owns and clears the record. The OpenGL objects are not deleted: they exist
// until the context is destroyed.
void deleteTerrain(Terrain *terrain);

// Queries
int worldToTerrainX(const Terrain *terrain, float x); // nearest sample, clamped to the grid
int worldToTerrainZ(const Terrain *terrain, float z);
// World y of the ground. The plane through samples (i, j), (i + 1, j) and (i + 1, j + 1) is used in
// the whole cell, also in its other triangle. 0 on and outside the outermost grid lines.
float getHeightAt(const Terrain *terrain, float x, float z);
// The x and z outside of which people and tanks change their course, on land of that extent: 2000
// units away from the edges. low > high on land of less than 4000 units.
Span livingSpace(double extent);

// Changes. Boxes are half open, from x0 and z0 up to but excluding x1 and z1; what lies outside the
// grid is skipped.
void smoothTerrain(Terrain *terrain); // four passes of a running average over all heights
void computeTerrainNormals(Terrain *terrain);
void smoothSelectedArea(Terrain *terrain, int x0, int x1, int z0, int z1);
void computeSelectedNormals(Terrain *terrain, int x0, int x1, int z0, int z1);
// Lowers the ground around position, whose y is not used. For a dent, v is the vertical speed of
// the corner, and -50 or more has no effect. For a crater, v is the power of the explosion, and 0
// or less has no effect. Other modes do nothing.
void deformTerrain(Terrain *terrain, Vector position, float v, int mode);
// Blends the nearest sample's colour toward (red, green, blue) by the fraction t, 0 to 1.
void colourTerrain(Terrain *terrain, Vector position, float red, float green, float blue, float t);
// Blends the colour of sample (i, j), which must be in the grid, but does not mark its block.
void colourTerrainArray(Terrain *terrain, int i, int j, float red, float green, float blue,
                        float t);
// Deletes the lists of the block of sample (i, j) and of the blocks within 5 samples of it along
// one axis. Marks these blocks, so that they are compiled again before they are drawn.
void terrainFlagDLDirty(Terrain *terrain, int i, int j);

// Drawing
void generateTerrainDL(Terrain *terrain, int bx, int bz); // compiles into displayLists[bx][bz]
// Emits the square of side size centred on (cx, cz); for use inside a list being compiled.
void compileTerrain(const Terrain *terrain, float cx, float cz, float size);
// Draws the blocks within distance / 2 of (x, z) along each axis that are in view, after compiling
// those of them that are marked.
void drawTerrain(Terrain *terrain, float x, float z, float distance);
