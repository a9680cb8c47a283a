#include "heights.h"

#include "fixtures.h"

std::vector<float> heightsInTheGame(const std::vector<uint8_t> &greys, int side)
{
    const Folder folder;
    writeFile("Map.tga", tga(3, side, side, 8, greys));
    writeFile("MapTex.tga", tga(2, side, side, 32, {0, 0, 0, 0}, side * side));
    Terrain terrain = {};
    initTerrain(&terrain); // fails after the heights are made, since TexNoise.tga is missing
    std::vector<float> heights;
    for (int x = 0; x < terrain.width; ++x)
        heights.insert(heights.end(), terrain.map[x], terrain.map[x] + terrain.height);
    deleteTerrain(&terrain);
    return heights;
}
