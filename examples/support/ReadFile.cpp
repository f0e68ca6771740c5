#include "ReadFile.h"

#include "SampleFailure.h"
#include "SampleText.h"

#include <CQFile.h>
#include <CQWString.h>

#include <QFileInfo>

#include <algorithm>

std::vector<char> ReadFile(const CQSString& path, int from)
{
    const CQWString widePath(path);
    CQFile file;
    if (!QFileInfo(QString::fromUtf8(path.GetDataPtr())).isReadable() ||
        !file.Open(widePath.GetDataPtr(), 0)) {
        FailWith(Bytes(path), "cannot be opened for reading");
    }
    std::vector<char> content(size_t(std::max(0, file.GetLength() - from)));
    file.Seek(from, 0);
    size_t have = 0;
    while (have < content.size()) {
        const int got = file.Read(content.data() + have, unsigned(content.size() - have));
        if (got < 1) {
            FailWith(Bytes(path), "cannot be read to its end");
        }
        have += size_t(got);
    }
    return content;
}
