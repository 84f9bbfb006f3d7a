// Which instructions a kernel runs, and how often: the kernel is called on 1000 elements in a process that is followed step by
// step. What reports lay beside a measured time is the loop as it was run, whatever its source looks like.
//
// usage: kernel_trace ROW/ACCURACY...     such as dExp/LA
//
// For each: a line "row n runs", n elements in so many runs of the innermost loop, then the addresses of the loop's
// instructions in the library's file, one a line, in order.
#include "vecmath/lines.h"

#include <orv/vecmath_entries.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <map>
#include <string>
#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace orv::bench;

constexpr int32_t n = 1000;

struct Row {
    char type;
    const char *function, *shape;
    const orv_arq_kernel* kernels;
};
#define ROW(type, function, shape) {#type[0], #function, #shape, orv_arq_kernel_##type##function##_ttab},
const Row rows[] = {ORV_VECMATH_ROWS(ROW)};

// The child: a call to warm up, then one between two stops.
void run(const Row& row, orv_arq_kernel kernel, const Line& line) {
    const bool single = row.type == 's' || row.type == 'c';
    const std::vector<float> as = arguments_s(line.range, n, false), bs = arguments_s(line.range, n, true);
    const std::vector<double> ad = arguments_d(line.range, n, false), bd = arguments_d(line.range, n, true);
    std::vector<double> y(2 * n + 64), z(2 * n + 64);
    Arrays arrays = {ad.data(), bd.data(), y.data() + 24, z.data() + 40, nullptr};
    if (single) arrays.a = as.data(), arrays.b = bs.data();
    call(kernel, row.type, row.shape, false, n, arrays);
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGSTOP);
    call(kernel, row.type, row.shape, false, n, arrays);
    raise(SIGSTOP);
}

// How often each address of the library was run.
std::map<unsigned long, int> follow(pid_t child, unsigned long base) {
    std::map<unsigned long, int> counts;
    int status;
    waitpid(child, &status, 0);
    while (ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr) == 0 && waitpid(child, &status, 0) == child &&
           WIFSTOPPED(status) && WSTOPSIG(status) == SIGTRAP) {
        user_regs_struct registers;
        ptrace(PTRACE_GETREGS, child, nullptr, &registers);
        Dl_info place;
        const auto address = static_cast<unsigned long>(registers.eip);
        if (dladdr(reinterpret_cast<void*>(address), &place) &&
            reinterpret_cast<unsigned long>(place.dli_fbase) == base)
            ++counts[address - base];
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return counts;
}

bool trace(const std::string& name) {
    for (const Row& row : rows) {
        const std::string stem = row.type + std::string(row.function) + "/";
        if (name.compare(0, stem.size(), stem) != 0) continue;
        const std::string accuracy = name.substr(stem.size(), 2);
        const orv_arq_kernel kernel = row.kernels[accuracy == "LA" ? 0 : accuracy == "HA" ? 1 : 2];
        const Line* line = find_line(row.type, row.function);
        Dl_info library;
        if (!line || !dladdr(reinterpret_cast<void*>(kernel), &library)) return false;
        const pid_t child = fork();
        if (child == 0) {
            run(row, kernel, *line);
            _exit(0);
        }
        const auto counts = follow(child, reinterpret_cast<unsigned long>(library.dli_fbase));
        int most = 0;
        for (const auto& [address, count] : counts) most = std::max(most, count);
        std::printf("%s %d %d\n", name.c_str(), static_cast<int>(n), most);
        // What runs half as often as the busiest instruction is of the innermost loop.
        for (const auto& [address, count] : counts)
            if (2 * count > most) std::printf("%lx\n", address);
        return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    int failures = 0;
    for (int i = 1; i < argc; ++i) {
        if (trace(argv[i])) continue;
        std::fprintf(stderr, "kernel_trace: no row %s\n", argv[i]);
        ++failures;
    }
    return failures == 0 ? 0 : 1;
}
