// The system underneath: thread slots, a private heap, the C library's errno, binary files, processor features.
// One contract, two implementations (win32.cpp, posix.cpp); nothing else in the library knows which system it is on.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace orv::platform {

// ---- Thread slots --------------------------------------------------------------------------------------------------

inline constexpr uint32_t no_slot = ~uint32_t{0};

// A new slot, null in every thread, or no_slot. Where the system calls back at a thread's end, it calls `at_thread_end`
// with the ended thread's non-null value; elsewhere the library's entry point does that.
uint32_t slot_allocate(void (*at_thread_end)(void* value));
bool slot_free(uint32_t slot);
void* slot_get(uint32_t slot);
bool slot_set(uint32_t slot, void* value);

// ---- Private heap --------------------------------------------------------------------------------------------------

// A growable heap of its own: destroying it gives back every block still in it.
struct Heap;
Heap* heap_create(size_t initial_bytes);
void heap_destroy(Heap* heap);
void* heap_allocate(Heap* heap, size_t bytes);
void heap_free(Heap* heap, void* block);

// ---- C library -----------------------------------------------------------------------------------------------------

// Asks for the standard error handle; the console of a process without one is attached by this call.
void touch_standard_error();

// Finds the function that gives the address of the calling thread's errno in the C library that the process has loaded,
// or null.
using ErrnoAddress = int* (*)();
ErrnoAddress find_errno_address();

// ---- Binary files --------------------------------------------------------------------------------------------------

// Files of bytes, unbuffered as far as the caller can tell. A null File is a failure to open; the others return false.
struct File;
File* file_create(const char* name);
File* file_open(const char* name);
bool file_write(File* file, const void* bytes, size_t count);
bool file_read(File* file, void* bytes, size_t count);
// Bytes from the current position to the end, or -1 where the file has no end to tell (a pipe, a device).
int64_t file_remaining(File* file);
bool file_close(File* file);

// ---- Processor -----------------------------------------------------------------------------------------------------

struct ProcessorFeatures {
    bool rdrand;
    bool aes;
};
ProcessorFeatures processor_features();
// A word of the processor's random number generator, which a processor with `rdrand` has; false if none is ready.
bool hardware_word(uint32_t* word);
uint64_t time_stamp_counter();

}  // namespace orv::platform
