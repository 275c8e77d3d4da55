// Fuzz target: time scaling beside its definition in plainest form. The first bytes choose frame and rate, the others blocks,
// speeds, capacities and cursors.
#include "solafs/plain_scaler.h"
#include "support/fuzz.h"

#include <kett/KTmem.h>
#include <orva/ORVAsolafs.h>

#include <memory>

using support::Bytes;

namespace
{

void drive(Bytes &bytes)
{
    // Hops of 4 samples and more: those of 0 must not be run.
    constexpr int32_t rates[] = {8000, 400, 16000, 1000};
    constexpr int32_t frames[] = {1, 20, 2, 100};
    constexpr float speeds[] = {1.0f, 1.5f,  0.5f,  2.9f,  3.0f,  0.1f,   1.0f,
                                8.9f, 20.0f, 1e-3f, 1e30f, -1.0f, -1e30f, 3e9f};
    const size_t which = bytes.below(4);
    const int32_t rate = rates[which], frame = frames[which];
    const std::unique_ptr<ORVA_SOLAFS, void (*)(ORVA_SOLAFS *)> solafs(ORVA_SolafsCreate(frame, rate, 1),
                                                                       ORVA_SolafsDestroy);
    support::require(solafs != nullptr, "there is a record");
    PlainScaler plain(frame, rate);

    for (int call = 0; call < 60 && !bytes.isAtEnd(); ++call) {
        const size_t kind = bytes.below(4);
        if (kind == 0) {
            const auto capacity = static_cast<int32_t>(bytes.below(64)) * 4 - 16;
            // At 0 and below output never runs short of input.
            const auto expected = plain.output(capacity);
            std::vector<float> output(static_cast<size_t>(std::max(capacity, plain.hop())) + 1);
            const int32_t written = ORVA_SolafsOutputData(solafs.get(), 0, output.data(), capacity);
            output.resize(static_cast<size_t>(std::max(written, 0)));
            support::requireSameBits(output, expected);
        } else if (kind == 1) {
            const auto position = static_cast<int64_t>(bytes.byte()) * 64 - 100;
            support::require(ORVA_SolafsTranslateCursorPosition(solafs.get(), position) ==
                                 plain.cursor(position),
                             "a cursor is translated alike");
        } else {
            const float speed = speeds[bytes.below(std::size(speeds))];
            auto block = bytes.block();
            for (size_t more = bytes.below(8); more > 0; --more) {
                const auto further = bytes.block();
                block.insert(block.end(), further.begin(), further.end());
            }
            const int32_t taken = ORVA_SolafsInputData(solafs.get(), 0, block.data(),
                                                       static_cast<int32_t>(block.size()), speed);
            support::require(taken == plain.input(block, speed), "as many samples are taken");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Bytes bytes(data, size);
    drive(bytes);
    KTMEM_DisposeDisplayed();
    return 0;
}
