#include "TestPrelude.h"

#include <CCrypt.h>
#include <TeaBlock.h>

#include <unistd.h>

#include <QByteArray>

namespace
{

using Bytes = std::vector<unsigned char>;

Bytes Hex(const QByteArray& digits)
{
    const QByteArray bytes = QByteArray::fromHex(digits);
    return Bytes(bytes.begin(), bytes.end());
}

Bytes Key = Hex("f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff");

// An envelope of 2 bytes in the object's key.
Bytes Seal(const CCrypt& crypt)
{
    Bytes bytes(16, 1);
    int size = 0;
    crypt.Encrypt(bytes.data(), 2, bytes.data(), size);
    return bytes;
}

} // namespace

// A published test vector of TEA, which has 32 cycles.
TEST(Tea, MatchesAPublishedVector)
{
    const Tea::Key key = Tea::LoadKey(Hex("0123456712345678234567893456789a").data());
    const Tea::Block block = Tea::Encipher(Tea::Load(Hex("0102030405060708").data()), key, 32);
    EXPECT_EQ(std::pair(0x773DC179U, 0x878A81C0U), std::pair(block.y, block.z));
}

// Of a payload of 2 bytes the first block, which is enciphered without feedback, holds header,
// 4 bytes of fill and the salt.
TEST(Envelope, DrawsFreshHeaderFillAndSalt)
{
    CCrypt crypt(Key.data(), 0, 0);
    crypt.SetKey(nullptr, 16);
    const Tea::Key words = Tea::LoadKey(Key.data());
    quint64 any = 0, all = ~any;
    for (int i = 0; i < 400; ++i) {
        const Tea::Block plain = Tea::Decipher(Tea::Load(Seal(crypt).data()), words, 16);
        any |= quint64{plain.y} << 32 | plain.z;
        all &= quint64{plain.y} << 32 | plain.z;
    }
    EXPECT_EQ(0xFCFFFFFFFFFFFF01U, any) << "the header's low bits count the fill";
    EXPECT_EQ(0x0400000000000001U, all);
}

TEST(Envelope, DrawsOtherBytesInAForkedChild)
{
    const CCrypt crypt(Key.data(), 0, 0);
    Seal(crypt);
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    if (fork() == 0) {
        _exit(write(ends[1], Seal(crypt).data(), 16) == 16 ? 0 : 1);
    }
    Bytes fromChild(16);
    EXPECT_EQ(16, read(ends[0], fromChild.data(), 16));
    EXPECT_NE(Seal(crypt), fromChild);
}

TEST(Envelope, RefusesNullAndLengthsWithoutAnEnvelope)
{
    const CCrypt crypt(Key.data(), 0, 0);
    Bytes out(24);
    int size = 16;
    crypt.Encrypt(Key.data(), -1, out.data(), size);
    crypt.Encrypt(Key.data(), 2147483640, out.data(), size);
    crypt.Encrypt(nullptr, 5, out.data(), size);
    crypt.Encrypt(Key.data(), 5, nullptr, size);
    EXPECT_FALSE(crypt.Decrypt(nullptr, 24, out.data(), size));
    EXPECT_FALSE(crypt.Decrypt(Key.data(), 16, nullptr, size));
    EXPECT_EQ(std::pair(16, Bytes(24)), std::pair(size, out));
}

// The digest comes from a plain Python program.
TEST(Md5, CountsBitsIn64BitsAndRefusesNullAndLengthsBeyond32Bits)
{
    tagMD5State state;
    CCrypt::MD5_Init(&state);
    state.m_dwBits[0] = 0xFFFFFFF8U;
    CCrypt::MD5_Update(&state, nullptr, 1);
    CCrypt::MD5_Update(&state, Key.data(), ~0UL & ~0xFFFFFFFFUL); // 0 where long has 32 bits
    CCrypt::MD5_Update(&state, Key.data(), 16);
    EXPECT_EQ(std::pair(120U, 1U), std::pair(state.m_dwBits[0], state.m_dwBits[1]));
    Bytes digest(16);
    CCrypt::MD5_Final(digest.data(), &state);
    EXPECT_EQ(Hex("616e2dafeb471b4675d735b5a94ff90f"), digest);
    CCrypt::Md5Hash(digest.data(), Key.data(), -1);
    EXPECT_EQ(Hex("d41d8cd98f00b204e9800998ecf8427e"), digest);
    _tag_THashHexString8 hex = {"untouched"};
    EXPECT_EQ(0, CCrypt::MD5HashHexString(nullptr, hex));
    EXPECT_STREQ("untouched", hex.m_szHex);
    EXPECT_EQ(nullptr, CCrypt::GetMd5Key(1, nullptr));
}
