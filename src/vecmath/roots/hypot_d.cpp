// dHypot: the method stands in hypot_d.h.
#include "vecmath/roots/hypot_d.h"

using namespace orv::vecmath;

ORV_TWO_INPUTS(dHypot, la, HypotD<false>)
ORV_TWO_INPUTS(dHypot, ha, HypotD<true>)
ORV_TWO_INPUTS(dHypot, ep, HypotD<false>)
