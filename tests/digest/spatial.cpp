#include "digest/corpus.h"
#include "digest/fingerprint.h"

#include <limits>

namespace digest {

namespace {

using list = dense1D<unsigned>;

constexpr double tolerances[] = {0.0, 1e-6, 0.125, 0.3, -1.0, std::numeric_limits<double>::infinity()};

// Every query, at nodes and between them.
void ask(const node_detector& detector, const dense2D<double>& pos, fingerprint& f)
{
    test::dice random(31);
    f.add(detector.size());
    const auto nodes = static_cast<unsigned>(pos.cols);
    for (unsigned node = 0; node <= nodes; node += 1 + nodes / 40) f.add(detector.find_closest(node));
    for (int k = 0; k < 40; ++k) {
        const auto p = random_points(random, 3, 2, k % 2 != 0 ? spread::coarse : spread::plain);
        f.add(detector.find_closest(vector_fixed<double, 2>(p(0, 0), p(1, 0))));
        f.add(detector.find_closest(vector_fixed<double, 3>(p(0, 0), p(1, 0), p(2, 0))));
        list flat(1, 5u), deep;
        detector.find_in_box(vector_fixed<double, 2>(p(0, 0), p(1, 0)), vector_fixed<double, 2>(p(0, 1), p(1, 1)),
                             flat);
        detector.find_in_box(vector_fixed<double, 3>(p(0, 0) - 0.5, p(1, 0) - 0.5, p(2, 0) - 0.5),
                             vector_fixed<double, 3>(p(0, 0) + 0.5, p(1, 0) + 0.5, p(2, 0) + 0.5), deep);
        f.add(flat).add(deep);
    }
}

void run_constructors(fingerprint& f)
{
    for (const auto& m : meshes()) {
        node_detector none;
        ask(none, m.pos, f);
        ask(node_detector(m.pos), m.pos, f);
        if (m.parts.empty()) continue;
        ask(node_detector(m.pos, index_lists(static_cast<unsigned>(m.pos.cols))[2]), m.pos, f);
        ask(node_detector(m.pos, m.parts.front()), m.pos, f);
        ask(node_detector(m.pos, m.first(), m.last()), m.pos, f);
    }
}

void run_reinit(fingerprint& f)
{
    node_detector detector;
    for (const auto& m : meshes()) {
        for (const auto& nodes : index_lists(static_cast<unsigned>(m.pos.cols) + 1)) {
            f.add(detector.reinit(m.pos, nodes));
            ask(detector, m.pos, f);
        }
        for (const auto& part : m.parts) f.add(detector.reinit(m.pos, part)).add(detector.size());
        f.add(detector.reinit(m.pos, m.last(), m.first())).add(detector.reinit(m.pos, m.first(), m.last()));
        ask(detector, m.pos, f);
        f.add(detector.reinit(m.pos));
        ask(detector, m.pos, f);
        detector.clear();
        f.add(detector.size());
    }
}

void run_insert(fingerprint& f)
{
    for (const auto& m : meshes()) {
        node_detector detector(m.pos, list());
        for (const auto& nodes : index_lists(static_cast<unsigned>(m.pos.cols) + 1)) f.add(detector.insert(nodes));
        for (const auto& part : m.parts) f.add(detector.insert(part));
        ask(detector, m.pos, f);
        const node_detector copy(detector);
        node_detector assigned;
        assigned = copy;
        ask(assigned, m.pos, f);
    }
}

void run_merge_lists(fingerprint& f, bool two)
{
    for (const auto& m : meshes()) {
        const auto lists = index_lists(static_cast<unsigned>(m.pos.cols));
        for (const double tolerance : tolerances)
            for (const auto& nodes : lists) {
                list ids(2, 1u);
                f.add(two ? merge(m.pos, lists[1], nodes, ids, tolerance) : merge(m.pos, nodes, ids, tolerance))
                    .add(ids);
            }
    }
}

// Calls run(mesh to change, new_IDs, tolerance, mode), and takes what became of them.
template <class Run>
void run_merge_parts(fingerprint& f, Run run)
{
    for (const auto& original : meshes()) {
        if (original.parts.size() < 2) continue;
        for (const double tolerance : tolerances)
            for (unsigned mode = 0; mode < 4; ++mode) {
                mesh m = copy_of(original);
                list ids(2, 1u);
                f.add(run(m, ids, tolerance, mode)).add(ids).add(m.pos);
                for (const auto& part : m.parts) f.add(part);
            }
    }
}

void merge_forms()
{
    operation("merge(lists)", [](fingerprint& f) { run_merge_lists(f, true); });
    operation("merge(list)", [](fingerprint& f) { run_merge_lists(f, false); });
    operation("merge(range,new_IDs)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list& ids, double tolerance, unsigned mode) {
            return merge(m.pos, m.first(), m.last(), ids, tolerance, mode);
        });
    });
    operation("merge(matrix,new_IDs)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list& ids, double tolerance, unsigned mode) {
            return merge(m.pos, m.parts.back(), ids, tolerance, mode);
        });
    });
    operation("merge(matrices,new_IDs)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list& ids, double tolerance, unsigned mode) {
            return merge(m.pos, m.parts[0], m.parts[1], ids, tolerance, mode);
        });
    });
    operation("merge(range)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list&, double tolerance, unsigned mode) {
            return merge(m.pos, m.first(), m.last(), tolerance, mode);
        });
    });
    operation("merge(matrix)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list&, double tolerance, unsigned mode) {
            return merge(m.pos, m.parts.back(), tolerance, mode);
        });
    });
    operation("merge(matrices)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list&, double tolerance, unsigned mode) {
            return merge(m.pos, m.parts[0], m.parts[1], tolerance, mode);
        });
    });
}

void merge_short_forms()
{
    operation("merge(matrix,usual_tolerance)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list&, double, unsigned) { return merge(m.pos, m.parts.back()); });
    });
    operation("merge(matrices,usual_tolerance)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list&, double, unsigned) { return merge(m.pos, m.parts[0], m.parts[1]); });
    });
    operation("merge(positions,new_IDs)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list& ids, double tolerance, unsigned) { return merge(m.pos, ids, tolerance); });
    });
    operation("merge(positions)", [](fingerprint& f) {
        run_merge_parts(f, [](mesh& m, list&, double tolerance, unsigned) { return merge(m.pos, tolerance); });
    });
}

}  // namespace

void spatial()
{
    operation("node_detector(constructors,queries)", run_constructors);
    operation("node_detector(reinit,clear)", run_reinit);
    operation("node_detector(insert,copies)", run_insert);
    merge_forms();
    merge_short_forms();
}

}  // namespace digest
