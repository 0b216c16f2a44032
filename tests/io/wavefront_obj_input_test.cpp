#include <cmath>
#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "io/wavefront_obj_model.h"

using namespace zeb::tessolv;
using namespace test;

TEST(WavefrontOBJInput, ReadsEveryKindOfLine)
{
    const obj_mesh m = read_text(every_form);
    EXPECT_EQ(m.code, 0);
    EXPECT_EQ(m.pos, points({{0, 0, 0}, {1.5, -0.2, 3}, {.5, 1, 100}, {.1, .2, .3}}));
    EXPECT_EQ(m.normals, points({{0, 0, 1}, {0, std::sqrt(0.5), 0}}));
    EXPECT_TRUE(std::signbit(m.normals(2, 1)));
    EXPECT_EQ(m.uvs, points({{.5, .25}, {1, 0}, {1, 2}}));
    EXPECT_EQ(m.trias, columns({{0, 1, 2}, {0, 1, 2}, {0, 1, 2}, {0, 1, 2}, {3, 2, 1}, {0, 4, 4}, {4294967294, 0, 1}}));
    EXPECT_EQ(m.quads, columns({{0, 1, 2, 3}, {0, 1, 2, 3}}));
    EXPECT_EQ(m, model_of(every_form));
}

TEST(WavefrontOBJInput, SkipsAPentagonAndReadsOn)
{
    const obj_mesh m = read_text("v 0 0 0\nf 1 2 3 4 5\nf 1 2 3\nv 1 1 1\n");
    EXPECT_EQ(m, (obj_mesh{0, points({{0, 0, 0}, {1, 1, 1}}), {}, {}, columns({{0, 1, 2}}), {}}));
}

TEST(WavefrontOBJInput, RefusesAVertexOfTwoNumbers)
{
    const obj_mesh m = read_text("v 0 0 0\nf 1 1 1\nv 1 2\nv 5 5 5\n");
    EXPECT_EQ(m, (obj_mesh{-1, points({{0, 0, 0}}), {}, {}, columns({{0, 0, 0}}), {}}));
}

TEST(WavefrontOBJInput, RefusesThreeFieldsBeforeAnyTextureLine)
{
    const obj_mesh m = read_text("v 0 0 0\nvn 0 0 1\nf 1/1/1 1/1/1 1/1/1\n");
    EXPECT_EQ(m, (obj_mesh{-1, points({{0, 0, 0}}), points({{0, 0, 1}}), {}, {}, {}}));
}

TEST(WavefrontOBJInput, LeavesNothingInTheOutputsWhenThereIsNoFile)
{
    const temporary_file missing;
    for (const char* name : {static_cast<const char*>(nullptr), "", missing.name(), "/tmp", "/dev/null/x"})
        EXPECT_EQ(read_file(name), obj_mesh{-1}) << (name != nullptr ? name : "null");
}

TEST(WavefrontOBJInput, ReadsAnEmptyFile)
{
    EXPECT_EQ(read_text(""), obj_mesh{});
    EXPECT_EQ(read_file("/dev/null"), obj_mesh{});
}

TEST(WavefrontOBJInput, KeepsAFaceAtTheEndOfAFileWithoutNewline)
{
    EXPECT_EQ(read_text("f 1 2 3").trias, columns({{0, 1, 2}}));
    EXPECT_EQ(read_text("v 1 2 3").pos, points({{1, 2, 3}}));
    EXPECT_EQ(read_text("f 1 2 3 4").quads, columns({{0, 1, 2, 3}}));
}

TEST(WavefrontOBJInput, TakesACarriageReturnForABlank)
{
    EXPECT_EQ(read_text("v 1 2 3\r\nf 1 1 1\r\n"),
              (obj_mesh{0, points({{1, 2, 3}}), {}, {}, columns({{0, 0, 0}}), {}}));
    EXPECT_EQ(read_text("v\r1\r2\r3\r4\r5"), (obj_mesh{0, points({{1, 2, 3}}), {}, {}, {}, {}}));
}

TEST(WavefrontOBJInput, ReplacesOutputsThatShareTheirBuffer)
{
    const temporary_file file("v 1 2 3\nf 1 1 1\n");
    dense2D<double> pos = points({{9, 9, 9}, {8, 8, 8}}), normals, uvs;
    dense2D<unsigned int> trias, quads;
    dense2D<double> other;
    other.shallow_copy(pos);
    ASSERT_EQ(WavefrontOBJ_input(file.name(), pos, normals, uvs, trias, quads), 0);
    EXPECT_EQ(other, points({{9, 9, 9}, {8, 8, 8}}));
    EXPECT_EQ(pos, points({{1, 2, 3}}));
    EXPECT_EQ(pos.buffer->ref_count, 1);
    EXPECT_EQ(trias.buffer->ref_count, 1);
}

TEST(WavefrontOBJInput, KeepsTheRowsOfTheFirstTextureLineThatHasNumbers)
{
    EXPECT_EQ(read_text("vt 1 2\nvt 3\nvt 4 5 6\nvt\n").uvs, points({{1, 2}, {3, 0}, {4, 5}}));
    EXPECT_EQ(read_text("vt\nvt 1 2 3\nvt 3\n").uvs, points({{1, 2, 3}, {3, 0, 0}}));
    EXPECT_EQ(read_text("vt 1\nvt 2 3\n").uvs, points({{1}, {2}}));
}

TEST(WavefrontOBJInput, CountsATextureLineWithoutNumbersAsSeen)
{
    EXPECT_EQ(read_text("vt\nf 1/1 2/2 3/3\n"), (obj_mesh{0, {}, {}, {}, columns({{0, 1, 2}}), {}}));
}

struct line_case {
    const char* name;
    const char* line;  // behind "v 1 1 1", "v 2 2 2", "vt 0 0" and "vn 0 0 1"
    int code;
    std::vector<unsigned> face;  // none: empty
};

class FaceLine : public testing::TestWithParam<line_case> {};

TEST_P(FaceLine, GivesItsFaceOrItsCode)
{
    const auto& [name, line, code, face] = GetParam();
    const std::string before = "v 1 1 1\nv 2 2 2\nvt 0 0\nvn 0 0 1\n";
    for (const std::string behind : {"", "\n", "\r\n", " \n", "\nf 1 2 1 2\n"}) {
        const std::string text = std::string(before).append(line).append(behind);
        const obj_mesh m = read_text(text);
        EXPECT_EQ(m.code, code);
        EXPECT_EQ(m.trias, face.size() == 3 ? columns({face}) : columns({}));
        EXPECT_EQ(m.quads.cols, (face.size() == 4 ? 1 : 0) + (code == 0 && behind.size() > 2 ? 1 : 0));
        EXPECT_EQ(m, model_of(text));
    }
}

INSTANTIATE_TEST_SUITE_P(
    WavefrontOBJInput, FaceLine,
    testing::Values(
        line_case{"Plain", "f 1 2 3", 0, {0, 1, 2}}, line_case{"Quadrilateral", "f 4 3 2 1", 0, {3, 2, 1, 0}},
        line_case{"BlankBefore", "  f  1\t2 3 ", 0, {0, 1, 2}}, line_case{"Texture", "f 1/1 2/9 3/1", 0, {0, 1, 2}},
        line_case{"TextureAndNormal", "f 1/1/1 2/1/1 3/1/1", 0, {0, 1, 2}},
        line_case{"Normal", "f 1//1 2//1 3//1", 0, {0, 1, 2}},
        line_case{"SlashWithoutTexture", "f 1/ 2/ 3/", 0, {0, 1, 2}},
        line_case{"SlashesWithoutNumbers", "f 1// 2// 3/1/", 0, {0, 1, 2}},
        line_case{"MixedForms", "f 1 2/1 3//1", 0, {0, 1, 2}}, line_case{"PlusSign", "f +1 +2/+1 3", 0, {0, 1, 2}},
        line_case{"LeadingZeros", "f 00000000000000000000000000001 002 3", 0, {0, 1, 2}},
        line_case{"SignsBetween", "f 1+2-1", 0, {0, 1, 1}}, line_case{"NumberZero", "f 0 1 2", 0, {2, 0, 1}},
        line_case{"MinusZero", "f -0 1 2", 0, {2, 0, 1}}, line_case{"CountingBack", "f -1 -2 1", 0, {1, 0, 0}},
        line_case{"BeforeTheFirst", "f -3 -99999999999999999999 1", 0, {2, 2, 0}},
        line_case{"NegativeTextureAndNormal", "f 1/-1/-1 2/-9/-9 3/-4294967299/-99999999999", 0, {0, 1, 2}},
        line_case{"LargestNumber", "f 4294967295 1 2", 0, {4294967294, 0, 1}},
        line_case{"AboveTheLargest", "f 4294967296 1 2", -1, {}},
        line_case{"FarAboveTheLargest", "f 99999999999999999999999 1 2", -1, {}},
        line_case{"TextureAboveTheLargest", "f 1/4294967296 1 2", -1, {}},
        line_case{"NormalAboveTheLargest", "f 1//4294967296 1 2", -1, {}}, line_case{"NoCorner", "f", 0, {}},
        line_case{"OneCorner", "f 1", 0, {}}, line_case{"TwoCorners", "f 1 2", 0, {}},
        line_case{"FiveCorners", "f 1 2 3 4 5", 0, {}}, line_case{"BadCornerOfAPolygon", "f 1 2 3 4 5 x", -1, {}},
        line_case{"Word", "f 1 2 x", -1, {}}, line_case{"Comment", "f 1 2 3 # face", -1, {}},
        line_case{"Point", "f 1.0 2 3", -1, {}}, line_case{"Comma", "f 1,2,3", -1, {}},
        line_case{"Backslash", "f 1 2 3 \\", -1, {}}, line_case{"BackslashBehindANumber", "f 1 2 3\\", -1, {}},
        line_case{"FourthField", "f 1/1/1/1 2 3", -1, {}}, line_case{"EmptyFourthField", "f 1/1/1/ 2 3", -1, {}},
        line_case{"ThreeSlashes", "f 1/// 2 3", -1, {}}, line_case{"RunTogether", " f 1//2//3// ", -1, {}},
        line_case{"SlashFirst", "f /1 2 3", -1, {}}, line_case{"BlankBeforeSlash", "f 1 /1 2 3", -1, {}},
        line_case{"SignAlone", "f 1 2 -", -1, {}}, line_case{"SignAsTexture", "f 1/- 2 3", -1, {}},
        line_case{"TwoSigns", "f --1 2 3", -1, {}}, line_case{"Hexadecimal", "f 0x1 2 3", -1, {}},
        line_case{"OtherWord", "face 1 2 3", 0, {}}, line_case{"Capital", "F 1 2 3", 0, {}}),
    [](const auto& row) { return std::string(row.param.name); });

struct number_line {
    const char* line;
    int code;
    const char* comment;
};

TEST(WavefrontOBJInput, CountsTheNumbersOfALine)
{
    const number_line lines[] = {
        {"v 1 2 3 4", 0, "a weight"},
        {"v 1 2 3 x", 0, "text behind the last number"},
        {"v 1 2 3x", 0, "text at the last number"},
        {"v 1 2 3.4.5.6", 0, "points start new numbers"},
        {"v 1 2", -1, "one missing"},
        {"v", -1, "none"},
        {"v 1 2 nan", -1, "nan is no number"},
        {"v 1 2 inf", -1, "inf is no number"},
        {"v 1 2 1e400", -1, "overflow ends the list"},
        {"v 1 2 1e-400", 0, "underflow does not"},
        {"v 1 2 3e", -1, "unfinished exponent"},
        {"v 0x1 2 3", -1, "hexadecimal"},
        {"v 1,5 2 3", -1, "decimal comma"},
        {"vn 1 2 3", 0, ""},
        {"vn 1 2 3 x", 0, "text behind the last number"},
        {"vn 1 2 3 4", -1, "one too many"},
        {"vn 1 2", -1, "one missing"},
        {"vn", -1, "none"},
        {"vt 1 2 3", 0, ""},
        {"vt 1 2 3 4", -1, "one too many"},
        {"vt 1 2 3 x", 0, "text behind the last number"},
        {"vt x", 0, "none"},
        {"vertex", 0, "another word"},
        {"vtx 1 2 3 4", 0, "another word"},
        {"v1 2", 0, "another word"},
        {"V 1", 0, "another word"},
        {"#v 1", 0, "comment"},
    };
    for (const auto& [line, code, comment] : lines) {
        SCOPED_TRACE(std::string(line) + ": " + comment);
        const std::string text = std::string("v 0 0 0\n") + line + "\nf 1 1 1\n";
        const obj_mesh m = read_text(text);
        EXPECT_EQ(m.code, code);
        EXPECT_EQ(m.trias.cols, code == 0 ? 1U : 0U);
        EXPECT_EQ(m, model_of(text));
        EXPECT_EQ(read_text(line), model_of(line));
    }
}

TEST(WavefrontOBJInput, TakesZeroBytesForPartOfAWord)
{
    const std::string zero(1, '\0');
    EXPECT_EQ(read_text("v" + zero + " 1 2 3\n"), obj_mesh{});
    EXPECT_EQ(read_text("v 1 2 3" + zero + "4\n").pos, points({{1, 2, 3}}));
    EXPECT_EQ(read_text("v 1 2 " + zero + "3\n").code, -1);
    EXPECT_EQ(read_text("f 1 2 3" + zero + "\n").code, -1);
    EXPECT_EQ(read_text("f" + zero), obj_mesh{});
    std::string wide;
    for (const char c : std::string(every_form)) wide += zero + c;
    EXPECT_EQ(read_text(wide), obj_mesh{});
}

TEST(WavefrontOBJInput, ReadsAFileCutAtEachByte)
{
    const std::string text = every_form;
    for (std::size_t n = 0; n <= text.size(); ++n) {
        const std::string cut = text.substr(0, n);
        EXPECT_EQ(read_text(cut), model_of(cut)) << "cut behind byte " << n;
    }
}

TEST(WavefrontOBJInput, ReadsDamagedFilesByTheRules)
{
    std::mt19937 random(1);
    const std::string pieces[] = {"\n",  " ",     "/",  "//",          "-",  "+",          "1",
                                  "0",   "x",     ".",  "e",           "\r", "\t",         "v ",
                                  "vt ", "vn ",   "f ", "\nf 1 2 3\n", "\\", "4294967296", std::string(1, '\0'),
                                  "nan", "1e999", "#"};
    int refused = 0;
    for (int k = 0; k < 4000; ++k) {
        std::string text = every_form;
        for (std::size_t n = random() % 4; n > 0; --n) {
            const std::size_t at = random() % text.size();
            switch (random() % 4) {
                case 0:
                    text[at] = static_cast<char>(random());
                    break;
                case 1:
                    text.insert(at, pieces[random() % std::size(pieces)]);
                    break;
                case 2:
                    text.erase(at, random() % 5);
                    break;
                default:
                    text[at] = "0123456789/ -\n"[random() % 14];
            }
        }
        const obj_mesh m = read_text(text);
        refused += m.code != 0;
        ASSERT_EQ(m, model_of(text)) << text;
    }
    EXPECT_GT(refused, 700);
    EXPECT_LT(refused, 3300);
}
