#ifndef TOOLS_MESH_BUILDER_H
#define TOOLS_MESH_BUILDER_H

#include <array>
#include <cstdint>
#include <optional>

#include "mesh/mesh.h"

namespace tool {

// A matrix that grows column by column to a size that nobody vouches for.
template <class T>
class growing_matrix {
public:
    explicit growing_matrix(std::uint64_t rows) : rows_(rows) {}

    // Room for what a file announces, as far as its bytes can bear it out.
    void reserve(std::uint64_t cols)
    {
        if (cols > matrix_.cols) tool::resize(matrix_, rows_, cols);
    }

    T* append()
    {
        if (used_ == matrix_.cols) tool::resize(matrix_, rows_, std::max<std::uint64_t>(64, used_ + used_ / 2));
        return &matrix_(0, used_++);
    }

    // The next `cols` columns at once.
    T* append(std::uint64_t cols)
    {
        if (cols > matrix_.cols - used_) tool::resize(matrix_, rows_, std::max(used_ + cols, used_ + used_ / 2));
        T* first = cols != 0 ? &matrix_(0, used_) : nullptr;
        used_ += cols;
        return first;
    }

    std::uint64_t size() const { return used_; }
    T* column(std::uint64_t j) { return &matrix_(0, j); }
    const T* column(std::uint64_t j) const { return &matrix_(0, j); }

    // Entries that stand one after the other become columns of so many rows; what is there already goes.
    void adopt(zeb::dense2D<T> entries)
    {
        entries.cols = entries.rows * entries.cols / rows_;
        entries.rows = entries.ld = rows_;
        matrix_ = std::move(entries);
        used_ = matrix_.cols;
    }

    zeb::dense2D<T> take()
    {
        tool::resize(matrix_, rows_, used_);
        used_ = 0;
        return std::move(matrix_);
    }

private:
    std::uint64_t rows_;
    std::uint64_t used_ = 0;
    zeb::dense2D<T> matrix_;
};

// Collects elements of all kinds in the order of a file.
class mesh_builder {
public:
    // Columns for one element of this kind, to be filled with its nodes in the library's order.
    unsigned int* add(zeb::element_type type, std::int32_t group, std::uint64_t number)
    {
        collected& to = of(type);
        const std::uint64_t e = to.connect.size();
        if (group != 0 && to.groups.empty()) to.groups.resize(e);
        if (group != 0 || !to.groups.empty()) to.groups.push_back(group);
        to.numbers.push_back(number);
        return to.connect.append();
    }

    // Columns for elements in no group, one after the other, with numbers from `first_number` on.
    unsigned int* add_without_group(zeb::element_type type, std::uint64_t first_number, std::uint64_t count)
    {
        collected& to = of(type);
        if (!to.groups.empty()) to.groups.resize(to.connect.size() + count);
        to.numbers.append(numbering(first_number, count));
        return to.connect.append(count);
    }

    // All elements of a kind, in no group, with numbers from `first_number` on: their nodes one after the other.
    void adopt(zeb::element_type type, std::uint64_t first_number, zeb::dense2D<unsigned int> nodes)
    {
        collected& to = of(type);
        to.connect.adopt(std::move(nodes));
        to.numbers = numbering(first_number, to.connect.size());
    }

    void reserve(zeb::element_type type, std::uint64_t count) { of(type).connect.reserve(count); }

    // Every element so far is in no group after all.
    void forget_groups();

    // Hands the blocks over, in the order of their kinds.
    std::vector<element_block> take();

private:
    struct collected {
        explicit collected(zeb::element_type type) : connect(zeb::NODES_PER_ELEMENT[type]) {}
        growing_matrix<unsigned int> connect;
        std::vector<std::int32_t> groups;
        numbering numbers;
    };

    collected& of(zeb::element_type type)
    {
        std::optional<collected>& entry = kinds_[static_cast<std::size_t>(type)];
        if (!entry) entry.emplace(type);
        return *entry;
    }

    std::array<std::optional<collected>, 21> kinds_;
};

// Brings values that stand in the order of the file's elements into the order of the blocks: the element of number n
// takes the n-th item from `first_number` on. Elements beyond the values take NaN.
std::vector<double> gathered(const std::vector<element_block>& blocks, const std::vector<double>& values,
                             unsigned int components, std::uint64_t first_number);

}  // namespace tool

#endif
