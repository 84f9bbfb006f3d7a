#!/usr/bin/env bash
# Every plain entry is a stub without a frame: one indirect jump, after finding the program counter where the object
# format needs it (ELF). usage: stubs_disassembly.sh LIBRARY
set -eu
library=$1
objdump -d --no-show-raw-insn "$library" | awk '
    /^[0-9a-f]+ <_+arq[sdcz][A-Z]/ { entry = $2; count = 0; entries++; next }
    /^$/ { entry = "" }
    entry == "" || $2 ~ /^(nop|lea|xchg|data16|cs)$/ { next }
    {
        count++
        step = $2 == "call" ? "call" : $2 == "pop" ? "pop" : $2 ~ /^jmp/ && $3 ~ /^\*/ ? "jump" : $2
        done[entry] = done[entry] " " step
    }
    END {
        bad = 0
        for (e in done)
            if (e ~ /(Pack|Unpack|arqzPowx)/) {
                # These hand their arguments on, laid out again.
                if (done[e] !~ /^( call pop)? mov( push)+ call add ret$/) { print e ":" done[e]; bad++ }
            } else if (done[e] != " jump" && done[e] != " call pop jump") { print e ":" done[e]; bad++ }
        print entries " entries, " bad " with anything else in them"
        exit bad || entries < 150
    }'
