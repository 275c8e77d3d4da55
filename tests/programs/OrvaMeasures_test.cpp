// orva measures: the table that it writes, its picture, its line.
#include "drawing/axis.h"
#include "drawing/colormap.h"
#include "orva.h"
#include "picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace
{

using orva::colormapColor;

struct Table {
    std::vector<std::string> names;
    std::vector<std::vector<double>> rows;
};

Table readCsv(const std::string &text)
{
    Table table;
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    std::istringstream names(line);
    for (std::string name; std::getline(names, name, ',');)
        table.names.push_back(name);
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        table.rows.emplace_back();
        for (std::string field; std::getline(fields, field, ',');)
            table.rows.back().push_back(std::strtod(field.c_str(), nullptr));
    }
    return table;
}

Table measured(const support::Folder &folder, const std::vector<std::string> &how)
{
    std::vector<std::string> words{"measures", "in.wav"};
    words.insert(words.end(), how.begin(), how.end());
    const support::Outcome outcome = orvaRun(words, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return readCsv(outcome.out);
}

} // namespace

TEST(OrvaMeasures, ASineHasItsEnergyItsCrossingsAndItsBand)
{
    const support::Folder folder;
    for (const double hertz : {440.0, 3000.0, 15000.0}) {
        writeSound(folder / "in.wav", sine(hertz, 0.5, 48000));
        const Table table = measured(folder, {});
        ASSERT_EQ(table.rows.size(), 188u) << "48000 / 256, rounded up";
        ASSERT_EQ(table.names.size(), 44u);
        EXPECT_EQ(table.names[1], "channel");
        const auto &row = table.rows[94];
        EXPECT_NEAR(row[0], 94 * 256 / 48000.0, 1e-5);
        EXPECT_EQ(row[1], 1);
        EXPECT_NEAR(row[2], 10 * std::log10(0.125 / 0.32768), 0.1);
        EXPECT_NEAR(row[3], 2 * hertz, 100);
        const auto loudest = std::max_element(row.begin() + 4, row.end());
        EXPECT_NEAR(*loudest, -6.02, 1.5) << "a sine between two bins has 1.4 dB less";
        // The band, from its lower to its upper end, 40 of them even in mels up to 24 kHz.
        const auto mels = [](double f) { return 1127.01048 * std::log(f / 700 + 1); };
        const double band = mels(hertz) / mels(24000) * 40;
        EXPECT_NEAR(static_cast<double>(loudest - row.begin() - 4), std::floor(band), 1) << hertz;
    }
}

TEST(OrvaMeasures, EveryChannelHasARowAndNoneAtAllIsMinusInfinity)
{
    const support::Folder folder;
    std::vector<float> samples(2 * 24000);
    const auto tone = sine(1000, 1, 24000);
    for (size_t i = 0; i < tone.size(); ++i)
        samples[2 * i + 1] = tone[i];
    writeSound(folder / "in.wav", samples, {.channels = 2});
    const Table table = measured(folder, {"-", "--frame=100", "--hop=1000", "--mels=0"});
    ASSERT_EQ(table.names,
              (std::vector<std::string>{"seconds", "channel", "energy_db", "crossings_per_second"}));
    ASSERT_EQ(table.rows.size(), 48u);
    EXPECT_EQ(table.rows[20], (std::vector<double>{0.20833, 1, -HUGE_VAL, 0}));
    EXPECT_EQ(table.rows[21][1], 2);
    EXPECT_NEAR(table.rows[21][2], 10 * std::log10(0.5 / 0.32768), 0.1);
}

TEST(OrvaMeasures, AnArrayHoldsTheSameNumbers)
{
    const support::Folder folder;
    putVoice(folder);
    std::filesystem::rename(folder / "voice.wav", folder / "in.wav");
    const Table table = measured(folder, {"-", "--mels=3"});
    const auto outcome = orvaRun({"measures", "in.wav", "out.NPY", "--mels=3"}, folder);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, testing::MatchesRegex("in.wav: 1.43 s, 268 frames, energy up to -8.9 dB, zero "
                                                   "crossings up to 23.0 per ms\n"));
    const std::string bytes = support::readFile(folder / "out.NPY");
    ASSERT_EQ(bytes.size(), 128 + 268 * 7 * sizeof(double));
    EXPECT_EQ(bytes.substr(0, 10), std::string("\x93NUMPY\x01\x00\x76\x00", 10)) << "the head takes 118 more";
    EXPECT_EQ(bytes.substr(10, 61), "{'descr': '<f8', 'fortran_order': False, 'shape': (268, 7), }");
    EXPECT_EQ(bytes[127], '\n');
    for (size_t row = 0; row < 268; ++row)
        for (size_t i = 0; i < 7; ++i) {
            double value = 0;
            std::memcpy(&value, bytes.data() + 128 + (row * 7 + i) * sizeof value, sizeof value);
            if (value != table.rows[row][i]) { // infinities are equal, and have no difference
                EXPECT_NEAR(value, table.rows[row][i], 0.051) << row << ' ' << i;
            }
        }
}

TEST(OrvaMeasures, FramesReachToTheEndWhateverTheirSizeAndHop)
{
    const support::Folder folder;
    writeSound(folder / "in.wav", sine(1000, 1, 24000));
    const struct {
        const char *frame, *hop;
        size_t rows;
    } cases[] = {
        {"3", "1", 24000}, {"4", "7", 3429}, {"64", "10000", 3}, {"65536", "24000", 1}, {"64", "23999", 2}};
    for (const auto &[frame, hop, rows] : cases)
        EXPECT_EQ(measured(folder, {"-", "--mels=0", "--frame", frame, "--hop", hop}).rows.size(), rows)
            << hop;
    EXPECT_EQ(
        readCsv(orvaShell("cat in.wav | orva measures - --frame 64 --hop 23999", folder).out).rows.size(),
        2u);
}

TEST(OrvaMeasures, ThePictureShowsLevelsEnergyAndCrossings)
{
    constexpr int left = 84, width = 804, top = 72, height = 200, gap = 66;
    const support::Folder folder;
    auto samples = sine(2900, 0.5, 48000);
    std::fill(samples.begin() + 12000, samples.begin() + 24000, 0.0f);
    writeSound(folder / "in.wav", samples);
    measured(folder, {"--picture=p.png"});
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.wav", "p.png"}));
    const Picture picture = readPicture(folder / "p.png");
    EXPECT_EQ(picture.height, top + 3 * (height + gap));
    const int column = left + 3 * width / 4;
    const int row = top + static_cast<int>(height * (1 - orva::axisPlace(orva::axisMel(24000), 2900)));
    uint32_t nearest = picture.at(column, row);
    for (const int y : {row - 1, row + 1})
        if (distance(picture.at(column, y), colormapColor(1 - 6.02 / 80)) <
            distance(nearest, colormapColor(1 - 6.02 / 80)))
            nearest = picture.at(column, y);
    EXPECT_LE(distance(nearest, colormapColor(1 - 6.02 / 80)), 12);
    EXPECT_EQ(picture.at(left + 3 * width / 8, row), colormapColor(0)) << "silence";
    const auto curveAt = [&](int panel, double place) {
        return heightOf(picture, 0x0073b3, left + static_cast<int>(place * width),
                        top + panel * (height + gap), height);
    };
    EXPECT_NEAR(curveAt(1, 0.75), 1 + 10 * std::log10(0.125 / 0.32768) / 80, 0.01) << "its axis ends at 0 dB";
    EXPECT_NEAR(curveAt(2, 0.75), 5.8 / 6, 0.02);
    EXPECT_TRUE(std::isnan(curveAt(1, 0.375))) << "frames without energy are left out";
}

TEST(OrvaMeasures, RefusesInOneLineAndWritesNothing)
{
    expectRefusals({
        {{"measures"}, 2, "orva measures: input is required; see 'orva measures --help'"},
        {{"measures", "voice.wav", "t.txt"},
         2,
         "orva measures: t.txt: the name of a table ends in .csv or .npy"},
        {{"measures", "voice.wav", "nowhere/t.csv"},
         1,
         "orva measures: nowhere/t.csv: No such file or directory"},
        {{"measures", "voice.wav", "--frame=2"},
         2,
         "orva measures: --frame: Value 2 not in range 3 to 1048576; see 'orva measures --help'"},
        {{"measures", "voice.wav", "t.csv", "--picture=p.gif"},
         2,
         "orva measures: p.gif: the name of a picture ends in .png, .svg or .pdf"},
    });
}
