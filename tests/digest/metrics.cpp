#include "digest/corpus.h"
#include "digest/fingerprint.h"

#include <limits>

namespace digest {

namespace {

constexpr unsigned tensor_count = 1500;

// A number as entries of tensors have it: of any magnitude, equal to others, or not finite.
double entry(test::dice& random)
{
    const double scales[] = {1.0, 1.0, 1.0, 1e-8, 1e6, 1e150, 0.0};
    const double x = signed_unit(random) * random.one_of(scales);
    return random.one_in(60) ? std::numeric_limits<double>::infinity() * x : x;
}

// Every other tensor is A'A plus a little of the identity, hence positive definite.
template <std::size_t Dim>
std::vector<symmetric_fixed<double, Dim>> tensors(unsigned seed)
{
    test::dice random(seed);
    std::vector<symmetric_fixed<double, Dim>> all(tensor_count);
    for (unsigned k = 0; k < tensor_count; ++k) {
        double a[Dim][Dim];
        for (auto& row : a)
            for (double& x : row) x = k % 3 == 0 ? random.below(3) : k % 3 == 1 ? signed_unit(random) : entry(random);
        for (std::size_t j = 0; j < Dim; ++j)
            for (std::size_t i = 0; i <= j; ++i) {
                double sum = i == j ? 1e-3 : 0;
                for (std::size_t r = 0; r < Dim; ++r) sum += a[r][i] * a[r][j];
                all[k](i, j) = k % 2 == 0 ? sum : a[i][j];
            }
    }
    return all;
}

std::vector<matrix_fixed<double, 3, 2>> bases(unsigned seed)
{
    test::dice random(seed);
    std::vector<matrix_fixed<double, 3, 2>> all(tensor_count);
    for (auto& basis : all)
        for (double& x : basis) x = random.one_in(40) ? entry(random) : signed_unit(random);
    return all;
}

template <std::size_t Dim>
void run_eigen_pairs(fingerprint& f)
{
    for (const auto& m : tensors<Dim>(1)) {
        vector_fixed<double, Dim> values;
        eigen_pairs(m, values, matrix_fixed<double, Dim, Dim>());
        f.add(values);
    }
}

template <std::size_t Dim>
void run_minimum_metric(fingerprint& f)
{
    const auto first = tensors<Dim>(2), second = tensors<Dim>(3);
    for (unsigned k = 0; k < tensor_count; ++k) {
        auto out = first.front();
        f.add(minimum_metric(first[k], second[k], out)).add(out);
        f.add(minimum_metric(second[k], second[k / 2], out)).add(out);
    }
}

template <std::size_t Dim>
void run_iso_to_aniso(fingerprint& f)
{
    test::dice random(4);
    symmetric_fixed<double, Dim> m;
    for (unsigned k = 0; k < tensor_count; ++k) {
        metric_iso_to_aniso(entry(random), m);
        f.add(m);
    }
}

void single_tensors()
{
    operation("metric_iso_to_aniso(2-D)", run_iso_to_aniso<2>);
    operation("metric_iso_to_aniso(3-D)", run_iso_to_aniso<3>);
    operation("metric_iso_to_aniso2d", [](fingerprint& f) {
        test::dice random(4);
        symmetric_fixed<double, 2> m;
        for (const auto& basis : bases(5)) {
            metric_iso_to_aniso2d(entry(random), basis, m);
            f.add(m);
        }
    });
    operation("metric_aniso3d_to_aniso2d", [](fingerprint& f) {
        const auto metrics = tensors<3>(6);
        const auto planes = bases(7);
        symmetric_fixed<double, 2> m;
        for (unsigned k = 0; k < tensor_count; ++k) {
            metric_aniso3d_to_aniso2d(metrics[k], planes[k], m);
            f.add(m);
        }
    });
    operation("eigen_pairs(2-D)", run_eigen_pairs<2>);
    operation("eigen_pairs(3-D)", run_eigen_pairs<3>);
    operation("is_valid_metric(2-D)", [](fingerprint& f) {
        for (const auto& m : tensors<2>(8)) f.add(is_valid_metric(m));
    });
    operation("is_valid_metric(3-D)", [](fingerprint& f) {
        for (const auto& m : tensors<3>(8)) f.add(is_valid_metric(m));
    });
    operation("minimum_metric(2-D)", run_minimum_metric<2>);
    operation("minimum_metric(3-D)", run_minimum_metric<3>);
}

// A field of packed tensors, all valid or not.
template <std::size_t Dim>
dense2D<float> field(unsigned seed, bool all_valid, std::uint64_t nodes)
{
    const auto all = tensors<Dim>(seed);
    dense2D<float> values(Dim * (Dim + 1) / 2, 0);
    for (unsigned k = 0; k < tensor_count && values.cols < nodes; ++k) {
        if (all_valid && !is_valid_metric(all[k])) continue;
        dense1D<float> column;
        for (const double x : all[k]) column.push_back(static_cast<float>(x));
        values.push_back(column);
    }
    return values;
}

dense1D<float> sizes(unsigned seed, bool all_valid)
{
    test::dice random(seed);
    dense1D<float> values;
    for (int k = 0; k < 200; ++k)
        values.push_back(static_cast<float>(all_valid ? 2 + signed_unit(random) : entry(random)));
    return values;
}

std::vector<dense2D<float>> fields()
{
    return {field<2>(11, false, 200), field<2>(12, true, 200),    field<3>(13, false, 200),
            field<3>(14, true, 200),  dense2D<float>(4, 5, 1.0f), dense2D<float>()};
}

void validity_of_fields()
{
    operation("are_valid_metrics(sizes)", [](fingerprint& f) {
        for (const bool valid : {false, true}) {
            f.add(are_valid_metrics(sizes(21, valid)));
            for (const auto& nodes : index_lists(150)) f.add(are_valid_metrics(nodes, sizes(21, valid)));
        }
    });
    operation("are_valid_metrics(tensors)", [](fingerprint& f) {
        for (const auto& values : fields()) {
            f.add(are_valid_metrics(values));
            for (const auto& nodes : index_lists(150)) f.add(are_valid_metrics(nodes, values));
            for (std::uint64_t j = 0; j < values.cols; ++j)
                f.add(are_valid_metrics(test::indices({static_cast<unsigned>(j)}), values));
        }
    });
    operation("overwrite_invalid_metrics(sizes)", [](fingerprint& f) {
        auto values = sizes(22, false);
        f.add(overwrite_invalid_metrics(values, sizes(23, true))).add(values);
    });
    operation("overwrite_invalid_metrics(tensors,sizes)", [](fingerprint& f) {
        for (auto values : fields()) f.add(overwrite_invalid_metrics(values, sizes(23, true))).add(values);
    });
    operation("overwrite_invalid_metrics(tensors)", [](fingerprint& f) {
        for (const auto& defaults : fields())
            for (auto values : fields()) f.add(overwrite_invalid_metrics(values, defaults)).add(values);
    });
}

void conversion_of_fields()
{
    test::dice random(24);
    const auto bases_of_nodes = random_points(random, 6, 200, spread::plain);
    operation("metrics_aniso3d_to_aniso2d", [&](fingerprint& f) {
        for (const auto& values : fields()) {
            dense2D<float> flat(1, 1, 2.0f);
            f.add(metrics_aniso3d_to_aniso2d(values, bases_of_nodes, flat)).add(flat);
        }
    });
    operation("metrics_iso_to_aniso2d", [&](fingerprint& f) {
        dense2D<float> flat(1, 1, 2.0f);
        f.add(metrics_iso_to_aniso2d(sizes(25, false), random_points(random, 6, 3, spread::plain), flat)).add(flat);
        f.add(metrics_iso_to_aniso2d(sizes(25, false), bases_of_nodes, flat)).add(flat);
    });
    operation("append(tensor_fields)", [](fingerprint& f) {
        dense2D<float> one, some, many;
        const auto sources = fields();
        for (std::size_t k = 0; k < sources.size(); ++k) {
            f.add(append(one, sources[k])).add(one);
            for (const auto& cols : index_lists(static_cast<unsigned>(sources[k].cols) + 1))
                f.add(append(some, sources[k], cols)).add(some);
            f.add(append(many, sources.data(), sources.data() + k)).add(many);
        }
    });
    operation("append(size_fields)", [](fingerprint& f) {
        dense1D<float> one, some, many;
        const std::vector<dense1D<float>> sources{sizes(26, true), sizes(27, false)};
        for (const auto& source : sources) {
            f.add(append(one, source)).add(one).add(append(many, sources.data(), sources.data() + 2)).add(many);
            for (const auto& entries : index_lists(200)) f.add(append(some, source, entries)).add(some);
        }
    });
}

}  // namespace

void metrics()
{
    single_tensors();
    validity_of_fields();
    conversion_of_fields();
}

}  // namespace digest
