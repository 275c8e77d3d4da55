// Converts the floats of standard input, one at a time, as one library with one setting does, for resample_peers.py:
//   resample_peers LIBRARY SETTING FROM TO < input > output 2> counts
// To standard error it writes how many samples of output each sample of input gave, as int32_t.
#include <orva/orva.h>

#include <samplerate.h>
#include <soxr.h>
#include <speex/speex_resampler.h>
#include <zita-resampler/resampler.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace
{

constexpr int32_t room = 1 << 20; // more than any of them gives at once

// Gives the samples that one more sample of input makes.
using Converter = std::function<int32_t(const float *input, float *output)>;

Converter orvaConverter(const std::string &config, int from, int to)
{
    ORVA_RESAMPLER *const handle = ORVA_ResampleInit(from, to, (config + "; delaycompensation=0").c_str());
    return [=](const float *input, float *output) { return ORVA_Resample(handle, input, output, 1); };
}

// SETTING: 0 best, 1 medium, 2 fastest.
Converter samplerateConverter(const std::string &setting, int from, int to)
{
    int error = 0;
    SRC_STATE *const state = src_new(std::stoi(setting), 1, &error);
    return [=](const float *input, float *output) {
        SRC_DATA data{input, output, 1, room, 0, 0, 0, static_cast<double>(to) / from};
        src_process(state, &data);
        return static_cast<int32_t>(data.output_frames_gen);
    };
}

// SETTING: a recipe of soxr, 1 low, 4 high, 6 very high.
Converter soxrConverter(const std::string &setting, int from, int to)
{
    const soxr_quality_spec_t quality = soxr_quality_spec(std::stoul(setting), 0);
    soxr *const state = soxr_create(from, to, 1, nullptr, nullptr, &quality, nullptr);
    return [=](const float *input, float *output) {
        size_t taken = 0, given = 0;
        soxr_process(state, input, 1, &taken, output, room, &given);
        return static_cast<int32_t>(given);
    };
}

// SETTING: a quality of 0 to 10.
Converter speexConverter(const std::string &setting, int from, int to)
{
    int error = 0;
    SpeexResamplerState *const state = speex_resampler_init(
        1, static_cast<spx_uint32_t>(from), static_cast<spx_uint32_t>(to), std::stoi(setting), &error);
    return [=](const float *input, float *output) {
        spx_uint32_t taken = 1, given = room;
        speex_resampler_process_float(state, 0, input, &taken, output, &given);
        return static_cast<int32_t>(given);
    };
}

// SETTING: the half length of the filter, 8 to 96.
Converter zitaConverter(const std::string &setting, int from, int to)
{
    Resampler *const state = new Resampler;
    state->setup(static_cast<unsigned>(from), static_cast<unsigned>(to), 1,
                 static_cast<unsigned>(std::stoi(setting)));
    return [=](const float *input, float *output) {
        state->inp_count = 1;
        state->inp_data = const_cast<float *>(input);
        state->out_count = room;
        state->out_data = output;
        state->process();
        return static_cast<int32_t>(room - state->out_count);
    };
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 5)
        return 1;
    const std::string library = argv[1], setting = argv[2];
    const int from = std::atoi(argv[3]), to = std::atoi(argv[4]);
    const Converter convert = library == "liborva"         ? orvaConverter(setting, from, to)
                              : library == "libsamplerate" ? samplerateConverter(setting, from, to)
                              : library == "soxr"          ? soxrConverter(setting, from, to)
                              : library == "Speex"         ? speexConverter(setting, from, to)
                                                           : zitaConverter(setting, from, to);
    static float output[room];
    for (float input = 0; std::fread(&input, sizeof input, 1, stdin) == 1;) {
        const int32_t count = convert(&input, output);
        std::fwrite(&count, sizeof count, 1, stderr);
        std::fwrite(output, sizeof *output, static_cast<size_t>(count), stdout);
    }
}
