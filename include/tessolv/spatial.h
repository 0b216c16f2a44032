#ifndef TESSOLV_SPATIAL_H
#define TESSOLV_SPATIAL_H

#include <tessolv/core.h>

namespace zeb {
namespace tessolv {

template <int D>
class kd_tree;

class TESSOLV_API node_detector {
public:
    node_detector();
    node_detector(const node_detector& other);
    node_detector(const dense2D<double>& pos);
    node_detector(const dense2D<double>& pos, const dense1D<unsigned int>& nodes);
    node_detector(const dense2D<double>& pos, const dense2D<unsigned int>& connect);
    node_detector(const dense2D<double>& pos, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last);
    ~node_detector();
    node_detector& operator=(const node_detector& other);

    void clear();
    unsigned long size() const;
    unsigned long insert(const dense1D<unsigned int>& nodes);
    unsigned long insert(const dense2D<unsigned int>& connect);
    unsigned long find_closest(const vector_fixed<double, 2>& P) const;
    unsigned long find_closest(const vector_fixed<double, 3>& P) const;
    unsigned long find_closest(unsigned int node) const;
    void find_in_box(const vector_fixed<double, 2>& Pmin, const vector_fixed<double, 2>& Pmax,
                     dense1D<unsigned int>& nodes) const;
    void find_in_box(const vector_fixed<double, 3>& Pmin, const vector_fixed<double, 3>& Pmax,
                     dense1D<unsigned int>& nodes) const;
    int reinit(const dense2D<double>& pos);
    int reinit(const dense2D<double>& pos, const dense1D<unsigned int>& nodes);
    int reinit(const dense2D<double>& pos, const dense2D<unsigned int>& connect);
    int reinit(const dense2D<double>& pos, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last);

private:
    kd_tree<2>* tree2_ = nullptr;
    kd_tree<3>* tree3_ = nullptr;
};

TESSOLV_API int merge(const dense2D<double>& pos, const dense1D<unsigned int>& nodes1,
                      const dense1D<unsigned int>& nodes2, dense1D<unsigned int>& new_IDs, double tolerance);
TESSOLV_API int merge(const dense2D<double>& pos, const dense1D<unsigned int>& nodes, dense1D<unsigned int>& new_IDs,
                      double tolerance);
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last,
                      dense1D<unsigned int>& new_IDs, double tolerance, unsigned int mode = 0);
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs,
                      double tolerance, unsigned int mode = 0);
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2,
                      dense1D<unsigned int>& new_IDs, double tolerance, unsigned int mode = 0);
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last,
                      double tolerance, unsigned int mode = 0);
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect, double tolerance,
                      unsigned int mode = 0);
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2,
                      double tolerance, unsigned int mode = 0);
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect);
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2);
TESSOLV_API int merge(dense2D<double>& pos, dense1D<unsigned int>& new_IDs, double tolerance);
TESSOLV_API int merge(dense2D<double>& pos, double tolerance);

}  // namespace tessolv
}  // namespace zeb

#endif
