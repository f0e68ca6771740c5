// MD5 in pieces, and what is derived from it, against Qt's implementation.

#include "Model.h"
#include "Texts.h"

#include <CCrypt.h>

#include <QCryptographicHash>

#include <cstring>
#include <memory>

namespace
{

QByteArray Digest(const QByteArray& message)
{
    return QCryptographicHash::hash(message, QCryptographicHash::Md5);
}

void CheckPieces(ByteSource& source)
{
    tagMD5State state;
    CCrypt::MD5_Init(&state);
    std::string message;
    for (int pieces = source.Between(0, 7); pieces > 0; --pieces) {
        std::string piece = source.Bytes(200);
        piece.resize(piece.size() * static_cast<std::size_t>(source.Between(1, 4)), 'p');
        CCrypt::MD5_Update(&state, Unsigned(piece), piece.size());
        message += piece;
        MODEL_CHECK(state.m_nBlockLen == static_cast<int>(message.size() % 64));
        MODEL_CHECK(state.m_dwBits[0] == message.size() * 8);
    }
    const QByteArray expected = Digest(QByteArray::fromStdString(message));
    QByteArray digest(16, 'x'), whole = digest;
    CCrypt::MD5_Final(Unsigned(digest), &state);
    CCrypt::Md5Hash(Unsigned(whole), Unsigned(message), static_cast<int>(message.size()));
    MODEL_CHECK(digest == expected && whole == expected);
}

void CheckTextForms(ByteSource& source)
{
    const std::uint32_t number = source.Word();
    std::string text = source.Bytes(70);
    _tag_THashHexString8 hex;
    std::memset(&hex, 'x', sizeof hex);
    MODEL_CHECK(CCrypt::MD5HashHexString(text.c_str(), hex) == 1);
    MODEL_CHECK(std::memcmp(hex.m_szHex, Digest(text.c_str()).toHex().data(), 33) == 0);

    const QByteArray start = QByteArray(text.c_str()).left(16);
    QByteArray expected = Digest(QByteArray::number(number) + start + "7A3F09B2C4D8E615").toHex();
    for (char& digit : expected) {
        digit = static_cast<char>(digit >= 'a' ? digit - 'a' + '@' : digit);
    }
    const std::unique_ptr<unsigned char[]> key(
        CCrypt::GetMd5Key(static_cast<int>(number), text.data()));
    MODEL_CHECK(std::memcmp(key.get(), expected.data() + 16, 16) == 0);
}

} // namespace

void DriveModel(ByteSource& source)
{
    while (!source.IsEmpty()) {
        CheckPieces(source);
        CheckTextForms(source);
    }
}
