// Time scaling in its plainest form, what the library is compared with bit by bit: the whole stream is kept,
// nothing is shifted or prepared, every sum is a loop.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

class PlainScaler
{
public:
    PlainScaler(int frameMs, int sampleRate)
        : slots(sampleRate), frame(static_cast<int>(int64_t{frameMs} * sampleRate / 1000 / 8 * 8)),
          half(frame / 2)
    {
    }

    // The number of samples taken, from the first on.
    int input(const std::vector<float> &block, float newSpeed)
    {
        firstKept = std::max<int64_t>(firstKept, int64_t{ideal()} - 2 * half);
        const int64_t used = half + size() - (firstKept + half);
        int64_t taken = std::min<int64_t>(static_cast<int64_t>(block.size()), slots - used);
        taken = std::max<int64_t>(taken, 0);
        noteSpeed(newSpeed, static_cast<int>(taken));
        stream.insert(stream.end(), block.begin(), block.begin() + taken);
        return static_cast<int>(taken);
    }

    std::vector<float> output(int64_t capacity)
    {
        std::vector<float> out;
        int here = ideal();
        while (half + size() - 4 * frame > here) {
            std::vector<float> old;
            for (int i = 0; i < half; ++i)
                old.push_back(sample(int64_t{match} + i));
            played += half;
            changeSpeed(here);
            here = ideal();
            const int64_t drifted = int64_t{skew} + here - played;
            skew = drifted >= 0 && drifted <= 2 * frame ? static_cast<int>(drifted) : search(old, here);
            match = here + skew;
            for (int i = 0; i < half; ++i) {
                const auto weight = static_cast<float>((i + 1.0) / (half + 1.0));
                const float risen = weight * sample(int64_t{match} - half + i);
                const double fallen = (1.0 - double{weight}) * double{old[static_cast<size_t>(i)]};
                out.push_back(static_cast<float>(fallen + double{risen}));
            }
            if (half > capacity - static_cast<int64_t>(out.size()))
                break;
        }
        return out;
    }

    int64_t cursor(int64_t position) const
    {
        if (history.empty())
            return 0;
        size_t i = 0;
        while (i + 1 < history.size() && history[i].end < position)
            ++i;
        const int64_t before = i == 0 ? 0 : history[i - 1].end;
        const auto distance = static_cast<float>(position - before);
        return truncated(distance * history[i].speed + static_cast<float>(history[i].start));
    }

    int hop() const
    {
        return half;
    }

    float speedInForce() const
    {
        return speed;
    }

    int searches = 0;
    int fruitlessSearches = 0; // no candidate correlated positively

private:
    struct Stretch {
        int start; // in the input
        int end;   // in the output
        float speed;
    };

    static int truncated(float x)
    {
        if (std::isnan(x))
            return 0;
        return static_cast<int>(std::clamp(std::trunc(double{x}), double{INT32_MIN}, double{INT32_MAX}));
    }

    int64_t size() const
    {
        return static_cast<int64_t>(stream.size());
    }

    float sample(int64_t position) const
    {
        if (position < 0 || position < firstKept || position >= size())
            return 0.0f;
        return stream[static_cast<size_t>(position)];
    }

    // Where in the input that is which is to be played next.
    int ideal() const
    {
        const float scaled = static_cast<float>(played) * speed;
        return truncated(scaled + static_cast<float>(bias));
    }

    void noteSpeed(float newSpeed, int taken)
    {
        float divisor = newSpeed;
        if (stream.empty()) {
            speed = newSpeed;
            if (history.size() < 256) {
                history.push_back({0, 0, newSpeed});
                inForce = history.size();
            } else {
                history.back().speed = newSpeed;
            }
        } else if (!(history.back().speed == newSpeed)) {
            if (history.size() < 256)
                history.push_back({static_cast<int>(size()), history.back().end, newSpeed});
            else
                divisor = history.back().speed;
        }
        const float length = static_cast<float>(taken) / divisor;
        history.back().end = truncated(static_cast<float>(history.back().end) + length);
    }

    void changeSpeed(int previous)
    {
        if (inForce == history.size())
            return;
        const Stretch next = history[inForce];
        if (next.speed == speed || next.start > previous)
            return;
        const float was = static_cast<float>(played) * speed;
        const float becomes = static_cast<float>(played) * next.speed;
        const float jump = was - becomes;
        bias = truncated(jump + static_cast<float>(bias));
        speed = next.speed;
        ++inForce;
    }

    // The smallest skew of those that score best; 0 if none scores above 0.
    int search(const std::vector<float> &old, int here)
    {
        ++searches;
        std::vector<double> ahead;
        for (int i = 0; i < 2 * frame + half; ++i)
            ahead.push_back(double{sample(int64_t{here} - half + i)});
        double best = 0.0;
        int winner = 0;
        for (int candidate = 0; candidate < 2 * frame; candidate += 4) {
            double energy = 1.0;
            double cross = 0.0;
            for (int point = 0; point < half / 8; ++point) {
                const double x = ahead[static_cast<size_t>(candidate + 8 * point)];
                energy += x * x;
                cross += double{old[static_cast<size_t>(8 * point)]} * x;
            }
            const double score = half / 8 == 0 ? 0.0 : cross / std::sqrt(energy);
            if (score > best) {
                best = score;
                winner = candidate;
            }
        }
        fruitlessSearches += best == 0.0;
        return winner;
    }

    int64_t slots;
    int frame;
    int half; // the hop, the cross-fade, and what the search compares
    float speed = 1.0f;
    int bias = 0;
    int played = 0;
    int skew = 0;
    int match = 0;
    // Position of the oldest sample kept, the silence in front of the stream included.
    int64_t firstKept = -half;
    std::vector<float> stream;
    std::vector<Stretch> history;
    size_t inForce = 0; // entries of the history that are or were in force
};
