// The start and the end of a game, with and without a display.
#include "game.h"

TEST_F(Process, StartAndQuitPrintTheirTranscripts)
{
    const std::string log = playGame({});
    EXPECT_TRUE(isSameText(log, startLog() + quitLog(log)));
}

TEST_F(Process, MissingDisplayOrVideoModeIsNamedBeforeTheGameQuits)
{
    Play blind;
    blind.hasOpenGL = false;
    std::string line = "out: Couldn't set Video Mode\n";
    EXPECT_TRUE(isSameText(playGame(blind), line + quitLog("")));
    blind.videoDriver = "none";
    line = "out: Couldn't init SDL\n";
    EXPECT_TRUE(isSameText(playGame(blind), line + quitLog("")));
}
