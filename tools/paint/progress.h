// progress.h - tells the player how far the painting is.
#pragma once

// Call at the start of each stage of the work, with what is done in it.
void startStage(const char *name);
