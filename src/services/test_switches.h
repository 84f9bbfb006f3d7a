// Two entries of the default core library that its tests and the kernels' look through: no part of what a host supplies.
#pragma once

#include <cstdint>

extern "C" {

// Makes the `nth` allocation from now on fail (1: the next one), once, in whichever thread it comes; 0 switches the
// failure off.
void orv_serv_fail_allocation(int32_t nth);

// The number of blocks allocated and not yet given back.
int32_t orv_serv_live_blocks();
}
