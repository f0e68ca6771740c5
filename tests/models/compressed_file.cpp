// Compressed files against zlib itself, told to take them apart and put them together at once.

#include "Model.h"
#include "Texts.h"

#include <CQZipFile.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <optional>

#include <zlib.h>

namespace
{

std::string LengthField(std::size_t length)
{
    std::string field(4, '\0');
    qToBigEndian(static_cast<quint32>(length), field.data());
    return field;
}

std::string Compressed(std::string block)
{
    uLongf size = compressBound(static_cast<uLong>(block.size()));
    std::string stream(size, '\0');
    compress(Unsigned(stream), &size, Unsigned(block), static_cast<uLong>(block.size()));
    return block.empty() ? LengthField(0) : LengthField(block.size()) + stream.substr(0, size);
}

// What `stored` holds, when nothing bounds it.
std::optional<std::string> Block(std::string stored)
{
    if (stored.size() < 4) {
        return std::nullopt;
    }
    const auto claimed = qFromBigEndian<quint32>(stored.data());
    const std::size_t longest = (stored.size() - 4) * 1032;
    if (claimed == 0 || claimed > longest) {
        return claimed == 0 ? std::optional("") : std::nullopt;
    }
    auto size = static_cast<uLongf>(longest);
    std::string block(longest, '\0');
    const int status = uncompress(Unsigned(block), &size, Unsigned(stored) + 4,
                                  static_cast<uLong>(stored.size() - 4));
    return status == Z_OK ? std::optional(block.substr(0, size)) : std::nullopt;
}

std::string Stored()
{
    QFile file(QStringLiteral("block"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "";
}

void Store(const std::string& bytes)
{
    QFile file(QStringLiteral("block"));
    MODEL_CHECK(file.open(QIODevice::WriteOnly));
    file.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

// Every form of reading, with every bound that could matter.
void CompareReads(const std::optional<std::string>& block)
{
    const int length = block ? static_cast<int>(block->size()) : 9;
    const std::string untouched(static_cast<std::size_t>(length) + 1, '#');
    const std::string filled = block ? *block + '#' : untouched;
    for (const int bound : {std::max(0, length - 1), length, length + 1}) {
        const bool isHeld = block.has_value() && length <= bound;
        CQZipFile zip;
        QByteArray bounded("unset");
        MODEL_CHECK(zip.Read(bounded, L"block", bound) == isHeld);
        MODEL_CHECK(zip.HasFailed() != isHeld);
        MODEL_CHECK(bounded.toStdString() == (isHeld ? *block : ""));
        std::string buffer = untouched;
        auto* bytes = Unsigned(buffer);
        int found = -7;
        MODEL_CHECK(zip.Read(bytes, bound, &found, L"block") == isHeld);
        MODEL_CHECK(found == (isHeld ? length : -7));
        MODEL_CHECK(buffer == (isHeld ? filled : untouched));
        MODEL_CHECK(zip.Read(&bytes, &found, L"block") == 1);
        MODEL_CHECK(found == (block ? length : 0));
        MODEL_CHECK(buffer == filled);
        MODEL_CHECK(zip.HasFailed() != block.has_value());
    }
}

// A compressed block with a few bytes changed, dropped or added.
std::string Damaged(ByteSource& source)
{
    const QByteArray pattern = QByteArray::fromStdString(source.Bytes(20));
    const int repeats = source.Between(0, 200) * source.Between(0, 9);
    std::string stored = Compressed(pattern.repeated(repeats).toStdString());
    for (int changes = source.Between(0, 3); changes > 0; --changes) {
        const auto at = static_cast<std::size_t>(
            source.Between(0, std::min(255, static_cast<int>(stored.size()))));
        stored.replace(at, static_cast<std::size_t>(source.Between(0, 4)), source.Bytes(4));
    }
    if (source.Byte() < 50 && stored.size() > 4) { // around the largest claim
        const auto most = static_cast<int>(stored.size() - 4) * 1032;
        stored.replace(0, 4, LengthField(std::size_t(most + source.Between(-1, 1))));
    }
    return stored;
}

} // namespace

void DriveModel(ByteSource& source)
{
    static const QTemporaryDir scratch;
    QDir::setCurrent(scratch.path());
    if (source.Flag()) {
        const std::string stored = source.Flag() ? source.Rest() : Damaged(source);
        Store(stored);
        CompareReads(Block(stored));
        return;
    }
    const bool replaces = source.Between(0, 15) == 0; // waits for the disk: not always
    std::string before = source.Bytes(40), block = source.Rest();
    Store(before);
    auto* bytes = Unsigned(block);
    int length = static_cast<int>(block.size());
    const std::string compressed = Compressed(block);
    CQZipFile zip;
    MODEL_CHECK(zip.Write(&bytes, &length, L"block") == 1);
    MODEL_CHECK(Stored() == before.replace(0, compressed.size(), compressed));
    MODEL_CHECK(!replaces || zip.Replace(bytes, length, L"block") == 1);
    MODEL_CHECK(!replaces || Stored() == compressed);
    CompareReads(block);
}
