// erosion.h - what rain does to the ground before the rivers are laid.
#pragma once

#include "plan.h"

// Lets droplets of rain run over the ground. They dig gullies and leave soil in hollows.
void erode(const Plan &plan, Field &height);
