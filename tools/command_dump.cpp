// dump: a data stream as a table, item by item.

#include "Command.h"
#include "InputOutput.h"
#include "ItemList.h"

#include <DataInputStream.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace
{

/// An input of any length for a data stream: every read goes straight to the file.
class InputStream : public OrvoStream::CIStream
{
public:
    explicit InputStream(const QString& name) : m_input(name)
    {
        if (isatty(STDOUT_FILENO) != 0) {
            m_input.HideProgress();
        }
    }

    int Read(char* dest, int len) override
    {
        if (!Prepare(len)) {
            return 0;
        }
        std::memcpy(dest, m_buffer.constData() + m_used, static_cast<std::size_t>(len));
        m_used += len;
        m_offset += len;
        return len;
    }

    int Available() override { return Prepare(1) ? 1 : 0; }
    void Close() override {}
    qint64 GetOffset() const { return m_offset; }
    const QString& GetName() const { return m_input.GetName(); }

    /// How much is left within `most` bytes.
    int GetLeft(int most)
    {
        Prepare(most);
        return std::min(most, int(m_buffer.size()) - m_used);
    }

private:
    bool Prepare(int len)
    {
        while (m_buffer.size() - m_used < len) {
            const QByteArray bytes = m_input.Read(1 << 16);
            if (bytes.isEmpty()) {
                return false;
            }
            m_buffer.remove(0, m_used);
            m_used = 0;
            m_buffer += bytes;
        }
        return true;
    }

    Input m_input;
    QByteArray m_buffer;
    int m_used = 0;
    qint64 m_offset = 0;
};

struct Row {
    qint64 offset;
    const Item& item;
    qint64 size;
    QByteArray bytes; // as many of them as the printer wants
    qint64 number;    // of the kinds that are numbers
};

constexpr int bytesInTable = 16;
constexpr int textInTable = 1 << 16;

bool IsNumber(ItemKind kind)
{
    return kind != ItemKind::Bytes && kind != ItemKind::Text && kind != ItemKind::Repeat;
}

/// Control characters show as "\xNN" in a table, bytes that are no UTF-8 as "\xfffd".
QString Printable(const QByteArray& bytes)
{
    QString text;
    for (const QChar c : QString::fromUtf8(bytes)) {
        const bool shows = (c.isPrint() || c.isSurrogate()) && c != QChar(0xFFFD);
        text += shows ? QString(c) : QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QChar('0'));
    }
    return text;
}

QString QuotedText(const Row& row)
{
    return QLatin1Char('"') + Printable(row.bytes) +
           QLatin1String(row.size > row.bytes.size() ? "\"..." : "\"");
}

QString HexOf(const Row& row)
{
    const QString hex = QString::fromLatin1(row.bytes.left(bytesInTable).toHex(' '));
    return row.size > bytesInTable ? hex + QStringLiteral(" ...") : hex;
}

class Printer
{
public:
    explicit Printer(bool json) : m_json(json)
    {
        std::fputs(m_json ? "[" : "offset    item        value\n", stdout);
    }

    /// How many bytes of an item it shows: a file of bytes may be longer than memory.
    qint64 CountOfShown(const Item& item, qint64 size) const
    {
        return m_json ? size
                      : std::min<qint64>(size,
                                         item.kind == ItemKind::Text ? textInTable : bytesInTable);
    }

    void Print(const Row& row)
    {
        if (m_json) {
            PrintJson(row);
        } else {
            PrintLine(row);
        }
        m_isFirst = false;
    }

    ~Printer()
    {
        if (m_json) {
            std::fputs("\n]\n", stdout);
        }
    }

private:
    static void PrintLine(const Row& row)
    {
        const QString value = IsNumber(row.item.kind) ? QString::number(row.number)
                              : row.item.kind == ItemKind::Text
                                  ? QuotedText(row)
                                  : QStringLiteral("%1 bytes").arg(row.size);
        std::printf("%08llx  %-10s  %-12s  %s\n", static_cast<unsigned long long>(row.offset),
                    qUtf8Printable(row.item.name), qUtf8Printable(value),
                    qUtf8Printable(HexOf(row)));
    }

    void PrintJson(const Row& row) const
    {
        QJsonObject json{{QStringLiteral("offset"), row.offset},
                         {QStringLiteral("item"), row.item.name},
                         {QStringLiteral("hex"), QString::fromLatin1(row.bytes.toHex())}};
        if (IsNumber(row.item.kind)) {
            json.insert(QStringLiteral("value"), row.number);
        } else if (row.item.kind == ItemKind::Text) {
            json.insert(QStringLiteral("value"), QString::fromUtf8(row.bytes));
        }
        std::printf("%s\n%s", m_isFirst ? "" : ",",
                    QJsonDocument(json).toJson(QJsonDocument::Compact).constData());
    }

    bool m_json;
    bool m_isFirst = true;
};

class Dumper
{
public:
    Dumper(InputStream& stream, Printer& printer)
        : m_stream(stream), m_data(stream), m_printer(printer)
    {
    }

    void Dump(const std::vector<Item>& items)
    {
        for (const Item& item : items) {
            if (item.kind == ItemKind::Repeat) {
                DumpRepeated(item);
            } else {
                DumpItem(item);
            }
        }
    }

private:
    void DumpRepeated(const Item& item)
    {
        const qint64 count =
            item.counter ? ReadOrRefuse(item, [&] { return ReadCount(item); }) : item.count;
        for (qint64 i = 0; count < 0 ? m_stream.Available() == 1 : i < count; ++i) {
            const qint64 start = m_stream.GetOffset();
            Dump(item.items);
            if (m_stream.GetOffset() == start) {
                throw Failure(QStringLiteral("%1: %2 at offset %3 takes no bytes, so it has no end")
                                  .arg(m_stream.GetName(), item.name)
                                  .arg(start));
            }
        }
    }

    void DumpItem(const Item& item)
    {
        ReadOrRefuse(item, [&] {
            const qint64 length = IsNumber(item.kind) ? 0
                                  : item.counter      ? ReadCount(item)
                                                      : item.count;
            m_start = m_stream.GetOffset();
            if (IsNumber(item.kind)) {
                Show(item, ReadNumber(item.kind));
            } else {
                ReadBytes(length, m_printer.CountOfShown(item, length));
                Show(item, 0);
            }
            return length;
        });
    }

    /// A data stream throws an int where its bytes end too early.
    template <class Reading>
    qint64 ReadOrRefuse(const Item& item, Reading read)
    {
        m_start = m_stream.GetOffset();
        try {
            return read();
        } catch (int) {
            throw Failure(
                QStringLiteral("%1: %2 does not fit at offset %3; %4 bytes are left there")
                    .arg(m_stream.GetName(), item.name)
                    .arg(m_start)
                    .arg(m_stream.GetOffset() - m_start + m_stream.GetLeft(longestPiece)));
        }
    }

    /// The number in front of a text or a repetition, with a row of its own.
    qint64 ReadCount(const Item& item)
    {
        static const Item names[] = {{ItemKind::Int, QStringLiteral("length"), {}, -1, {}},
                                     {ItemKind::Int, QStringLiteral("count"), {}, -1, {}}};
        const qint64 count = ReadNumber(*item.counter);
        Show(names[item.kind == ItemKind::Repeat ? 1 : 0], count);
        if (count < 0) {
            throw Failure(QStringLiteral("%1: %2 at offset %3 says %4, which is no count")
                              .arg(m_stream.GetName(), item.name)
                              .arg(m_start)
                              .arg(count));
        }
        return count;
    }

    qint64 ReadNumber(ItemKind kind)
    {
        switch (kind) {
        case ItemKind::Int:
            return Keep(m_data.ReadInt());
        case ItemKind::UInt:
            return static_cast<quint32>(Keep(m_data.ReadInt()));
        case ItemKind::Short:
            return Keep(m_data.ReadShort());
        case ItemKind::UShort:
            return static_cast<quint16>(Keep(m_data.ReadShort()));
        case ItemKind::Char:
            return static_cast<signed char>(Keep(m_data.ReadChar()));
        default:
            return static_cast<unsigned char>(Keep(m_data.ReadChar()));
        }
    }

    /// In pieces, so that a wrong length asks for no memory that the file does not fill.
    void ReadBytes(qint64 length, qint64 shown)
    {
        while (length > 0) {
            int piece = static_cast<int>(std::min<qint64>(length, longestPiece));
            if (m_stream.GetLeft(piece) < piece) {
                throw -1; // as a short read of a data stream does
            }
            const std::unique_ptr<char[]> bytes(m_data.ReadBytes(piece));
            m_bytes.append(bytes.get(), static_cast<int>(std::min<qint64>(piece, shown)));
            shown -= std::min<qint64>(piece, shown);
            length -= piece;
        }
    }

    template <class Number>
    Number Keep(Number number)
    {
        m_bytes.append(reinterpret_cast<const char*>(&number), int(sizeof number));
        return number;
    }

    void Show(const Item& item, qint64 number)
    {
        m_printer.Print(
            {m_start, item, m_stream.GetOffset() - m_start, std::exchange(m_bytes, {}), number});
    }

    static constexpr int longestPiece = 1 << 16;

    InputStream& m_stream;
    OrvoStream::DataInputStream m_data;
    Printer& m_printer;
    qint64 m_start = 0; // of the item that is being read
    QByteArray m_bytes; // those of it that are shown
};

void Declare(QCommandLineParser& parser)
{
    parser.addOption(
        {QStringLiteral("items"),
         QStringLiteral("What the stream holds, separated by commas: int, uint, short, "
                        "ushort, char, byte, bytes:N, text:N; text:int has its length "
                        "before it (or short, char); repeat(...) goes on to the end, "
                        "repeat:N(...) and repeat:int(...) as often as that."),
         QStringLiteral("LIST")});
    DeclareJson(parser);
}

int Run(const QCommandLineParser& parser)
{
    if (!parser.isSet(QStringLiteral("items"))) {
        throw UsageError(QStringLiteral("--items is missing"));
    }
    const std::vector<Item> items = ParseItems(parser.value(QStringLiteral("items")));
    InputStream stream(InputName(parser));
    Printer printer(parser.isSet(QStringLiteral("json")));
    Dumper(stream, printer).Dump(items);
    const qint64 end = stream.GetOffset();
    if (stream.Available() == 1) {
        throw Failure(QStringLiteral("%1: more bytes follow behind the last item, at offset %2")
                          .arg(stream.GetName())
                          .arg(end));
    }
    return 0;
}

} // namespace

const Command commandDump = {
    "dump",
    " [FILE]",
    "Print a data stream as a table of its items.",
    "orvotool dump build/demo/10001/grouplist.info --items 'repeat:int(int,text:int)'",
    Declare,
    Run};
