// folder.h - what the tools that judge a land share: they open its folder, name the images that the
// game would refuse or misread, and compare what they measured with bounds.
#pragma once

// Throws away what the game reports on standard error from now on. Complaints are still printed
// there, each after the name of the tool.
void startTool(const char *name);

void complain(const char *about,
              const char *fault); // a file or a folder, and what is wrong with it

// Makes the folder the current one and prints a line for every fault of its images: what is wrong,
// and what mends it. Returns how many faults there are.
int openFolder(const char *folder);

// Print a line that says whether a measured value is good. If it is bad, a second line says how to
// mend the land. Return whether the value is good.
bool isAtMost(const char *what, int value, int bound, const char *remedy);
bool isAtLeast(const char *what, double value, double bound, const char *unit, const char *remedy);
