// Reporting, through the library's own reporters and loops, built into this program with a kernel of the test's own.
#include "frame/report_kernel.h"
#include "support/control_state.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace orv;
using test::x87_control;
using test::x87_flags;
using Probe = test::ProbeKernel<double>;

void dense(const std::vector<double>& a, std::vector<double>& y) {
    frame::map<Probe>("vProbe", static_cast<int32_t>(a.size()), frame::to(frame::Dense{y.data()}),
                      frame::Dense{a.data()});
}

// Each test runs on a thread of its own, with the standard mode and a status of 0.
template <class Body>
void on_new_thread(Body body) {
    std::thread(body).join();
}

std::vector<ArqErrorContext> reports;
int32_t callback_result;
double replacement;
bool replaces;

int32_t note(ArqErrorContext* context) {
    reports.push_back(*context);
    if (replaces) context->res1 = replacement;
    return callback_result;
}

void reset_notes() {
    reports.clear();
    callback_result = 0;
    replaces = false;
}

void check_order(bool in_place) {
    on_new_thread([=] {
        reset_notes();
        _arqSetErrorCallBack(note);
        std::vector<double> a(70, 2.0), y(70);
        const std::vector<int> bad = {0, 1, 7, 8, 31, 32, 33, 63, 64, 67, 69};
        for (size_t i = 0; i < bad.size(); ++i)
            a[static_cast<size_t>(bad[i])] = i % 2 ? -1.0 - static_cast<double>(i) : 0.0;
        if (in_place) y = a;
        dense(in_place ? y : a, y);
        ASSERT_EQ(reports.size(), bad.size());
        for (size_t i = 0; i < bad.size(); ++i) {
            const ArqErrorContext& report = reports[i];
            EXPECT_EQ(report.index, bad[i]);
            EXPECT_EQ(report.code, i % 2 ? ORV_STATUS_DOMAIN : ORV_STATUS_SINGULARITY);
            EXPECT_EQ(report.arg1, a[static_cast<size_t>(bad[i])]);
            EXPECT_EQ(report.arg2, report.arg1);
            EXPECT_EQ(report.res1, i % 2 ? -7.0 : 99.0);
            EXPECT_EQ(report.res2, report.res1);
            EXPECT_STREQ(report.func_name, "vProbe");
            EXPECT_EQ(report.func_name_len, 6);
        }
        for (size_t i = 0; i < a.size(); ++i) EXPECT_EQ(y[i], a[i] == 2.0 ? 0.5 : a[i] == 0.0 ? 99.0 : -7.0) << i;
        EXPECT_EQ(_arqGetErrStatus(),
                  ORV_STATUS_DOMAIN == reports.back().code ? ORV_STATUS_DOMAIN : ORV_STATUS_SINGULARITY);
    });
}

TEST(Report, ComesInTheOrderOfTheElements) { check_order(false); }

// The result has taken the argument's place; the argument is reported all the same.
TEST(Report, InPlaceHasTheArgument) { check_order(true); }

TEST(Report, StridesLeadToTheElement) {
    on_new_thread([] {
        reset_notes();
        _arqSetErrorCallBack(note);
        std::vector<double> a(60, 2.0), y(60, 5.0);
        a[3 * 11] = 0.0;
        frame::map<Probe>("vProbe", 20, frame::to(frame::Strided{y.data() + 38, -2}), frame::Strided{a.data(), 3});
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports[0].index, 11);
        EXPECT_EQ(reports[0].arg1, 0.0);
        EXPECT_EQ(reports[0].res1, 99.0);
        EXPECT_EQ(y[38 - 2 * 11], 99.0);
        EXPECT_EQ(y[1], 5.0);
    });
}

TEST(Callback, DecidesOverResultAndDefaultActions) {
    const struct {
        int32_t returned;
        bool changes;
        double result;
        int error_number;
    } cases[] = {{0, false, 99.0, 34}, {0, true, 1.25, 34}, {1, true, 99.0, 0}, {-1, false, 99.0, 0}};
    for (const auto& [returned, changes, result, error_number] : cases)
        on_new_thread([&, returned = returned, changes = changes, result = result, error_number = error_number] {
            reset_notes();
            callback_result = returned;
            replaces = changes;
            replacement = 1.25;
            _arqSetErrorCallBack(note);
            std::vector<double> a(11, 4.0), y(11);
            a[2] = a[10] = 0.0;
            errno = 0;
            __asm__ volatile("fnclex");
            dense(a, y);
            const uint16_t flags = x87_flags();
            const int seen = errno;
            __asm__ volatile("fnclex");
            EXPECT_EQ(reports.size(), 2u);
            EXPECT_EQ(y[2], result);
            EXPECT_EQ(y[10], result);
            EXPECT_EQ(y[9], 0.25);
            EXPECT_EQ(seen, error_number);
            EXPECT_EQ(flags, error_number ? 0x04 : 0);
        });
}

TEST(Modes, DecideWhatAReportDoes) {
    constexpr int with_callback = 1, with_status = 2, with_errno = 4, with_flag = 8;
    const struct {
        uint32_t mode;
        int effects;
    } cases[] = {
        {ORV_MODE_ERRMODE_NOERR, 0},
        {ORV_MODE_ERRMODE_IGNORE, with_status},
        {ORV_MODE_ERRMODE_ERRNO, with_status | with_errno},
        {ORV_MODE_ERRMODE_EXCEPT, with_status | with_flag},
        {ORV_MODE_ERRMODE_CALLBACK, with_status | with_callback},
        {ORV_MODE_ERRMODE_DEFAULT, with_status | with_callback | with_errno | with_flag},
        {ORV_MODE_ERRMODE_NOERR | ORV_MODE_ERRMODE_ERRNO, with_status | with_errno},
        {ORV_MODE_ERRMODE_IGNORE | ORV_MODE_ERRMODE_CALLBACK, with_status | with_callback},
    };
    for (const auto& [mode, effects] : cases)
        on_new_thread([&, mode = mode, effects = effects] {
            reset_notes();
            _arqSetErrorCallBack(note);
            _arqSetMode(mode);
            std::vector<double> a(9, -1.0), y(9);
            errno = 0;
            __asm__ volatile("fnclex");
            dense(a, y);
            const uint16_t flags = x87_flags();
            const int seen = errno;
            __asm__ volatile("fnclex");
            EXPECT_EQ(!reports.empty(), (effects & with_callback) != 0) << std::hex << mode;
            EXPECT_EQ(_arqGetErrStatus(), effects & with_status ? ORV_STATUS_DOMAIN : 0) << std::hex << mode;
            EXPECT_EQ(seen, effects & with_errno ? 33 : 0) << std::hex << mode;
            EXPECT_EQ(flags, effects & with_flag ? 0x01 : 0) << std::hex << mode;
            EXPECT_EQ(y[4], -7.0);
        });
}

TEST(Actions, FollowTheStatus) {
    const struct {
        int32_t status;
        int error_number;
        uint16_t flag;
    } cases[] = {{1, 33, 0x01}, {2, 34, 0x04}, {3, 34, 0x08}, {4, 34, 0x10},
                 {-1, 22, 0},   {-2, 13, 0},   {5, 14, 0},    {-17, 14, 0}};
    for (const auto& [status, error_number, flag] : cases)
        on_new_thread([&, status = status, error_number = error_number, flag = flag] {
            const double a[1] = {3};
            double y[1] = {4};
            errno = 0;
            __asm__ volatile("fnclex");
            frame::ReportErrorD(status, 0, a, a, y, y, "vdProbe");
            const uint16_t flags = x87_flags();
            const int seen = errno;
            __asm__ volatile("fnclex");
            EXPECT_EQ(seen, error_number) << status;
            EXPECT_EQ(flags, flag) << status;
            EXPECT_EQ(_arqGetErrStatus(), status);
            EXPECT_EQ(y[0], 4);
        });
}

// A report leaves its flag set whatever it finds, also where another has been before it.
TEST(Actions, FlagsGatherFromReportToReport) {
    on_new_thread([] {
        const double a[1] = {3};
        double y[1] = {4};
        const auto flags_after = [&](int32_t status) {
            frame::ReportErrorD(status, 0, a, a, y, y, "vdProbe");
            return x87_flags();
        };
        __asm__ volatile("fnclex");
        EXPECT_EQ(flags_after(2), 0x04);
        EXPECT_EQ(flags_after(2), 0x04);
        EXPECT_EQ(flags_after(3), 0x0C);
        __asm__ volatile("fnclex");
        EXPECT_EQ(flags_after(3), 0x08);
    });
}

std::string messages_of(const ArqErrorContext& context) {
    testing::internal::CaptureStderr();
    on_new_thread([&] {
        _arqSetMode(ORV_MODE_ERRMODE_STDERR);
        frame::ReportDefaultActions(&context);
    });
    return testing::internal::GetCapturedStderr();
}

// The values that the lines of a message text end in.
std::vector<double> values_in(const std::string& text) {
    std::vector<double> values;
    for (size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        const std::string line = text.substr(at, end - at);
        const size_t space = line.find_last_of(' ');
        if (line.find("element 12") != std::string::npos) values.push_back(std::stod(line.substr(space)));
    }
    return values;
}

TEST(Messages, NameTheValuesThatCount) {
    const double nan = std::nan("");
    const struct {
        double arg1, arg2, res1, res2;
        std::vector<double> values;
    } cases[] = {
        {1, 1, 2, 2, {1, 2}},    {1, 0, 2, 2, {1, 2}},  // a second value of zero does not count
        {1, 3, 2, 2, {1, 3, 2}}, {1, 1, 2, 5, {1, 2, 5}}, {1, 3, 2, 5, {1, 3, 2, 5}},
    };
    for (const auto& [arg1, arg2, res1, res2, values] : cases) {
        ArqErrorContext context = {};
        context.code = ORV_STATUS_DOMAIN;
        context.index = 12;
        std::strcpy(context.func_name, "vdProbe");
        context.arg1 = arg1, context.arg2 = arg2, context.res1 = res1, context.res2 = res2;
        const std::string text = messages_of(context);
        EXPECT_NE(text.find("vdProbe"), std::string::npos);
        EXPECT_EQ(values_in(text), values) << text;
        context.arg2 = nan;
        EXPECT_EQ(values_in(messages_of(context)).size(), values.size() + (arg1 == arg2 || arg2 == 0))
            << "a NaN counts";
    }
    ArqErrorContext context = {};
    std::strcpy(context.func_name, "vdProbe");
    context.index = 12;
    EXPECT_EQ(messages_of(context), "") << "status 0";
    for (const int32_t status : {-1, -2}) {
        context.code = status;
        const std::string text = messages_of(context);
        EXPECT_NE(text.find("vdProbe"), std::string::npos);
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    }
}

TEST(WholeCalls, AreReportedWithoutElements) {
    on_new_thread([] {
        reset_notes();
        _arqSetErrorCallBack(note);
        frame::ReportErrorS(-1, 3, nullptr, nullptr, nullptr, nullptr, "vsProbe");
        frame::ReportErrorZI(-2, 1, nullptr, 1, nullptr, 1, nullptr, 1, nullptr, 1, "vzProbe");
        ASSERT_EQ(reports.size(), 2u);
        EXPECT_EQ(reports[0].index, 3);
        EXPECT_STREQ(reports[1].func_name, "vzProbe");
        EXPECT_EQ(_arqGetErrStatus(), -2);
    });
}

TEST(Report, CountsFromTheWholeVector) {
    on_new_thread([] {
        reset_notes();
        _arqSetErrorCallBack(note);
        std::vector<double> a(100, 2.0), y(100);
        a[90] = 0.0;
        EXPECT_EQ(_arqSetInterfInputVectorPointer(a.data()), a.data());
        frame::map<Probe>("vProbe", 20, frame::to(frame::Dense{y.data() + 80}), frame::Dense{a.data() + 80});
        const std::vector<orv_complex_d> z(10);
        std::vector<orv_complex_d> w(10);
        _arqSetInterfInputVectorPointer(z.data());
        frame::ReportErrorZ(1, 2, z.data() + 5, z.data() + 5, w.data() + 5, w.data() + 5, "vzProbe");
        _arqSetInterfInputVectorPointer(nullptr);
        dense(a, y);
        ASSERT_EQ(reports.size(), 3u);
        EXPECT_EQ(reports[0].index, 90);
        EXPECT_EQ(reports[0].arg1, 0.0);
        EXPECT_EQ(reports[1].index, 7);
        EXPECT_EQ(reports[2].index, 90);
    });
}

TEST(Report, CutsLongNames) {
    on_new_thread([] {
        reset_notes();
        _arqSetErrorCallBack(note);
        const double a[1] = {1};
        double y[1] = {1};
        for (const size_t length : {46u, 47u, 48u, 300u})
            frame::ReportErrorD(1, 0, a, a, y, y, std::string(length, 'x').c_str());
        ASSERT_EQ(reports.size(), 4u);
        const int32_t expected[] = {46, 47, 47, 47};
        for (size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(reports[i].func_name_len, expected[i]);
            EXPECT_EQ(std::strlen(reports[i].func_name), static_cast<size_t>(expected[i]));
        }
    });
}

TEST(Report, WidensAndNarrowsEveryKind) {
    on_new_thread([] {
        reset_notes();
        replaces = true;
        replacement = 0.1;
        _arqSetErrorCallBack(note);
        const float s[3] = {1, 2, 3};
        float sy[3] = {4, 5, 6};
        frame::ReportErrorS(2, 1, s, s + 1, sy, sy, "vsProbe");
        EXPECT_EQ(reports.back().arg1, 2.0);
        EXPECT_EQ(reports.back().arg2, 3.0);
        EXPECT_EQ(sy[1], 0.1f);

        const orv_complex_s c[3] = {{1, 2}, {3, 4}, {5, 6}};
        orv_complex_s cy[3] = {{7, 8}, {9, 10}, {11, 12}};
        frame::ReportErrorCI(2, 1, c, 2, c, 1, cy, 2, cy, 1, "vcProbe");
        EXPECT_EQ(reports.back().arg1, 5.0);
        EXPECT_EQ(reports.back().arg1_im, 6.0);
        EXPECT_EQ(reports.back().arg2_im, 4.0);
        EXPECT_EQ(reports.back().res1_im, 12.0);
        EXPECT_EQ(reports.back().res2_im, 10.0);
        EXPECT_EQ(cy[2].re, 0.1f);
        EXPECT_EQ(cy[2].im, 12.0f);

        // Two results at different places are both written back, the first last.
        const double a[2] = {1, 2};
        double y[2] = {3, 4}, z[2] = {5, 6};
        frame::ReportErrorD(3, 1, a, a, y, z, "vdProbe");
        EXPECT_EQ(y[1], 0.1);
        EXPECT_EQ(z[1], 6.0);
    });
}

TEST(Exception, LeavesFlagAndMasksAndKeepsThePrecision) {
    on_new_thread([] {
        constexpr uint16_t single_precision = 0x007F;
        test::set_x87_control(single_precision);
        _arqSetMode(ORV_MODE_ERRMODE_EXCEPT);
        const double a[1] = {1};
        double y[1] = {1};
        frame::ReportErrorD(3, 0, a, a, y, y, "vdProbe");
        const uint16_t control = x87_control(), flags = x87_flags();
        __asm__ volatile("fninit");
        EXPECT_EQ(control, single_precision);
        EXPECT_EQ(flags, 0x08);
    });
}

void report_with_traps(uint32_t traps, int32_t status) {
    _arqSetMode(ORV_MODE_ERRMODE_EXCEPT | traps);
    const double a[1] = {1};
    double y[1] = {1};
    frame::ReportErrorD(status, 0, a, a, y, y, "vdProbe");
    __asm__ volatile("fnclex");
}

TEST(ExceptionDeathTest, TrapsWhatTheModeTraps) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const struct {
        uint32_t trap;
        int32_t status;
    } cases[] = {{ORV_MODE_TRAP_INVALID, 1},
                 {ORV_MODE_TRAP_DIVBYZERO, 2},
                 {ORV_MODE_TRAP_OVERFLOW, 3},
                 {ORV_MODE_TRAP_UNDERFLOW, 4}};
    for (const auto& [trap, status] : cases) {
        EXPECT_DEATH(report_with_traps(trap, status), "");
        for (const auto& other : cases)
            if (other.status != status) on_new_thread([&, trap = trap] { report_with_traps(trap, other.status); });
    }
}

TEST(Status, OperationsReturnTheOneBefore) {
    on_new_thread([] {
        EXPECT_EQ(_arqSetErrStatus(3), 0);
        EXPECT_EQ(orv_arq_kernel_SetErrStatus(-5), 3);
        EXPECT_EQ(_arqGetErrStatus(), -5);
        EXPECT_EQ(orv_arq_kernel_ClearErrStatus(), -5);
        EXPECT_EQ(_arqClearErrStatus(), 0);
        std::vector<double> good(5, 1.0), y(5);
        _arqSetErrStatus(2);
        dense(good, y);
        EXPECT_EQ(orv_arq_kernel_GetErrStatus(), 2) << "a call without errors keeps the status";
    });
}

TEST(Callback, FollowsIntoTheMode) {
    on_new_thread([] {
        EXPECT_EQ(_arqGetErrorCallBack(), nullptr);
        EXPECT_EQ(_arqSetErrorCallBack(note), nullptr);
        EXPECT_EQ(orv_arq_kernel_GetErrorCallBack(), note);
        EXPECT_EQ(_arqGetMode(), 0x1A02u);
        EXPECT_EQ(_arqClearErrorCallBack(), note);
        EXPECT_EQ(_arqGetMode(), 0x0A02u);
        EXPECT_EQ(orv_arq_kernel_SetErrorCallBack(note), nullptr);
        EXPECT_EQ(_arqGetMode(), 0x1A02u);
        _arqSetMode(ORV_MODE_ERRMODE_CALLBACK);
        _arqSetErrorCallBack(nullptr);
        EXPECT_EQ(_arqGetMode(), 0x1002u) << "the only error mode stays";
        std::vector<double> bad(3, 0.0), y(3);
        dense(bad, y);
        EXPECT_EQ(_arqGetErrStatus(), 2) << "an absent callback is passed over";
    });
}

TEST(Threads, ReportByTheirOwnModes) {
    const auto worker = [](uint32_t mode, int32_t expected) {
        for (int round = 0; round < 2000; ++round) {
            _arqSetMode(mode);
            _arqClearErrStatus();
            std::vector<double> a(12, 0.0), y(12);
            dense(a, y);
            ASSERT_EQ(_arqGetErrStatus(), expected);
        }
    };
    std::thread silent(worker, uint32_t{ORV_MODE_ERRMODE_NOERR}, 0);
    std::thread ignoring(worker, uint32_t{ORV_MODE_ERRMODE_IGNORE}, 2);
    silent.join();
    ignoring.join();
}

}  // namespace
