import io
import os
from pathlib import Path

import meshio
import numpy as np
import pytest

import tessolv as ts
from meshes import FACED, grid, shuffled

PARTS = Path(__file__).resolve().parents[2] / "examples" / "parts"
MESHIO = {
    ts.EL_EDGE2: "line", ts.EL_TRIA3: "triangle", ts.EL_QUAD4: "quad", ts.EL_TETRA4: "tetra", ts.EL_HEXA8: "hexahedron",
}  # fmt: skip


@pytest.mark.parametrize("type", FACED)
def test_vtk_files_are_read_by_meshio(type, tmp_path):
    mesh = shuffled(type, 2, 5)
    ts.vtk_output(tmp_path / "mesh.vtk", mesh.pos, mesh.connect, type)
    read = meshio.read(tmp_path / "mesh.vtk")
    np.testing.assert_allclose(read.points[:, : mesh.pos.shape[1]], mesh.pos, atol=1e-6)
    order = [0, 1, 3, 2] if type == ts.EL_TETRA4 else list(range(mesh.connect.shape[1]))
    np.testing.assert_array_equal(read.cells_dict[MESHIO[type]], mesh.connect[:, order])


@pytest.mark.parametrize("type", FACED)
def test_medit_files_are_read_by_meshio(type, tmp_path):
    mesh = shuffled(type, 2, 5)
    refs = np.arange(len(mesh.connect)) % 2
    ts.medit_output(tmp_path / "mesh.mesh", mesh.pos, [mesh.connect[:1], mesh.connect[1:]], [type, type])
    read = meshio.read(tmp_path / "mesh.mesh")
    cells = np.concatenate([block.data for block in read.cells])
    np.testing.assert_array_equal(cells, mesh.connect)
    ts.medit_output(tmp_path / "refs.mesh", mesh.pos, mesh.connect, type, refs)
    read = meshio.read(tmp_path / "refs.mesh")
    cells = np.concatenate([block.data for block in read.cells])
    np.testing.assert_array_equal(cells, mesh.connect[np.argsort(refs, kind="stable")])


def test_cells_are_written_to_names_and_to_open_files(tmp_path):
    mesh = grid(ts.EL_TETRA4, 1)
    ts.vtk_output(tmp_path / "whole.vtk", mesh.pos, mesh.connect, mesh.type)
    cells = ts.vtk_convert(mesh.connect, mesh.type)
    assert cells.cell_count == 6 and cells.cell_types.tolist() == [10] * 6
    ts.vtk_output(tmp_path / "cells.vtk", mesh.pos, cells=cells)
    with open(tmp_path / "open.vtk", "w") as file:
        ts.vtk_output(file, mesh.pos, cells=cells)
    with open(tmp_path / "behind.vtk", "wb") as file:
        file.write(b"# first\n")
        ts.vtk_output(file, mesh.pos, cells=cells)
        file.write(b"# last\n")
    whole = (tmp_path / "whole.vtk").read_bytes()
    assert (tmp_path / "cells.vtk").read_bytes() == whole == (tmp_path / "open.vtk").read_bytes()
    assert (tmp_path / "behind.vtk").read_bytes() == b"# first\n" + whole + b"# last\n"
    with pytest.raises(ts.Error) as caught:
        ts.vtk_output(io.BytesIO(), mesh.pos, cells=cells)
    assert caught.value.argument == "file"
    more = ts.vtk_convert([[0, 1]], ts.EL_EDGE2, cells)
    assert more.cell_count == 7 and more.cells[-3:].tolist() == [2, 0, 1] and len(cells.cell_types) == 6


def test_ensight_files_name_their_parts(tmp_path):
    mesh = grid(ts.EL_QUAD4, 1)
    ts.ensight_output(tmp_path / "mesh.geo", mesh.pos, [mesh.connect, mesh.connect[:, :3]], [7, 6])
    text = (tmp_path / "mesh.geo").read_text()
    assert "quad4" in text and "tria3" in text and text.count("part") == 2


@pytest.mark.parametrize("ascii", [True, False])
def test_stl_files_come_back_welded(ascii, tmp_path):
    mesh = shuffled(ts.EL_TETRA4, 2, 3, drop=0)
    hull = ts.get_boundaries(mesh.connect, ts.get_neighbors(mesh.connect, mesh.type), mesh.type)
    ts.STL_output(tmp_path / "hull.stl", mesh.pos, hull, ascii)
    pos, connect = ts.STL_input(tmp_path / "hull.stl", ascii)
    np.testing.assert_allclose(pos[connect], mesh.pos[hull], atol=1e-5)
    assert len(pos) == len(np.unique(hull))
    read = meshio.read(tmp_path / "hull.stl")
    np.testing.assert_allclose(read.points[read.cells_dict["triangle"]], mesh.pos[hull], atol=1e-5)


def test_a_real_part_is_closed():
    pos, connect = ts.STL_input(PARTS / "flange.stl", ascii=False)
    table = ts.get_neighbors(connect, ts.EL_TRIA3)
    assert len(connect) > 100 and (table >= 0).all()
    read = meshio.read(PARTS / "flange.stl")
    assert len(read.cells_dict["triangle"]) == len(connect)


def test_obj_files_are_read(tmp_path):
    text = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvn 0 0 1\nvt 0.5 0.25\nf 1/1/1 2/1/1 3/1/1\nf 1 2 3 4\n"
    (tmp_path / "part.obj").write_text(text)
    part = ts.WavefrontOBJ_input(tmp_path / "part.obj")
    assert part.pos.tolist() == [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]]
    assert part.normals.tolist() == [[0, 0, 1]] and part.uvs.tolist() == [[0.5, 0.25]]
    assert part.tria_connect.tolist() == [[0, 1, 2]] and part.quad_connect.tolist() == [[0, 1, 2, 3]]
    ts.WavefrontOBJ_output(tmp_path / "again.obj", part.pos, None, None, part.tria_connect)
    assert " f 1//2//3// " in (tmp_path / "again.obj").read_text()


def test_tensors_are_written(tmp_path):
    ts.medit_tensor(tmp_path / "field.sol", [[1, 0, 1], [2, 0, 2]])
    assert (tmp_path / "field.sol").read_text().split()[:4] == ["2", "3", "2", "2"]


def test_names_are_what_the_system_takes(tmp_path):
    mesh = grid(ts.EL_TRIA3, 1)
    pos = np.column_stack([mesh.pos, np.zeros(4)])
    for name in (str(tmp_path / "ä.stl"), os.fsencode(tmp_path / "b.stl"), tmp_path / "c.stl"):
        ts.STL_output(name, pos, mesh.connect, True)
        assert len(ts.STL_input(name, True).connect) == 2
    for name in (3, None, "with\0zero"):
        with pytest.raises(ts.Error) as caught:
            ts.STL_input(name, True)
        assert caught.value.argument == "filename" and caught.value.code is None
    for ending in ("stl", "obj", "vtu"):
        (tmp_path / f"part.{ending}").write_text("v 0 0 0\n")
        with pytest.raises(ts.Error, match="file: is no file name"):
            ts.Mesh.read(f"{tmp_path}/part.{ending}\0.{ending}")
