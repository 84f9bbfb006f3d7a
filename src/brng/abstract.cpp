// Abstract streams: numbers from a ring that the caller owns and a callback of his refills. They hand out numbers of their
// ring's type only. Every kernel for another type is the one function at the end under a name of its own.
#include "brng/entries.h"
#include "streams/state_checks.h"

#include <stddef.h>

namespace orv::brng::abstract {

namespace {

struct Position {
    int32_t size;
    int32_t head;  // of the next number to hand out
    int32_t free;  // slots without a number that is yet to be handed out
};

struct WordRing {
    using Element = uint32_t;
    Stream header;
    Position position;
    Element* buffer;
    AbstractCallback callback;
    uint32_t padding;
};
static_assert(sizeof(void*) != 4 || (sizeof(WordRing) == 40 && offsetof(WordRing, buffer) == 28));

// Numbers uniform on the interval from a to b.
template <class Real>
struct RealRing {
    using Element = Real;
    Stream header;
    Position position;
    alignas(sizeof(Real)) Real a;
    Real b;
    Element* buffer;
    AbstractCallback callback;
};
static_assert(sizeof(void*) != 4 || (sizeof(RealRing<float>) == 48 && offsetof(RealRing<float>, buffer) == 36));
static_assert(sizeof(void*) != 4 || (sizeof(RealRing<double>) == 56 && offsetof(RealRing<double>, a) == 32));

template <class Ring>
Ring& ring_of(Stream* stream) {
    return *reinterpret_cast<Ring*>(stream);
}

struct AsTheyAre {
    uint32_t operator()(uint32_t x) const { return x; }
};

// From the ring's interval to the one asked for.
template <class Real>
struct ToInterval {
    Real from, factor, to;

    ToInterval(const RealRing<Real>& ring, Real a, Real b) : from(ring.a), factor((b - a) / (ring.b - ring.a)), to(a) {}
    Real operator()(Real x) const { return (x - from) * factor + to; }
};

int32_t around(const Position& p, int32_t from, int32_t count) {
    return static_cast<int32_t>((static_cast<uint32_t>(from) + static_cast<uint32_t>(count)) %
                                static_cast<uint32_t>(p.size));
}

template <class Element, class Map>
void hand_out(Position& p, int32_t count, const Element* buffer, Element*& r, const Map& map) {
    for (int32_t left = count; left > 0;) {
        const int32_t before_end = p.size - p.head;
        const int32_t run = left < before_end ? left : before_end;
        for (int32_t k = 0; k < run; ++k) *r++ = map(buffer[p.head + k]);
        p.head = around(p, p.head, run);
        left -= run;
    }
    p.free += count;
}

// The callback gets copies, so that it can change nothing but the ring. The position is stored on success only.
template <class Ring, class Map>
int32_t generate(Ring& ring, int32_t n, typename Ring::Element* r, const Map& map) {
    if (!ring.buffer) return StatusNullFunction;
    Position p = ring.position;
    while (n > 0) {
        int32_t available = p.size - p.free;
        if (available == 0) {
            const int32_t least = n < p.free ? n : p.free;
            int32_t size = p.size, nmin = least, nmax = p.free, index = p.head;
            const int32_t count = ring.callback(&ring.header, &size, ring.buffer, &nmin, &nmax, &index);
            if (count < 0 || count > p.free) return AbstractStatusBadUpdate;
            if (count == 0) return AbstractStatusNoNumbers;
            p.free -= count;
            available = count;
        }
        const int32_t taken = n < available ? n : available;
        hand_out(p, taken, ring.buffer, r, map);
        n -= taken;
    }
    ring.position = p;
    return StatusOk;
}

int32_t init(int32_t method, Position& position, const void* const* block) {
    if (method != InitMethodSeed) return status_of_missing(method);
    const int32_t size = *static_cast<const int32_t*>(block[0]);
    position = {size, 0, size};
    return StatusOk;
}

// The block of a creator: where the size stands, the ring, where its interval stands, the callback.
template <class Ring>
int32_t init_stream(int32_t method, Stream* stream, const void* params) {
    Ring& ring = ring_of<Ring>(stream);
    const void* const* block = static_cast<const void* const*>(params);
    const int32_t status = init(method, ring.position, block);
    if (status < 0 || method != InitMethodSeed) return status;
    ring.buffer = static_cast<typename Ring::Element*>(const_cast<void*>(block[1]));
    if constexpr (requires { ring.a; }) {
        ring.a = *static_cast<const typename Ring::Element*>(block[2]);
        ring.b = *static_cast<const typename Ring::Element*>(block[3]);
        block += 2;
    }
    ring.callback = reinterpret_cast<AbstractCallback>(const_cast<void*>(block[2]));
    return StatusOk;
}

}  // namespace

bool is_sound(const Stream* stream) {
    const Position& p = reinterpret_cast<const WordRing*>(stream)->position;
    return p.head >= 0 && p.head < p.size && p.free >= 0 && p.free <= p.size;
}

}  // namespace orv::brng::abstract

using namespace orv::brng::abstract;

ORV_API int32_t __kuzBRngiAbstractInitStream(int32_t method, Stream* stream, int32_t, const void* params) {
    return init_stream<WordRing>(method, stream, params);
}
ORV_API int32_t __kuzBRngdAbstractInitStream(int32_t method, Stream* stream, int32_t, const void* params) {
    return init_stream<RealRing<double>>(method, stream, params);
}
ORV_API int32_t __kuzBRngsAbstractInitStream(int32_t method, Stream* stream, int32_t, const void* params) {
    return init_stream<RealRing<float>>(method, stream, params);
}

ORV_API int32_t __kuziBRngiAbstract(Stream* stream, int32_t n, void* r) {
    return generate(ring_of<WordRing>(stream), n, static_cast<uint32_t*>(r), AsTheyAre{});
}
ORV_API int32_t __kuzdBRngdAbstract(Stream* stream, int32_t n, double* r, double a, double b) {
    RealRing<double>& ring = ring_of<RealRing<double>>(stream);
    return generate(ring, n, r, ToInterval<double>(ring, a, b));
}
ORV_API int32_t __kuzsBRngsAbstract(Stream* stream, int32_t n, float* r, float a, float b) {
    RealRing<float>& ring = ring_of<RealRing<float>>(stream);
    return generate(ring, n, r, ToInterval<float>(ring, a, b));
}

#ifdef _WIN32
#define ORV_SYMBOL(name) "_" name
#define ORV_EXPORT(name) ".section .drectve\n.ascii \" -export:" name "\"\n.text\n"
#else
#define ORV_SYMBOL(name) name
#define ORV_EXPORT(name) ".type " name ", @function\n"
#endif

#define ORV_WRONG_KERNEL(name)                     \
    __asm__(ORV_EXPORT(name) ".globl " ORV_SYMBOL( \
        name) "\n"                                 \
              ".set " ORV_SYMBOL(name) ", " ORV_SYMBOL("orv_wrong_kernel"))

extern "C" __attribute__((used)) int32_t orv_wrong_kernel() { return AbstractStatusWrongKernel; }

ORV_WRONG_KERNEL("__kuzdBRngiAbstract");
ORV_WRONG_KERNEL("__kuzsBRngiAbstract");
ORV_WRONG_KERNEL("__kuziBRngdAbstract");
ORV_WRONG_KERNEL("__kuzsBRngdAbstract");
ORV_WRONG_KERNEL("__kuziBRngsAbstract");
ORV_WRONG_KERNEL("__kuzdBRngsAbstract");
