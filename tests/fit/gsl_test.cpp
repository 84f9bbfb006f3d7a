// Splines, values, derivatives and integrals against another library's natural and Akima splines.
#include "fit/support.h"

#include <gsl/gsl_spline.h>

namespace orv::test {
namespace {

TEST(FitPeer, NaturalAndAkima) {
    Problem<double> p;
    p.x = breaks<double>(200);
    p.y = noise<double>(200);
    const struct {
        Spline spline;
        int64_t code;
        const gsl_interp_type* peer;
    } kinds[] = {{natural, ORV_DF_FREE_END, gsl_interp_cspline}, {akima, ORV_DF_NO_CONDITION, gsl_interp_akima}};
    std::vector<double> sites;
    for (double x = p.x.front(); x < p.x.back(); x += 0.0317) sites.push_back(x);
    for (const auto& kind : kinds) {
        p.bc_type = kind.code;
        Fit<double> fit(p);
        ASSERT_EQ(fit.construct(kind.spline), 0);
        gsl_spline* peer = gsl_spline_alloc(kind.peer, p.x.size());
        gsl_spline_init(peer, p.x.data(), p.y.data(), p.x.size());
        const auto value = fit.values(sites), slope = fit.values(sites, 1), bend = fit.values(sites, 2);
        std::vector<double> area(sites.size());
        const std::vector<double> from(sites.size(), p.x.front());
        ASSERT_EQ(orv_df_kernel_dDFIntegrate1D(fit.task, 0, static_cast<int64_t>(sites.size()), from.data(), 0,
                                               sites.data(), 0, nullptr, area.data(), 0, nullptr),
                  0);
        for (size_t i = 0; i < sites.size(); ++i) {
            ASSERT_NEAR(value[i], gsl_spline_eval(peer, sites[i], nullptr), 1e-13);
            ASSERT_NEAR(slope[i], gsl_spline_eval_deriv(peer, sites[i], nullptr), 1e-12);
            ASSERT_NEAR(bend[i], gsl_spline_eval_deriv2(peer, sites[i], nullptr), 2e-11);
            ASSERT_NEAR(area[i], gsl_spline_eval_integ(peer, p.x.front(), sites[i], nullptr), 1e-12);
        }
        gsl_spline_free(peer);
    }
}

}  // namespace
}  // namespace orv::test
