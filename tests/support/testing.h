// What the tests of a room stand on.
#pragma once

#include <gtest/gtest.h>

#include "compare.h"
#include "faults.h"
#include "guarded.h"
#include "random.h"
