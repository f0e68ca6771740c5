// utf8 and utf16: what each setter of the wide string makes of given bytes, unit by unit.

#include "Command.h"
#include "InputOutput.h"

#include <CQSString.h>
#include <CQWString.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <functional>

namespace
{

constexpr qint64 longestInput = 1 << 20;

struct Setter {
    const char* name;
    std::function<int(CQWString&, QByteArray&)> set;
};

const unsigned char* Data(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

CQSString ByteString(const QByteArray& bytes)
{
    CQSString text;
    text.SetData(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.constData())),
                 int(bytes.size()));
    return text;
}

const std::vector<Setter>& Utf8Setters()
{
    static const std::vector<Setter> setters = {
        {"SetUTF8Data",
         [](CQWString& s, QByteArray& b) { return s.SetUTF8Data(Data(b), int(b.size())); }},
        {"SetByteData",
         [](CQWString& s, QByteArray& b) { return s.SetByteData(Data(b), int(b.size())); }},
        {"SetGBKByteData",
         [](CQWString& s, QByteArray& b) { return s.SetGBKByteData(Data(b), int(b.size())); }},
        {"SeASCIIData",
         [](CQWString& s, QByteArray& b) { return s.SeASCIIData(Data(b), int(b.size())); }},
        {"operator=(CQSString)",
         [](CQWString& s, QByteArray& b) {
             s = ByteString(b);
             return 1;
         }},
        {"CQWString(CQSString)",
         [](CQWString& s, QByteArray& b) {
             s = CQWString(ByteString(b));
             return 1;
         }},
    };
    return setters;
}

const std::vector<Setter>& Utf16Setters()
{
    static const std::vector<Setter> setters = {
        {"SetUTF16Data",
         [](CQWString& s, QByteArray& b) { return s.SetUTF16Data(Data(b), int(b.size() / 2)); }},
    };
    return setters;
}

QString UnitsOf(const CQWString& text)
{
    QStringList units;
    for (int i = 0; i < text.GetLength(); ++i) {
        units += QStringLiteral("%1").arg(static_cast<quint32>(text.GetDataPtr()[i]), 4, 16,
                                          QLatin1Char('0'));
    }
    return units.join(QLatin1Char(' ')).toUpper();
}

QByteArray BytesOf(const QCommandLineParser& parser)
{
    if (!parser.isSet(QStringLiteral("hex"))) {
        return Input(InputName(parser)).ReadAll(longestInput);
    }
    RequireArguments(parser, 0, 0);
    const QByteArray digits = parser.value(QStringLiteral("hex")).toLatin1().replace(' ', "");
    QByteArray bytes = QByteArray::fromHex(digits);
    if (bytes.toHex() != digits.toLower()) {
        throw UsageError(QStringLiteral("--hex takes pairs of hexadecimal digits, got '%1'")
                             .arg(parser.value(QStringLiteral("hex"))));
    }
    return bytes;
}

int Show(const QCommandLineParser& parser, const std::vector<Setter>& setters, int unitSize)
{
    QByteArray bytes = BytesOf(parser);
    if (bytes.size() % unitSize != 0) {
        throw Failure(QStringLiteral("%1 bytes are no whole number of %2-byte units")
                          .arg(bytes.size())
                          .arg(unitSize));
    }
    const bool json = parser.isSet(QStringLiteral("json"));
    QJsonArray rows;
    for (const Setter& setter : setters) {
        CQWString text;
        const int result = setter.set(text, bytes);
        if (json) {
            rows.append(QJsonObject{{QStringLiteral("setter"), QString::fromLatin1(setter.name)},
                                    {QStringLiteral("result"), result},
                                    {QStringLiteral("units"), UnitsOf(text)}});
        } else {
            std::printf("%-22s %d  %s\n", setter.name, result, qUtf8Printable(UnitsOf(text)));
        }
    }
    if (json) {
        std::fputs(QJsonDocument(rows).toJson().constData(), stdout);
    }
    return 0;
}

void Declare(QCommandLineParser& parser)
{
    parser.addOption({QStringLiteral("hex"),
                      QStringLiteral("The bytes, instead of FILE or standard input."),
                      QStringLiteral("BYTES")});
    DeclareJson(parser);
}

int RunUtf8(const QCommandLineParser& parser)
{
    return Show(parser, Utf8Setters(), 1);
}

int RunUtf16(const QCommandLineParser& parser)
{
    return Show(parser, Utf16Setters(), 2);
}

} // namespace

const Command commandUtf8 = {"utf8",
                             " [FILE]",
                             "Show what each setter makes of UTF-8 bytes: result and units.",
                             "orvotool utf8 --hex 'E4 B8 AD 41'",
                             Declare,
                             RunUtf8};

const Command commandUtf16 = {"utf16",
                              " [FILE]",
                              "Show what is made of 16-bit units in the order of the host.",
                              "orvotool utf16 --hex '2D 4E 41 00'",
                              Declare,
                              RunUtf16};
