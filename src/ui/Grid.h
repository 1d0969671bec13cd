#pragma once

// A grid is a view and the rows that it shows.
#include "ui/GridModel.h" // IWYU pragma: export
#include "ui/GridView.h"  // IWYU pragma: export
