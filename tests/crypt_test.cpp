#include "TestPrelude.h"

#include <CCrypt.h>
#include <TeaBlock.h>

#include <QCryptographicHash>

#include <numeric>

namespace
{

using Bytes = std::vector<unsigned char>;

Bytes Hex(const QByteArray& digits)
{
    const QByteArray bytes = QByteArray::fromHex(digits);
    return Bytes(bytes.begin(), bytes.end());
}

Bytes Counting(int size, int first)
{
    Bytes bytes(static_cast<std::size_t>(size));
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(first));
    return bytes;
}

Bytes Key = Counting(16, 0xF0);

std::string Md5Key(int number, std::string text)
{
    const std::unique_ptr<unsigned char[]> key(CCrypt::GetMd5Key(number, text.data()));
    return std::string(key.get(), key.get() + 16);
}

} // namespace

// Published test vectors of TEA, which has 32 cycles.
TEST(Tea, MatchesThePublishedVectors)
{
    const char* const vectors[][3] = {
        {"00000000000000000000000000000000", "0000000000000000", "41ea3a0a94baa940"},
        {"0123456712345678234567893456789a", "0102030405060708", "773dc179878a81c0"}};
    for (const auto& [key, plain, enciphered] : vectors) {
        const Tea::Key words = Tea::LoadKey(Hex(key).data());
        const Tea::Block block = Tea::Encipher(Tea::Load(Hex(plain).data()), words, 32);
        Bytes stored(16);
        Tea::Store(block, stored.data());
        Tea::Store(Tea::Decipher(block, words, 32), stored.data() + 8);
        EXPECT_EQ(Hex(QByteArray(enciphered) + plain), stored);
    }
}

// Made with a Python program that follows the format: key F0 to FF, header A8, fill 11 22 33 ...
// as far as needed, salt C3 5A. Default objects decipher as soon as they have a key.
TEST(Envelope, DeciphersReferences)
{
    const std::pair<Bytes, const char*> references[] = {
        {{}, "edb071a2feb5254d932053706ceb8ab6"},
        {Hex("ff0080616263"), "aa83d4617f33c8c91ffb66144c5f624b"},
        {Hex("d09fd180d0b8d0b2d0b5d1822c2062756464796c6973742e696e666f"),
         "89cf3a8e7491a05aaeef8055207b7e5abefccb6940a60b450ed213b15739c0dbb641076bf891f95b"}};
    CCrypt crypt;
    crypt.SetKey(Key.data(), 16);
    crypt.SetKey(Counting(16, 1).data(), 15);
    crypt.SetKey(nullptr, 16);
    for (const auto& [payload, hex] : references) {
        const Bytes envelope = Hex(hex);
        Bytes out(payload.size());
        int size = static_cast<int>(payload.size());
        EXPECT_TRUE(
            crypt.Decrypt(envelope.data(), static_cast<int>(envelope.size()), out.data(), size));
        EXPECT_EQ(payload, out);
        EXPECT_EQ(payload.size(), static_cast<std::size_t>(size));
    }
}

TEST(Envelope, DeciphersToThePayloadInPlace)
{
    const CCrypt crypt(Key.data(), 0, 0);
    for (int length = 0; length <= 40; ++length) {
        Bytes bytes = Counting(length + 17, 0x7E);
        int size = 0;
        crypt.Encrypt(bytes.data(), length, bytes.data(), size);
        EXPECT_EQ(crypt.FindEncryptSize(length), size);
        EXPECT_TRUE(crypt.Decrypt(bytes.data(), size, bytes.data(), size));
        EXPECT_EQ(length, size);
        EXPECT_EQ(Counting(length, 0x7E), Bytes(bytes.begin(), bytes.begin() + length));
    }
}

// Of a payload of 2 bytes the first block, which is enciphered without feedback, holds header,
// 4 bytes of fill and the salt.
TEST(Envelope, DrawsFreshHeaderFillAndSalt)
{
    const CCrypt crypt(Key.data(), 0, 0);
    Bytes any(8, 0), all(8, 0xFF);
    for (int i = 0; i < 400; ++i) {
        Bytes bytes(16, 1);
        int size = 0;
        crypt.Encrypt(bytes.data(), 2, bytes.data(), size);
        const Tea::Block first = Tea::Load(bytes.data());
        Tea::Store(Tea::Decipher(first, Tea::LoadKey(Key.data()), 16), bytes.data());
        std::transform(any.begin(), any.end(), bytes.begin(), any.begin(), std::bit_or<>());
        std::transform(all.begin(), all.end(), bytes.begin(), all.begin(), std::bit_and<>());
    }
    EXPECT_EQ(Hex("fcffffffffffff01"), any) << "the header's low bits count the fill";
    EXPECT_EQ(Hex("0400000000000001"), all);
}

TEST(Envelope, RefusesWhatIsNoEnvelope)
{
    const CCrypt crypt(Key.data(), 0, 0);
    const Bytes envelope = Hex("9e1fcd92ff90a6f617f8270ed2feb853f9132ad99cdcf52f");
    // A header of 7 leaves no room for salt and trailer in 16 bytes.
    Bytes sixteen(16);
    Tea::Store(Tea::Encipher({0x07000000, 0}, Tea::LoadKey(Key.data()), 16), sixteen.data());
    Bytes out(8);
    const auto refuses = [&](const unsigned char* in, int size, unsigned char* to, int room) {
        const int before = room;
        return !crypt.Decrypt(in, size, to, room) && room == before;
    };
    for (const auto& [size, room] : {std::pair(0, 8), {8, 8}, {20, 8}, {24, -1}, {24, 6}}) {
        EXPECT_TRUE(refuses(envelope.data(), size, out.data(), room)) << size;
    }
    EXPECT_TRUE(refuses(sixteen.data(), 16, out.data(), 8));
    EXPECT_TRUE(refuses(nullptr, 24, out.data(), 8) && refuses(envelope.data(), 24, nullptr, 8));
    // Callers get length and payload before a byte of the trailer turns out not to be zero.
    const Tea::Key key = Tea::LoadKey(Key.data());
    const Tea::Block head{0x00535301, 0x02030405};
    for (const Tea::Block trailer : {Tea::Block{0x06010000, 0}, Tea::Block{0x06000000, 1}}) {
        const Tea::Block first = Tea::Encipher(head, key, 16);
        Tea::Store(first, sixteen.data());
        Tea::Store(Tea::Encipher(trailer ^ first, key, 16) ^ head, sixteen.data() + 8);
        int room = 8;
        EXPECT_FALSE(crypt.Decrypt(sixteen.data(), 16, out.data(), room));
        EXPECT_EQ(6, room);
        EXPECT_EQ(Hex("0102030405060000"), out);
    }
}

// The default object sizes envelopes but does not encipher.
TEST(CCrypt, SelectorsAreAsymmetric)
{
    const int sizes[][2] = {{0, 16}, {6, 16}, {7, 24}, {22, 32}, {2147483631, 0}};
    for (const auto& [length, expected] : sizes) {
        EXPECT_EQ(expected, CCrypt(Key.data(), 0, 0).FindEncryptSize(length));
        EXPECT_EQ(expected, CCrypt().FindEncryptSize(length));
    }
    CCrypt crypt;
    Bytes out(24);
    int size = -7, room = 24;
    crypt.Encrypt(Key.data(), 5, out.data(), size);
    crypt.SetArith(0, 1);
    const Bytes envelope = Hex("edb071a2feb5254d932053706ceb8ab6");
    EXPECT_FALSE(crypt.Decrypt(envelope.data(), 16, out.data(), room));
    crypt.Encrypt(Key.data(), -1, out.data(), size);
    crypt.Encrypt(Key.data(), 2147483640, out.data(), size);
    crypt.Encrypt(nullptr, 5, out.data(), size);
    crypt.Encrypt(Key.data(), 5, nullptr, size);
    EXPECT_EQ(-7, size);
    EXPECT_EQ(Bytes(24), out);
    crypt.SetArith(2, 0);
    EXPECT_EQ(0, crypt.FindEncryptSize(5));
}

TEST(Md5, MatchesAnIndependentImplementationOverAnySplit)
{
    for (int length = -1; length <= 200; ++length) {
        const Bytes data = Counting(std::max(length, 0), length);
        tagMD5State state;
        CCrypt::MD5_Init(&state);
        for (int pos = 0, piece = 0; pos < length; pos += piece) {
            piece = std::min(1 + (length + pos) % 71, length - pos);
            CCrypt::MD5_Update(&state, data.data() + pos, static_cast<unsigned long>(piece));
        }
        Bytes digests(32);
        CCrypt::Md5Hash(digests.data(), data.data(), length);
        CCrypt::MD5_Final(digests.data() + 16, &state);
        const QByteArray text(reinterpret_cast<const char*>(data.data()), std::max(length, 0));
        const QByteArray expected = QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex();
        EXPECT_EQ(Hex(expected + expected), digests) << length;
    }
}

TEST(Md5, CountsBitsIn64BitsAndIgnoresNullAndLengthsBeyond32)
{
    tagMD5State state;
    CCrypt::MD5_Init(&state);
    state.m_dwBits[0] = 0xFFFFFFF8U;
    CCrypt::MD5_Update(&state, Key.data(), 16);
    CCrypt::MD5_Update(&state, nullptr, 1);
    CCrypt::MD5_Update(&state, Key.data(), ~0UL & ~0xFFFFFFFFUL); // 0 where long has 32 bits
    EXPECT_TRUE(state.m_dwBits[0] == 120 && state.m_dwBits[1] == 1 && state.m_nBlockLen == 16);
}

// The digest is that of RFC 1321. The keys come from Python's hashlib over the joined text.
TEST(Md5, HexDigestsAndKeys)
{
    _tag_THashHexString8 hex = {"untouched"};
    EXPECT_EQ(0, CCrypt::MD5HashHexString(nullptr, hex));
    EXPECT_STREQ("untouched", hex.m_szHex);
    EXPECT_EQ(1, CCrypt::MD5HashHexString("message digest", hex));
    EXPECT_STREQ("f96b697d7cb7938d525a2f31aaf161d0", hex.m_szHex);
    EXPECT_EQ("A9CC@D068596566A", Md5Key(-1, ""));
    EXPECT_EQ("49A86A0BEB4A2@78", Md5Key(10001, "0123456789abcdef"));
    EXPECT_EQ("C255@602909842E7", Md5Key(-2147483647 - 1, "0123456789abcdefXYZ"));
    EXPECT_EQ("CC9769A1B080E835", Md5Key(12345, "\xD0\xBF\xFF"));
    EXPECT_EQ(nullptr, CCrypt::GetMd5Key(1, nullptr));
}
