// What one call leaves for the next: the accumulation itself, in double, in the block that the task owns. The arrays alone would
// not do: they are rounded to the task's type, and some requests leave out what their own continuation needs.
#pragma once

#include "stats/basic/accumulation.h"

namespace orv::stats {

// Without accumulated weights every call is a fresh start; the caller's mean is kept all the same.
inline bool keeps(const Request& request) { return request.task->accumWeight || request.method == BasicUserMean; }

// Makes the task's block fit. False without memory, and then nothing has changed.
bool make_kept_room(const Request& request);

// Where the accumulation lies in the block, with the weights that stand there.
Accumulation kept_place(const Request& request);

// Whether what lies there was left by a call with the same request, and the caller's arrays still hold its results.
template <class T>
bool kept_holds(const Request& request, const Accumulation& kept, double* roots);

// Makes the accumulation at kept_place count from now on. The centres stand first in the block, in the task's type.
template <class T>
void keep(const Request& request, Weights weights);

}  // namespace orv::stats
