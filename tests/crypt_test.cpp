#include <CCrypt.h>
#include <TeaBlock.h>

#include <QByteArray>
#include <QCryptographicHash>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <tuple>
#include <utility>

namespace
{

const unsigned char* Data(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

unsigned char* Data(QByteArray& bytes)
{
    return reinterpret_cast<unsigned char*>(bytes.data());
}

QByteArray Counting(int size, int first)
{
    QByteArray bytes(size, '\0');
    std::iota(Data(bytes), Data(bytes) + size, static_cast<unsigned char>(first));
    return bytes;
}

const QByteArray Key = Counting(16, 0xF0);

CCrypt Cipher(QByteArray key = Key)
{
    return CCrypt(Data(key), 0, 0);
}

QByteArray Encrypt(const CCrypt& crypt, const QByteArray& payload)
{
    QByteArray envelope(crypt.FindEncryptSize(static_cast<int>(payload.size())), '\0');
    int size = -1;
    crypt.Encrypt(Data(payload), static_cast<int>(payload.size()), Data(envelope), size);
    EXPECT_EQ(envelope.size(), size);
    return envelope;
}

// The payload, or "refused" and the value left in the length.
QByteArray Decrypt(const CCrypt& crypt, const QByteArray& envelope, int room = 1000)
{
    QByteArray plain(1000, '#');
    const auto size = static_cast<int>(envelope.size());
    const bool done = crypt.Decrypt(Data(envelope), size, Data(plain), room);
    return done ? plain.left(room) : "refused " + QByteArray::number(room);
}

QByteArray Md5Key(int number, QByteArray text)
{
    const std::unique_ptr<unsigned char[]> key(CCrypt::GetMd5Key(number, text.data()));
    return QByteArray(reinterpret_cast<char*>(key.get()), 16);
}

} // namespace

// Published test vectors of TEA, which has 32 cycles.
TEST(Tea, MatchesThePublishedVectors)
{
    const char* const vectors[][3] = {
        {"00000000000000000000000000000000", "0000000000000000", "41ea3a0a94baa940"},
        {"0123456712345678234567893456789a", "0000000000000000", "34e943b0900f5dcb"},
        {"0123456712345678234567893456789a", "0102030405060708", "773dc179878a81c0"},
    };
    for (const auto& [key, plain, enciphered] : vectors) {
        const Tea::Key words = Tea::LoadKey(Data(QByteArray::fromHex(key)));
        const Tea::Block block =
            Tea::Encipher(Tea::Load(Data(QByteArray::fromHex(plain))), words, 32);
        QByteArray out(8, '\0');
        Tea::Store(block, Data(out));
        EXPECT_EQ(enciphered, out.toHex());
        Tea::Store(Tea::Decipher(block, words, 32), Data(out));
        EXPECT_EQ(plain, out.toHex());
    }
}

// Made with a Python program that follows the format: key F0 to FF, header A8, fill 11 22 33 ...
// as far as needed, salt C3 5A.
TEST(Envelope, DeciphersReferences)
{
    const std::pair<QByteArray, const char*> references[] = {
        {"", "edb071a2feb5254d932053706ceb8ab6"},
        {QByteArray::fromHex("ff0080616263"), "aa83d4617f33c8c91ffb66144c5f624b"},
        {QByteArray(7, '\1'), "9e1fcd92ff90a6f617f8270ed2feb853f9132ad99cdcf52f"},
        {"Привет, buddylist.info",
         "89cf3a8e7491a05aaeef8055207b7e5abefccb6940a60b450ed213b15739c0db"
         "b641076bf891f95b"},
    };
    for (const auto& [payload, hex] : references) {
        const QByteArray envelope = QByteArray::fromHex(hex);
        const int size = static_cast<int>(payload.size());
        EXPECT_EQ(payload, Decrypt(Cipher(), envelope, size));
        const QByteArray unchanged = "refused " + QByteArray::number(size - 1);
        EXPECT_EQ(unchanged, Decrypt(Cipher(), envelope, size - 1));
        EXPECT_TRUE(Decrypt(Cipher(Counting(16, 0xF1)), envelope).startsWith("refused"));
    }
}

TEST(Envelope, DeciphersToThePayloadAlsoInPlace)
{
    for (int length = 0; length <= 70; ++length) {
        const QByteArray payload = Counting(length, 0x7E);
        EXPECT_EQ(payload, Decrypt(Cipher(), Encrypt(Cipher(), payload)));
        QByteArray bytes = payload + QByteArray(17, '#');
        int size = 0;
        Cipher().Encrypt(Data(bytes), length, Data(bytes), size);
        EXPECT_TRUE(Cipher().Decrypt(Data(bytes), size, Data(bytes), size));
        EXPECT_EQ(payload, bytes.left(size)) << length;
    }
}

// The first block is enciphered without feedback. Behind the header it holds 7 bytes of fill
// for a payload of 7 bytes, salt and payload for one of 6.
TEST(Envelope, DrawsFreshHeaderFillAndSalt)
{
    for (const auto& [length, fill, randomBytes] : {std::tuple(7, 7, 8), std::tuple(6, 0, 3)}) {
        std::set<unsigned char> values[8];
        for (int i = 0; i < 400; ++i) {
            const Tea::Block first = Tea::Load(Data(Encrypt(Cipher(), QByteArray(length, 'x'))));
            unsigned char plain[8];
            Tea::Store(Tea::Decipher(first, Tea::LoadKey(Data(Key)), 16), plain);
            EXPECT_EQ(fill, plain[0] & 7);
            for (int at = 0; at < randomBytes; ++at) {
                values[at].insert(plain[at]);
            }
        }
        for (int at = 0; at < randomBytes; ++at) {
            EXPECT_LT(at == 0 ? 25U : 150U, values[at].size()) << "byte " << at;
        }
    }
}

TEST(Envelope, RefusesWhatIsNoEnvelope)
{
    const CCrypt crypt = Cipher();
    const QByteArray good = Encrypt(crypt, "payload");
    for (const int size : {0, 8, 20}) {
        EXPECT_EQ("refused 1000", Decrypt(crypt, good.left(size)));
    }
    EXPECT_EQ("refused -1", Decrypt(crypt, good, -1));
    int room = 8;
    QByteArray out(8, '#');
    EXPECT_FALSE(crypt.Decrypt(nullptr, 24, Data(out), room));
    EXPECT_FALSE(crypt.Decrypt(Data(good), 24, nullptr, room));
    EXPECT_EQ(8, room);
    // A header of 7 leaves no room for salt and trailer in 16 bytes.
    const Tea::Block header = Tea::Encipher({0x07000000, 0}, Tea::LoadKey(Data(Key)), 16);
    QByteArray sixteen(16, '\0');
    Tea::Store(header, Data(sixteen));
    EXPECT_EQ("refused 1000", Decrypt(crypt, sixteen));
    // Callers get length and payload before the trailer turns out to be wrong.
    QByteArray altered = good;
    altered[23] = static_cast<char>(altered[23] ^ 1);
    EXPECT_FALSE(crypt.Decrypt(Data(altered), 24, Data(out), room));
    EXPECT_EQ(7, room);
    EXPECT_EQ("payloa", out.left(6));
}

// The default object sizes envelopes and deciphers but does not encipher.
TEST(CCrypt, SelectorsAreAsymmetric)
{
    CCrypt crypt;
    QByteArray key = Key;
    crypt.SetKey(Data(key), 16);
    QByteArray other = Counting(16, 1);
    crypt.SetKey(Data(other), 15);
    crypt.SetKey(nullptr, 16);
    EXPECT_EQ("hello", Decrypt(crypt, Encrypt(Cipher(), "hello")));
    int size = -7;
    QByteArray out(16, '#');
    crypt.Encrypt(Data(other), 5, Data(out), size);
    crypt.SetArith(0, 1);
    EXPECT_EQ("refused 9", Decrypt(crypt, Encrypt(crypt, "hello"), 9));
    crypt.Encrypt(Data(other), -1, Data(out), size);
    crypt.Encrypt(Data(other), 2147483640, Data(out), size);
    crypt.Encrypt(nullptr, 5, Data(out), size);
    crypt.Encrypt(Data(other), 5, nullptr, size);
    EXPECT_EQ(-7, size);
    EXPECT_EQ(QByteArray(16, '#'), out);
    const std::pair<int, int> sizes[] = {{0, 16}, {6, 16}, {7, 24}, {22, 32}, {2147483631, 0}};
    for (const auto& [length, expected] : sizes) {
        EXPECT_EQ(expected, Cipher().FindEncryptSize(length));
        EXPECT_EQ(expected, CCrypt().FindEncryptSize(length));
    }
    crypt.SetArith(2, 0);
    EXPECT_EQ(0, crypt.FindEncryptSize(5));
}

TEST(Md5, MatchesAnIndependentImplementationOverAnySplit)
{
    std::mt19937 random(1);
    for (int length = -1; length <= 300; ++length) {
        const QByteArray data = Counting(std::max(length, 0), static_cast<int>(random() & 255));
        const QByteArray expected = QCryptographicHash::hash(data, QCryptographicHash::Md5);
        QByteArray digest(16, '\0');
        CCrypt::Md5Hash(Data(digest), Data(data), length);
        EXPECT_EQ(expected, digest) << length;
        tagMD5State state;
        CCrypt::MD5_Init(&state);
        for (int pos = 0; pos < length;) {
            const int piece = std::min(static_cast<int>(random() % 100), length - pos);
            CCrypt::MD5_Update(&state, Data(data) + pos, static_cast<unsigned long>(piece));
            pos += piece;
        }
        CCrypt::MD5_Final(Data(digest), &state);
        EXPECT_EQ(expected, digest) << length;
    }
}

TEST(Md5, CountsBitsIn64BitsAndIgnoresNullAndLengthsBeyond32)
{
    tagMD5State state;
    CCrypt::MD5_Init(&state);
    state.m_dwBits[0] = 0xFFFFFFF8U;
    CCrypt::MD5_Update(&state, Data(Key), 16);
    CCrypt::MD5_Update(&state, nullptr, 1);
    if constexpr (sizeof(unsigned long) > 4) {
        CCrypt::MD5_Update(&state, Data(Key), static_cast<unsigned long>(0x100000001ULL));
    }
    EXPECT_EQ(120U, state.m_dwBits[0]);
    EXPECT_EQ(1U, state.m_dwBits[1]);
    EXPECT_EQ(16, state.m_nBlockLen);
}

// The digests are those of RFC 1321. The keys come from Python's hashlib over the joined text.
TEST(Md5, HexDigestsAndKeys)
{
    _tag_THashHexString8 hex = {"untouched"};
    EXPECT_EQ(0, CCrypt::MD5HashHexString(nullptr, hex));
    EXPECT_STREQ("untouched", hex.m_szHex);
    EXPECT_EQ(1, CCrypt::MD5HashHexString("", hex));
    EXPECT_STREQ("d41d8cd98f00b204e9800998ecf8427e", hex.m_szHex);
    EXPECT_EQ(1, CCrypt::MD5HashHexString("message digest", hex));
    EXPECT_STREQ("f96b697d7cb7938d525a2f31aaf161d0", hex.m_szHex);
    EXPECT_EQ("A9CC@D068596566A", Md5Key(-1, ""));
    EXPECT_EQ("D54362B088@48E3@", Md5Key(0, "pass"));
    EXPECT_EQ("49A86A0BEB4A2@78", Md5Key(10001, "0123456789abcdef"));
    EXPECT_EQ("C255@602909842E7", Md5Key(-2147483647 - 1, "0123456789abcdefXYZ"));
    EXPECT_EQ("CC9769A1B080E835", Md5Key(12345, "\xD0\xBF\xFF"));
    EXPECT_EQ(nullptr, CCrypt::GetMd5Key(1, nullptr));
}
