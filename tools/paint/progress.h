// progress.h - tells on standard output how far the painting has come.
#pragma once

// From now on each stage is shown. On a terminal all stages use the same line; elsewhere each has a
// line of its own. `expected` is the usual number of stages. There are more when a land has to be
// grown again. Without this call no stage is shown.
void showProgress(int expected);

// The painters call this at the start of each stage; the name is one such as "Raising mountains".
void startStage(const char *name);

// Clears the line on a terminal.
void endProgress();
