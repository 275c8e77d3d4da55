// What orva stretch refuses: one line, and nothing written.
#include "orva.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(OrvaStretchRefusals, NameWhatIsWrongWithTheFiles)
{
    const support::Folder folder;
    putVoice(folder);
    writeSound(folder / "low.wav", {0.5f, 0.25f}, {.rate = 399});
    writeSound(folder / "high.wav", {0.5f, 0.25f}, {.rate = 1000001});
    const struct {
        std::vector<std::string> words;
        int status;
        const char *says;
    } cases[] = {
        {{"voice.wav", "o.wav"}, 2, "orva stretch: --speed is required; see 'orva stretch --help'"},
        {{"voice.wav", "--speed=1"}, 2, "orva stretch: output is required; see 'orva stretch --help'"},
        {{"low.wav", "o.wav", "--speed=1"},
         1,
         "orva stretch: low.wav: the rate must be from 400 to 1000000 Hz"},
        {{"high.wav", "o.wav", "--speed=1"},
         1,
         "orva stretch: high.wav: the rate must be from 400 to 1000000 Hz"},
        {{"voice.wav", "o.wav", "--speed=1", "--map=no/m.csv"},
         1,
         "orva stretch: no/m.csv: No such file or directory"},
        {{"voice.wav", "o.wav", "--speed=1", "--picture=p.jpg"},
         2,
         "orva stretch: p.jpg: the name of a picture ends in .png, .svg or .pdf"},
    };
    for (const auto &[words, status, says] : cases) {
        std::vector<std::string> all{"stretch"};
        all.insert(all.end(), words.begin(), words.end());
        expectRefused(all, folder, status, says);
    }
}

TEST(OrvaStretchRefusals, NameWhatIsWrongWithTheSpeed)
{
    const support::Folder folder;
    putVoice(folder);
    std::ostringstream many;
    many << 1;
    for (int i = 1; i <= 256; ++i)
        many << ' ' << i << ':' << 1 + i % 2;
    const std::string form = " is not seconds:speed";
    const struct {
        std::string speed;
        std::string message;
    } cases[] = {
        {" , ", "no value is given"},
        {"fast", "\"fast\"" + form},
        {"1.5x", "\"1.5x\"" + form},
        {"1e0", "\"1e0\"" + form},
        {"-1", "\"-1\"" + form},
        {"nan", "\"nan\"" + form},
        {"0x1", "\"0x1\"" + form},
        {".", "\".\"" + form},
        {"1.5.2", "\"1.5.2\"" + form},
        {"1 2", "\"2\"" + form},
        {"1 1:", "\"1:\"" + form},
        {"1 :2", "\":2\"" + form},
        {"1 1:2:3", "\"1:2:3\"" + form},
        {"1 1:2; 2:3", "\"1:2;\"" + form},
        {"0", "0 is not from 0.1 to 3"},
        {"0.099", "0.099 is not from 0.1 to 3"},
        {"1 2:3.01", "3.01 is not from 0.1 to 3"},
        {"1 0:2", "the time of \"0:2\" does not come after the one before"},
        {"1:2 1:3", "the time of \"1:3\" does not come after the one before"},
        {"2:2 1:3", "the time of \"1:3\" does not come after the one before"},
        {many.str(), "more than 256 values"},
    };
    for (const auto &[speed, message] : cases)
        expectRefused({"stretch", "voice.wav", "o.wav", "--speed=" + speed}, folder, 2,
                      "orva stretch: speed: " + message);
}
