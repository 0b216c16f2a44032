#ifndef TESSOLV_IO_H
#define TESSOLV_IO_H

#include <cstdio>

#include <tessolv/core.h>

/// \file
/// Files. Every writer replaces the file and returns 0 only when the system took all of it. The bytes do not depend on
/// the locale of the program. File names are byte strings as the C runtime takes them; one that is null, empty or a
/// directory counts as a file that cannot be opened. What a function opened is closed on every return.

namespace zeb {
namespace tessolv {

/// Appends the cells of the VTK legacy format that stand for the elements of `connect`, column by column: a cell of the
/// corner vertices (line 3, triangle 5, quad 9, tetra 10, wedge 13, hexahedron 12) and, for elements of more nodes, a
/// poly-vertex (2) of the remaining ones. The last two vertices of a tetrahedron change places.
/// @param connect             nodes x elements; indices are passed on as they are, only their shape is checked.
/// @param type                any pure type of lines, surface or solid elements, except the two pyramids.
/// @param[in,out] cell_count  raised by the number of cells.
/// @param[in,out] cells       for each cell the number of its nodes, then the nodes.
/// @param[in,out] cell_types  one code for each cell.
/// @return 0; -2 `type` outside EL_EDGE2 to EL_HEXA27; -1 `connect` refused by check_IDs; -2 a type without a cell; -1
///         an empty `connect` of fewer rows than the cell has vertices; -199 memory. On failure nothing is appended.
/// @note Linear; the streams grow by factor 2. No shared state.
TESSOLV_API int vtk_convert(const dense2D<unsigned int>& connect, element_type type, unsigned int& cell_count,
                            dense1D<unsigned int>& cells, dense1D<unsigned int>& cell_types);

/// Writes a whole VTK legacy file, an ASCII unstructured grid, to a stream of the host, which is neither flushed nor
/// closed.
/// @param f           open for writing.
/// @param pos         2 or 3 x nodes; a missing z is written as 0.
/// @param cell_count  number of cells to take from `cells`; the walk stops where `cells` ends.
/// @param cells       cells as vtk_convert makes them. Node numbers from 2^31 on are written as negative numbers.
/// @param cell_types  one code for each cell; written as they are, whatever their number.
/// @return 0; -1 `f` null, or its error flag is set when all was handed over; -2 rows of `pos`; -199 memory. Nothing is
///         written when `f` or `pos` is refused or without memory.
/// @note Linear; one block of 256 KiB.
TESSOLV_API int vtk_output(FILE* f, const dense2D<double>& pos, unsigned int cell_count,
                           const dense1D<unsigned int>& cells, const dense1D<unsigned int>& cell_types);

/// Writes the mesh of [first, last) as a VTK legacy file, an ASCII unstructured grid. Matrices of a mixed kind are
/// written shape by shape: triangles, quadrangles; tetrahedra, wedges, hexahedra. Cells are those of vtk_convert.
/// <!-- preamble: square -->
/// @code
/// // pos: 6 nodes; connect: the triangles (0, 1, 2) and (3, 4, 5)
/// vtk_output("square.vtk", pos, connect, EL_TRIA3);                 // -> 0
/// vtk_output("no/such/folder/square.vtk", pos, connect, EL_TRIA3);  // -> -1
/// @endcode
/// @param filename  created before anything is checked: every failure but -1 leaves it empty.
/// @param pos       2 or 3 x nodes; a missing z is written as 0.
/// @param first     first of consecutive matrices, nodes x elements, each numbered over all of `pos`.
/// @param last      behind the last of them; first = last is a mesh without elements.
/// @param types     element_type of each matrix; empty matrices are skipped, whatever their type.
/// @return 0; -1 the file cannot be opened; -2 rows of `pos`; -4 last before first; -5 length of `types`; -3 indices or
///         rows of a matrix; -2 a matrix of a type without a cell: EL_NODE or a pyramid; -199 memory; -1 the file
///         cannot be written.
/// @note Linear; one block of 256 KiB, no copy of the mesh. No shared state.
TESSOLV_API int vtk_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>* first,
                           const dense2D<unsigned int>* last, const dense1D<int>& types);

/// The same for one matrix. -4 and -5 do not occur.
TESSOLV_API int vtk_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                           element_type type);

/// The same for two matrices. -4 and -5 do not occur.
TESSOLV_API int vtk_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect1,
                           const dense2D<unsigned int>& connect2, element_type type1, element_type type2);

/// Writes the mesh of [first, last) as a MEDIT ASCII mesh file: corner vertices only, nodes counted from 1. There is a
/// section for each element_type that occurs, in the order of its values, so a keyword may come more than once; lines,
/// triangles, quadrangles, tetrahedra and hexahedra have one, all other elements are left out. Matrices of a mixed kind
/// are split into their shapes. Vertices have the reference 0, elements the position of their matrix in the range.
/// <!-- preamble: square -->
/// @code
/// // pos: 6 nodes; connect: the triangles (0, 1, 2) and (3, 4, 5); the second form, then a reference for each triangle
/// medit_output("square.mesh", pos, connect, EL_TRIA3);                            // -> 0
/// medit_output("square.mesh", pos, connect, EL_TRIA3, dense1D<unsigned>(2, 7u));  // -> 0
/// @endcode
/// @param filename  not touched before all checks have passed.
/// @param pos       1, 2 or 3 x nodes; the rows are the dimension of the file.
/// @param first     first of consecutive matrices, nodes x elements, each numbered over all of `pos`.
/// @param last      behind the last of them; first = last is a mesh without elements.
/// @param types     element_type of each matrix; empty matrices are skipped, whatever their type.
/// @return 0; -2 rows of `pos`; -4 last before first; -5 length of `types`; -3 rows of a matrix, or NONE_INDEX where
///         its type has none (indices are not compared with the number of nodes); -199 memory; -1 the file cannot be
///         opened or written.
/// @note Linear; one block of 256 KiB, no copy of the mesh. No shared state.
TESSOLV_API int medit_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>* first,
                             const dense2D<unsigned int>* last, const dense1D<int>& types);

/// The same for one matrix. -4 and -5 do not occur.
TESSOLV_API int medit_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                             element_type type);

/// The same for two matrices, of the references 0 and 1. -4 and -5 do not occur.
TESSOLV_API int medit_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect1,
                             const dense2D<unsigned int>& connect2, element_type type1, element_type type2);

/// The same for one matrix whose elements have references of their own. Within a section they are ordered by reference,
/// then by column.
/// @param filename  as above.
/// @param pos       as above.
/// @param connect   nodes x elements.
/// @param type      element_type of all elements.
/// @param refs      reference of each column; elements of NONE_INDEX are left out and not checked.
/// @return 0, also for an empty `connect`, of which no file is made; -5 length of `refs`; -6 the table of references,
///         one entry for each from 0 to the largest, cannot be allocated; -199 other memory; -2 rows of `pos`; -3 rows
///         of `connect` or NONE_INDEX in a column that is written; -199 memory; -1 the file cannot be opened or
///         written.
/// @note Linear; n log n where the largest reference is far above the number of elements. 8 bytes for each element,
///       and address space of 8 bytes for each reference from 0 to the largest.
TESSOLV_API int medit_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                             element_type type, const dense1D<unsigned int>& refs);

/// Writes a field of metric tensors as a MEDIT solution file, one line per node.
/// @param filename  created before anything is checked: every failure but -1 leaves it empty.
/// @param M         3 x nodes in 2-D or 6 x nodes in 3-D, the packed upper triangles in stored order.
/// @return 0; -1 the file cannot be opened; -2 rows of `M`; -199 memory; -1 the file cannot be written.
/// @note Linear; one block of 256 KiB. No shared state.
TESSOLV_API int medit_tensor(const char* filename, const dense2D<float>& M);

/// Writes the mesh of [first, last) as an EnSight ASCII geometry file: one block of coordinates, then matrix i as part
/// i + 1. Nodes, and the elements of each part, are counted from 1. Empty matrices and those of a type that the format
/// does not know (EL_NODE, pyramids, mixed kinds) make no part and keep their number. All nodes of an element are
/// written, also where the name of the element has fewer: nine of EL_QUAD9 under "quad8", 18 of EL_WEDGE18 under
/// "penta6", 27 of EL_HEXA27 under "hexa20". EL_TRIA6, EL_TETRA4 and EL_TETRA10 come in the order of the format, which
/// turns tetrahedra the other way. Fields are 8 and 12 wide; larger numbers touch the field before them.
/// <!-- preamble: square -->
/// @code
/// // pos: 6 nodes; connect: the triangles (0, 1, 2) and (3, 4, 5)
/// ensight_output("square.geo", pos, connect, EL_TRIA3);  // -> 0
/// @endcode
/// @param filename  created before anything is checked: every failure but -1 leaves it empty.
/// @param pos       1, 2 or 3 x nodes; missing coordinates are written as 0.
/// @param first     first of consecutive matrices, nodes x elements, each numbered over all of `pos`.
/// @param last      behind the last of them; first = last is a mesh without elements.
/// @param types     element_type of each matrix.
/// @return 0; -1 the file cannot be opened; -2 rows of `pos`; -4 last before first; -5 length of `types`; -3 rows of a
///         matrix, or NONE_INDEX where its type has none (indices are not compared with the number of nodes); -199
///         memory; -1 the file cannot be written.
/// @note Linear; one block of 256 KiB. No shared state.
TESSOLV_API int ensight_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>* first,
                               const dense2D<unsigned int>* last, const dense1D<int>& types);

/// The same for one matrix, part 1. -4 and -5 do not occur.
TESSOLV_API int ensight_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                               element_type type);

/// The same for two matrices, parts 1 and 2. -4 and -5 do not occur.
TESSOLV_API int ensight_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect1,
                               const dense2D<unsigned int>& connect2, element_type type1, element_type type2);

/// Writes a triangle mesh as an STL file: the corners of each triangle in the order of the rows, and the unit normal
/// (P1 - P0) x (P2 - P0) / length, or 0 0 0 for a triangle whose normal has the length 0.
/// @param filename  created before anything is checked: every failure but -1 leaves it empty.
/// @param pos       2 or 3 x nodes; a missing z is written as 0.
/// @param connect   3 x triangles.
/// @param ascii     true: text, seven significant digits; false: binary, 50 bytes a triangle, single precision, bytes
///                  little-endian on every machine, the number of triangles cut to 32 bits.
/// @return 0; -1 the file cannot be opened; -2 rows of `pos`; -3 rows of `connect` or an index beyond the nodes; -199
///         memory; -1 the file cannot be written.
/// @note Linear; one block of 256 KiB. No shared state.
TESSOLV_API int STL_output(const char* filename, const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                           bool ascii);

/// Reads an STL file and welds its facets into a mesh. The content never decides between text and binary, `ascii` does.
///
/// The corners within 0.05 of the least height of all facets are merged as by merge, the closest first; triangles that
/// lose a corner and nodes that no triangle uses are dropped, as by remove_degenerated and simplify. The height of a
/// facet is the least distance of a corner Pi from the line through Pj and Pk, |u x (Pi - Pj)| with
/// u = (Pk - Pj) / |Pk - Pj|, each corner taken once in the order 2, 0, 1; it is 0 when two corners coincide. Facets of
/// no height, or of one that is not a number, do not count. If there is no other facet nothing is merged or dropped:
/// every triangle has three nodes of its own, and the corners of a facet that broke off stay behind them.
///
/// Text is taken line by line as fgets with room for 255 characters does, and by the scans "facet normal %lg %lg %lg"
/// and "vertex %lg %lg %lg" in the C locale, whatever the locale of the program: white space is free, keywords are not,
/// and nan, inf, hexadecimal numbers and 1e400 are numbers. Reading ends at the first thing that does not fit, such as
/// "endsolid", and at the end of the file: only the first solid is read, and a file that was cut keeps its whole
/// facets. That is no failure.
/// Binary files are little-endian on every machine. The count in the file may be larger than what follows; it never
/// decides how much memory is taken.
/// <!-- preamble: square -->
/// @code
/// // pos: (0, 0), (1, 0), (1, 1), (0, 0), (1, 1), (0, 1); connect: the triangles (0, 1, 2) and (3, 4, 5)
/// STL_output("square.stl", pos, connect, true);      // -> 0
/// dense2D<double> welded;
/// dense2D<unsigned> triangles;
/// STL_input("square.stl", welded, triangles, true);  // -> 2
/// welded;                                            // -> (0, 0, 0) (1, 0, 0) (1, 1, 0) (0, 1, 0)
/// triangles;                                         // -> (0, 1, 2) (0, 2, 3)
/// @endcode
/// @param filename      a file name as the C runtime takes it.
/// @param[out] pos      3 x nodes, replaced; 0 x 0 on failure and when nothing was read.
/// @param[out] connect  3 x triangles, replaced; likewise.
/// @param ascii         true: text; false: binary.
/// @return number of triangles; -1 the file cannot be opened, or it has no first line (text) or no complete header and
///         count (binary); -199 memory.
/// @note Expected n log n as merge; up to 84 bytes a facet before the weld, whole lines are never held. A FIFO is read
///       if somebody writes to it, and otherwise counts as a file that cannot be opened. No shared state.
TESSOLV_API int STL_input(const char* filename, dense2D<double>& pos, dense2D<unsigned int>& connect, bool ascii);

/// Writes nodes, triangles and quadrilaterals as a Wavefront OBJ file. Texture coordinates and normals belong to nodes:
/// a corner repeats the number of its node for each of them. Nothing separates the corners of a face, so that a
/// triangle 0, 1, 2 alone is the line " f 1//2//3// ": other programs, WavefrontOBJ_input too, need blanks there.
/// @param filename      created before anything is checked: every failure but -1 leaves it empty.
/// @param pos           2 or 3 x nodes; a missing z is written as 0. Numbers have nine significant digits.
/// @param normals       3 x nodes, or empty.
/// @param uvs           2 x nodes, or empty.
/// @param tria_connect  3 x triangles; indices are not compared with the number of nodes.
/// @param quad_connect  4 x quadrilaterals, likewise.
/// @return 0; -1 the file cannot be opened; -2 rows of `pos`; -3 shape of `normals`; -4 shape of `uvs`; -5 rows of
///         `tria_connect` or NONE_INDEX in it; -6 the same of `quad_connect`; -199 memory; -1 the file cannot be
///         written.
/// @note Linear; one block of 256 KiB. No shared state.
TESSOLV_API int WavefrontOBJ_output(const char* filename, const dense2D<double>& pos, const dense2D<double>& normals,
                                    const dense2D<double>& uvs, const dense2D<unsigned int>& tria_connect,
                                    const dense2D<unsigned int>& quad_connect);

/// Reads the nodes, normals, texture coordinates, triangles and quadrilaterals of a Wavefront OBJ file, each in the
/// order of the file. Lines of any other keyword, and faces of another number of corners, are passed over. Normals and
/// texture coordinates are not tied to nodes: the numbers that corners have for them are read and dropped.
///
/// Numbers are those of stream extraction in the C locale, whatever the locale of the program (no nan, inf or
/// hexadecimal); the first word of a line that is none ends its numbers. "v" has three or more, of which three are
/// kept, "vn" three, "vt" at most three. A corner is k, k/t, k/t/n or k//n, where a number behind a slash may be
/// missing. Nodes count from 1; -1 is the last node read so far, -2 the one before. 0, and what reaches before the
/// first node, becomes the number of nodes read so far, an index that check_IDs refuses.
/// @code
/// FILE* file = std::fopen("square.obj", "w");
/// std::fputs("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\nf -4 -3 -2\n", file);
/// std::fclose(file);
/// dense2D<double> pos, normals, uvs;
/// dense2D<unsigned> triangles, quads;
/// WavefrontOBJ_input("square.obj", pos, normals, uvs, triangles, quads);  // -> 0
/// pos.cols;                                                               // -> 4
/// quads;                                                                  // -> (0, 1, 2, 3)
/// triangles;                                                              // -> (0, 1, 2)
/// @endcode
/// @param filename           a file name as the C runtime takes it.
/// @param[out] pos           3 x nodes, replaced, as all outputs; 0 x 0 if the file has none.
/// @param[out] normals       3 x "vn" lines.
/// @param[out] uvs           rows as the first "vt" line that has numbers x such lines: later ones are cut, or padded
///                           with 0.
/// @param[out] tria_connect  3 x triangles; indices are not compared with the number of nodes.
/// @param[out] quad_connect  4 x quadrilaterals, likewise.
/// @return 0; -1 the file cannot be opened or not be read to its end, a line is malformed (too few or too many numbers,
///         a corner of another form or above 2^32 - 1, a texture number before any "vt" line, a normal number before
///         any "vn" line), or memory: what stands before that in the file is kept.
/// @note Linear; one block of 256 KiB, lines are never held. A FIFO is read if somebody writes to it, and otherwise
///       counts as a file that cannot be opened. No shared state.
TESSOLV_API int WavefrontOBJ_input(const char* filename, dense2D<double>& pos, dense2D<double>& normals,
                                   dense2D<double>& uvs, dense2D<unsigned int>& tria_connect,
                                   dense2D<unsigned int>& quad_connect);

}  // namespace tessolv
}  // namespace zeb

#endif
