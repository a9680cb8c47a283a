// The start and the end of a game, with and without a display.
#include "game.h"

TEST_F(Process, StartAndQuitPrintTheirTranscripts)
{
    EXPECT_TRUE(isSameText(playGame({}), startLog()));
}

TEST_F(Process, MissingDisplayOrVideoModeIsNamedBeforeTheGameQuits)
{
    Play blind;
    blind.hasOpenGL = false;
    EXPECT_TRUE(isSameText(playGame(blind), "out: Couldn't set Video Mode\n"));
    blind.videoDriver = "none";
    EXPECT_TRUE(isSameText(playGame(blind), "out: Couldn't init SDL\n"));
}
