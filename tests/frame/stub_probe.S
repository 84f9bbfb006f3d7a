// Stubs of every form over slots of the test's own, to see what a kernel behind them gets.
#include "frame/entry_stubs.h"

    .data
    .balign 4
STUB_DATA(probe_slots, 8)
probe_slots_local: STUB_SYMBOL(probe_slots):
    .long 0, 0

    .text
STUB_ENTRY(probe_jump); STUB_JUMP(probe_slots_local + 4)
STUB_ENTRY(probe_relay_7); STUB_RELAY(probe_slots_local + 0, 7)
STUB_ENTRY(probe_relay_9); STUB_RELAY(probe_slots_local + 4, 9)
STUB_ENTRY(probe_flag_6); STUB_RELAY_FLAG(probe_slots_local + 0, 6)
STUB_ENTRY(probe_flag_5); STUB_RELAY_FLAG(probe_slots_local + 4, 5)

STUB_END
