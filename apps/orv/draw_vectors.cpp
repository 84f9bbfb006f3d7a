// `orv draw gaussian-mv`: normal vectors with a covariance matrix from a file.
#include "draw.h"
#include "failure.h"
#include "options.h"

#include <cmath>
#include <memory>

namespace orv::command {

namespace {

struct Vectors {
    std::string covariance, method = "box-muller";
    std::vector<double> means;
    std::string generator = "PHILOX4X32X10";
    std::vector<uint32_t> seed = {1};
    int64_t n = 10;
    std::string output;
};

// The rows of the file, one after another.
std::vector<double> read_matrix(const std::string& file, size_t& order) {
    std::vector<double> matrix;
    std::vector<size_t> columns;
    const auto begin = [&](const Head& head) {
        for (size_t column = 0; column < head.width; ++column) columns.push_back(column);
    };
    const auto take = [&](const Head& head, const Row& row) {
        std::vector<double> values;
        if (!read_numbers(head, row, columns, values)) return false;
        matrix.insert(matrix.end(), values.begin(), values.end());
        return true;
    };
    read_table(file, Format{}, begin, take);
    order = columns.size();
    if (order == 0 || matrix.size() != order * order) fail(file + ": a covariance matrix has as many rows as columns");
    for (size_t i = 0; i < order; ++i)
        for (size_t j = 0; j < i; ++j)
            if (matrix[i * order + j] != matrix[j * order + i])
                fail(file + ": not symmetric in row " + std::to_string(i + 1) + ", column " + std::to_string(j + 1));
    return matrix;
}

// The lower triangular factor by Cholesky, in place of the lower triangle.
void factorise(std::vector<double>& matrix, size_t order, const std::string& file) {
    for (size_t j = 0; j < order; ++j)
        for (size_t i = j; i < order; ++i) {
            double rest = matrix[i * order + j];
            for (size_t k = 0; k < j; ++k) rest -= matrix[i * order + k] * matrix[j * order + k];
            if (i == j && !(rest > 0 && std::isfinite(rest))) fail(file + ": not positive definite");
            matrix[i * order + j] = i == j ? std::sqrt(rest) : rest / matrix[j * order + j];
        }
}

void draw_vectors(const Vectors& request, int32_t method) {
    constexpr size_t most_dimensions = 10000;
    Output lines(request.output);
    size_t order;
    std::vector<double> factor = read_matrix(request.covariance, order);
    if (order > most_dimensions) fail(request.covariance + ": more than 10000 columns");
    factorise(factor, order, request.covariance);
    std::vector<double> means = request.means;
    if (means.empty()) means.resize(order);
    if (means.size() != order) fail("--mean wants as many numbers as --cov has columns");
    const StreamHandle stream = make_stream(request.generator, request.seed);
    const int64_t block = std::max<int64_t>(1, (1 << 14) / static_cast<int64_t>(order));
    std::vector<double> vectors(static_cast<size_t>(block) * order);
    std::string text;
    Progress progress = start_progress(request.n);
    for (int64_t done = 0; done < request.n;) {
        const int64_t count = std::min(block, request.n - done);
        require(_kuzdRngGaussianMV(method, stream.get(), static_cast<int32_t>(count), vectors.data(),
                                   static_cast<int32_t>(order), MatrixStorageFull, means.data(), factor.data()),
                "draw");
        for (size_t i = 0; i < static_cast<size_t>(count) * order; ++i) {
            append_number(text, vectors[i]);
            text += (i + 1) % order == 0 ? '\n' : ',';
        }
        write(lines, text);
        text.clear();
        done += count;
        tell_progress(progress, done, std::to_string(done) + " of " + std::to_string(request.n) + " vectors");
    }
    end_progress(progress);
    finish(lines);
}

}  // namespace

void add_draw_vectors(CLI::App& draw) {
    const auto request = std::make_shared<Vectors>();
    CLI::App* vectors = draw.add_subcommand("gaussian-mv", "Normal vectors with a covariance matrix, one a line");
    vectors->add_option("--cov", request->covariance, "the CSV file of the covariance matrix")->required();
    vectors->add_option("--mean", request->means, "the means; 0 if not given")->delimiter(',');
    const std::vector<std::string> methods = {"box-muller", "paired", "inverse"};
    vectors->add_option("--method", request->method, "how the normal numbers are made")
        ->check(CLI::IsMember(methods))
        ->capture_default_str();
    vectors->add_option("--brng", request->generator, "the generator, or generator:member")->capture_default_str();
    vectors->add_option("--seed", request->seed, "32-bit seed words")->delimiter(',')->capture_default_str();
    add_count(*vectors, "--n", request->n, 1, int64_t{1} << 53, "how many vectors");
    vectors->add_option("--output", request->output, "the file to write; standard output if not given");
    vectors->callback([request, methods] {
        const auto place = std::find(methods.begin(), methods.end(), request->method);
        draw_vectors(*request, static_cast<int32_t>(place - methods.begin()));
    });
}

}  // namespace orv::command
