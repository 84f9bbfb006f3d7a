// Writes the measured accuracy of every kernel as a page: accuracy_report [--effort E] [--sweep FOLDER] [FUNCTION...].
//
// With --sweep the `s` functions of one input are measured over all floats as well, which takes minutes a function. What is
// done of it is kept in the folder, and a later run goes on from there.
#include "accuracy/page.h"
#include "accuracy/sweep.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace {

using namespace orv::accuracy;

using Jobs = std::vector<std::function<void()>>;

void run_side_by_side(const Jobs& jobs) {
    std::atomic<size_t> next = 0;
    std::vector<std::thread> threads(std::max(1u, std::thread::hardware_concurrency()));
    for (std::thread& thread : threads)
        thread = std::thread([&] {
            for (size_t i; (i = next++) < jobs.size();) jobs[i]();
        });
    for (std::thread& thread : threads) thread.join();
}

// ---- The sweep: a file a function, a line a piece and kernel --------------------------------------------------------

struct Sweep {
    std::vector<const Kernel*> of_function;
    std::string file;
    std::vector<std::vector<Worst>> found;  // by piece; empty where that is still to do
    std::mutex writing;

    Sweep(std::vector<const Kernel*> judged, const std::string& folder)
        : of_function(std::move(judged)), file(folder + "/s" + of_function[0]->name), found(pieces) {
        std::FILE* in = std::fopen(file.c_str(), "r");
        if (!in) return;
        for (char line[256]; std::fgets(line, sizeof line, in);) {
            char* rest = line;
            const long piece = std::strtol(rest, &rest, 10), kernel = std::strtol(rest, &rest, 10);
            Worst w;
            for (double* field : {&w.ulp, &w.at[0], &w.relative, &w.subnormal_ulp, &w.subnormal_at[0]})
                *field = std::strtod(rest, &rest);
            char* end;
            w.count = std::strtoll(rest, &end, 10);
            if (end == rest || *end != '\n' || piece < 0 || piece >= pieces || kernel < 0) continue;
            std::vector<Worst>& of_piece = found[static_cast<size_t>(piece)];
            if (of_piece.size() == static_cast<size_t>(kernel)) of_piece.push_back(w);
        }
        std::fclose(in);
        for (std::vector<Worst>& of_piece : found)
            if (of_piece.size() != of_function.size()) of_piece.clear();
    }

    void work(int piece) {
        const std::vector<Worst> worst = sweep_piece(of_function, piece);
        const std::lock_guard lock(writing);
        found[static_cast<size_t>(piece)] = worst;
        std::FILE* out = std::fopen(file.c_str(), "a");
        if (!out) {
            std::fprintf(stderr, "accuracy_report: %s cannot be written\n", file.c_str());
            std::exit(1);
        }
        for (size_t k = 0; k < worst.size(); ++k) {
            const Worst& w = worst[k];
            std::fprintf(out, "%d %d %a %a %a %a %a %lld\n", piece, static_cast<int>(k), w.ulp, w.at[0], w.relative,
                         w.subnormal_ulp, w.subnormal_at[0], static_cast<long long>(w.count));
        }
        std::fclose(out);
    }
};

[[noreturn]] void refuse() {
    std::fputs("accuracy_report: usage: accuracy_report [--effort E] [--sweep FOLDER] [FUNCTION...]\n", stderr);
    std::exit(2);
}

}  // namespace

int main(int argc, char** argv) {
    double effort = 1;
    std::string folder;
    std::vector<std::string> only;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--effort" && i + 1 < argc)
            effort = std::strtod(argv[++i], nullptr);
        else if (word == "--sweep" && i + 1 < argc)
            folder = argv[++i];
        else if (word[0] == '-')
            refuse();
        else
            only.push_back(word);
    }
    if (!(effort > 0)) refuse();
    const auto wanted = [&](const Kernel& kernel) {
        return only.empty() || std::find(only.begin(), only.end(), kernel.name) != only.end();
    };

    std::vector<Line> lines;
    for (const Kernel& kernel : kernels())
        if (wanted(kernel)) lines.push_back({&kernel, {}});
    Jobs jobs;
    for (Line& line : lines) jobs.push_back([&line, effort] { line.worst = hunt(*line.kernel, effort); });
    run_side_by_side(jobs);

    std::vector<std::unique_ptr<Sweep>> sweeps;
    if (!folder.empty()) {
        jobs.clear();
        for (const std::vector<const Kernel*>& of_function : sweepable()) {
            if (!wanted(*of_function[0])) continue;
            sweeps.push_back(std::make_unique<Sweep>(of_function, folder));
            for (int piece = 0; piece < pieces; ++piece)
                if (sweeps.back()->found[static_cast<size_t>(piece)].empty())
                    jobs.push_back([sweep = sweeps.back().get(), piece] { sweep->work(piece); });
        }
        run_side_by_side(jobs);
    }
    for (const auto& sweep : sweeps)
        for (size_t k = 0; k < sweep->of_function.size(); ++k)
            for (Line& line : lines) {
                if (line.kernel != sweep->of_function[k]) continue;
                for (const std::vector<Worst>& of_piece : sweep->found) join(line.worst, of_piece[k]);
                line.swept = true;
            }

    write_page(lines);
}
