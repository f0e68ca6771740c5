// Lets the benchmarks count instructions instead of nanoseconds: under the emulator, with
// instruction_plugin.c, the thread's CPU clock tells the instructions that were run.

#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <ctime>

/// Stands before the C library's own for the whole program.
extern "C" int clock_gettime(clockid_t clock, struct timespec* time) noexcept
{
    if (clock != CLOCK_THREAD_CPUTIME_ID) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    }
    volatile std::uint64_t instructions = 0;
    syscall(SYS_getpriority, 0x6F72766F, &instructions);
    const std::uint64_t counted = instructions;
    time->tv_sec = static_cast<time_t>(counted / 1000000000);
    time->tv_nsec = static_cast<long>(counted % 1000000000);
    return 0;
}
