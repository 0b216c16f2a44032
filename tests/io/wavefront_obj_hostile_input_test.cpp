#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <cstring>
#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "io/wavefront_obj_model.h"
#include "support/comma_locale.h"
#include "support/open_files.h"
#include "support/small_stack.h"

using namespace zeb::tessolv;
using namespace test;

// -- large files

TEST(WavefrontOBJInput, ReadsLinesThatLieAcrossBlocks)
{
    std::string text;
    std::mt19937 random(2);
    while (text.size() < 1500000) {
        text += "v " + std::to_string(random() % 1000) + " 0.25 " + std::to_string(random()) + "\n";
        text += random() % 3 != 0 ? "f -1 1 " + std::to_string(random() % 100000) + "/\n" : "f 1 -2 3 -1\r\n";
        if (random() % 500 == 0) text += "# " + std::string(random() % 2000, '.') + "\n";
    }
    const obj_mesh m = read_text(text);
    EXPECT_EQ(m.code, 0);
    EXPECT_GT(m.pos.cols, 20000U);
    EXPECT_EQ(m, model_of(text));
}

TEST(WavefrontOBJInput, ReadsLinesLongerThanABlockLikeShortOnes)
{
    const std::string blanks(300000, ' ');
    const std::string zeros(300000, '0');
    const std::string before = "v 1 1 1\nv 2 2 2\nvt 0 0\nvn 0 0 1\n";
    const std::string start = before + blanks + "f" + blanks;
    EXPECT_EQ(read_text(start + "1" + blanks + "2 -1" + blanks + "\nf 1 2 3\n").trias, columns({{0, 1, 1}, {0, 1, 2}}));
    EXPECT_EQ(read_text(start + zeros + "1/" + zeros + "/-" + zeros + "7 2 +" + zeros + "3\n").trias,
              columns({{0, 1, 2}}));
    EXPECT_EQ(read_text(start + "1 2 3" + blanks + "\\\nf 1 2 3\n").code, -1);
    EXPECT_EQ(read_text(start + "1 2 " + zeros + "4294967296\n").code, -1);
    EXPECT_EQ(
        read_text(before + "v" + blanks + "3." + zeros + "5 -" + zeros + "4" + blanks + "5e-" + zeros + "1\n").pos,
        points({{1, 1, 1}, {2, 2, 2}, {3, -4, .5}}));
    EXPECT_EQ(read_text(before + "v 1 1" + blanks + "x\n").code, -1);
    EXPECT_EQ(read_text(before + "vn 1 1 1" + blanks + "1\n").code, -1);
    EXPECT_EQ(read_text(before + "vt 1 1" + blanks + "1" + blanks + "1\n").code, -1);
    EXPECT_EQ(read_text(before + "vt " + blanks + "7 8" + blanks + "9\n").uvs, points({{0, 0}, {7, 8}}));
    EXPECT_EQ(read_text(before + std::string(300000, 'v') + "\nf 1 2 3").trias, columns({{0, 1, 2}}));
    EXPECT_EQ(read_text(before + "#" + blanks + "f 1 2 3\nf 3 2 1").trias, columns({{2, 1, 0}}));
}

TEST(WavefrontOBJInput, PassesOverAMillionCorners)
{
    std::string text = "v 0 0 0\nf";
    for (int k = 0; k < 1000000; ++k) text += " 1";
    EXPECT_EQ(read_text(text + "\nf 1 1 1\n"), (obj_mesh{0, points({{0, 0, 0}}), {}, {}, columns({{0, 0, 0}}), {}}));
    EXPECT_EQ(read_text(text + " x\nf 1 1 1\n"), (obj_mesh{-1, points({{0, 0, 0}}), {}, {}, {}, {}}));
}

// -- what the system may have in store

TEST(WavefrontOBJInput, DoesNotWaitForAFifoThatNobodyWritesTo)
{
    const temporary_file fifo;
    ASSERT_EQ(mkfifo(fifo.name(), 0600), 0);
    EXPECT_EQ(read_file(fifo.name()), obj_mesh{-1});
}

TEST(WavefrontOBJInput, ReadsAFifoWhoseWriterTakesItsTime)
{
    const temporary_file fifo;
    ASSERT_EQ(mkfifo(fifo.name(), 0600), 0);
    const int writer = open(fifo.name(), O_RDWR);
    ASSERT_GE(writer, 0);
    std::thread late([&] {
        for (const char* part : {"v 1 2", " 3\nf 1 1", " 1"}) {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            EXPECT_GT(write(writer, part, std::strlen(part)), 0);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        close(writer);
    });
    const obj_mesh m = read_file(fifo.name());
    late.join();
    EXPECT_EQ(m, (obj_mesh{0, points({{1, 2, 3}}), {}, {}, columns({{0, 0, 0}}), {}}));
}

TEST(WavefrontOBJInput, RefusesAFileThatCannotBeReadThrough)
{
    // The memory of the process at address 0: it opens, and its reading fails.
    EXPECT_EQ(read_file("/proc/self/mem"), obj_mesh{-1});
}

TEST(WavefrontOBJInput, IsTheSameInEveryLocale)
{
    const obj_mesh expected = read_text(every_form);
    const comma_locale changed;
    EXPECT_EQ(read_text(every_form), expected);
}

TEST(WavefrontOBJInput, ClosesTheFileOnEveryReturn)
{
    const temporary_file good("v 1 2 3\n");
    const temporary_file bad("v 1\n");
    const std::ptrdiff_t before = open_files();
    for (const char* name : {good.name(), bad.name(), "/tmp", "/proc/self/mem"}) read_file(name);
    EXPECT_EQ(open_files(), before);
}

TEST(WavefrontOBJInput, MakesDoWithASmallStack)
{
    const temporary_file file("v 1 2 " + std::string(1000, '7') + "e-1000\nv 0x1 " + std::string(1000, '7') + " 3\n");
    obj_mesh m;
    run_on_small_stack([&] { m = read_file(file.name()); });
    EXPECT_EQ(m.code, -1);
    EXPECT_EQ(m.pos.cols, 1U);
}
