// drawScreen draws whole frames of a hilly land with a person, a tank, a shot, a tilted cube and
// its shadow, while the clock does not move. The frames are compared with each other and with
// colours that are computed here from OpenGL's formulas for lighting, texture and fog.
#include "scene.h"

#include <GL/glut.h>

#include <map>

namespace
{
enum Thing // in a frame, besides the land, the sky and the cube; the values can be added
{
    PERSON = 1,
    TANK = 2,
    SHOT = 4,
    SHADE = 8
};

constexpr int PATCH = 16;  // samples along the side of a patch of one colour
constexpr int REPEAT = 20; // samples after which the texture of the ground repeats

struct Spot // a point on a surface that is lit
{
    std::string name;
    Vector at, normal, colour, texel; // colours from 0 to 1
    float shininess;
};

struct Frame : Scene
{
    void SetUp() override
    {
        Scene::SetUp();
        for (const char *name : {"TexNoise.tga", "TexTank.tga"})
            writeImage(name, 32, 32, 3, [](int x, int y) { return texel(x, y); });
        build(256, level, colour, 0, 1);
        cube = {900, getHeightAt(&ter, 900, -150) + 250, -150};
        addPerson(peopleLst, {1, vectorAdd(cube, {150, 0, -40}), {}, 0, nullptr, 0, nullptr, 0});
        cell = peopleLst->buckets[167 * BUCKET_COUNT + 117];
        addShot(shotLst, {0, vectorAdd(cube, {-130, 40, 140}), {0, 0, 0}, 220, nullptr});
        person = *cell, tank = tankLst->head, shot = shotLst->head;
        tank->tank.position = vectorAdd(cube, {-170, 0, 60});
        tank->tank.heading = tank->tank.targetHeading = 30;
        tank->tank.lastShotTime = 1e9f;
    }
    void TearDown() override
    {
        setOut(PERSON + TANK + SHOT);
        Scene::TearDown();
    }

    static int level(int x, int z) // rises along x and falls along z
    {
        return static_cast<int>(165 + x / 8 - z / 2 + 30 * std::sin(x * 0.15) * std::cos(z * 0.17));
    }

    static Rgb colour(int x, int z)
    {
        const int i = x / PATCH, j = z / PATCH;
        return {uint8_t(80 + 40 * ((i * 3 + j) % 4)), uint8_t(60 + 50 * ((i + j * 2) % 4)),
                uint8_t(50 + 60 * ((i + j * 3) % 3))};
    }

    static Rgb texel(float s, float t) // of a picture of 32 by 32
    {
        return {uint8_t(60 + 6 * s), uint8_t(250 - 6 * t), uint8_t(150 + s + t)};
    }

    void setOut(int things)
    {
        *cell = things & PERSON ? person : nullptr;
        tankLst->head = things & TANK ? tank : nullptr;
        shotLst->head = things & SHOT ? shot : nullptr;
        SHADOW = things & SHADE ? 1 : 0;
    }

    // Draws a frame. Then sets the matrices that the frame should have used, for later projections.
    Picture show(int things)
    {
        setOut(things);
        cb.position = cube;
        cb.orientation = orientation;
        cam.position = vectorAdd(cube, eye);
        VIEW_DISTANCE = distance;
        drawScreen();
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        gluPerspective(60, 4 / 3.0, 1, distance / 2.0);
        glMatrixMode(GL_MODELVIEW);
        const float ground = getHeightAt(&ter, cube.x, cube.z);
        aim(cam.position, {cube.x, (ground + cube.y) / 2 + cb.size, cube.z}, {0, 1, 0});
        return look();
    }

    // Returns whether the point is on the screen and nothing in the last frame hides it.
    static bool isInFront(Vector point)
    {
        const Vector at = project(point);
        if (at.x < 1 || at.x > WIDTH - 1 || at.y < 1 || at.y > HEIGHT - 1 || at.z > 1)
            return false;
        float depth;
        glReadPixels(int(at.x), int(at.y), 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        const float ratio = (1 - at.z) / (1 - depth); // of the distances from the eye
        return std::fabs(ratio - 1) < 0.01;
    }

    // The colour that OpenGL's lighting, texture and fog give to a spot.
    Rgb lit(const Spot &spot) const
    {
        float view[16];
        glGetFloatv(GL_MODELVIEW_MATRIX, view);
        Matrix rows;
        for (int i = 0; i < 16; ++i)
            rows[i] = view[i % 4 * 4 + i / 4];
        const Vector at = matrixVectorMultiply(rows, spot.at);
        rows[3] = rows[7] = rows[11] = 0;
        const Vector n = matrixVectorMultiply(rows, spot.normal);
        const Vector light = normalizeVector(vectorSubtract({0, 10000, 0}, at));
        const Vector half = normalizeVector(vectorAdd(light, {0, 0, 1}));
        const float diffuse = std::max(vectorDotProduct(n, light), 0.0f);
        const float shine = std::pow(std::max(vectorDotProduct(n, half), 0.0f), spot.shininess);
        const float fog = std::clamp((distance / 2.0f + at.z) / 1000, 0.0f, 1.0f);
        const float colour[] = {spot.colour.x, spot.colour.y, spot.colour.z};
        const float texel[] = {spot.texel.x, spot.texel.y, spot.texel.z}, sky[] = {39, 168, 221};
        Rgb result;
        for (int c = 0; c < 3; ++c)
        {
            const float sum =
                colour[c] * (0.3f + 0.3f * diffuse) + (diffuse > 0 ? 0.5f * shine : 0);
            result[c] = uint8_t(std::min(sum, 1.0f) * texel[c] * 255 * fog + sky[c] * (1 - fog));
        }
        return result;
    }

    // The world coordinates of a point of a model whose origin is at foot.
    Vector place(Vector model, float yaw, Vector foot, bool isTilted) const
    {
        const Vector n = ter.normals[worldToTerrainX(&ter, foot.x)][worldToTerrainZ(&ter, foot.z)];
        Matrix turn, tilt;
        matrixRotate(turn, decToRad(yaw), {0, 1, 0});
        matrixRotate(tilt, isTilted ? std::acos(n.y) : 0, vectorCrossProduct({0, 1, 0}, n));
        return vectorAdd(matrixVectorMultiply(tilt, matrixVectorMultiply(turn, model)), foot);
    }

    // Looks from four sides, in thick and in thin fog, and compares the colours of the spots that
    // nothing hides. Some spot of each name must be seen.
    void expectLit(const std::vector<Spot> &spots)
    {
        for (const Vector from : {eye, {-380, -60, 460}, {200, 60, -560}, {-500, 40, -300}})
            for (int reach : {5000, 2600})
            {
                eye = from;
                distance = reach;
                const Picture picture = show(PERSON + TANK + SHOT + SHADE);
                for (const Spot &spot : spots)
                {
                    if (!isInFront(spot.at))
                        continue;
                    const Rgb colour = seen(picture, spot.at);
                    if (colour == BLACK && spot.name != "person") // a text is in front of it
                        continue;
                    ASSERT_PRED2(isAlike, colour, lit(spot)) << spot.name << " from " << eye;
                    ++sightings[spot.name];
                }
            }
        for (const Spot &spot : spots)
            EXPECT_GT(sightings[spot.name], 0) << spot.name;
    }

    Vector cube, eye = {350, 150, 520}; // the eye relative to the cube
    std::map<std::string, int> sightings;
    Quaternion orientation = normalize({0.9f, 0.3f, -0.2f, 0.15f});
    int distance = 5000;
    PersonNode **cell, *person;
    TankNode *tank;
    Shot *shot;
};
} // namespace

static Vector fraction(Rgb colour, float of)
{
    return {colour[0] / of, colour[1] / of, colour[2] / of};
}

static float distanceAlong(Vector a, Vector b) // in the ground plane
{
    return pithag(a.x - b.x, a.z - b.z);
}

static bool isWithin(int sample, int period, int first, int last)
{
    return first <= sample % period && sample % period <= last;
}

// Near such a sample all ground lies in one patch and in one repetition of the texture.
static bool isInsideOneColour(int x, int z)
{
    return isWithin(x, PATCH, 2, 13) && isWithin(z, PATCH, 2, 13) && isWithin(x, REPEAT, 2, 19) &&
           isWithin(z, REPEAT, 2, 17);
}

TEST_F(Frame, CubeIsLitAndTextured)
{
    std::vector<Spot> spots;
    Matrix turn;
    quaternionToMatrix(orientation, turn);
    const Vector axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0}, {0, -1, 0}, {0, 0, -1}};
    for (int face = 0; face < 6; ++face)
        for (int quarter = 0; quarter < 4; ++quarter)
        {
            const Vector out = axes[face], up = face == 1 ? axes[5] : face == 4 ? axes[3] : axes[1];
            const Vector right = vectorCrossProduct(up, out);
            const int s = quarter / 2, t = quarter % 2;
            const Vector row = off(vectorMultiply(out, 50), up, t ? 25 : -25);
            const Vector at = off(row, right, s ? 25 : -25);
            spots.push_back(
                {"face " + std::to_string(face) + ", quarter " + std::to_string(quarter),
                 vectorAdd(matrixVectorMultiply(turn, at), cube),
                 matrixVectorMultiply(turn, out),
                 {1, 1, 1},
                 fraction(CORNERS[s][t], 255),
                 40});
        }
    expectLit(spots);
}

TEST_F(Frame, TankIsLitAndTexturedAndItsTurretFacesTheCube)
{
    const struct
    {
        const char *name;
        Vector at, normal; // in units of the model
        float s, t;        // texels of the picture
        bool isTurret;
    } parts[] = {
        {"front", {1.8f, 2.2f, 0.5f}, {1, 0, 0}, 4.5f, 12.7f, false},
        {"left side", {-0.7f, 2.2f, 1}, {0, 0, 1}, 5.3f, 12.7f, false},
        {"back", {-1.8f, 2, -0.4f}, {-1, 0, 0}, 5.2f, 11.1f, false},
        {"right side", {0.9f, 2.2f, -1}, {0, 0, -1}, 4.5f, 12.7f, false},
        {"top", {-1.6f, 2.5f, 0.8f}, {0, 1, 0}, 29.5f, 2, false},
        {"left track", {0.3f, 1, 2}, {0, 0, 1}, 21.8f, 24.2f, false},
        {"turret", {0.3f, 3.395f, 0.7f}, {0, 1, 0}, 28.7f, 12.7f, true},
        {"turret's back", {-1, 2.85f, 0.3f}, {-1, 0, 0}, 10.1f, 8, true},
        {"barrel", {2.3f, 3.673f, 0.2f}, {0, 1, 0}, 2.5f, 29.4f, true},
        {"barrel's right side", {2.35f, 3.55f, -0.4f}, {0, 0, -1}, 4.2f, 20.2f, true},
    };
    show(TANK); // a drawn tank is put on the ground
    const Vector foot = tank->tank.position;
    std::vector<Spot> spots;
    for (const auto &part : parts)
    {
        const float yaw = part.isTurret ? 185 - findDirection(cube, foot) : 35;
        const Vector normal = vectorSubtract(place(part.normal, yaw, foot, true), foot);
        const Vector at = place(vectorMultiply(part.at, 10), yaw, foot, true);
        const Vector paint = fraction(texel(part.s - 0.5f, part.t - 0.5f), 255);
        spots.push_back({part.name, at, normal, {1, 1, 1}, paint, 20});
    }
    expectLit(spots);
}

TEST_F(Frame, LandIsLitAndTexturedAndColouredEvenInADent)
{
    show(TANK); // a drawn tank is put on the ground
    const Vector dent = vectorAdd(cube, {-300, 0, -100}), foot = tank->tank.position;
    deformTerrain(&ter, dent, -2000, DEFORM_DENT);
    std::vector<Spot> spots;
    for (int x = 5; x < 250; x += 3)
        for (int z = 5; z < 250; z += 3)
        {
            // Half-way between two samples along z.
            const float height = (ter.map[x][z] + ter.map[x][z + 1]) / 2;
            const Vector at = {x * 25 - 3200.0f, height, z * 25 - 3187.5f};
            const bool isShaded = distanceAlong(at, cube) < 150;
            if (!isInsideOneColour(x, z) || isShaded || distanceAlong(at, foot) < 60)
                continue;
            const bool isDented = distanceAlong(at, dent) < 60, isSeam = z % BLOCK_SIDE == 24;
            const Vector n = normalizeVector(vectorAdd(ter.normals[x][z], ter.normals[x][z + 1]));
            const float s = x % REPEAT * 1.6f - 0.5f, t = z % REPEAT * 1.6f + 0.3f;
            spots.push_back({isDented ? "dent"
                             : isSeam ? "seam of two blocks"
                                      : "land",
                             at, n, fraction(colour(x, z), 256), fraction(texel(s, t), 255), 10});
        }
    expectLit(spots);
    EXPECT_GT(sightings["land"], 600);
}

TEST_F(Frame, PersonIsBlackMixedWithTheFog)
{
    show(PERSON);
    const Person &walker = person->person;
    const Vector chest = place({1, 10, 0}, walker.direction, walker.position, false);
    expectLit({{"person", chest, {0, 1, 0}, {0, 0, 0}, {0, 0, 0}, 1}});
    EXPECT_EQ(sightings["person"], 8) << "the person is hidden in some of the eight pictures";
}

TEST_F(Frame, DentDeletesTheDisplayListOfItsBlock)
{
    show(0);
    const uint32_t list = ter.displayLists[6][4];
    EXPECT_TRUE(glIsList(list));
    deformTerrain(&ter, vectorAdd(cube, {-300, 0, -100}), -2000, DEFORM_DENT);
    EXPECT_FALSE(glIsList(list));
}

TEST_F(Frame, EachThingChangesOnlyThePixelsThatItCovers)
{
    const Picture bare = show(0);
    const std::map<Thing, Picture> alone = {
        {PERSON, show(PERSON)}, {TANK, show(TANK)}, {SHOT, show(SHOT)}, {SHADE, show(SHADE)}};
    const Picture all = show(PERSON + TANK + SHOT + SHADE);
    EXPECT_TRUE(show(0) == bare) << "a thing of an earlier frame is still seen";
    const Vector middle = project(cube);
    int wrong = 0, shaded = 0;
    for (int i = 0; i < WIDTH * HEIGHT; ++i)
    {
        std::vector<Rgb> changes;
        for (const auto &[thing, picture] : alone)
            if (picture[i] != bare[i])
                changes.push_back(picture[i]);
        wrong += changes.size() < 2 && all[i] != (changes.empty() ? bare[i] : changes[0]);
        wrong += alone.at(PERSON)[i] != bare[i] && alone.at(PERSON)[i] != BLACK;
        // The texture of the cube is transparent at its edges and shows what is behind it.
        const bool isNearCube = pithag(i % WIDTH - middle.x, i / WIDTH - middle.y) < 95;
        if (alone.at(SHADE)[i] == bare[i] || isNearCube)
            continue;
        Rgb dark = bare[i];
        for (uint8_t &c : dark)
            c = uint8_t(c * 0.7);
        wrong += largestDifference(alone.at(SHADE)[i], dark) > 2;
        ++shaded;
    }
    EXPECT_EQ(wrong, 0) << "pixels";
    EXPECT_GT(shaded, 500) << "pixels";
}

TEST_F(Frame, ShotGlowsAtItsHeadAndLetsTheBackgroundThroughAtItsTail)
{
    const Picture bare = show(0), picture = show(SHOT);
    for (const Vector model : {Vector{10, 2, 0}, {10, 0, 2}, {-12, 0.8f, 0}})
    {
        const Vector at = place(model, 220, shot->position, false);
        const float head = (model.x / 3 + 12) / 16; // share of the colour of the head
        const float tail = 1 - head;                // of the tail, whose alpha is 0
        const Rgb behind = seen(bare, at);
        // The head emits the colour (1, 0.8, 0.4) and the tail (0.5, 0, 0). Ambient light adds 0.3
        // times the same colour.
        const Rgb glow = {uint8_t(255 * head + std::min(166.0f + behind[0], 255.0f) * tail),
                          uint8_t(255 * head + behind[1] * tail),
                          uint8_t(133 * head + behind[2] * tail)};
        EXPECT_PRED2(isAlike, seen(picture, at), glow) << model;
    }
    shot->position = off(cube, eye, -0.15f);
    EXPECT_TRUE(show(SHOT) == bare) << "a shot behind the cube is seen";
}

TEST_F(Frame, ShadowLeavesAnEmptyStencilBufferForTheNextFrame)
{
    const Picture shade = show(SHADE);
    std::vector<uint8_t> stencil(WIDTH * HEIGHT);
    glReadPixels(0, 0, WIDTH, HEIGHT, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, stencil.data());
    EXPECT_EQ(std::count(stencil.begin(), stencil.end(), 0), WIDTH * HEIGHT);
    const Vector first = std::exchange(eye, {-300, -20, 400});
    show(PERSON + TANK + SHOT + SHADE);
    eye = first;
    EXPECT_TRUE(show(SHADE) == shade) << "a frame from another eye changes the next one";
}

TEST_F(Frame, WireFrameDrawsPolygonsAsLines)
{
    const Picture filled = show(PERSON + TANK + SHOT + SHADE);
    WIRE_FRAME = 1;
    const Picture lines = show(PERSON + TANK + SHOT + SHADE);
    EXPECT_LT(std::count(filled.begin(), filled.end(), BLACK), WIDTH * HEIGHT / 100);
    EXPECT_GT(std::count(lines.begin(), lines.end(), BLACK), WIDTH * HEIGHT / 4);
    GLint modes[2]; // of front faces and of back faces
    glGetIntegerv(GL_POLYGON_MODE, modes);
    EXPECT_EQ(Ids({modes[0], modes[1]}), Ids({GL_LINE, GL_LINE}));
}

TEST_F(Frame, ShadowFallsStraightDownBelowTheCube)
{
    orientation = {1, 0, 0, 0};
    for (const Vector from : {eye, {-380, -60, 460}})
    {
        eye = from;
        const Picture bare = show(0), shade = show(SHADE);
        int inside = 0;
        for (int i = 0; i < 41 * 41; ++i)
        {
            const float dx = i / 41 * 5 - 100.0f, dz = i % 41 * 5 - 100.0f;
            const float away = std::max(std::fabs(dx), std::fabs(dz));
            const Vector at = {cube.x + dx, getHeightAt(&ter, cube.x + dx, cube.z + dz),
                               cube.z + dz};
            if (std::fabs(away - 50) < 8 || !isInFront(at))
                continue;
            inside += away < 50;
            ASSERT_EQ(seen(shade, at) != seen(bare, at), away < 50) << dx << ", " << dz;
        }
        EXPECT_GT(inside, 100);
    }
    eye = {20, -150, 30}; // inside the shadow; the corners of the picture show unshaded ground
    const Picture bare = show(0), shade = show(SHADE);
    for (int corner : {5, WIDTH - 5, (HEIGHT - 5) * WIDTH + 5, HEIGHT * WIDTH - 5})
        EXPECT_EQ(shade[corner], bare[corner]) << corner;
}

TEST_F(Frame, ScoreAndSizeAndGameOverAreShownInBlackInFrontOfEverything)
{
    cb.score = 8888;
    cb.size = cb.targetSize = 49;
    eye = {500, 250, 750}; // all texts are in view
    const Picture picture = show(SHADE);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glColor3f(1, 1, 1); // these white texts must cover every black pixel of the frame
    for (const auto &[text, height] : {std::pair{"8888 points", 270.0f},
                                       {"49 meters", 200.0f},
                                       {"GAME OVER - Press Escape", 0.0f}})
    {
        glRasterPos3f(cube.x, cube.y + height, cube.z);
        for (const char *c = text; *c; ++c)
            glutBitmapCharacter(GLUT_BITMAP_HELVETICA_18, *c);
    }
    const Picture white = look();
    const auto black = std::count(picture.begin(), picture.end(), BLACK);
    EXPECT_GT(black, 1800) << "pixels";
    EXPECT_EQ(std::count(white.begin(), white.end(), BLACK), 0);
    EXPECT_EQ(std::count(white.begin(), white.end(), WHITE), black);
}
