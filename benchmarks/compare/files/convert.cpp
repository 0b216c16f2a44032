// Converts a binary STL file to the format that the suffix of the other name says: what whole programs are measured
// beside.
#include <string>

#include <tessolv/tessolv.h>

using namespace zeb::tessolv;

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    dense2D<double> pos;
    dense2D<unsigned int> connect;
    if (STL_input(argv[1], pos, connect, false) < 0) return 1;
    const std::string out = argv[2];
    const std::string format = out.substr(out.rfind('.') + 1);
    if (format == "stl") return -STL_output(argv[2], pos, connect, true);
    if (format == "vtk") return -vtk_output(argv[2], pos, connect, EL_TRIA3);
    if (format == "mesh") return -medit_output(argv[2], pos, connect, EL_TRIA3);
    if (format == "obj") return -WavefrontOBJ_output(argv[2], pos, {}, {}, connect, {});
    return 2;
}
