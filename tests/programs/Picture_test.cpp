// Pictures: panels, curves, cursors, legends, sizes and formats.
#include "drawing/picture.h"
#include "failure.h"
#include "picture.h"
#include "support/folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace
{

constexpr int left = 84, right = 972, top = 72, gap = 66;
constexpr uint32_t blue = 0x0073b3, orange = 0xd65e00;

Picture drawn(int panels, const std::function<void(orva::Picture &)> &draw)
{
    const support::Folder folder;
    orva::PictureFile file({.path = folder / "p.png"});
    orva::Picture picture(file, {.heights = std::vector<double>(static_cast<size_t>(panels), 200)}, "title",
                          "subtitle");
    draw(picture);
    picture.save();
    return readPicture(folder / "p.png");
}

// The points near a colour in a rectangle.
int countOf(const Picture &picture, uint32_t color, int x0, int x1, int y0, int y1)
{
    int count = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            count += distance(picture.at(x, y), color) < 60;
    return count;
}

} // namespace

TEST(Picture, PanelsStandOneBelowTheOther)
{
    const std::vector<double> x{0, 10}, y{0.5, 0.5};
    const Picture picture = drawn(2, [&](orva::Picture &p) {
        p.panel(0, orva::axisLinear(0, 10, "x"), orva::axisLinear(0, 1, "y"));
        p.panel(1, orva::axisLinear(0, 10, "x"), orva::axisLinear(-1, 1, "y"));
        p.curve(0, x, y);
        p.curve(1, x, y);
    });
    EXPECT_EQ(picture.width, 1000);
    EXPECT_EQ(picture.height, top + 2 * (200 + gap));
    EXPECT_GT(countOf(picture, blue, left, right, top + 98, top + 103), right - left - 4);
    EXPECT_GT(countOf(picture, blue, left, right, top + 200 + gap + 48, top + 200 + gap + 53),
              right - left - 4);
    EXPECT_EQ(countOf(picture, blue, 0, 1000, top + 110, top + 200 + gap + 40), 0);
}

TEST(Picture, LineIsBrokenWhereAValueIsNotFinite)
{
    std::vector<float> samples(1001, 0.5F);
    for (size_t i = 400; i <= 600; ++i)
        samples[i] =
            i % 2 == 0 ? std::numeric_limits<float>::quiet_NaN() : std::numeric_limits<float>::infinity();
    const Picture picture = drawn(1, [&](orva::Picture &p) {
        p.panel(0, orva::axisLinear(0, 1, "x"), orva::axisLinear(0, 1, "y"));
        p.samples(0, 0, 0.001, samples);
    });
    const int middle = (left + right) / 2;
    EXPECT_GT(countOf(picture, blue, left, middle - 100, top, top + 200), 300);
    EXPECT_EQ(countOf(picture, blue, middle - 80, middle + 80, top, top + 200), 0);
    EXPECT_GT(countOf(picture, blue, middle + 100, right, top, top + 200), 300);
}

TEST(Picture, MillionPointsShowTheirWholeStretch)
{
    std::vector<float> samples(1000000);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(0.5 * std::sin(0.1 * static_cast<double>(i)));
    const Picture picture = drawn(1, [&](orva::Picture &p) {
        p.panel(0, orva::axisLinear(0, 1e6, "x"), orva::axisLinear(-1, 1, "y"));
        p.samples(0, 0, 1, samples);
    });
    EXPECT_GT(countOf(picture, blue, left + 2, right - 2, top + 52, top + 148),
              96 * (right - left - 4) * 99 / 100);
    EXPECT_EQ(countOf(picture, blue, left, right, top, top + 47), 0);
}

TEST(Picture, ValuesFarOutsideAreCutAtTheFrame)
{
    const std::vector<double> x{-1e300, 0.5, 1e300}, y{-1e300, 1e300, -1e300};
    const Picture picture = drawn(1, [&](orva::Picture &p) {
        p.panel(0, orva::axisLinear(0, 1, "x"), orva::axisLinear(0, 1, "y"));
        p.curve(0, x, y);
    });
    EXPECT_EQ(countOf(picture, blue, 0, 1000, 0, top), 0);
    EXPECT_EQ(countOf(picture, blue, 0, left, 0, picture.height), 0);
}

TEST(Picture, LogarithmicAxisSpreadsDecadesEvenly)
{
    const std::vector<double> x{100, 100.001}, y{0, 1};
    const Picture picture = drawn(1, [&](orva::Picture &p) {
        p.panel(0, orva::axisFrequency(10, 1000, true), orva::axisLinear(0, 1, "y"));
        p.curve(0, x, y);
    });
    const int middle = (left + right) / 2;
    EXPECT_GT(countOf(picture, blue, middle - 3, middle + 3, top, top + 200), 150);
}

TEST(Picture, LegendShowsTheCurvesThatHaveNames)
{
    const std::vector<double> x{0, 1}, y{0.1, 0.1}, z{0.2, 0.2};
    const auto draw = [&](const char *first, const char *second) {
        return drawn(1, [&](orva::Picture &p) {
            p.panel(0, orva::axisLinear(0, 1, "x"), orva::axisLinear(0, 1, "y"));
            p.curve(0, x, y, first);
            p.curve(0, x, z, second);
        });
    };
    const int half = (left + right) / 2;
    const Picture both = draw("one", "another");
    EXPECT_GT(countOf(both, blue, half, right, top - 30, top - 2), 40);
    EXPECT_GT(countOf(both, orange, half, right, top - 30, top - 2), 40);
    const Picture second = draw("", "another");
    EXPECT_EQ(countOf(second, blue, half, right, top - 30, top - 2), 0);
    EXPECT_GT(countOf(second, orange, half, right, top - 30, top - 2), 40);
    const Picture none = draw("", "");
    EXPECT_EQ(countOf(none, 0x212121, half, right, top - 30, top - 2), 0);
    EXPECT_EQ(countOf(none, orange, half, right, top - 30, top - 2), 0);
}

TEST(Picture, CursorStandsAtItsValue)
{
    const Picture picture = drawn(1, [&](orva::Picture &p) {
        p.panel(0, orva::axisLinear(0, 8, "x"), orva::axisLinear(0, 1, "y"));
        p.cursor(0, 1, "cursor");
    });
    const int at = left + (right - left) / 8;
    EXPECT_GT(countOf(picture, 0x212121, at - 2, at + 2, top, top + 200), 100);
    EXPECT_GT(countOf(picture, 0x212121, at + 4, at + 80, top + 4, top + 24), 30) << "its name";
}

TEST(Picture, PointsAreDotsInAColourOfTheirOwn)
{
    const std::vector<double> x{2, 6}, y{0.5, 0.25}, far{3, 4},
        away{1e30, -std::numeric_limits<double>::infinity()};
    const Picture picture = drawn(1, [&](orva::Picture &p) {
        p.panel(0, orva::axisLinear(0, 8, "x"), orva::axisLinear(0, 1, "y"));
        p.points(0, x, y, orva::Mark::dot, "first");
        p.points(0, far, away, orva::Mark::dot);
    });
    const int width = right - left;
    for (int i = 0; i < 2; ++i) {
        const int across = left + width * (i == 0 ? 2 : 6) / 8, down = top + (i == 0 ? 100 : 150);
        EXPECT_GT(countOf(picture, blue, across - 5, across + 5, down - 5, down + 5), 30);
    }
    EXPECT_LT(countOf(picture, blue, left, right, top, top + 200), 150) << "nothing between them";
    EXPECT_EQ(countOf(picture, orange, left, right, top, top + 200), 0);
    EXPECT_GT(countOf(picture, blue, left, right, top - 30, top - 2), 40) << "legend";
}

TEST(Picture, CircleGoesThroughItsAxes)
{
    const Picture picture = drawn(1, [&](orva::Picture &p) {
        p.panel(0, orva::axisLinear(-2.3, 2.1, "Real"), orva::axisLinear(-1.05, 1.05, "Imaginary"));
        p.circle(0, 1);
    });
    const auto column = [](double x) { return left + static_cast<int>((right - left) * (x + 2.3) / 4.4); };
    const auto row = [](double y) { return top + static_cast<int>(200 * (1.05 - y) / 2.1); };
    for (const auto &[x, y] : {std::pair{1.0, 0.0}, {-1.0, 0.0}, {0.0, 1.0}, {0.0, -1.0}, {0.6, 0.8}})
        EXPECT_GT(countOf(picture, 0x999999, column(x) - 2, column(x) + 3, row(y) - 2, row(y) + 3), 2)
            << x << ' ' << y;
    EXPECT_EQ(countOf(picture, 0x999999, column(0.3), column(0.5), row(0.6), row(0.4)), 0);
}

TEST(Picture, SizeIsInCentimetresAndResolutionInDotsPerInch)
{
    const struct {
        double width, height;
        int dpi, columns, rows;
    } cases[] = {{0, 0, 150, 1000, 338},
                 {0, 0, 300, 2000, 676},
                 {12.7, 7.62, 150, 750, 450},
                 {0, 0, 75, 500, 169},
                 {25.4, 5.08, 72, 720, 144}};
    for (const auto &c : cases) {
        const support::Folder folder;
        const std::string path = folder / "p.png";
        orva::PictureFile file({path, c.width, c.height, c.dpi});
        orva::Picture picture(file, {.heights = {200}}, "title", "subtitle");
        picture.panel(0, orva::axisLinear(0, 10, "x"), orva::axisLinear(0, 1, "y"));
        picture.save();
        const Picture drawn = readPicture(path);
        EXPECT_EQ(drawn.width, c.columns);
        EXPECT_EQ(drawn.height, c.rows);
        EXPECT_GT(colorsIn(drawn, 0, 0, c.columns, c.rows), 20U);
        // Points a metre, after the head: length 9, name, twice the number, 1 for metres.
        const std::string bytes = support::readFile(path);
        EXPECT_EQ(bytes.substr(37, 4), "pHYs");
        uint32_t dots = 0;
        for (size_t i = 41; i < 45; ++i)
            dots = dots << 8 | static_cast<unsigned char>(bytes[i]);
        EXPECT_NEAR(dots * 0.0254, c.dpi, 0.02);
    }
}

TEST(Picture, FormatFollowsTheEndingOfTheName)
{
    for (const auto &[name, head] : {std::pair{"p.PNG", "\x89PNG"}, {"p.svg", "<?xml"}, {"p.Pdf", "%PDF-"}}) {
        const support::Folder folder;
        orva::PictureFile file({.path = folder / name});
        const orva::PictureLayout layout{.heights = {200}, .colorBar = true};
        const orva::Axis up = orva::axisLinear(0, 1, "y");
        orva::LevelGrid grid(orva::gridSizeOf(file, layout), up, 0.5, 3);
        const float levels[] = {-30, -20, -10};
        grid.add(levels);
        orva::Picture picture(file, layout, "title", "subtitle");
        picture.panel(0, orva::axisLinear(0, 1, "x"), up);
        picture.image(0, grid, 0, 1, -40, 0, "Level");
        EXPECT_EQ(std::filesystem::exists(folder.path / name), false);
        picture.save();
        EXPECT_TRUE(support::readFile(folder / name).starts_with(head)) << name;
        EXPECT_EQ(folder.entries(), std::vector<std::string>{name});
    }
}

TEST(Picture, RefusesNamesPlacesAndSizesThatWillNotDo)
{
    const support::Folder folder;
    std::filesystem::create_directory(folder.path / "folder.png");
    const auto refusalOf = [&](const std::string &name, double width, double height) {
        try {
            orva::PictureFile file({.path = folder / name, .widthCm = width, .heightCm = height});
            orva::Picture(file, {.heights = {200, 100}}, "title", "subtitle");
        } catch (const orva::Failure &failure) {
            return std::to_string(failure.status) + " " + failure.text;
        }
        return std::string("none");
    };
    const std::string ending = ": the name of a picture ends in .png, .svg or .pdf";
    EXPECT_EQ(refusalOf("p.gif", 0, 0), "2 " + folder / "p.gif" + ending);
    EXPECT_EQ(refusalOf("png", 0, 0), "2 " + folder / "png" + ending);
    EXPECT_EQ(refusalOf("folder.png", 0, 0), "1 " + folder / "folder.png" + ": Is a directory");
    EXPECT_EQ(refusalOf("no/p.png", 0, 0), "1 " + folder / "no/p.png" + ": No such file or directory");
    const std::string small = "2 --size is too small; this picture needs 4.0x6.6 at least";
    EXPECT_EQ(refusalOf("p.png", 3.9, 10), small);
    EXPECT_EQ(refusalOf("p.svg", 10, 6.4), small);
    EXPECT_EQ(refusalOf("p.pdf", 4, 6.6), "none");
    EXPECT_EQ(folder.entries(), std::vector<std::string>{"folder.png"});
}
