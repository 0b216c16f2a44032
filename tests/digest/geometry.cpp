#include "digest/corpus.h"
#include "digest/fingerprint.h"

#include <limits>

namespace digest {

namespace {

using list = dense1D<unsigned>;
using vector3 = vector_fixed<double, 3>;

const vector3 places[] = {vector3(0.5, -0.25, 0.125), vector3(0, 0, 0), vector3(1e9, 1e-9, -1)};

// Small and large angles, none, and turns of more than a circle.
const vector3 rotations[] = {vector3(0, 0, 0),      vector3(0.05, -0.03, 0.01), vector3(0.2, 0, 0),
                             vector3(0, 0.7, -1.3), vector3(3, 4, 5),           vector3(1e-9, 0, 1e-12)};

// Runs change(coordinates) on a copy of every mesh, change(coordinates, nodes) and change(coordinates, connectivity).
template <class Change>
void run_transform(const char* name, const char* name_list, const char* name_connect, Change change)
{
    operation(name, [&](fingerprint& f) {
        for (const auto& m : meshes()) {
            dense2D<double> pos(m.pos);
            change(f, pos);
            f.add(pos);
        }
    });
    operation(name_list, [&](fingerprint& f) {
        for (const auto& m : meshes()) {
            dense2D<double> pos(m.pos);
            for (const auto& nodes : index_lists(static_cast<unsigned>(m.pos.cols) + 1)) change(f, pos, nodes);
            f.add(pos);
        }
    });
    operation(name_connect, [&](fingerprint& f) {
        for (const auto& m : meshes()) {
            dense2D<double> pos(m.pos);
            for (const auto& part : m.parts) change(f, pos, part);
            f.add(pos);
        }
    });
}

void transforms()
{
    run_transform("translate", "translate(list)", "translate(connectivity)",
                  [](fingerprint& f, dense2D<double>& pos, const auto&... where) {
                      for (const auto& t : places) f.add(translate(pos, t, where...));
                  });
    run_transform("rotate", "rotate(list)", "rotate(connectivity)",
                  [](fingerprint& f, dense2D<double>& pos, const auto&... where) {
                      for (const auto& turn : rotations) f.add(rotate(pos, places[0], turn, where...));
                  });
    run_transform("zoom", "zoom(list)", "zoom(connectivity)",
                  [](fingerprint& f, dense2D<double>& pos, const auto&... where) {
                      for (const double factor : {2.0, -0.3, 0.0, 1e-3, 1.0})
                          f.add(zoom(pos, places[0], factor, where...));
                  });
}

template <std::size_t Dim>
void run_bounding_box(fingerprint& f, int form)
{
    for (const auto& m : meshes()) {
        vector_fixed<double, Dim> low, high;
        const auto grow = [&](const auto&... where) { f.add(inc_bounding_box(m.pos, where..., low, high)); };
        if (form == 0) grow();
        if (form == 1)
            for (const auto& nodes : index_lists(static_cast<unsigned>(m.pos.cols) + 1)) grow(nodes);
        if (form == 2)
            for (const auto& part : m.parts) grow(part);
        f.add(low).add(high);
    }
}

void bounding_boxes()
{
    operation("inc_bounding_box(2-D)", [](fingerprint& f) { run_bounding_box<2>(f, 0); });
    operation("inc_bounding_box(2-D,list)", [](fingerprint& f) { run_bounding_box<2>(f, 1); });
    operation("inc_bounding_box(2-D,connectivity)", [](fingerprint& f) { run_bounding_box<2>(f, 2); });
    operation("inc_bounding_box(3-D)", [](fingerprint& f) { run_bounding_box<3>(f, 0); });
    operation("inc_bounding_box(3-D,list)", [](fingerprint& f) { run_bounding_box<3>(f, 1); });
    operation("inc_bounding_box(3-D,connectivity)", [](fingerprint& f) { run_bounding_box<3>(f, 2); });
}

}  // namespace

void geometry()
{
    transforms();
    bounding_boxes();
    operation("clip", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            dense2D<unsigned> out;
            for (const auto& part : m.parts)
                for (const auto& normal : rotations) {
                    if (out.rows != part.rows) out = dense2D<unsigned>();
                    f.add(clip(m.pos, part, places[0], normal, out)).add(out);
                }
        }
    });
}

}  // namespace digest
