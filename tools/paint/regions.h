// regions.h - where each country lies.
#pragma once

#include "plan.h"

// The weights of all countries, one field each. The landing place lies in a meadow.
std::vector<Field> layCountries(const Plan &plan);
