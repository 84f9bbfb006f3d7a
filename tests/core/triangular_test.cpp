// Products with triangular matrices, in full and packed storage and with every option, against plain sums.
#include "services/test_switches.h"

#include <orv/blas.h>
#include <orv/services.h>

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

double element(const std::vector<double>& a, size_t order, char uplo, char trans, char diag, size_t i, size_t j) {
    if (trans != 'N') std::swap(i, j);
    if (i == j) return diag == 'U' ? 1 : a[i + j * order];
    return (uplo == 'U') == (i < j) ? a[i + j * order] : 0;
}

template <class Call>
void for_all_options(Call call) {
    for (const char side : {'L', 'R'})
        for (const char uplo : {'U', 'L'})
            for (const char trans : {'N', 'T'})
                for (const char diag : {'N', 'U'}) call(side, uplo, trans, diag);
}

void check(int32_t m, int32_t n) {
    for_all_options([=](char side, char uplo, char trans, char diag) {
        const size_t rows = static_cast<size_t>(m), columns = static_cast<size_t>(n),
                     order = side == 'L' ? rows : columns;
        const int32_t lda = static_cast<int32_t>(order), ldb = m + 3;
        std::vector<double> a(order * order), packed, b((rows + 3) * columns);
        for (size_t i = 0; i < a.size(); ++i) a[i] = std::sin(1.0 + double(i));
        for (size_t i = 0; i < b.size(); ++i) b[i] = std::cos(2.0 * double(i));
        for (size_t j = 0; j < order; ++j)
            for (size_t i = uplo == 'U' ? 0 : j; i < (uplo == 'U' ? j + 1 : order); ++i)
                packed.push_back(a[i + j * order]);
        std::vector<double> expected = b;
        const double alpha = 1.5;
        for (size_t i = 0; i < rows; ++i)
            for (size_t j = 0; j < columns; ++j) {
                double sum = 0;
                for (size_t k = 0; k < order; ++k)
                    sum += side == 'L' ? element(a, order, uplo, trans, diag, i, k) * b[k + j * (rows + 3)]
                                       : b[i + k * (rows + 3)] * element(a, order, uplo, trans, diag, k, j);
                expected[i + j * (rows + 3)] = alpha * sum;
            }
        const auto same = [&](const auto& got, double tolerance, const char* what) {
            for (size_t i = 0; i < b.size(); ++i)
                ASSERT_NEAR(got[i], expected[i], tolerance * double(order)) << what << side << uplo << trans << diag;
        };
        const std::vector<float> narrow_a(a.begin(), a.end()), narrow_packed(packed.begin(), packed.end());
        const float narrow_alpha = 1.5f;
        std::vector<double> r;
        std::vector<float> s;
        orv_blas4arq_dtrmm(&side, &uplo, &trans, &diag, &m, &n, &alpha, a.data(), &lda, (r = b).data(), &ldb);
        same(r, 1e-15, "dtrmm ");
        orv_blas_xdtrmm_4arq(&side, &uplo, &trans, &diag, &m, &n, &alpha, a.data(), &lda, (r = b).data(), &ldb);
        same(r, 1e-15, "xdtrmm ");
        s.assign(b.begin(), b.end());
        orv_blas4arq_strmm(&side, &uplo, &trans, &diag, &m, &n, &narrow_alpha, narrow_a.data(), &lda, s.data(), &ldb);
        same(s, 1e-6, "strmm ");
        s.assign(b.begin(), b.end());
        orv_blas_xstrmm_4arq(&side, &uplo, &trans, &diag, &m, &n, &narrow_alpha, narrow_a.data(), &lda, s.data(), &ldb);
        same(s, 1e-6, "xstrmm ");
        // With memory for the unpacked triangle and without.
        for (const int32_t failing : {0, 1}) {
            const int32_t blocks = orv_serv_live_blocks();
            orv_serv_fail_allocation(failing);
            orv_blas4arq_dptrmm(&side, &uplo, &trans, &diag, &m, &n, &alpha, packed.data(), (r = b).data(), &ldb);
            orv_serv_fail_allocation(0);
            same(r, 1e-15, "dptrmm ");
            s.assign(b.begin(), b.end());
            orv_serv_fail_allocation(failing);
            orv_blas4arq_sptrmm(&side, &uplo, &trans, &diag, &m, &n, &narrow_alpha, narrow_packed.data(), s.data(),
                                &ldb);
            orv_serv_fail_allocation(0);
            same(s, 1e-6, "sptrmm ");
            EXPECT_EQ(orv_serv_live_blocks(), blocks);
        }
    });
}

TEST(Triangular, EveryOptionSmallAndUnpacked) {
    check(3, 5);
    check(1, 1);
    check(19, 23);
}

// Enough work for the threads.
TEST(Triangular, InPanels) { check(210, 90); }

}  // namespace
