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

int main(int count, char **arguments)
{
    const option keys[] = {{"type", OPTION_TEXT, "polyphase poly zoh", 0, 0, "polyphase, poly or zoh"},
                           {"order", OPTION_INTEGER, NULL, 1, 1 << 20, "a whole number from 1 to 1048576"},
                           {"delaycompensation", OPTION_TEXT, "1 0 yes no", 0, 0, "yes or no"}};
    bool done = count == 4 || count == 5 || refuse("usage: resample SOUND OUTPUT.wav RATE [CONFIGURATION]");
    const char *config = count == 5 ? arguments[4] : "";
    const int rate = done ? options_number(arguments[3], 1000000) : 0;
    done = done && (rate > 0 || refuse("rate: %s is not from 1 to 1000000", arguments[3])) &&
           (strlen(config) <= 256 || refuse("configuration: longer than 256 bytes")) &&
           options_read(config, keys, sizeof keys / sizeof *keys);
    sound *input = done ? sound_open(arguments[1]) : NULL;
    conversion c = {0};
    done = input != NULL && conversion_begin(&c, input, rate, config);
    sound_output *output = done ? sound_create(arguments[2], input, rate, c.channels) : NULL;
    done = sound_finish(output, output != NULL && conversion_run(&c, input, output));
    if (done) {
        printf("%s: %lld frames at %d Hz became %lld at %d Hz\n", arguments[2], (long long) input->length,
               c.from, (long long) c.total, rate);
        sound_note_damage(input);
    }
    conversion_end(&c);
    sound_close(input);
    return done ? 0 : 1;
}
