#include "player.h"

#include "cube.h"
#include "main.h"
#include "people.h"
#include "tank.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <vector>

constexpr float WEAVE_SECONDS = 2;  // to one side before the player turns to the other
constexpr float REACTION = 0.2f;    // seconds between two decisions
constexpr int HEADINGS = 24;        // among which a player chooses
constexpr double TOLERANCE = 10;    // degrees off the heading within which a player does not turn
constexpr float CROWD_REACH = 1500; // units within which a player looks for people
constexpr float CLOSE = 200;        // units; keeps the attraction of the nearest person finite
constexpr double LOOK_STEP = 0.5;   // seconds between the places where a player expects to be
constexpr double FORESIGHT = 4;     // seconds until the last of these places
constexpr double SLOWEST = 150;     // units/s that a player expects to reach at least
constexpr double DREADED = 900;     // units; the firing range of a tank and 400 to spare
constexpr double PREY_DISTANCE = 250, PREY_ANGLE = 15; // units and degrees; see isPrey

// The score of a heading is the attraction of the people there, minus TURNING times the turn in
// degrees, minus FEAR times the danger. A player with three times the FEAR finds fewer people and
// lives no longer.
constexpr double TURNING = 0.002, FEAR = 1;

static double goal = 0; // heading in degrees
static float nextDecision = 0;

static void standStill(float, uint8_t *)
{
}

static void holdUp(float, uint8_t *held)
{
    held[SDLK_UP] = 1;
}

static void weave(float seconds, uint8_t *held)
{
    const bool isLeft = std::fmod(seconds, 2 * WEAVE_SECONDS) < WEAVE_SECONDS;
    held[SDLK_UP] = 1;
    held[SDLK_LEFT] = isLeft;
    held[SDLK_RIGHT] = !isLeft;
}

// ---- what a player sees -------------------------------------------------------------------------

static double headingOf(int choice)
{
    return (choice + 0.5) * 360.0 / HEADINGS;
}

static double turnTo(double heading) // degrees from -180 to 180; a turn to the right is positive
{
    return std::remainder(heading - cb.heading, 360.0);
}

static float distanceTo(Vector place)
{
    return pithag(place.x - cb.position.x, place.z - cb.position.z);
}

static void addAttraction(Vector person, double *attraction)
{
    const float distance = distanceTo(person);
    if (distance >= CROWD_REACH)
        return;
    const int choice =
        static_cast<int>(findDirection(cb.position, person) * HEADINGS / 360.0) % HEADINGS;
    attraction[choice] += 1 / (distance + CLOSE);
}

// Sums up for each heading how much the people in its direction attract the player.
static void lookForPeople(double *attraction)
{
    std::fill_n(attraction, HEADINGS, 0.0);
    const auto bucket = [](float coordinate)
    {
        const int row = static_cast<int>(coordinate / peopleLst->steprate + BUCKET_COUNT / 2.0);
        return std::clamp(row, 0, BUCKET_COUNT - 1);
    };
    const Vector here = cb.position;
    for (int row = bucket(here.x - CROWD_REACH); row <= bucket(here.x + CROWD_REACH); ++row)
        for (int column = bucket(here.z - CROWD_REACH); column <= bucket(here.z + CROWD_REACH);
             ++column)
            for (const PersonNode *node = *peopleLst->buckets[row * BUCKET_COUNT + column]; node;
                 node = node->next)
                addAttraction(node->person.position, attraction);
}

// Whether the tank is so near in front that it can hardly be avoided. The player crushes it, which
// makes the cube grow.
static bool isPrey(Vector tank)
{
    return distanceTo(tank) < PREY_DISTANCE &&
           std::fabs(turnTo(findDirection(cb.position, tank))) < PREY_ANGLE;
}

// The tanks that the fog does not hide, except prey, as offsets from the cube. Tanks behind the
// player are among them, because a player looks around and remembers them.
static std::vector<Vector> lookForTanks()
{
    std::vector<Vector> offsets;
    for (const TankNode *node = tankLst->head; node; node = node->next)
        if (distanceTo(node->tank.position) < VIEW_DISTANCE * 0.5 && !isPrey(node->tank.position))
            offsets.push_back(vectorSubtract(node->tank.position, cb.position));
    return offsets;
}

// How near the cube will come to tanks along a heading. Each tank adds up to 1 for each place where
// the player expects to be.
static double danger(const std::vector<Vector> &tanks, double heading)
{
    const double speed = std::max<double>(pithag(cb.velocity.x, cb.velocity.z), SLOWEST);
    const double x = std::cos(decToRad(heading)) * speed, z = std::sin(decToRad(heading)) * speed;
    double sum = 0;
    for (const Vector &tank : tanks)
        for (double t = LOOK_STEP; t <= FORESIGHT; t += LOOK_STEP)
            sum += std::max(0.0, 1 - std::hypot(tank.x - x * t, tank.z - z * t) / DREADED);
    return sum;
}

// ---- what a player does -------------------------------------------------------------------------

static double chooseHeading(double fear)
{
    double attraction[HEADINGS];
    lookForPeople(attraction);
    const std::vector<Vector> tanks = fear > 0 ? lookForTanks() : std::vector<Vector>();
    double best = cb.heading, bestScore = -INFINITY;
    for (int choice = 0; choice < HEADINGS; ++choice)
    {
        const double heading = headingOf(choice);
        const double beside =
            attraction[(choice + 1) % HEADINGS] + attraction[(choice + HEADINGS - 1) % HEADINGS];
        const double score = attraction[choice] + beside / 2 -
                             TURNING * std::fabs(turnTo(heading)) - fear * danger(tanks, heading);
        if (score > bestScore)
        {
            best = heading;
            bestScore = score;
        }
    }
    return best;
}

static void roam(float seconds, uint8_t *held, double fear)
{
    if (seconds >= nextDecision)
    {
        goal = chooseHeading(fear);
        nextDecision = seconds + REACTION;
    }
    held[SDLK_UP] = 1;
    held[SDLK_LEFT] = turnTo(goal) < -TOLERANCE;
    held[SDLK_RIGHT] = turnTo(goal) > TOLERANCE;
}

static void hunt(float seconds, uint8_t *held)
{
    roam(seconds, held, 0);
}

static void huntWithCare(float seconds, uint8_t *held)
{
    roam(seconds, held, FEAR);
}

constexpr char LARGER[] = "A larger side of the land puts fewer tanks within range of the cube.";

const Way WAYS[WAY_COUNT] = {
    {"stands still", standStill, 10,
     "Put hollows and ridges, 60 to 120 units high, between the landing place and the tanks around "
     "it, or make the side of the land larger."},
    {"holds Up", holdUp, 0, nullptr},
    {"weaves", weave, 20, LARGER},
    {"hunts people", hunt, 28, LARGER},
    {"hunts with care", huntWithCare, 45,
     "Give the land ridges, 60 to 120 units high, that stop shots, and gentle slopes between them "
     "on which the cube is fast, or make the side of the land larger."}};
