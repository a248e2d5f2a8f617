// The vector layer: Google Highway with one target fixed at compile time, and what it lacks or leaves open between
// architectures. Kernel text names no architecture: only the headers of this folder and of vector/ do.
#pragma once

#include "frame/vector/base.h"          // tags, registers, elements
#include "frame/vector/few.h"           // moves of few elements
#include "frame/vector/integer_sums.h"  // exact sums of integers and of their products
#include "frame/vector/lanes.h"         // the lanes of ordered sums
#include "frame/vector/minimum.h"       // minimum and maximum with one meaning
#include "frame/vector/rounding.h"      // floating lanes to integers
#include "frame/vector/widths.h"        // widening, narrowing, the parts of complex elements
