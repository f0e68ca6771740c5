// encrypt and decrypt: the cipher envelope of CCrypt.

#include "Command.h"
#include "InputOutput.h"
#include "Key.h"

#include <CCrypt.h>
#include <CQSString.h>
#include <Orvo/CQPath.h>

#include <QCommandLineParser>

namespace
{

constexpr qint64 longestPayload = 2147483647LL - 17; // an envelope's length is a 32-bit number
constexpr qint64 longestEnvelope = 2147483647LL;

unsigned char* Bytes(QByteArray& bytes)
{
    return reinterpret_cast<unsigned char*>(bytes.data());
}

QByteArray EncryptWithKey(QByteArray plain, Key key, const QString&)
{
    const CCrypt cipher(key.data(), 0, 0);
    int length = cipher.FindEncryptSize(int(plain.size()));
    QByteArray envelope(length, Qt::Uninitialized);
    cipher.Encrypt(Bytes(plain), int(plain.size()), Bytes(envelope), length);
    envelope.truncate(length);
    return envelope;
}

QByteArray DecryptWithKey(QByteArray envelope, Key key, const QString& name)
{
    const CCrypt cipher(key.data(), 0, 0);
    int length = int(envelope.size());
    if (!cipher.Decrypt(Bytes(envelope), length, Bytes(envelope), length)) {
        throw Failure(name + QStringLiteral(": is no envelope under this key"));
    }
    envelope.truncate(length);
    return envelope;
}

/// Runs a name through one of CQPath's operations; these hold for names of up to 256 bytes.
QByteArray ConvertName(QByteArray bytes, int (*convert)(CQSString&), const QString& failure)
{
    CQSString name;
    name.SetData(Bytes(bytes), int(bytes.size()));
    if (convert(name) != 1) {
        throw Failure(failure);
    }
    return QByteArray(name.GetDataPtr(), name.GetLength());
}

void Declare(QCommandLineParser& parser)
{
    DeclareKey(parser);
    DeclareOut(parser);
}

/// One of the two ways through the cipher.
struct Direction {
    qint64 longestInput;
    QByteArray (*convert)(QByteArray bytes, Key key, const QString& inputName);
    int (*convertName)(CQSString& name);
    const char* refusedName;
};

int Run(const QCommandLineParser& parser, const Direction& direction)
{
    const Key key = ParseKey(parser);
    Input input(InputName(parser));
    const QByteArray bytes = input.ReadAll(direction.longestInput);
    WriteOutput(parser,
                IsNameKey(parser)
                    ? ConvertName(bytes, direction.convertName,
                                  input.GetName() + QString::fromLatin1(direction.refusedName))
                    : direction.convert(bytes, key, input.GetName()));
    return 0;
}

int RunEncrypt(const QCommandLineParser& parser)
{
    return Run(parser, {longestPayload, EncryptWithKey, CQPath::EncodeFileName,
                        ": a stored name has 1 to 256 bytes"});
}

int RunDecrypt(const QCommandLineParser& parser)
{
    return Run(parser,
               {longestEnvelope, DecryptWithKey, CQPath::DecodeFileName, ": is no stored name"});
}

} // namespace

const Command commandEncrypt = {
    "encrypt",
    " [FILE]",
    "Seal a file or standard input into a cipher envelope.",
    "orvotool encrypt --number 10001 --text secret -o note.enc note.txt",
    Declare,
    RunEncrypt};

const Command commandDecrypt = {"decrypt",
                                " [FILE]",
                                "Open a cipher envelope.",
                                "orvotool decrypt --number 10001 --text secret note.enc",
                                Declare,
                                RunDecrypt};
