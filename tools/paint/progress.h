// progress.h - tells on standard output how far the painting has come.
#pragma once

// From now on each stage is shown: on a terminal in one line that is written anew, elsewhere in a
// line of its own. `expected` is the usual number of stages. More may come when a land has to be
// mended. Without this call the stages are silent.
void showProgress(int expected);

// The painters call this at the start of each stage; the name is one such as "Raising mountains".
void startStage(const char *name);

// Clears the line on a terminal.
void endProgress();
