/* Writes a sound at another sample rate, every channel of it, as long as it was.
 *
 *     $ resample Front_Center.wav cd.wav 44100
 *     cd.wav: 68545 frames at 48000 Hz became 62976 at 44100 Hz
 *     $ resample Front_Center.wav phone.wav 8000 "type=zoh"
 *     phone.wav: 68545 frames at 48000 Hz became 11425 at 8000 Hz
 *
 * Without a configuration it is "type=polyphase; order=30; delaycompensation=1". A higher order takes longer
 * and keeps more of the highest frequencies. "type=zoh" is fast and rough, and has only some pairs of rates.
 * The library is called in common/conversion.c.
 */
#include "common/conversion.h"
#include "common/messages.h"
#include "common/options.h"
#include "common/sound.h"

#include <stdio.h>
#include <string.h>

static bool run(Sound *input, int rate, const char *config, const char *path)
{
    Conversion c;
    if (!conversionBegin(&c, input, rate, config)) {
        conversionEnd(&c);
        return false;
    }
    bool done = false;
    SoundOutput *output = soundCreate(path, input, rate, c.channels);
    if (output != NULL)
        done = soundFinish(output, conversionRun(&c, input, output));
    if (done) {
        printf("%s: %lld frames at %d Hz became %lld at %d Hz\n", path, (long long) input->length, c.from,
               (long long) c.total, rate);
        soundNoteDamage(input);
    }
    conversionEnd(&c);
    return done;
}

int main(int count, char **arguments)
{
    const Option keys[] = {{"type", textOption, "polyphase poly zoh", 0, 0, "polyphase, poly or zoh"},
                           {"order", integerOption, NULL, 1, 1 << 20, "a whole number from 1 to 1048576"},
                           {"delaycompensation", textOption, "1 0 yes no", 0, 0, "yes or no"}};
    if (count != 4 && count != 5) {
        refuse("usage: resample SOUND OUTPUT.wav RATE [CONFIGURATION]");
        return 1;
    }
    const int rate = optionsNumber(arguments[3], 1000000);
    if (rate == 0) {
        refuse("rate: %s is not from 1 to 1000000", arguments[3]);
        return 1;
    }
    const char *config = count == 5 ? arguments[4] : "";
    if (strlen(config) > 256) {
        refuse("configuration: longer than 256 bytes");
        return 1;
    }
    if (!optionsRead(config, keys, sizeof keys / sizeof *keys))
        return 1;

    Sound *input = soundOpen(arguments[1]);
    const bool done = input != NULL && run(input, rate, config, arguments[2]);
    soundClose(input);
    return done ? 0 : 1;
}
