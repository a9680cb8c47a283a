// folder.h - what the tools that judge a land share: they open its folder, name the images that the
// game would refuse or misread, and compare what they measured with bounds.
#pragma once

// The name stands in front of every complaint. From here on what the game reports on standard error
// is thrown away; complaints still go there.
void startTool(const char *name);

void complain(const char *what, const char *fault);

// Makes the folder the current one and prints a line for every fault of its images: what is wrong,
// and what mends it. Returns how many faults there are.
int openFolder(const char *folder);

// Print a line that says whether a measured value is good; below a bad one stands what mends the
// land. Return whether it is good.
bool isAtMost(const char *what, int value, int bound, const char *remedy);
bool isAtLeast(const char *what, double value, double bound, const char *unit, const char *remedy);
