#include "digest/corpus.h"
#include "digest/fingerprint.h"

namespace digest {

namespace {

using list = dense1D<unsigned>;

void add_mesh(fingerprint& f, const mesh& m)
{
    f.add(m.pos);
    for (const auto& part : m.parts) f.add(part);
}

// Lists of numbers as `values`, `perm` and tables: short and long, with repetitions and strays.
std::vector<list> tables()
{
    auto all = index_lists(30);
    for (auto& more : index_lists(7)) all.push_back(more);
    return all;
}

void index_operations()
{
    operation("unique_indices(list)", [](fingerprint& f) {
        list out;
        for (const auto& in : tables()) f.add(unique_indices(out, in)).add(out);
    });
    operation("unique_indices(list,exclude)", [](fingerprint& f) {
        for (const auto& in : tables())
            for (const auto& exclude : tables()) {
                list out(1, 4u);
                f.add(unique_indices(out, in, exclude)).add(out);
            }
    });
    operation("unique_indices(matrix)", [](fingerprint& f) {
        for (const auto& m : meshes())
            for (const auto& part : m.parts) {
                list out;
                f.add(unique_indices(out, part)).add(out).add(count_unique_indices(part));
            }
    });
    operation("unique_indices(range)", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            list out;
            f.add(unique_indices(out, m.first(), m.last())).add(out).add(unique_indices(out, m.last(), m.first()));
            f.add(count_unique_indices(m.first(), m.last())).add(count_unique_indices(m.last(), m.first()));
        }
    });
    operation("get_IDs(lists)", [](fingerprint& f) {
        for (const auto& a : tables())
            for (const auto& b : tables()) {
                list in_1, in_2;
                f.add(get_IDs(a, b, in_1, in_2)).add(in_1).add(in_2);
            }
    });
    operation("get_IDs(elements)", [](fingerprint& f) {
        for (const auto& m : meshes())
            for (const auto& a : m.parts)
                for (const auto& b : m.parts)
                    for (const bool strict : {false, true}) {
                        list in_1, in_2;
                        f.add(get_IDs(a, b, in_1, in_2, strict)).add(in_1).add(in_2);
                    }
    });
}

void renumbering()
{
    operation("change_indices(list)", [](fingerprint& f) {
        for (auto ids : tables())
            for (const auto& table : tables()) {
                change_indices(ids, table);
                f.add(ids);
            }
    });
    operation("change_indices(matrix)", [](fingerprint& f) {
        for (const auto& original : meshes()) {
            mesh m = copy_of(original);
            for (auto& part : m.parts)
                for (const auto& table : tables()) {
                    change_indices(part, table);
                    f.add(part);
                }
        }
    });
    operation("permutation", [](fingerprint& f) {
        for (auto values : tables())
            for (const auto& perm : tables()) {
                permutation(values, perm);
                f.add(values);
            }
    });
    operation("permutation(numbers)", [](fingerprint& f) {
        test::dice random(3);
        dense1D<double> values;
        for (int i = 0; i < 40; ++i) values.push_back(signed_unit(random));
        for (const auto& perm : tables()) {
            permutation(values, perm);
            f.add(values);
        }
    });
}

// Every form of append: the matrices of all meshes, one after the other, onto one that is emptied now and then.
template <class T, class Matrices>
void run_append(fingerprint& f, const Matrices& sources)
{
    dense2D<T> one, some, many;
    for (std::size_t k = 0; k < sources.size(); ++k) {
        f.add(append(one, sources[k])).add(one);
        for (const auto& cols : index_lists(static_cast<unsigned>(sources[k].cols) + 1))
            f.add(append(some, sources[k], cols)).add(some);
        f.add(append(many, sources.data(), sources.data() + k)).add(many);
        f.add(append(many, sources.data() + k + 1, sources.data() + k)).add(many);
        if (k % 3 == 2) one = some = many = dense2D<T>();
    }
}

template <class Change>
void run_cleanup(fingerprint& f, Change change)
{
    for (const auto& original : meshes())
        for (const std::vector<int>& types : {std::vector<int>{EL_TRIA3}, std::vector<int>{EL_HEXA20, EL_SOLID_MIX}}) {
            mesh m = copy_of(only(original, types));
            if (m.parts.empty()) continue;
            list ids(3, 1u);
            f.add(change(m, ids)).add(ids);
            add_mesh(f, m);
        }
}

void cleanup()
{
    operation("simplify(range,new_IDs)", [](fingerprint& f) {
        run_cleanup(f, [](mesh& m, list& ids) { return simplify(m.pos, m.first(), m.last(), ids); });
    });
    operation("simplify(matrix,new_IDs)", [](fingerprint& f) {
        run_cleanup(f, [](mesh& m, list& ids) { return simplify(m.pos, m.parts.front(), ids); });
    });
    operation("simplify(range)", [](fingerprint& f) {
        run_cleanup(f, [](mesh& m, list&) { return simplify(m.pos, m.first(), m.last()); });
    });
    operation("simplify(matrix)",
              [](fingerprint& f) { run_cleanup(f, [](mesh& m, list&) { return simplify(m.pos, m.parts.back()); }); });
    operation("copy_mesh", [](fingerprint& f) {
        run_cleanup(f, [](mesh& m, list&) {
            dense2D<unsigned> copied;
            const int code = copy_mesh(m.pos, copied, m.parts.back());
            m.parts.push_back(copied);
            return code;
        });
    });
    operation("remove_degenerated", [](fingerprint& f) {
        run_cleanup(f, [](mesh& m, list& ids) { return remove_degenerated(m.parts.front(), ids); });
        for (const auto& m : meshes())
            for (dense2D<unsigned> part : m.parts) {
                list ids;
                f.add(remove_degenerated(part, ids)).add(part).add(ids);
            }
    });
}

}  // namespace

void editing()
{
    index_operations();
    renumbering();
    operation("append(coordinates)", [](fingerprint& f) {
        std::vector<dense2D<double>> sources;
        for (const auto& m : meshes()) sources.push_back(m.pos);
        run_append<double>(f, sources);
    });
    operation("append(connectivities)", [](fingerprint& f) {
        for (const auto& m : meshes()) run_append<unsigned>(f, m.parts);
    });
    cleanup();
}

}  // namespace digest
