#include "people.h"

#include "cube.h"
#include "image.h"
#include "main.h"
#include "terrain.h"
#include "view.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

constexpr double GRID_CENTRE = BUCKET_COUNT / 2.0; // bucket units from the edge to the world origin
constexpr float FLEE_RADIUS = 500.0f;
constexpr float TOP_SPEED = 45.0f;   // units/s along each axis
constexpr int WANDER_THRESHOLD = 95; // of 1 to 100; a higher random number changes the course
constexpr float GROWTH_PER_PERSON = 1.0f;
constexpr int SCORE_PER_PERSON = 10;
constexpr float FEET_ABOVE_GROUND = 1.0f;

// When TRANSPARENCY is 1, a person is drawn as a board with a picture on each side. All people
// share these two images; this module owns them.
static TgaImage *frontPicture = nullptr;
static TgaImage *backPicture = nullptr;

// ---- grid ---------------------------------------------------------------------------------------

static int bucketOf(double coordinate, int steprate)
{
    return truncateToInt(coordinate / steprate + GRID_CENTRE);
}

static PersonNode **bucketAt(const PeopleList *list, int row, int column)
{
    return list->buckets[row * BUCKET_COUNT + column];
}

ViewRange viewRange(const PeopleList *list, const Cube *cube)
{
    const double x = cube->position.x, z = cube->position.z;
    ViewRange range;
    range.firstRow = std::max(bucketOf(x - VIEW_DISTANCE, list->steprate), 0);
    range.endRow = std::min(bucketOf(x + VIEW_DISTANCE, list->steprate), BUCKET_COUNT);
    range.firstColumn = std::max(bucketOf(z - VIEW_DISTANCE, list->steprate), 0);
    range.endColumn = std::min(bucketOf(z + VIEW_DISTANCE, list->steprate), BUCKET_COUNT);
    return range;
}

static bool hasLeft(const Person *person, int row, int column, int steprate)
{
    return bucketOf(person->position.x, steprate) != row ||
           bucketOf(person->position.z, steprate) != column;
}

int needUpdate(Person person, int row, int column, int steprate)
{
    return hasLeft(&person, row, column, steprate);
}

static PersonNode *makeNode(Person person, int row, int column)
{
    PersonNode *node = static_cast<PersonNode *>(malloc(sizeof(PersonNode)));
    if (!node)
    {
        fputs("...FAILED ALLOCATION OF MEMORY!", stderr);
        return nullptr;
    }
    *node = {person, row, column, nullptr};
    return node;
}

static void push(PersonNode **head, PersonNode *node)
{
    node->next = *head;
    *head = node;
}

static PersonNode *pop(PersonNode **head)
{
    PersonNode *node = *head;
    *head = node->next;
    return node;
}

int addPerson(PeopleList *list, Person person)
{
    PersonNode *node = makeNode(person, 0, 0);
    if (!node)
        return 0;
    const int row = bucketOf(person.position.x, list->steprate);
    const int column = bucketOf(person.position.z, list->steprate);
    push(bucketAt(list, std::clamp(row, 0, BUCKET_COUNT - 1),
                  std::clamp(column, 0, BUCKET_COUNT - 1)),
         node);
    ++list->count;
    return 1;
}

int removePerson(PeopleList *list, Person person, int row, int column)
{
    for (PersonNode **link = bucketAt(list, row, column); *link; link = &(*link)->next)
        if ((*link)->person.id == person.id)
        {
            free(pop(link));
            --list->count;
            return 1;
        }
    fputs("FAILED TO FIND PERSON!!!\n", stderr);
    return 0;
}

// ---- life cycle ---------------------------------------------------------------------------------

static PersonNode **makeCell()
{
    return static_cast<PersonNode **>(calloc(1, sizeof(PersonNode *)));
}

static int makeBuckets(PeopleList *list)
{
    for (int row = 0; row < BUCKET_COUNT; ++row)
        for (int column = 0; column < BUCKET_COUNT; ++column)
        {
            PersonNode **cell = makeCell();
            list->buckets[row * BUCKET_COUNT + column] = cell;
            if (!cell)
            {
                fprintf(stderr, "ERROR FAILED ALLOCATION AT %d:%d\n", row, column);
                return 0;
            }
        }
    return 1;
}

// Loads the picture of one side of the board, makes its key colour transparent and uploads it.
static int loadPicture(const char *file, const char *loading, const char *initialising,
                       TgaImage **image, uint32_t *texture)
{
    glGenTextures(1, texture);
    fputs(loading, stderr);
    tgaDestroy(*image);
    *image = tgaLoad(file);
    if (tgaIsRGB(*image))
        tgaRGBTransparency(*image);
    if (!tgaIsRGB(*image) || (*image)->pixelDepth != 32) // not 32: no memory to convert it
    {
        fputs("   ...couldn't load TGA\n", stderr);
        return 0;
    }
    fputs("   ...done\n", stderr);
    glBindTexture(GL_TEXTURE_2D, *texture);
    fputs(initialising, stderr);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, (*image)->width, (*image)->height, 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, (*image)->imageData);
    fputs("   ...done\n", stderr);
    return 1;
}

static int loadPictures(Person *person)
{
    const int loaded =
        loadPicture("TexPerson.tga", "Loading Person texture...\n", "Initialising texture...\n",
                    &frontPicture, &person->frontTexture) &&
        loadPicture("TexPersonBack.tga", "Loading Person Back texture...\n",
                    "Initialising back texture...\n", &backPicture, &person->backTexture);
    person->frontImage = frontPicture;
    person->backImage = backPicture;
    if (loaded)
    {
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    return loaded;
}

void initPerson(Person *person)
{
    person->position = vectorInit(0, 0, 0);
    person->velocity = vectorInit(0, 0, 0);
    person->direction = 0;
}

// A random whole number between minus half the extent and half the extent.
static float scatteredCoordinate(int extent)
{
    return static_cast<float>(truncateToInt(rand() % extent - extent / 2.0));
}

static void placePerson(Person *person, int id, int extentX, int extentZ)
{
    initPerson(person);
    person->id = id;
    person->position.x = scatteredCoordinate(extentX);
    person->position.z = scatteredCoordinate(extentZ);
    person->velocity.x = static_cast<float>(rand() % 90 - 45);
    person->velocity.z = static_cast<float>(rand() % 90 - 45);
    person->direction = findDirection(vectorInit(0, 0, 0), person->velocity);
}

int makeList(PeopleList *list, int n, int sizex, int sizez, int resolution)
{
    if (!list)
        return 0;
    list->count = 0;
    list->bucketCount = BUCKET_COUNT;
    list->steprate = sizex * resolution / BUCKET_COUNT;
    std::fill(list->buckets, list->buckets + BUCKET_COUNT * BUCKET_COUNT, nullptr);
    fprintf(stderr, "Initialising People List...\n   ...bucketCount = %d\n   ...steprate = %d\n",
            list->bucketCount, list->steprate);
    if (list->steprate <= 0 || sizez * resolution <= 0 || !makeBuckets(list))
        return 0;
    Person person = {};
    if (TRANSPARENCY == 1 && !loadPictures(&person))
        return 0;
    list->displayList = glGenLists(1);
    glNewList(list->displayList, GL_COMPILE);
    drawPerson(&person);
    glEndList();

    fprintf(stderr, "\nInitialising people sizex:%d sizez:%d resolution:%d \n", sizex, sizez,
            resolution);
    for (int id = 0; id < n; ++id)
    {
        placePerson(&person, id, sizex * resolution, sizez * resolution);
        if (!addPerson(list, person))
            return 0;
    }
    return 1;
}

int destroyPersonList(PeopleList *list)
{
    for (PersonNode **cell : list->buckets)
    {
        while (cell && *cell)
            free(pop(cell));
        free(cell);
    }
    free(list);
    tgaDestroy(frontPicture);
    tgaDestroy(backPicture);
    frontPicture = backPicture = nullptr;
    return 1;
}

// ---- behaviour ----------------------------------------------------------------------------------

static bool isWithin(Span span, float value)
{
    return span.low < value && value < span.high;
}

// Whether somebody is closer than the radius. Each axis is compared first: that avoids the square
// root for most people.
static bool isNearby(float dx, float dz)
{
    return mod(dx) < FLEE_RADIUS && mod(dz) < FLEE_RADIUS && pithag(dx, dz) < FLEE_RADIUS;
}

static void think(Person *person, const Cube *cube, Span space)
{
    const float dx = person->position.x - cube->position.x;
    const float dz = person->position.z - cube->position.z;
    if (isNearby(dx, dz) && isWithin(space, person->position.x) &&
        isWithin(space, person->position.z))
    {
        person->velocity.x = dx;
        person->velocity.z = dz;
    }
    else if (rand() % 100 + 1 > WANDER_THRESHOLD)
    {
        person->velocity.x += static_cast<float>(rand() % 20 - 9);
        person->velocity.z += static_cast<float>(rand() % 20 - 9);
    }
}

void updateAI(Person *person, const Cube *cube, int width, int resolution)
{
    think(person, cube, livingSpace(width * resolution));
}

// The rule for z comes last, so that in a corner of the land it overrides the rule for x.
static void turnBackAtEdge(Person *person, Span space)
{
    Vector *velocity = &person->velocity;
    if (person->position.x > space.high)
        *velocity = vectorInit(-TOP_SPEED, velocity->y, 0);
    else if (person->position.x < space.low)
        *velocity = vectorInit(TOP_SPEED, velocity->y, 0);
    if (person->position.z > space.high)
        *velocity = vectorInit(0, velocity->y, -TOP_SPEED);
    else if (person->position.z < space.low)
        *velocity = vectorInit(0, velocity->y, TOP_SPEED);
}

static float yawAlong(Vector velocity)
{
    return static_cast<float>(270.0 - findDirection(vectorInit(0, 0, 0), velocity));
}

namespace
{
constexpr int WHOLE_TOP_SPEED = static_cast<int>(TOP_SPEED);

// The yaw of every velocity whose components are whole numbers. People start with such a velocity
// and change it by whole numbers; only the yaw of those who have fled must be computed.
struct YawTable
{
    float yaw[2 * WHOLE_TOP_SPEED + 1][2 * WHOLE_TOP_SPEED + 1]; // [x][z], from -TOP_SPEED

    YawTable()
    {
        for (int x = -WHOLE_TOP_SPEED; x <= WHOLE_TOP_SPEED; ++x)
            for (int z = -WHOLE_TOP_SPEED; z <= WHOLE_TOP_SPEED; ++z)
                yaw[x + WHOLE_TOP_SPEED][z + WHOLE_TOP_SPEED] =
                    yawAlong(vectorInit(static_cast<float>(x), 0, static_cast<float>(z)));
    }
};
} // namespace

// yawAlong for a velocity within the top speed. Whole numbers are looked up in the table.
static float walkingYaw(Vector velocity)
{
    static const YawTable table;
    const int x = truncateToInt(velocity.x), z = truncateToInt(velocity.z);
    if (static_cast<float>(x) != velocity.x || static_cast<float>(z) != velocity.z)
        return yawAlong(velocity);
    return table.yaw[x + WHOLE_TOP_SPEED][z + WHOLE_TOP_SPEED];
}

static void walk(Person *person, const Terrain *terrain, float h, Span space)
{
    Vector *position = &person->position, *velocity = &person->velocity;
    velocity->x = std::clamp(velocity->x, -TOP_SPEED, TOP_SPEED);
    velocity->z = std::clamp(velocity->z, -TOP_SPEED, TOP_SPEED);
    turnBackAtEdge(person, space);
    person->direction = walkingYaw(*velocity);
    position->x = static_cast<float>(position->x + static_cast<double>(velocity->x) * h);
    position->y = getHeightAt(terrain, position->x, position->z); // at the new x and the old z
    position->z = static_cast<float>(position->z + static_cast<double>(velocity->z) * h);
}

static double extentOf(const Terrain *terrain)
{
    return static_cast<double>(terrain->width) * terrain->scale;
}

void updatePersonPosition(Person *person, const Terrain *terrain, float h)
{
    walk(person, terrain, h, livingSpace(extentOf(terrain)));
}

static bool crush(const Person *person, Cube *cube)
{
    if (!cubeCrushes(cube, person->position))
        return false;
    cube->targetSize += GROWTH_PER_PERSON;
    cube->score += SCORE_PER_PERSON;
    return true;
}

int checkPersonCollision(Person person, Cube *cube)
{
    return crush(&person, cube);
}

namespace
{
// Changes that are applied at the end of a step, since a chain must not change while the step walks
// through it.
struct PendingChanges
{
    PersonNode **removals;
    PersonNode **additions;
};

// The values that are the same for all people in one step.
struct HordeStep
{
    PeopleList *list;
    Cube *cube;
    Terrain *terrain;
    float h;
    Span fleeingSpace; // where people flee from the cube
    Span livingSpace;  // where they do not turn back
    PendingChanges pending;
};
} // namespace

// Stains the ground under a crushed person and removes the person at the end of the step. Does
// neither if there is no memory.
static void pendCrushed(PendingChanges *pending, Terrain *terrain, Person person, int row,
                        int column)
{
    PersonNode *removal = makeNode(person, row, column);
    if (!removal)
        return;
    colourTerrain(terrain, person.position, 0.6f, 0.0f, 0.0f, 0.7f);
    push(pending->removals, removal);
}

// A move needs a removal and an addition: with only one of them, the person would be lost or be in
// two buckets. If there is no memory for both, the person stays in the old bucket until a later
// step.
static void pendMove(PendingChanges *pending, Person person, int row, int column)
{
    PersonNode *removal = makeNode(person, row, column);
    PersonNode *addition = removal ? makeNode(person, row, column) : nullptr;
    if (!addition)
    {
        free(removal);
        return;
    }
    push(pending->removals, removal);
    push(pending->additions, addition);
}

static void stepBucket(HordeStep *step, int row, int column)
{
    const int steprate = step->list->steprate;
    for (PersonNode *node = *bucketAt(step->list, row, column); node; node = node->next)
    {
        Person *person = &node->person;
        think(person, step->cube, step->fleeingSpace);
        walk(person, step->terrain, step->h, step->livingSpace);
        if (crush(person, step->cube))
            pendCrushed(&step->pending, step->terrain, *person, row, column);
        else if (hasLeft(person, row, column, steprate))
            pendMove(&step->pending, *person, row, column);
    }
}

static void applyChanges(PeopleList *list, PendingChanges *pending)
{
    while (*pending->removals)
    {
        PersonNode *entry = pop(pending->removals);
        removePerson(list, entry->person, entry->row, entry->column);
        free(entry);
    }
    while (*pending->additions)
    {
        PersonNode *entry = pop(pending->additions);
        addPerson(list, entry->person);
        free(entry);
    }
}

void updatePerson(PeopleList *list, Cube *cube, float h, Terrain *terrain)
{
    const ViewRange range = viewRange(list, cube);
    const int resolution = truncateToInt(terrain->scale);
    HordeStep step = {list,
                      cube,
                      terrain,
                      h,
                      livingSpace(terrain->width * resolution),
                      livingSpace(extentOf(terrain)),
                      {makeCell(), makeCell()}};
    if (step.pending.removals && step.pending.additions)
    {
        for (int row = range.firstRow; row < range.endRow; ++row)
            for (int column = range.firstColumn; column < range.endColumn; ++column)
                stepBucket(&step, row, column);
        applyChanges(list, &step.pending);
    }
    else
        fputs("Failed to allocate memory to remove list\n", stdout);
    free(step.pending.removals);
    free(step.pending.additions);
}

// ---- drawing ------------------------------------------------------------------------------------

constexpr float STICK_FIGURE[][2] = {
    {-2, 10}, {-2, 14}, {-4, 14}, {-4, 10}, // arm
    {6, 10},  {6, 14},  {4, 14},  {4, 10},  // arm
    {4, 6},   {4, 12},  {-2, 12}, {-2, 6},  // body
    {2, 12},  {2, 14},  {0, 14},  {0, 12},  // head
    {0, 0},   {0, 6},   {-2, 6},  {-2, 0},  // leg
    {4, 0},   {4, 6},   {2, 6},   {2, 0},   // leg
};

// Unlit, visible from both sides, and untextured: black must not depend on the bound texture.
static void drawStickFigure()
{
    glColor3f(0, 0, 0);
    glDisable(GL_CULL_FACE);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glBegin(GL_QUADS);
    for (const float *vertex : STICK_FIGURE)
        glVertex3f(vertex[0], vertex[1], 0);
    glEnd();
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_CULL_FACE);
    glEnable(GL_LIGHTING);
}

// One side of the board, 20 units square; rightEdge is the x of the picture's right edge.
static void drawBoardSide(uint32_t texture, float rightEdge)
{
    constexpr float HEIGHT = 20;
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glBegin(GL_QUADS);
    glTexCoord2f(1, 0);
    glVertex3f(rightEdge, 0, 0);
    glTexCoord2f(1, 1);
    glVertex3f(rightEdge, HEIGHT, 0);
    glTexCoord2f(0, 1);
    glVertex3f(-rightEdge, HEIGHT, 0);
    glTexCoord2f(0, 0);
    glVertex3f(-rightEdge, 0, 0);
    glEnd();
}

// With the current alpha of 0, blending adds the picture to the background: black adds nothing.
static void drawPictureBoard(const Person *person)
{
    glColor4f(0, 0, 0, 0);
    glDisable(GL_FOG);
    drawBoardSide(person->frontTexture, -10);
    drawBoardSide(person->backTexture, 10);
    glBindTexture(GL_TEXTURE_2D, 0);
    glEnable(GL_FOG);
}

void drawPerson(const Person *person)
{
    if (TRANSPARENCY == 1)
        drawPictureBoard(person);
    else
        drawStickFigure();
}

// A sphere that contains a person at every yaw, both the stick figure and the picture board.
constexpr float FIGURE_MIDDLE = FEET_ABOVE_GROUND + 10;
constexpr float FIGURE_RADIUS = 14.2f;

static bool isInView(const Person &person)
{
    const Vector feet = person.position;
    return sphereInView({feet.x, feet.y + FIGURE_MIDDLE, feet.z}, FIGURE_RADIUS);
}

// The span of x of the people in a row. The first and the last row also contain the people outside
// the grid.
static Span rowSpan(const PeopleList *list, int row)
{
    const auto edge = [list](int r)
    { return static_cast<float>((r - GRID_CENTRE) * list->steprate); };
    return {row == 0 ? -INFINITY : edge(row), row == BUCKET_COUNT - 1 ? INFINITY : edge(row + 1)};
}

// Narrows the columns of a row to those in which people can be in view.
static void narrowToView(const PeopleList *list, int row, int *firstColumn, int *endColumn)
{
    const Span x = rowSpan(list, row);
    const Span z = viewSpan({x.low - FIGURE_RADIUS, x.high + FIGURE_RADIUS});
    const auto column = [list](float at)
    { return std::clamp(bucketOf(at, list->steprate), 0, BUCKET_COUNT - 1); };
    *firstColumn = std::max(*firstColumn, column(z.low - FIGURE_RADIUS));
    *endColumn = std::min(*endColumn, z.low > z.high ? 0 : column(z.high + FIGURE_RADIUS) + 1);
}

static void drawBucket(const PeopleList *list, int row, int column)
{
    for (const PersonNode *node = *bucketAt(list, row, column); node; node = node->next)
    {
        const Person &person = node->person;
        if (!isInView(person))
            continue;
        glPushMatrix();
        glTranslatef(person.position.x, person.position.y + FEET_ABOVE_GROUND, person.position.z);
        glRotatef(person.direction, 0, 1, 0);
        glCallList(list->displayList);
        glPopMatrix();
    }
}

void drawHorde(const PeopleList *list, const Cube *cube)
{
    if (list->steprate == 0)
    {
        fputs("drawHorde Error\n", stderr);
        return;
    }
    const ViewRange range = viewRange(list, cube);
    for (int row = range.firstRow; row < range.endRow; ++row)
    {
        int column = range.firstColumn, endColumn = range.endColumn;
        narrowToView(list, row, &column, &endColumn);
        for (; column < endColumn; ++column)
            drawBucket(list, row, column);
    }
}
