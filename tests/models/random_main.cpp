// Drives a model with random inputs, the same ones in every run.
// Usage: PROGRAM [INPUTS [FIRST-SEED]]

#include "Model.h"

#include <QGuiApplication>

#include <random>
#include <vector>

namespace
{

std::vector<std::uint8_t> MakeInput(unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<std::uint8_t> input(random() % (seed % 8 == 0 ? 4096 : 256));
    for (std::uint8_t& byte : input) {
        byte = static_cast<std::uint8_t>(random());
    }
    return input;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const unsigned inputs = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 2000;
    const unsigned first = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    for (unsigned seed = first; seed - first < inputs; ++seed) {
        const std::vector<std::uint8_t> input = MakeInput(seed);
        ByteSource source(input.data(), input.size());
        DriveModel(source);
    }
    std::printf("%u inputs from seed %u: no deviation\n", inputs, first);
}
