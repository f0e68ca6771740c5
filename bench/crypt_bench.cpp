// The cipher envelope and MD5 beside the libraries that a client would take instead.

#include "Row.h"

#include <CCrypt.h>
#include <TeaBlock.h>

#include <QCryptographicHash>

#include <cryptopp/algparam.h>
#include <cryptopp/tea.h>
#include <gcrypt.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

constexpr int enCycles = 16;

unsigned char g_key[] = {0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7,
                         0xF8, 0xF9, 0xFA, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF};

struct Envelope {
    explicit Envelope(std::size_t size) : plain(size, 'p'), sealed(size + 17), opened(size + 17)
    {
        crypt.Encrypt(plain.data(), static_cast<int>(size), sealed.data(), sealedSize);
    }

    CCrypt crypt{g_key, 0, 0};
    Bytes plain, sealed, opened;
    int sealedSize = 0;
};

int Seal(Envelope& e)
{
    int size = 0;
    e.crypt.Encrypt(e.plain.data(), static_cast<int>(e.plain.size()), e.sealed.data(), size);
    return size;
}

int Open(Envelope& e)
{
    int size = static_cast<int>(e.opened.size());
    return e.crypt.Decrypt(e.sealed.data(), e.sealedSize, e.opened.data(), size) ? size : -1;
}

// The same mode over another block cipher. What is random in an envelope is left as it is.
template <class BlockCipher>
int SealWith(const BlockCipher& cipher, Envelope& e)
{
    unsigned char* const out = e.opened.data();
    const auto size = static_cast<std::size_t>(e.sealedSize);
    const std::size_t start = size - 7 - e.plain.size();
    std::memcpy(out + start, e.plain.data(), e.plain.size());
    std::memset(out + size - 7, 0, 7);
    unsigned char input[8], lastInput[8] = {}, lastCipher[8] = {};
    for (std::size_t pos = 0; pos < size; pos += 8) {
        for (int i = 0; i < 8; ++i) {
            input[i] = out[pos + static_cast<std::size_t>(i)] ^ lastCipher[i];
        }
        cipher.ProcessAndXorBlock(input, lastInput, out + pos);
        std::memcpy(lastInput, input, 8);
        std::memcpy(lastCipher, out + pos, 8);
    }
    return out[0];
}

template <class BlockCipher>
int OpenWith(const BlockCipher& cipher, Envelope& e)
{
    unsigned char* const out = e.opened.data();
    const auto size = static_cast<std::size_t>(e.sealedSize);
    unsigned char input[8] = {}, lastCipher[8] = {};
    for (std::size_t pos = 0; pos < size; pos += 8) {
        for (int i = 0; i < 8; ++i) {
            input[i] ^= e.sealed[pos + static_cast<std::size_t>(i)];
        }
        cipher.ProcessBlock(input);
        for (int i = 0; i < 8; ++i) {
            out[pos + static_cast<std::size_t>(i)] = input[i] ^ lastCipher[i];
        }
        std::memcpy(lastCipher, e.sealed.data() + pos, 8);
    }
    return out[size - 1];
}

// Each block waits for the one before: no implementation of the mode is faster than its blocks
// one after the other with nothing loaded, stored or drawn.
template <Tea::Block Run(const Tea::Block&, const Tea::Key&, int)>
std::uint32_t Chain(int blocks)
{
    const Tea::Key key = Tea::LoadKey(g_key);
    Tea::Block block, last;
    for (; blocks > 0; --blocks) {
        const Tea::Block next = Run(block, key, enCycles) ^ last;
        last = block;
        block = next;
    }
    return block.y ^ block.z;
}

template <class Direction>
Direction CryptoPp()
{
    Direction cipher;
    cipher.SetKey(g_key, sizeof g_key, CryptoPP::MakeParameters("Rounds", int{enCycles}));
    return cipher;
}

std::string Sized(std::size_t size)
{
    return size < 1024          ? std::to_string(size) + " B"
           : size < 1024 * 1024 ? std::to_string(size / 1024) + " KiB"
                                : std::to_string(size / 1024 / 1024) + " MiB";
}

bool AddEnvelopeRows()
{
    for (const std::size_t size : {std::size_t{64}, std::size_t{1024}, std::size_t{65536}}) {
        const double floorTarget = size < 1024 ? 0.90 : 0.95;
        const int blocks = Envelope(size).sealedSize / 8;
        Row("envelope, encrypt " + Sized(size))
            .Library([e = Envelope(size)]() mutable { return Seal(e); })
            .Peer("Crypto++ TEA", 1.12,
                  [e = Envelope(size), tea = CryptoPp<CryptoPP::TEA::Encryption>()]() mutable {
                      return SealWith(tea, e);
                  })
            .Peer("floor: its chain", floorTarget,
                  [blocks] { return Chain<Tea::Encipher>(blocks); });
        Row("envelope, decrypt " + Sized(size))
            .Library([e = Envelope(size)]() mutable { return Open(e); })
            .Peer("Crypto++ TEA", 1.12,
                  [e = Envelope(size), tea = CryptoPp<CryptoPP::TEA::Decryption>()]() mutable {
                      return OpenWith(tea, e);
                  })
            .Peer("floor: its chain", floorTarget,
                  [blocks] { return Chain<Tea::Decipher>(blocks); });
    }
    return true;
}

struct Digest {
    unsigned char bytes[16];
};

Digest OpenSslMd5(const Bytes& data)
{
    static const EVP_MD* const md5 = EVP_MD_fetch(nullptr, "MD5", nullptr);
    static EVP_MD_CTX* const state = EVP_MD_CTX_new();
    Digest digest;
    EVP_DigestInit_ex2(state, md5, nullptr);
    EVP_DigestUpdate(state, data.data(), data.size());
    EVP_DigestFinal_ex(state, digest.bytes, nullptr);
    return digest;
}

bool AddMd5Rows()
{
    gcry_check_version(nullptr);
    gcry_control(GCRYCTL_INITIALIZATION_FINISHED, 0);
    for (const std::size_t size : {std::size_t{64}, std::size_t{1} << 16, std::size_t{1} << 24}) {
        const double target = size == 64 ? 1.2 : 0.98;
        const Bytes data(size, 'm');
        Row("MD5 " + Sized(size))
            .Library([data] {
                Digest digest;
                CCrypt::Md5Hash(digest.bytes, data.data(), static_cast<int>(data.size()));
                return digest;
            })
            .Peer("OpenSSL", target, [data] { return OpenSslMd5(data); })
            .Peer("libgcrypt", target,
                  [data] {
                      Digest digest;
                      gcry_md_hash_buffer(GCRY_MD_MD5, digest.bytes, data.data(), data.size());
                      return digest;
                  })
            .Peer("QCryptographicHash", target, [data] {
                const QByteArray text = QByteArray::fromRawData(
                    reinterpret_cast<const char*>(data.data()), static_cast<int>(data.size()));
                return QCryptographicHash::hash(text, QCryptographicHash::Md5);
            });
    }
    return true;
}

const bool rows = AddEnvelopeRows() && AddMd5Rows();

} // namespace
