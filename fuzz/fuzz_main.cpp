// Drives a model with libFuzzer.

#include "../tests/models/Model.h"

#include <QGuiApplication>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: libFuzzer leaves through exit().
    static auto* const application = new QGuiApplication(*argc, *argv);
    return application == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ByteSource source(data, size);
    DriveModel(source);
    return 0;
}
