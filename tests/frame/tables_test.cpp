// The exported tables and entries: names, order, sharing, cost figures, and what a stub enters.
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

using namespace orv::test;

void* exported(const std::string& name) {
#ifdef _WIN32
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("orv_sse41.dll"), name.c_str()));
#else
    return dlsym(RTLD_DEFAULT, name.c_str());
#endif
}

// All 440 rows in the order of the tables, by name, with what is exported of them.
struct Place {
    std::string name;
    const Row* row;
    const Form* form;
};

std::vector<Place> places() {
    std::vector<Place> all;
    for (const Row& row : math_rows()) all.push_back({row.name(), &row, &row.dense});
    for (const Row& row : move_rows()) all.push_back({row.name(), &row, &row.dense});
    for (const Row& row : math_rows()) all.push_back({row.name() + "I", &row, &row.strided});
    return all;
}

std::vector<std::string> names_of(const Place& place) {
    const bool single = place.row->type == 's' || place.row->type == 'c';
    return {"_arq" + place.name,
            "_arq" + place.name + "_HA",
            "_arq" + place.name + (single ? "_21" : "_50"),
            "_arq" + place.name + (single ? "_11" : "_26"),
            "orv_arq_kernel_" + place.name + "_ttab",
            "orv_arq_kernel_" + place.name + "_ctab"};
}

TEST(Tables, HoldAllRowsInOrder) {
    const std::vector<Place> all = places();
    ASSERT_EQ(all.size(), 440u);
    // One row of every group, at the place that the order gives it.
    const struct {
        size_t index;
        const char* name;
    } known[] = {{0, "sCeil"},    {31, "sSqr"},      {54, "sLogb"},    {55, "dCeil"},        {109, "dLogb"},
                 {110, "cCos"},   {126, "cConj"},    {127, "zCos"},    {144, "cCIS"},        {149, "zArg"},
                 {150, "sDiv"},   {167, "sFmod"},    {168, "dDiv"},    {186, "cDiv"},        {192, "zDiv"},
                 {198, "cPowx"},  {201, "dPowx"},    {202, "sSinCos"}, {206, "sLinearFrac"}, {208, "sPackI"},
                 {209, "dPackI"}, {231, "zUnpackV"}, {232, "sCeilI"},  {439, "dLinearFracI"}};
    for (const auto& [index, name] : known) EXPECT_EQ(all[index].name, name) << index;

    const char* first = reinterpret_cast<const char*>(all[0].form->ttab);
    for (size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(reinterpret_cast<const char*>(all[i].form->ttab) - first, static_cast<ptrdiff_t>(24 * i))
            << all[i].name;
        EXPECT_EQ(reinterpret_cast<const char*>(all[i].form->ctab) - first, static_cast<ptrdiff_t>(24 * i + 12))
            << all[i].name;
    }
}

TEST(Tables, HoldAndExportAllRows) {
    EXPECT_EQ(places().size(), 440u);
    for (const Place& place : places()) {
        for (const std::string& name : names_of(place)) EXPECT_NE(exported(name), nullptr) << name;
        for (int k = 0; k < 3; ++k) EXPECT_NE(place.form->ttab[k], nullptr) << place.name;
    }
}

TEST(Tables, ShareKernelsByTheirPattern) {
    std::set<orv_arq_kernel> kernels;
    for (const Place& place : places()) {
        const orv_arq_kernel* slot = place.form->ttab;
        const Sharing sharing = place.row->sharing;
        EXPECT_EQ(slot[0] == slot[1], sharing == Sharing::ALL || sharing == Sharing::LA_HA) << place.name;
        EXPECT_EQ(slot[0] == slot[2], sharing == Sharing::ALL || sharing == Sharing::LA_EP) << place.name;
        EXPECT_EQ(slot[1] == slot[2], sharing == Sharing::ALL) << place.name;
        std::set<orv_arq_kernel> own(slot, slot + 3);
        for (const orv_arq_kernel kernel : own) EXPECT_TRUE(kernels.insert(kernel).second) << place.name;
    }
}

TEST(Tables, SharingPatternsGiveTheNumberOfKernels) {
    int kernels = 0;
    int each = 0;
    for (const Row& row : math_rows()) {
        kernels += row.sharing == Sharing::ALL ? 2 : row.sharing == Sharing::EACH ? 6 : 4;
        each += row.sharing == Sharing::EACH;
    }
    EXPECT_EQ(kernels + 24, 818);
    EXPECT_EQ(each, 77);
}

TEST(Tables, CarryCostFigures) {
    for (const Place& place : places()) {
        const float* cost = place.form->ctab;
        for (int k = 0; k < 3; ++k) {
            EXPECT_GT(cost[k], 0.0f) << place.name;
            if (place.row->fixed_cost) {
                EXPECT_EQ(cost[k], place.row->cost[k]) << place.name;
            }
            // The strided row shows the figures of its dense row, shared slots one figure.
            EXPECT_EQ(cost[k], place.row->dense.ctab[k]) << place.name;
            for (int other = 0; other < 3; ++other)
                if (place.form->ttab[k] == place.form->ttab[other]) {
                    EXPECT_EQ(cost[k], cost[other]) << place.name;
                }
        }
    }
    for (const Row& row : move_rows()) {
        ASSERT_TRUE(row.fixed_cost);
        for (const float figure : row.cost) EXPECT_EQ(figure, 1111.0f);
    }
}

TEST(Stubs, PlainAndHighAccuracyNameAreOneEntry) {
    for (const Place& place : places())
        EXPECT_EQ(exported("_arq" + place.name), exported("_arq" + place.name + "_HA")) << place.name;
}

// What a stub was made to enter, told by a kernel put into its slot.
int entered;
template <int Slot>
void note_slot() {
    entered = Slot;
}

TEST(Stubs, EnterTheSlotOfTheirNameAtEveryCall) {
    for (const Place& place : places()) {
        orv_arq_kernel* slots = const_cast<orv_arq_kernel*>(place.form->ttab);
        orv_arq_kernel kept[3];
        std::copy_n(slots, 3, kept);
        slots[0] = note_slot<0>;
        slots[1] = note_slot<1>;
        slots[2] = note_slot<2>;
        for (const uint32_t accuracy : {ORV_MODE_LA, ORV_MODE_HA, ORV_MODE_EP}) {
            const uint32_t before = _arqSetMode(accuracy);
            for (int k = 0; k < 3; ++k) {
                entered = -1;
                place.form->entries[k]();
                EXPECT_EQ(entered, k) << place.name;
            }
            _arqSetMode(before);
        }
        std::copy_n(kept, 3, slots);
    }
}

TEST(Tier, IsSse41) { EXPECT_EQ(dll_cpu_version(), 6); }

}  // namespace
