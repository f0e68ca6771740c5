#include "Key.h"

#include "Command.h"

#include <CCrypt.h>

#include <QByteArray>
#include <QCommandLineParser>

#include <algorithm>
#include <memory>

Key DeriveKey(const QString& number, const QString& text)
{
    const qint64 value = ParseNumber(number, QStringLiteral("NUMBER"), -2147483648LL, 4294967295LL);
    QByteArray bytes = text.toUtf8();
    const std::unique_ptr<unsigned char[]> derived(
        CCrypt::GetMd5Key(static_cast<int>(static_cast<quint32>(value)), bytes.data()));
    Key key{};
    std::copy_n(derived.get(), key.size(), key.begin());
    return key;
}

QString HexText(const Key& key)
{
    const QByteArray bytes(reinterpret_cast<const char*>(key.data()), int(key.size()));
    return QString::fromLatin1(bytes.toHex());
}

void DeclareKey(QCommandLineParser& parser)
{
    parser.addOptions({
        {QStringLiteral("key"), QStringLiteral("The key as 32 hexadecimal digits."),
         QStringLiteral("HEX")},
        {QStringLiteral("number"), QStringLiteral("With --text: derive the key from both."),
         QStringLiteral("NUMBER")},
        {QStringLiteral("text"), QStringLiteral("With --number: derive the key from both."),
         QStringLiteral("TEXT")},
        {QStringLiteral("name-key"),
         QStringLiteral("The program's own key for stored file names, of up to 256 bytes.")},
    });
}

bool IsNameKey(const QCommandLineParser& parser)
{
    return parser.isSet(QStringLiteral("name-key"));
}

namespace
{

Key ParseHexKey(const QString& text)
{
    const QByteArray bytes = QByteArray::fromHex(text.toLatin1());
    Key key{};
    if (text.size() != 32 || bytes.size() != int(key.size()) ||
        bytes.toHex() != text.toLatin1().toLower()) {
        throw UsageError(QStringLiteral("--key takes 32 hexadecimal digits, got '%1'").arg(text));
    }
    std::copy(bytes.begin(), bytes.end(), key.begin());
    return key;
}

} // namespace

Key ParseKey(const QCommandLineParser& parser)
{
    const bool hex = parser.isSet(QStringLiteral("key"));
    const bool number = parser.isSet(QStringLiteral("number"));
    const bool text = parser.isSet(QStringLiteral("text"));
    if (number != text || int(hex) + int(number) + int(IsNameKey(parser)) != 1) {
        throw UsageError(QStringLiteral("wants one of --key, --number with --text, or --name-key"));
    }
    if (IsNameKey(parser)) {
        return {};
    }
    return hex ? ParseHexKey(parser.value(QStringLiteral("key")))
               : DeriveKey(parser.value(QStringLiteral("number")),
                           parser.value(QStringLiteral("text")));
}
