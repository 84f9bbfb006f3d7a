/* Random streams: the registry of generators, the life of a stream, its memory chunks, and its image in files and
 * memory.
 *
 *     #include <orv/random.h>
 *     #include <stdint.h>
 *     #include <stdio.h>
 *
 *     int main(void) {
 *         const uint32_t seed[6] = {12345, 12345, 12345, 12345, 12345, 12345};
 *         double all[6], late[3];
 *         Stream *stream, *copy;
 *         if (__kuzNewStreamEx(&stream, BrngMRG32K3A, 6, seed) != StatusOk) return 1;
 *         if (__kuzCopyStream(&copy, stream) != StatusOk) return 1;
 *         if (_kuzdRngUniform(UniformStandard, stream, 6, all, 0, 1) != StatusOk) return 1;
 *         printf("%.6f %.6f %.6f\n", all[0], all[1], all[2]);
 *         if (__kuzSkipAheadStream(copy, 3) != StatusOk) return 1;  // past the first three
 *         if (_kuzdRngUniform(UniformStandard, copy, 3, late, 0, 1) != StatusOk) return 1;
 *         printf("%s\n", late[0] == all[3] && late[2] == all[5] ? "the same sequence" : "another one");
 *         __kuzDeleteStream(&stream);
 *         __kuzDeleteStream(&copy);
 *         return 0;
 *     }
 *
 * It prints
 *
 *     0.127011 0.318528 0.309186
 *     the same sequence
 *
 * A stream is the caller's handle on one sequence of random numbers: a record with a 16-byte header and, behind it, the
 * state of one basic generator. The header's id finds the generator's row in the registry, and everything that is done
 * with a stream goes through the four functions of that row.
 *
 * One stream is used by one thread at a time; different streams may be used by different threads at once, also when they
 * are copies of each other. Every entry uses the C calling convention; a status of zero is success, a negative one is
 * failure.
 *
 * Names. __kuz, with two underscores, is the prefix of what has to do with streams and generators themselves: their life,
 * registry, chunks and images, and the generators' own entries. _kuz, with one, is that of what draws numbers from a stream
 * (random.h) and of the statistics that are computed (statistics.h). The tables of the registry begin with __RegBrngs.
 *
 * Null pointers. Entries trust their caller: pointers are not tested unless a comment says so. Seed words may be null where
 * their count is 0, a chunk's key where there is none, its data where its size is 0. *stream may not be null in
 * __kuzDeleteStream. errno is left alone by all but the entries that open files, where it is as the C library left it. */
#ifndef ORV_STREAMS_H
#define ORV_STREAMS_H

#include <stddef.h>
#include <stdint.h>

/* Data of a DLL is reached by address; ORV_STATIC says that it is in the same image. */
#ifndef ORV_DATA
#if defined(_WIN32) && !defined(ORV_STATIC)
#define ORV_DATA __declspec(dllimport) extern
#else
#define ORV_DATA extern
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Statuses --------------------------------------------------------------------------------------------------- */

#ifdef __cplusplus
enum RandomStatus : int32_t {
#else
enum RandomStatus {
#endif
    StatusOk = 0,
    StatusBadMethod = -2,         /* initStream was called with a method other than 0 to 3 */
    StatusBadAbstractArgs = -3,   /* abstract stream: no size, buffer or callback, or an empty range */
    StatusNoMemory = -4,          /* the core library had no memory */
    StatusNullFunction = -5,      /* a required function pointer is null */
    BrngStatusBadId = -1000,      /* no generator of this id, or none that can be created this way */
    BrngStatusNoLeapfrog = -1002, /* the generator has no leapfrog */
    BrngStatusNoSkipAhead = -1003,
    BrngStatusNoSkipAheadEx = -1004,  /* the generator takes no skip count of several words */
    BrngStatusBadStateBytes = -1008,  /* registration: stateBytes is negative */
    BrngStatusBadWordBytes = -1009,   /* registration: wordBytes is not 4, 8 or 16 */
    BrngStatusBadSeedCount = -1010,   /* registration: seedCount is below 1 */
    BrngStatusBadBitCount = -1011,    /* registration: bitCount is below 1 */
    BrngStatusQrngExhausted = -1012,  /* a quasi-random request would pass the end of its 32-bit index */
    BrngStatusBadStreamCount = -1013, /* leapfrog: negative number of streams */
    BrngStatusNoFullWidth = -1014,    /* the generator's words do not have all the bits that were asked for */
    StreamStatusCloseFailed = -1100,
    StreamStatusOpenFailed = -1101,
    StreamStatusWriteFailed = -1102,
    StreamStatusReadFailed = -1103,    /* the file is too short, holds an impossible size, or has an unknown version */
    StreamStatusBadFile = -1110,       /* the file is not a stream of a known generator */
    AbstractStatusBadUpdate = -1120,   /* abstract stream: the callback returned an impossible count */
    AbstractStatusNoNumbers = -1121,   /* abstract stream: the callback returned no numbers */
    AbstractStatusWrongKernel = -1122, /* abstract stream: numbers of another type were asked for */
    TrngStatusNotSupported = -1130,    /* the processor has no RDRAND instruction */
    TrngStatusRetriesExhausted = -1131,
    ArsStatusNotSupported = -1140,             /* the processor has no AES instructions */
    MultinomialStatusBadProbabilities = -1150, /* none, one below 0, or their sum not within 0.001 of 1 */
    StreamStatusBadImage = -1200,              /* the memory block is not the image of a stream of a known generator */
    RoTableStatusNotFound = -3000,             /* the shared table has no such key */
    RoTableStatusFull = -3001
};

/* ---- Records ---------------------------------------------------------------------------------------------------- */

#ifdef __cplusplus
#define ORV_ALIGN8 alignas(8)
#else
#define ORV_ALIGN8 __attribute__((aligned(8)))
#endif

/* A block of memory on a stream's list, found by its id. With a key that is not all zero, `data` belongs to the shared
 * table, which counts the chunks that refer to it; without one it belongs to the chunk. */
typedef struct Chunk {
    int32_t chunkId;
    int32_t dataBytes;
    void* data;
    struct Chunk* next;
    ORV_ALIGN8 uint64_t key[2];
} Chunk;

/* The header that every stream starts with; `stateBytes` - 16 bytes of generator state follow. */
typedef struct Stream {
    int32_t brngId; /* as the caller gave it, family member included */
    uint8_t headerFlag;
    uint8_t headerPad8;
    uint16_t headerPad16;
    ORV_ALIGN8 int64_t chunks; /* head of the list of Chunk records, a sign-extended pointer */
} Stream;

/* An entry of the shared table of read-only data. */
typedef struct RoDataEntry {
    ORV_ALIGN8 uint64_t key[2];
    uint32_t refCount;
    void* data;
} RoDataEntry;

/* The methods of initStream, and what `n` and `params` mean for each. */
#ifdef __cplusplus
enum InitMethod : int32_t {
#else
enum InitMethod {
#endif
    InitMethodSeed = 0,       /* n 32-bit seed words */
    InitMethodLeapfrog = 1,   /* n streams; params is the 32-bit index of this one */
    InitMethodSkipAhead = 2,  /* n is 2; params is one 64-bit count */
    InitMethodSkipAheadEx = 3 /* n 64-bit words of a count, least significant first */
};

/* Seeds a stream or moves it along its sequence. Any other method returns StatusBadMethod. */
typedef int32_t (*BrngInitStream)(int32_t method, Stream* stream, int32_t n, const void* params);
/* Writes n numbers, uniform on the interval from a to b, to r. */
typedef int32_t (*BrngKernelS)(Stream* stream, int32_t n, float* r, float a, float b);
typedef int32_t (*BrngKernelD)(Stream* stream, int32_t n, double* r, double a, double b);
/* Writes n raw outputs of `wordBytes` bytes each to r. */
typedef int32_t (*BrngKernelI)(Stream* stream, int32_t n, void* r);

/* A row of the registry. */
typedef struct BrngProperties {
    int32_t stateBytes;   /* of the whole stream record, its 16-byte header included */
    int32_t seedCount;    /* 32-bit words of an initial state */
    int32_t includesZero; /* 1 if an output can be exactly zero */
    int32_t wordBytes;    /* bytes of one output of iBRng: 4, 8 or 16 */
    int32_t bitCount;     /* significant bits of one output */
    BrngInitStream initStream;
    BrngKernelS sBRng;
    BrngKernelD dBRng;
    BrngKernelI iBRng;
} BrngProperties;

/* ---- Registry --------------------------------------------------------------------------------------------------- */

/* Ids of the built-in generators. A member of the families WH (273) and MT2203 (6024) is named by the family's id plus
 * its index. */
#ifdef __cplusplus
enum BrngId : int32_t {
#else
enum BrngId {
#endif
    BrngMCG31M1 = 0x100000,
    BrngR250 = 0x200000,
    BrngMRG32K3A = 0x300000,
    BrngMCG59 = 0x400000,
    BrngWH = 0x500000,
    BrngSobol = 0x600000,
    BrngNiederr = 0x700000,
    BrngMT19937 = 0x800000,
    BrngMT2203 = 0x900000,
    BrngIAbstract = 0xA00000,
    BrngDAbstract = 0xB00000,
    BrngSAbstract = 0xC00000,
    BrngSFMT19937 = 0xD00000,
    BrngTRNG = 0xE00000,
    BrngARS5 = 0xF00000,
    BrngPHILOX4X32X10 = 0x1000000
};

/* The rows of the small ids: 0 MCG31M1, 1 R250, 2 MRG32K3A, 3 MCG59, 4 to 276 WH, 277 Sobol, 278 Niederr; the others are
 * all zero. A small id of a WH member, 4 to 276, resolves to row 4 and the member. */
ORV_DATA const BrngProperties __RegBrngs[512];
/* The rows of the main ids, 0x100000 times (row + 1): the 16 built-in generators, then the registered ones. A built-in
 * row whose functions are null names a generator that this build does not have; creation refuses its id. */
ORV_DATA BrngProperties __RegBrngsNew[512];

/* Resolves an id to its table (the result), row and family member. It tests nothing: a negative id gives a negative row,
 * which is not to be read. */
const BrngProperties* __kuzGetBrngBaseOffset(int32_t id, int32_t* row, int32_t* member);

/* StatusOk if the row, and in the main table the member, exist; else BrngStatusBadId. Rows 279 and 280 of the small table
 * pass, and a negative row of it as well; creation and loading refuse them. */
int32_t __kuzIsBrngValid(const BrngProperties* table, int32_t row, int32_t member);

/* Copies the row of an id. Returns StatusOk, or BrngStatusBadId and leaves *properties alone. */
int32_t __kuzGetBrngProperties(int32_t id, BrngProperties* properties);

/* Adds a generator for the life of the process. Returns its id: 0x1100000 for the first, 0x100000 more for each further
 * one; or the status of the first failing test: BrngStatusBadStateBytes, BrngStatusBadWordBytes, BrngStatusBadSeedCount,
 * BrngStatusBadBitCount, StatusNullFunction, and BrngStatusBadId when all 512 rows are taken. Registrations must not run
 * at the same time as each other. */
int32_t __kuzRegisterBrng(const BrngProperties* properties);

/* The number of rows in use, 16 before the first registration. */
int32_t __kuzGetNumRegBrngs(void);

/* The id of a stream's generator. */
int32_t __kuzGetStreamStateBrng(const Stream* stream);

/* ---- Life of a stream ------------------------------------------------------------------------------------------- */

/* Creates a stream of generator `id` from `n` 32-bit seed words; each generator says what a short or long seed means.
 * Returns BrngStatusBadId for an id that does not exist or is not in this build, and for the abstract generators, which
 * have creators of their own; *stream is not touched then. Returns StatusNoMemory and a null *stream. A failed seeding
 * returns its status and leaves a record that the caller deletes. */
int32_t __kuzNewStreamEx(Stream** stream, int32_t id, int32_t n, const uint32_t* params);

/* Refills a ring of numbers: writes at most *nmax numbers (and would best write *nmin) to `buffer`, a ring of *size
 * elements, from index *index on, and returns how many it wrote. */
typedef int32_t (*AbstractCallback)(Stream* stream, int32_t* size, void* buffer, int32_t* nmin, int32_t* nmax,
                                    int32_t* index);

/* Create a stream over a caller's ring of n numbers that `callback` fills: 32-bit words, or floating-point numbers that
 * are uniform on the interval from a to b. Return StatusBadAbstractArgs if n is 0, buffer or callback is null, or a is
 * not below b; else as __kuzNewStreamEx. The ring must outlive the stream. */
int32_t __kuziNewAbstractStream(Stream** stream, int32_t n, uint32_t* buffer, AbstractCallback callback);
int32_t __kuzdNewAbstractStream(Stream** stream, int32_t n, double* buffer, double a, double b,
                                AbstractCallback callback);
int32_t __kuzsNewAbstractStream(Stream** stream, int32_t n, float* buffer, float a, float b, AbstractCallback callback);

/* Allocates the record of a stream of `row` and `member` in `table`, with header and without a seed. */
int32_t __kuzAllocateStream(Stream** stream, const BrngProperties* table, int32_t id, int32_t row, int32_t member);

/* Makes the stream the k-th of nstreams that share its sequence: it then takes elements k, k + nstreams, and so on.
 * Returns BrngStatusBadStreamCount for a negative nstreams, BrngStatusNoLeapfrog for a generator that cannot. */
int32_t __kuzLeapfrogStream(Stream* stream, int32_t k, int32_t nstreams);

/* Moves the stream forward by nskip elements. Returns BrngStatusNoSkipAhead for a generator that cannot. */
int32_t __kuzSkipAheadStream(Stream* stream, uint64_t nskip);

/* The same by a count of n 64-bit words, least significant first. Returns BrngStatusNoSkipAheadEx for a generator that
 * cannot. */
int32_t __kuzSkipAheadStreamEx(Stream* stream, int32_t n, const uint64_t* nskip);

/* Deletes a stream and all it owns, and sets *stream to null. */
int32_t __kuzDeleteStream(Stream** stream);

/* Makes *stream a copy of source, chunks included; data under a shared key is shared and not copied. When a chunk cannot
 * be copied, StatusNoMemory is returned and the copy stays, to be deleted. */
int32_t __kuzCopyStream(Stream** stream, const Stream* source);

/* Copies the first seedCount * wordBytes bytes of the generator state (at most the whole state) and all chunks between
 * two streams of one generator. The multiplier of MCG31M1 and MCG59 stays the destination's, as do the words of a block
 * that SFMT19937, PHILOX4X32X10 and ARS5 keep from a call (and with SFMT19937 and ARS5 their number), so those three are
 * to be copied between blocks of four words; the abstract generators copy no state. */
int32_t __kuzCopyStreamState(Stream* destination, const Stream* source);

/* ---- Images ----------------------------------------------------------------------------------------------------- */

/* A stream's image is a 24-byte header, the generator state as raw bytes, and the chunks; little-endian, no checksum.
 * Loading reads it and the two older forms with 20-byte headers.
 *
 * A damaged image of a built-in generator is refused or gives a stream that works on some state of the generator; sizes
 * that the file's length cannot hold are a read failure. The exceptions are the abstract generators, whose state holds
 * pointers, good only in the process that saved it, and registered generators that trust their state: for them an image
 * is trusted input.
 *
 * A file name of `name_length` bytes needs no final zero; with a negative name_length it has one. */

/* Saves to a file. Returns StreamStatusOpenFailed, StreamStatusWriteFailed, StreamStatusCloseFailed or StatusNoMemory on
 * failure. After header and state, only the last chunk's data decides about StreamStatusWriteFailed, and a last chunk
 * without data counts as failed. A stream of more than 65535 chunks gives StreamStatusWriteFailed before a file is
 * opened. */
int32_t __kuzSaveStreamF(const Stream* stream, const char* name, int32_t name_length);

/* Loads from a file: StreamStatusOpenFailed, StreamStatusReadFailed, StreamStatusCloseFailed, StatusNoMemory;
 * StreamStatusBadFile for an id that does not exist, a size that is not its own or a state that it cannot be in;
 * BrngStatusBadId for a generator that is not in this build; TrngStatusNotSupported and
 * ArsStatusNotSupported on a processor without the instructions. *stream is null on failure, and untouched when there
 * was no memory for the name. Chunks come back in reverse order. */
int32_t __kuzLoadStreamF(Stream** stream, const char* name, int32_t name_length);

/* Saves to a block of __kuzGetStreamSize bytes. There is no failure: of more than 65535 chunks the image says that it has
 * 65535, and a loader gets those at the head of the list. */
int32_t __kuzSaveStreamM(const Stream* stream, void* memory);

/* Loads from a block. Returns StreamStatusBadImage where the file form returns StreamStatusBadFile. The block's end is
 * not known: the sizes in it are believed. */
int32_t __kuzLoadStreamM(Stream** stream, const void* memory);

/* The bytes of the stream's image. */
int32_t __kuzGetStreamSize(const Stream* stream);

/* ---- Processor -------------------------------------------------------------------------------------------------- */

/* 1 if the processor has the RDRAND instruction (which TRNG needs), the AES round instructions (which ARS5 needs), their
 * vector form; else 0. */
int32_t __kuzCPUisRDRAND(void);
int32_t __kuzCPUisAES(void);
int32_t __kuzCPUisVAES(void);

/* ---- Chunks ----------------------------------------------------------------------------------------------------- */

/* Puts a chunk of `size` bytes at the head of the stream's list and takes `data` over. With a key (not null, not all
 * zero) the data is shared: a known key adds a reference to the data that it names, and the caller's block is forgotten
 * and not freed; a new key is entered, or dropped if 127 keys are in use, so that the data stays private.
 * Returns StatusOk or StatusNoMemory. */
int32_t __kuzAddChunk(Stream* stream, int32_t id, const uint64_t* key, void* data, int32_t size);

/* The data of the chunk with this id that was added last, or null. */
void* __kuzSearchChunk(const Stream* stream, int32_t id);

/* The number of chunks of a stream. */
int32_t __kuzGetNumChunks(const Stream* stream);

/* Deletes the chunks with this id. The list starts at the last kept chunk afterwards: kept chunks before it are lost, so
 * this is for lists that keep at most one. */
void __kuzDeleteChunksById(Stream* stream, int32_t id);

/* Deletes all chunks of a stream. */
void __kuzDeleteChunks(Stream* stream);

/* Puts copies of all chunks of `source` at the head of the destination's list, in reverse order. Data under a known
 * key is shared. On StatusNoMemory all chunks of the destination have been deleted. */
int32_t __kuzCopyChunks(Stream* destination, const Stream* source);

/* Finds the entry of a key. Returns 0, or RoTableStatusNotFound, also for a null or all-zero key. The entry may move as
 * soon as another thread releases a key. */
int32_t __kuzFindGlobRODataTableEntry(RoDataEntry** entry, const uint64_t* key);

/* Enters a key with one reference. Returns 0, or RoTableStatusFull when all 128 entries are in use. */
int32_t __kuzCreateGlobRODataTableEntry(RoDataEntry** entry, const uint64_t* key, void* data);

/* Adds a reference to a key's data and stores it in the chunk; does nothing for an unknown key. */
void __kuzRegisterGlobRODataReference(Chunk* chunk, const uint64_t* key);

/* Gives back one reference; the last one frees the data and the entry. */
void __kuzUnregisterGlobRODataReference(const uint64_t* key);

/* Makes a key that is not in the table, from the time stamp counter and `value` (a data pointer). Returns 0. */
int32_t __kuzGenerateNewGlobalRODataTableEntryId(uint64_t* key, int32_t value);

#ifdef __cplusplus
}
#endif

#endif
