// The free functions of numerics are exported under the names that they have in the headers, without
// decoration: so programs in other languages find them.

#include <gtest/gtest.h>
#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/runtime/sharelib.h>

#include <sstream>
#include <string>

namespace {

TEST(Exports, HaveTheNamesOfTheHeaders) {
    const std::string path(KV_FileSpecFromNative(KVBASE_LIBRARY).GetFileName());
    KV_SystemString name(path.substr(path.rfind('\\') + 1).c_str(), false);
    KV_SystemString folder(path.substr(0, path.rfind('\\')).c_str(), false);
    KV_SharedLib library;
    library.Load(name, folder, nullptr);
    std::istringstream names(
        "BiVec2 Cross2p BiVec3 Cross3p Cross3v BiVec4 TriVec4 Dot2 Dot3p Dot4p Dot3v Dot4v "
        "Dot4B vDotB4 vDotT4 BDotT4 Determinant det QProd QRotate Matrix_Inverse "
        "MatrixInverse Least_Squares Constrained_Least_Squares Null_Space Eigen FitPoly "
        "UsePoly UsePolyd FactorValue SwapValues Permutations MapOnLine MapOnLine2D "
        "MapOnLine3D MapOnLine4D MapOnTriangle MapOnTriangle3D MapOnTriangle4D "
        "MapOnTrianglePlane3D MapOnTetrahedron MapOnTetrahedron4D MapOnPentachor "
        "TriangleInvert TetrahedronInvert CheckPointInTetrahedron ChooseBestSamples "
        "InterpolateLab Vol3 VolT InSector");
    for (std::string function; names >> function;)
        EXPECT_NE(library.FindSymbol(function.c_str()), nullptr) << function;
    for (const char *function : {"Svd_Decompose", "Safe_Hypot", "invert3"})
        EXPECT_EQ(library.FindSymbol(function), nullptr) << function;
}

}  // namespace
