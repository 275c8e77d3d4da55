// The command resample: a sound at another rate, or many into a folder.
#include "command.h"
#include "conversion.h"
#include "conversion_quality.h"
#include "failure.h"
#include "messages.h"
#include "shared_options.h"

#include <atomic>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>

namespace orva
{
namespace
{

struct Options {
    std::vector<std::string> files;
    std::string folder;
    ConverterOptions converter;
    OutputOptions output;
};

std::string qualityOf(int from, const ConverterOptions &how)
{
    if (how.hold)
        return "zero-order hold, ripple 1 dB, rejection 60 dB, delay not compensated";
    return "order " + std::to_string(how.order) + ", " +
           describe(polyphaseQuality(from, how.rate, how.order));
}

// One file; the result is the line that tells what came of it.
std::string resample(const std::string &from, const std::string &to, const Options &options, bool progress)
{
    const int rate = options.converter.rate;
    SoundInput input = openSound(from, options.output.raw);
    const int old = input.info.samplerate;
    auto converters = makeConverters(input, options.converter);
    SoundOutput output(to, options.output, input, rate,
                       input.length < 0 ? -1 : framesAt(input.length, old, rate));
    const auto write = [&](const float *frames, int64_t count) { output.write(frames, count); };
    convert(converters, input, write, rate, progress);
    endReading(input);
    output.finish();
    noteDamage(input);
    return to + ": " + std::to_string(input.position) + " frames at " + std::to_string(old) + " Hz became " +
           std::to_string(output.framesWritten()) + " at " + std::to_string(rate) + " Hz; " +
           qualityOf(old, options.converter);
}

// The name that a file gets in the folder.
std::string placeIn(const Options &options, const std::string &file)
{
    if (file == "-")
        failUse("standard input has no name to be written by into a folder");
    std::filesystem::path name = std::filesystem::path(file).filename();
    if (!options.output.as.format.empty())
        name.replace_extension(options.output.as.format);
    return (std::filesystem::path(options.folder) / name).string();
}

// Each thread takes the next file; a line is written as a file is done.
void resampleAll(const Options &options)
{
    std::map<std::string, std::string> names;
    for (const auto &file : options.files) {
        const auto [present, isNew] = names.insert({placeIn(options, file), file});
        if (!isNew)
            failUse(present->second + " and " + file + " would both become " + present->first);
    }
    std::error_code error;
    if (!std::filesystem::exists(options.folder))
        std::filesystem::create_directory(options.folder, error);
    if (!std::filesystem::is_directory(options.folder))
        fail(options.folder + ": " + (error ? error.message() : std::strerror(ENOTDIR)));

    std::atomic<size_t> next = 0;
    std::atomic<bool> all = true;
    std::mutex speaking;
    const auto work = [&] {
        for (size_t i; (i = next++) < options.files.size();) {
            std::string line;
            Failure failure{0, ""};
            try {
                line = resample(options.files[i], placeIn(options, options.files[i]), options, false);
            } catch (const Failure &reason) {
                failure = reason;
            } catch (const std::bad_alloc &) {
                failure = {didNotWork, options.files[i] + ": out of memory"};
            }
            const std::lock_guard<std::mutex> lock(speaking);
            if (failure.status == 0) {
                say(line);
            } else {
                note("orva resample: " + failure.text);
                all = false;
            }
        }
    };
    std::vector<std::thread> threads;
    const size_t most = std::min<size_t>(std::max(std::thread::hardware_concurrency(), 1U), 32);
    while (threads.size() + 1 < std::min(most, options.files.size()))
        threads.emplace_back(work);
    work();
    for (std::thread &thread : threads)
        thread.join();
    if (!all)
        fail("");
}

void run(const Options &options)
{
    if (!options.folder.empty()) {
        resampleAll(options);
        return;
    }
    if (options.files.size() != 2)
        failUse("give an input and an output, or files and --into FOLDER; see 'orva resample --help'");
    const std::string line = resample(options.files[0], options.files[1], options, true);
    if (options.files[1] != "-")
        say(line);
}

} // namespace

void addResample(CLI::App &program)
{
    const auto [command, options] =
        addCommand(program, "resample", "Write a sound at another sample rate, exactly as long", run);
    addTexts(command,
             {"files", "FILE", "Input and output; with --into, as many inputs as you like", Need::required},
             options.files);
    addRateOption(command, options.converter.rate, "The rate, such as 44100 or 44.1k", Need::required);
    addNumber(
        command,
        {"--order", "N",
         "Half the length of the filter: more keeps more of the highest frequencies and takes longer (30)"},
        options.converter.order, 1, 1 << 20);
    addFlag(command, "--hold", "Repeat or drop samples instead, which has only some pairs of rates",
            options.converter.hold);
    exclude(command, "--hold", "--order");
    addText(command,
            {"--into", "FOLDER", "Write each file under its name into this folder, several at a time"},
            options.folder);
    addOutputOptions(command, options.output);
    addNotes(command, "Says what the filter does: the ripple of what it keeps, by how much it takes out what "
                      "would appear at\n"
                      "another frequency, and by how much the result comes late.\n\n"
                      "Examples:\n"
                      "  $ orva resample voice.wav cd.wav --rate 44.1k\n"
                      "  $ orva resample voice.wav phone.flac --rate 8k --order 100 --bits 16\n"
                      "  $ orva resample *.wav --into 16k --rate 16000\n"
                      "  $ orva resample voice.wav - --rate 16k | orva info -");
}

} // namespace orva
