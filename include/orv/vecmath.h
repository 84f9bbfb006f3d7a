/* Elementwise vector mathematics in three accuracies: "LA" (within 4 ulp), "HA" (about half an ulp) and "EP" (about half
 * of the significand's bits).
 *
 *     #include <errno.h>
 *     #include <orv/vecmath.h>
 *     #include <stdint.h>
 *     #include <stdio.h>
 *
 *     // Called for each element without a proper result; what it leaves in res1 becomes the result.
 *     static int32_t report(ArqErrorContext* context) {
 *         printf("x[%d] = %g: status %d\n", (int)context->index, context->arg1, (int)context->code);
 *         context->res1 = -99;
 *         return 0;
 *     }
 *
 *     int main(void) {
 *         const double x[4] = {1, 10, 1000, -1};
 *         double y[4];
 *         _arqSetErrorCallBack(report);
 *         _arqdLog10(4, x, y);            // d: double; the name fixes the accuracy, HA here
 *         for (int i = 0; i < 4; ++i) printf("%g -> %g\n", x[i], y[i]);
 *         printf("%s\n", errno == EDOM ? "EDOM" : "no error");
 *         _arqdLog10I_50(2, x, 2, y, 1);  // LA, of every second element
 *         printf("%g %g\n", y[0], y[1]);
 *         return 0;
 *     }
 *
 * It prints
 *
 *     x[3] = -1: status 1
 *     1 -> 0
 *     10 -> 1
 *     1000 -> 3
 *     -1 -> -99
 *     EDOM
 *     0 3
 *
 * A call maps n elements to n results and never fails as a whole: every element gets a defined result, and elements that
 * have none are reported by status, callback, errno, message or exception as the calling thread's mode word asks.
 * Kernels check neither counts nor pointers nor strides: no pointer may be null, unless the count is 0 or below, when
 * nothing is read or written. Input and output may be the same array; arrays that overlap in any other way are not
 * supported. All state is per thread and no call takes a lock. Arguments are pure numbers, angles in radians except
 * where the name ends in d (degrees) or pi (multiples of pi).
 *
 * errno becomes EDOM for ORV_STATUS_DOMAIN and ERANGE for a singularity, overflow or underflow, if the mode has
 * ORV_MODE_ERRMODE_ERRNO, as it has at first; a call without a report leaves it alone.
 *
 * Names. _arq is the prefix of the vector functions and of the thread's mode, status and callback; orv_arq_kernel_ that of
 * the tables of kernels, and of the same thread entries under a second name.
 * _arq<type><Function>[I][_HA|_21|_50|_11|_26]: type s (float), d (double), c and z (their complex pairs); I marks
 * the strided form, whose increments count elements; no suffix or _HA enters the "HA" kernel, _21 (s, c) and _50 (d, z)
 * the "LA" kernel, _11 (s, c) and _26 (d, z) the "EP" kernel. The mode word does not change what a named entry does: a
 * caller that follows the mode takes its kernel from orv_arq_kernel_<type><Function>[I]_ttab at the index given by
 * orv_arq_kernel_GetTTableIndex(). The functions themselves are declared in <orv/vecmath_entries.h>. */
#ifndef ORV_VECMATH_H
#define ORV_VECMATH_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Data is imported from a DLL under its address only if the compiler is told so. */
#if defined(_WIN32) && !defined(ORV_STATIC)
#define ORV_DATA __declspec(dllimport) extern
#else
#define ORV_DATA extern
#endif

typedef struct orv_complex_s {
    float re, im;
} orv_complex_s;

typedef struct orv_complex_d {
    double re, im;
} orv_complex_d;

/* One row of the exported tables: the kernels of a function and their costs per element, by accuracy index (0 "LA",
 * 1 "HA", 2 "EP"). Cast a kernel to the type of the function's entry. */
typedef void (*orv_arq_kernel)(void);

/* ---- Tier ------------------------------------------------------------------------------------------------------- */

/* The tier number of this library: 6, for SSE4.1. */
int32_t dll_cpu_version(void);

/* ---- The mode word ---------------------------------------------------------------------------------------------- */

enum {
    ORV_MODE_LA = 0x1,
    ORV_MODE_HA = 0x2,
    ORV_MODE_EP = 0x3,
    ORV_MODE_FLOAT_CONSISTENT = 0x10,
    ORV_MODE_DOUBLE_CONSISTENT = 0x20,
    ORV_MODE_RESTORE = 0x30,
    ORV_MODE_ERRMODE_IGNORE = 0x100,    /* alone: record the status, do nothing more */
    ORV_MODE_ERRMODE_ERRNO = 0x200,     /* set errno */
    ORV_MODE_ERRMODE_STDERR = 0x400,    /* print messages to standard error */
    ORV_MODE_ERRMODE_EXCEPT = 0x800,    /* raise the floating-point exception; it traps if its trap bit is set */
    ORV_MODE_ERRMODE_CALLBACK = 0x1000, /* call the thread's error callback, if it has one */
    ORV_MODE_ERRMODE_NOERR = 0x2000,    /* alone: do not even record the status */
    ORV_MODE_ERRMODE_DEFAULT = 0x1A00,
    ORV_MODE_DENORMAL_KEEP = 0x140000,
    ORV_MODE_DENORMAL_FLUSH = 0x280000,
    ORV_MODE_TRAP_INVALID = 0x1000000,
    ORV_MODE_TRAP_DIVBYZERO = 0x2000000,
    ORV_MODE_TRAP_OVERFLOW = 0x4000000,
    ORV_MODE_TRAP_UNDERFLOW = 0x8000000
};

/* The calling thread's mode word. At a thread's first call it comes from the environment variable ORV_ARQ_MODE, a list
 * like "ARQ_EP,ARQ_ERRMODE_IGNORE"; where that is not set or not valid it is 0x1A02, "HA" with ERRMODE_DEFAULT. */
uint32_t orv_arq_kernel_GetMode(void);
uint32_t _arqGetMode(void);

/* Merges `mode` into the calling thread's mode word and returns the word before. The accuracy field (mask 0xF), the error
 * modes (0xFF00), the denormal field (0x3C0000) and the traps (0xF000000) are each replaced as a whole where `mode` has a
 * bit in them and kept where it has none; all other bits of `mode` are ignored. */
uint32_t orv_arq_kernel_SetMode(uint32_t mode);
uint32_t _arqSetMode(uint32_t mode);

/* The table index of the calling thread's accuracy, -1 for an accuracy field of 0; the second form takes the mode from
 * its second argument and ignores the first. */
int32_t orv_arq_kernel_GetTTableIndex(void);
int32_t orv_arq_kernel_GetTTableIndexM(uint32_t ignored, uint32_t mode);

/* ---- Status and error callback ---------------------------------------------------------------------------------- */

enum {
    ORV_STATUS_OK = 0,
    ORV_STATUS_DOMAIN = 1,        /* argument outside the domain */
    ORV_STATUS_SINGULARITY = 2,   /* argument at a pole */
    ORV_STATUS_OVERFLOW = 3,      /* result too large */
    ORV_STATUS_UNDERFLOW = 4,     /* result subnormal or zero by underflow */
    ORV_STATUS_BAD_ARGUMENT = -1, /* for front-ends: an argument of the whole call, its position in the index field */
    ORV_STATUS_BAD_POINTER = -2   /* for front-ends: a pointer of the whole call */
};

#ifdef __cplusplus
#define ORV_ALIGN8 alignas(8)
#elif defined(_MSC_VER)
#define ORV_ALIGN8 __declspec(align(8))
#else
#define ORV_ALIGN8 __attribute__((aligned(8)))
#endif

/* What an error callback is told of one element. Values of s and c functions are widened to double. For one-argument
 * functions arg2 equals arg1, for one-result functions res2 equals res1. The imaginary fields hold values for c and z
 * functions only. */
typedef struct ArqErrorContext {
    int32_t code;  /* the status */
    int32_t index; /* of the element, from the vector of _arqSetInterfInputVectorPointer if that is set */
    ORV_ALIGN8 double arg1;
    ORV_ALIGN8 double arg2;
    ORV_ALIGN8 double res1;
    ORV_ALIGN8 double res2;
    char func_name[64]; /* such as "vdExp", at most 47 characters and a final zero */
    int32_t func_name_len;
    ORV_ALIGN8 double arg1_im;
    ORV_ALIGN8 double arg2_im;
    ORV_ALIGN8 double res1_im;
    ORV_ALIGN8 double res2_im;
} ArqErrorContext;

/* Called on the kernel's thread for each reported element, in the order of the elements. Returning 0 lets the default
 * actions run and makes res1 and res2, as the callback left them, the element's results; any other value ends the report
 * and keeps the kernel's results. */
typedef int32_t (*orv_arq_callback)(ArqErrorContext* context);

/* The status last reported in the calling thread. Set and Clear return the one before; kernels never clear it. */
int32_t _arqSetErrStatus(int32_t status);
int32_t _arqGetErrStatus(void);
int32_t _arqClearErrStatus(void);
int32_t orv_arq_kernel_SetErrStatus(int32_t status);
int32_t orv_arq_kernel_GetErrStatus(void);
int32_t orv_arq_kernel_ClearErrStatus(void);

/* The calling thread's error callback. Set and Clear return the one before, and set or clear ERRMODE_CALLBACK in the
 * mode word (where it is the only error mode it stays, and an absent callback is passed over). */
orv_arq_callback _arqSetErrorCallBack(orv_arq_callback callback);
orv_arq_callback _arqGetErrorCallBack(void);
orv_arq_callback _arqClearErrorCallBack(void);
orv_arq_callback orv_arq_kernel_SetErrorCallBack(orv_arq_callback callback);
orv_arq_callback orv_arq_kernel_GetErrorCallBack(void);
orv_arq_callback orv_arq_kernel_ClearErrorCallBack(void);

/* For a caller that cuts a long input vector into pieces: its start, from which the index of a report then counts.
 * Returns the pointer; null switches the correction off. */
const void* _arqSetInterfInputVectorPointer(const void* pointer);
const void* orv_arq_kernel_SetInterfInputVectorPointer(const void* pointer);

#ifdef __cplusplus
}
#endif

#include <orv/vecmath_entries.h>

#endif
