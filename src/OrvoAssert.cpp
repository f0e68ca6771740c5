#include "OrvoAssert.h"

#include <QMessageLogger>

#include <atomic>

namespace
{

void FatalHandler(const char* expression, const char* source, int line)
{
    QMessageLogger(source, line, nullptr)
        .fatal("ASSERT: \"%s\" in %s, line %d", expression, source, line);
}

std::atomic<OrvoAssertHandler> currentHandler{FatalHandler};

} // namespace

OrvoAssertHandler OrvoSetAssertHandler(OrvoAssertHandler handler)
{
    return currentHandler.exchange(handler != nullptr ? handler : FatalHandler);
}

void OrvoAssertFailed(const char* expression, const char* source, int line)
{
    currentHandler.load()(expression, source, line);
}
