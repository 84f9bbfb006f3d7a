// Abstract streams over rings whose callback counts upward, in portions of every kind.
#include "streams/streams.h"

#include <algorithm>

using namespace orv::test;

namespace {

enum class Manner { All, Least, One, Hostile, Nothing, Negative, TooMany };

// What the callback knows: C callbacks carry no context.
Manner manner;
int calls, next_number;
std::vector<int> asked_least;

template <class Element>
int32_t refill(Stream*, int32_t* size, void* buffer, int32_t* least, int32_t* most, int32_t* index) {
    ++calls;
    asked_least.push_back(*least);
    const int32_t n = manner == Manner::Least ? *least : manner == Manner::One ? 1 : *most;
    if (manner == Manner::Nothing) return 0;
    if (manner == Manner::Negative) return -3;
    if (manner == Manner::TooMany) return *most + 1;
    for (int32_t k = 0; k < n; ++k)
        static_cast<Element*>(buffer)[(*index + k) % *size] = static_cast<Element>(next_number++);
    if (manner == Manner::Hostile) *size = -7, *least = 1 << 30, *most = 1 << 30, *index = -5;
    return n;
}

void begin(Manner how) {
    manner = how;
    calls = next_number = 0;
    asked_least.clear();
}

constexpr int32_t size = 10;

// A stream of each kind behind one face: the numbers that it hands out as integers.
template <class Element>
struct Ring {
    std::vector<Element> buffer = std::vector<Element>(size);
    Stream* stream = nullptr;

    Ring() {
        if constexpr (std::is_same_v<Element, uint32_t>)
            EXPECT_EQ(__kuziNewAbstractStream(&stream, size, buffer.data(), refill<Element>), StatusOk);
        else if constexpr (std::is_same_v<Element, double>)
            EXPECT_EQ(__kuzdNewAbstractStream(&stream, size, buffer.data(), 0, 1, refill<Element>), StatusOk);
        else
            EXPECT_EQ(__kuzsNewAbstractStream(&stream, size, buffer.data(), 0, 1, refill<Element>), StatusOk);
    }
    ~Ring() { __kuzDeleteStream(&stream); }
    Ring(const Ring&) = delete;
    Ring& operator=(const Ring&) = delete;
    int32_t draw(int32_t n, Element* r) {
        if constexpr (std::is_same_v<Element, uint32_t>)
            return __kuziBRngiAbstract(stream, n, r);
        else if constexpr (std::is_same_v<Element, double>)
            return __kuzdBRngdAbstract(stream, n, r, 0, 1);
        else
            return __kuzsBRngsAbstract(stream, n, r, 0, 1);
    }
    const int32_t* position() const { return reinterpret_cast<const int32_t*>(stream + 1); }  // size, head, free
};

template <class Element>
struct Abstract : testing::Test {};
using Elements = testing::Types<uint32_t, float, double>;
TYPED_TEST_SUITE(Abstract, Elements);

TYPED_TEST(Abstract, NumbersInOrderWhateverThePortions) {
    for (const Manner how : {Manner::All, Manner::Least, Manner::One, Manner::Hostile}) {
        begin(how);
        Ring<TypeParam> ring;
        int expected = 0;
        for (const int32_t n : {1, 3, 0, 3 * size + 1, size, 2, size - 1, 7, 100, 4, 4}) {
            Guarded<TypeParam> r(n);
            ASSERT_EQ(ring.draw(n, r.data()), StatusOk);
            ASSERT_TRUE(r.sentinels_stand());
            for (int32_t k = 0; k < n; ++k) ASSERT_EQ(r.data()[k], static_cast<TypeParam>(expected++)) << n << " " << k;
        }
        EXPECT_TRUE(std::all_of(asked_least.begin(), asked_least.end(), [](int n) { return n >= 1 && n <= size; }));
        const int portion = how == Manner::One ? 1 : size;
        if (how != Manner::Least) {
            EXPECT_EQ(calls, (expected + portion - 1) / portion);
        }
    }
}

TYPED_TEST(Abstract, ARequestToTheRingsEndBringsTheHeadToItsBeginning) {
    begin(Manner::All);
    Ring<TypeParam> ring;
    EXPECT_EQ(ring.position()[2], size) << "a fresh ring counts as empty";
    TypeParam r[size];
    ring.draw(3, r);
    EXPECT_EQ(ring.position()[1], 3);
    ring.draw(size - 3, r);
    EXPECT_EQ(ring.position()[1], 0);
    EXPECT_EQ(calls, 1);
}

TYPED_TEST(Abstract, BadCallbacksLeaveTheStreamAsItWas) {
    const struct {
        Manner how;
        int32_t status;
    } cases[] = {{Manner::Nothing, AbstractStatusNoNumbers},
                 {Manner::Negative, AbstractStatusBadUpdate},
                 {Manner::TooMany, AbstractStatusBadUpdate}};
    for (const auto& c : cases) {
        begin(Manner::All);
        Ring<TypeParam> ring;
        TypeParam r[4 * size] = {};
        ring.draw(4, r);
        manner = c.how;
        EXPECT_EQ(ring.draw(9, r + 4), c.status);
        EXPECT_EQ(r[9], TypeParam(9)) << "what there was has been handed out";
        manner = Manner::All;
        next_number = 10;
        ASSERT_EQ(ring.draw(12, r), StatusOk);
        for (int k = 0; k < 12; ++k) EXPECT_EQ(r[k], TypeParam(4 + k));
    }
}

TEST(AbstractIntervals, AreMapped) {
    begin(Manner::All);
    std::vector<double> doubles(size);
    std::vector<float> floats(size);
    Stream *d, *s;
    ASSERT_EQ(__kuzdNewAbstractStream(&d, size, doubles.data(), -2, 30, refill<double>), StatusOk);
    ASSERT_EQ(__kuzsNewAbstractStream(&s, size, floats.data(), -2, 30, refill<float>), StatusOk);
    double rd[25];
    float rs[25];
    ASSERT_EQ(_kuzdRngUniform(0, d, 25, rd, 5, 13), StatusOk);
    next_number = 0;
    ASSERT_EQ(_kuzsRngUniform(0, s, 25, rs, 5, 13), StatusOk);
    for (int k = 0; k < 25; ++k) {
        EXPECT_EQ(rd[k], (k + 2) * 0.25 + 5);
        EXPECT_EQ(rs[k], static_cast<float>((k + 2) * 0.25 + 5));
    }
    __kuzDeleteStream(&d);
    __kuzDeleteStream(&s);
}

TEST(AbstractImages, PositionsThatCannotBe) {
    const struct {
        int32_t head, free;
        bool sound;
    } cases[] = {{9, 0, true}, {0, 10, true}, {10, 0, false}, {-1, 0, false}, {0, 11, false}, {0, -1, false}};
    for (const auto& c : cases) {
        begin(Manner::All);
        Ring<float> ring;
        std::vector<char> image(static_cast<size_t>(__kuzGetStreamSize(ring.stream)));
        __kuzSaveStreamM(ring.stream, image.data());
        std::memcpy(&image[28], &c.head, 4);
        std::memcpy(&image[32], &c.free, 4);
        Stream* loaded = nullptr;
        EXPECT_EQ(__kuzLoadStreamM(&loaded, image.data()), c.sound ? StatusOk : StreamStatusBadImage);
        if (loaded) __kuzDeleteStream(&loaded);
    }
}

TEST(AbstractStreams, NoRingAndNoJumps) {
    begin(Manner::All);
    Ring<double> ring;
    double r = 7;
    const uint64_t none = 0;
    EXPECT_EQ(__kuzLeapfrogStream(ring.stream, 0, 2), BrngStatusNoLeapfrog);
    EXPECT_EQ(__kuzSkipAheadStream(ring.stream, 1), BrngStatusNoSkipAhead);
    EXPECT_EQ(__kuzSkipAheadStreamEx(ring.stream, 1, &none), BrngStatusNoSkipAheadEx);
    EXPECT_EQ(__RegBrngsNew[10].initStream(7, ring.stream, 0, nullptr), StatusBadMethod);
    std::memset(reinterpret_cast<char*>(ring.stream) + 48, 0, 4);  // the ring's address
    EXPECT_EQ(ring.draw(1, &r), StatusNullFunction);
    EXPECT_EQ(r, 7);
}

}  // namespace
