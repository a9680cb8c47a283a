// Games in which one allocation fails, at every place in the code that allocates.
#include "game.h"
#include "main.h"

#include <map>
#include <set>

constexpr int SIDE = 50; // samples along each side of the land

// What the game may print when an allocation of so many bytes fails. All other sizes are those of
// images.
static const std::map<size_t, std::vector<std::string>> COMPLAINTS = {
    {sizeof(PeopleList), {"out: Failed to allocate memory to people list\n"}},
    {sizeof(TankList), {"Failed to allocate memory to tank list\n"}},
    {sizeof(ShotList),
     {"Failed to allocate memory to shot list\n", "   ...display list array not initialised\n"}},
    {sizeof(PersonNode), {"...FAILED ALLOCATION OF MEMORY!"}},
    {sizeof(PersonNode *),
     {"ERROR FAILED ALLOCATION AT ", "   ...display list array not initialised\n",
      "out: Failed to allocate memory to remove list\n"}},
    {SIDE * sizeof(float *),
     {"   ...map array not initialised\n", "   ...normals array not initialised\n",
      "   ...colours array not initialised\n"}},
    {SIDE * sizeof(float), {"   ...map array not initialised\n"}},
    {SIDE * sizeof(Vector),
     {"   ...normals array not initialised\n", "   ...colours array not initialised\n"}},
    {SIDE * SIDE, {"   ...Height image is not of correct format: 3\n"}}, // the map stays coloured
    {sizeof(TankNode), {""}}, // the game goes on with one tank less and prints nothing
    {sizeof(Shot), {""}},     // one shot less, likewise
};

namespace
{
struct Memory : Process
{
    // Plays a game in which allocation number call fails, and looks for the line about it.
    void expectComplaint(Play script, int call, size_t bytes) const
    {
        SCOPED_TRACE(testing::Message() << "allocation " << call << ", " << bytes << " bytes");
        script.failingCall = call;
        const std::string log = playGame(script);
        const auto known = COMPLAINTS.find(bytes);
        const std::vector<std::string> complaints =
            known == COMPLAINTS.end() ? std::vector<std::string>{"   ...couldn't load TGA\n"}
                                      : known->second;
        const TextDifference at = firstDifference(log, startLog(script.frames == 0));
        const auto isNext = [&](const std::string &complaint)
        { return log.compare(at.offset, complaint.size(), complaint) == 0; };
        EXPECT_TRUE(std::any_of(complaints.begin(), complaints.end(), isNext))
            << "line " << at.line << "\n  expected: " << testing::PrintToString(complaints)
            << "\n    actual: " << at.actual;
    }

    // For each place plays games in which its first, second, middle and last allocation fails.
    void failEachPlace(const Play &script) const
    {
        playGame(script);
        std::map<Allocation, std::vector<int>> places;
        for (int i = 0; i < report->allocations; ++i)
            places[report->allocation[i]].push_back(i + 1);
        EXPECT_GT(places.size(), 2u);
        for (const auto &[place, calls] : places)
            for (size_t i :
                 std::set<size_t>{0, calls.size() > 1, calls.size() / 2, calls.size() - 1})
                expectComplaint(script, calls[i], place.second);
    }
};
} // namespace

TEST_F(Memory, StartReportsOrSurvivesEachFailedAllocation)
{
    makeImages(SIDE);
    failEachPlace({});
}

TEST_F(Memory, FailedAllocationInPlayLosesNobody)
{
    makeImages(256);
    const auto script = [](int now)
    {
        if (now == 0)
            cb.position = vectorInit(0, 300, 0); // near the ground, so that the cube lands soon
        requireWholeWorld();
    };
    Play game = {40, script, [](int) { return 100; }};
    game.failsInPlay = true;
    failEachPlace(game);
}
