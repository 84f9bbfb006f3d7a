/* The core service library: what the kernel library asks of its host.
 *
 *     #include <orv/services.h>
 *     #include <stdint.h>
 *     #include <stdio.h>
 *
 *     static void square(int32_t index, int32_t reserved, int32_t count, void* args) {
 *         double* x = args;
 *         (void)reserved;
 *         (void)count;
 *         x[index] *= x[index];
 *     }
 *
 *     int main(void) {
 *         double* x = orv_serv_allocate(4 * sizeof *x, 64);  // bytes; the alignment
 *         if (!x) return 1;
 *         for (int i = 0; i < 4; ++i) x[i] = i + 1;
 *         orv_kuz_serv_threader_for(4, 0, x, square);  // on as many threads as there are
 *         printf("%g %g %g %g\n", x[0], x[1], x[2], x[3]);
 *         orv_serv_deallocate(x);
 *         return 0;
 *     }
 *
 * It prints
 *
 *     1 4 9 16
 *
 * liborv_sse41 takes memory, locks, environment access, messages and threads from the entries below and from nowhere
 * else. liborv_core implements them on the C library, OpenMP and OpenBLAS; a host package may put a library of its own
 * with the same entries in its place. All entries use the C calling convention. None sets errno of its own.
 *
 * Names. orv_serv_ is the prefix of memory, locks and the process, orv_kuz_serv_ that of the threads. Dense linear algebra,
 * orv_blas_ and orv_lapack_, is the host's too, in headers of its own.
 *
 * Null pointers. `args` may be null, as far as the worker is content with it; deallocate ignores null; memcpy_s refuses it.
 * No other pointer may be null. Where an entry of another header takes `services`, null stands for one thread. */
#ifndef ORV_SERVICES_H
#define ORV_SERVICES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Memory ---------------------------------------------------------------------------------------------------- */

/* Allocates `size` bytes at an address that is a multiple of `alignment` (a power of two, at most 4096). The contents
 * are not set. A size of 0 gives a block that may be given back. Returns null when there is no memory. */
void* orv_serv_allocate(size_t size, int32_t alignment);

/* Gives back a block of orv_serv_allocate. Null is ignored. */
void orv_serv_deallocate(void* block);

/* Copies `count` bytes between blocks that do not overlap, if they fit in the `capacity` bytes at `destination`.
 * Returns 0, or 22 (EINVAL) for a null pointer and 34 (ERANGE) for a count above the capacity; then nothing is copied. */
int32_t orv_serv_memcpy_s(void* destination, size_t capacity, const void* source, size_t count);

/* ---- Locks ------------------------------------------------------------------------------------------------------ */

/* A lock is a word that its owner sets to 0 (free). Locks do not nest: a second lock by the holder waits for ever. */
typedef volatile int32_t orv_serv_lock_word;

void orv_serv_lock(orv_serv_lock_word* lock);
void orv_serv_unlock(orv_serv_lock_word* lock);

/* ---- Process ---------------------------------------------------------------------------------------------------- */

/* Copies the value of environment variable `name`, with its final zero, to `buffer` of `size` bytes. Returns its length;
 * 0 when the variable is not set or empty; -1 when the value does not fit, and then `buffer` holds an empty string. */
int32_t orv_serv_getenv(const char* name, char* buffer, int32_t size);

/* Prints message number `code` with the `count` arguments that follow to standard error, one line. `channel` is 1.
 * A code without a text prints the bare number. Returns the number of characters written, negative on failure. */
int32_t orv_serv_print(int32_t channel, int32_t code, int32_t count, ...);

/* Ends the process with exit status `code`. */
void orv_serv_exit(int32_t code);

/* Returns 1 if processor and system support the vector form of the AES round instructions, 0 if not. */
int32_t orv_serv_cpuisqlx(void);

/* ---- Threads ---------------------------------------------------------------------------------------------------- */

/* One piece of parallel work: `index` is below `count`; `reserved` is not used; `args` is the caller's own. */
typedef void (*orv_serv_worker)(int32_t index, int32_t reserved, int32_t count, void* args);

/* Runs worker(index, 0, count, args) once for each index from 0 below `count`, on at most `threads` threads (0: as many
 * as the limit allows), and returns when all have finished. A call from inside a worker runs on the calling thread. */
void orv_kuz_serv_threader_for(int32_t count, int32_t threads, void* args, orv_serv_worker worker);

/* The largest number of threads that a parallel region started here may use; 1 inside a worker. */
int32_t orv_kuz_serv_threader_get_num_threads_limit(void);

/* A function of unknown type; cast it to the type that its name stands for. */
typedef void (*orv_serv_function)(void);

/* Finds a thread service by its name, "orv_kuz_serv_threader_for" or "orv_kuz_serv_threader_get_num_threads_limit".
 * Returns null for any other name. */
orv_serv_function orv_serv_load_thread_fun(const char* name);

/* The table of thread services that a front-end hands to statistics and data fitting. */
typedef struct orv_services {
    void (*parallel_for)(int32_t count, int32_t threads, void* args, orv_serv_worker worker);
    void (*reserved1)(void);
    void (*fan_out)(int32_t count, void* args, orv_serv_worker worker);
    void (*reserved3)(void);
    int32_t (*thread_limit)(void);
} orv_services;

/* The ready table over the entries above; its reserved slots are null. */
const orv_services* orv_serv_services(void);

#ifdef __cplusplus
}
#endif

#endif
