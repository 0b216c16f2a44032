#include "digest/corpus.h"
#include "digest/fingerprint.h"

namespace digest {

namespace {

void run_dspev(fingerprint& f)
{
    test::dice random(5);
    for (unsigned k = 0; k < 400; ++k)
        for (const char jobz : {'N', 'V'})
            for (const char uplo : {'U', 'L'}) {
                double ap[6], w[3] = {}, z[9] = {}, work[9];
                for (double& x : ap) x = k % 4 == 0 ? random.below(3) - 1.0 : signed_unit(random);
                long info = 7;
                f.add(zeb::lapack::dspev(jobz, uplo, 3, ap, w, z, 3, work, info)).add(info);
                for (const double x : w) f.add(x);
                for (const double x : z) f.add(x);
            }
}

void run_histogram(fingerprint& f)
{
    test::dice random(6);
    zeb::misc::histogram usual, narrow(-0.25, 0.75, 7);
    const auto values = random_points(random, 1, 3000, spread::plain);
    const auto wild = random_points(random, 1, 300, spread::wild);
    for (unsigned j = 0; j < 300; ++j) narrow.process(wild(0, j));
    f.add(narrow);
    dense1D<double> list;
    for (unsigned j = 0; j < values.cols; ++j) list.push_back(values(0, j));
    usual.process(list);
    f.add(usual);
    zeb::misc::histogram other(usual);
    other.process(1.0);
    f.add(other);
    narrow = other;
    f.add(narrow);
}

// Shapes and capacities through growth, loss and sharing.
void run_containers(fingerprint& f)
{
    dense1D<unsigned> list;
    for (unsigned i = 0; i < 200; ++i) {
        list.push_back(i);
        f.add(list.buffer->capacity);
    }
    dense2D<double> m(3, 4, 1.5), shared;
    shared.shallow_copy(m);
    f.add(m.resize(4, 6, 2.5)).add(m).add(m.resize(2, 5)).add(m.ld).add(m).add(shared);
    f.add(m.push_back(shared.col(1))).add(m.push_back(m.col(0))).add(m).add(m.buffer->capacity);
    f.add(m.reserve(2, 40)).add(m.buffer->capacity).add(m.resize(~0ull, 3)).add(m);
    dense1D<double> view = m.col(1);
    view[0] = -3;
    f.add(m).add(view.resize(5, 8.0)).add(view).add(m == shared);
}

}  // namespace

void core()
{
    operation("version", [](fingerprint& f) { f.add(std::string(version())); });
    operation("NODES_PER_ELEMENT,VERTICES_PER_ELEMENT", [](fingerprint& f) {
        for (int type = 0; type <= 20; ++type) f.add(NODES_PER_ELEMENT[type]).add(VERTICES_PER_ELEMENT[type]);
    });
    operation("containers", run_containers);
    operation("check_IDs(list)", [](fingerprint& f) {
        for (const unsigned n : {0u, 1u, 40u, 0xFFFFFFFFu})
            for (const auto& list : index_lists(40)) f.add(check_IDs(list, n));
    });
    operation("check_IDs(matrix)", [](fingerprint& f) {
        for (const auto& m : meshes())
            for (const auto& part : m.parts)
                for (const unsigned n : {5u, 6u, 150u, NONE_INDEX}) f.add(check_IDs(part, n));
    });
    operation("check_IDs(connectivity)", [](fingerprint& f) {
        for (const auto& m : meshes())
            for (const auto& part : m.parts)
                for (int type = -2; type < 23; ++type)
                    f.add(check_IDs(part, static_cast<element_type>(type), static_cast<unsigned>(m.pos.cols)));
    });
    operation("dspev", run_dspev);
    operation("histogram", run_histogram);
}

}  // namespace digest
