#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

constexpr int LINE = 60; // width of a stage's name on a terminal; covers the name before it

static int stages;  // number that is expected; 0 when nothing is shown
static int started; // number that has been started
static bool terminal;

void showProgress(int expected)
{
    stages = expected;
    started = 0;
    terminal = isatty(STDOUT_FILENO);
}

void startStage(const char *name)
{
    if (!stages)
        return;
    stages = std::max(stages, ++started);
    if (terminal)
        printf("\r%2d of %d  %-*s", started, stages, LINE, name);
    else
        printf("%2d of %d  %s\n", started, stages, name);
    fflush(stdout);
}

void endProgress()
{
    if (stages && terminal)
        printf("\r%*s\r", LINE + 10, "");
    fflush(stdout);
    stages = 0;
}
