// Assembly macros for entry stubs: symbols, exports and the three forms of a stub, on both object formats.
#ifndef ORV_FRAME_ENTRY_STUBS_H
#define ORV_FRAME_ENTRY_STUBS_H

// clang-format off

#ifdef __ELF__

#define STUB_SYMBOL(name) name
#define STUB_FUNCTION(name) .globl name; .type name, @function
#define STUB_DATA(name, bytes) .globl name; .type name, @object; .size name, bytes
#define STUB_END .section .note.GNU-stack, "", @progbits

// Position-independent: the program counter goes to a register that the calling convention leaves free, then one
// indirect jump. `call` to the next instruction is the form that return predictors know.
#define STUB_SLOT_TO_EAX(slot) call 1f; 1: popl %eax; movl slot - 1b(%eax), %eax
#define STUB_JUMP(slot) call 1f; 1: popl %eax; jmp *slot - 1b(%eax)

#else

#define STUB_SYMBOL(name) _##name
#define STUB_FUNCTION(name)                                    \
    .globl _##name; .def _##name; .scl 2; .type 32; .endef;    \
    .section .drectve; .ascii " -export:\"" #name "\""; .text
#define STUB_DATA(name, bytes)                                 \
    .globl _##name;                                            \
    .section .drectve; .ascii " -export:\"" #name "\",data"; .data
#define STUB_END

#define STUB_SLOT_TO_EAX(slot) movl slot, %eax
#define STUB_JUMP(slot) jmp *slot

#endif

#define STUB_ENTRY_(name) .p2align 4; STUB_FUNCTION(name); STUB_SYMBOL(name):
#define STUB_ENTRY(name) STUB_ENTRY_(name)
#define STUB_ENTRY_TWO(name, twin) .p2align 4; STUB_FUNCTION(name); STUB_FUNCTION(twin); STUB_SYMBOL(name): STUB_SYMBOL(twin):

// Lays the caller's `words` argument words out again, in the same order, and calls. The first pushed word is the last
// argument; each push moves the next one to the same distance from the stack pointer.
#define STUB_RELAY(slot, words)       \
    STUB_SLOT_TO_EAX(slot);           \
    .rept words;                      \
    pushl 4 * words(%esp);            \
    .endr;                            \
    call *%eax;                       \
    addl $(4 * words), %esp;          \
    ret

// The same with a last argument of 1 that the caller does not pass.
#define STUB_RELAY_FLAG(slot, words)  \
    STUB_SLOT_TO_EAX(slot);           \
    pushl $1;                         \
    .rept words;                      \
    pushl 4 * (words + 1)(%esp);      \
    .endr;                            \
    call *%eax;                       \
    addl $(4 * (words + 1)), %esp;    \
    ret

#endif
