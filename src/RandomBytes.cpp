#include "RandomBytes.h"

#include <QRandomGenerator>

#include <pthread.h>

#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>

namespace
{

// Starts above what a thread that never drew has seen.
std::atomic<unsigned> g_generation{1};

// Which generation the seed of this thread is good for; 0 if for the next draw only.
unsigned WatchForks()
{
    static const bool isWatching =
        pthread_atfork(nullptr, nullptr, [] { g_generation.fetch_add(1); }) == 0;
    return isWatching ? g_generation.load() : 0;
}

// The generator xoroshiro128++ of Blackman and Vigna, 2019.
struct Generator {
    std::uint64_t state[2];
    unsigned generation;

    void Seed()
    {
        generation = WatchForks();
        QRandomGenerator::system()->generate(std::begin(state), std::end(state));
        state[0] |= 1; // of all states only 0 is none
    }

    std::uint64_t Next()
    {
        const std::uint64_t drawn = std::rotl(state[0] + state[1], 17) + state[0];
        const std::uint64_t mixed = state[0] ^ state[1];
        state[0] = std::rotl(state[0], 49) ^ mixed ^ (mixed << 21);
        state[1] = std::rotl(mixed, 28);
        return drawn;
    }
};

thread_local constinit Generator t_generator{};

} // namespace

std::array<unsigned char, 16> DrawRandomBytes()
{
    Generator& generator = t_generator;
    if (generator.generation != g_generation.load(std::memory_order_relaxed)) {
        generator.Seed();
    }
    const std::uint64_t words[2] = {generator.Next(), generator.Next()};
    return std::bit_cast<std::array<unsigned char, 16>>(words);
}
