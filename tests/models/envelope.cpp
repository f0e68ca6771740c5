// The envelope against its format written out block by block.

#include "Model.h"
#include "Texts.h"

#include <CCrypt.h>
#include <TeaBlock.h>

#include <algorithm>
#include <climits>

namespace
{

struct Cipher {
    std::string key;
    unsigned char encryptArith = 1, decryptArith = 0;

    /// All whole blocks through the feedback mode, whatever they hold.
    std::string Run(std::string bytes, bool encipher)
    {
        using namespace Tea;
        const Key words = LoadKey(Unsigned(key));
        bytes.resize(bytes.size() & ~std::size_t{7});
        Block lastCipher, lastInput;
        for (std::size_t at = 0; at < bytes.size(); at += 8) {
            const Block block = Load(Unsigned(bytes) + at);
            const Block input =
                encipher ? block ^ lastCipher : Decipher(block ^ lastInput, words, 16);
            const Block made =
                encipher ? Encipher(input, words, 16) ^ lastInput : input ^ lastCipher;
            Store(made, Unsigned(bytes) + at);
            lastCipher = encipher ? made : block;
            lastInput = input;
        }
        return bytes;
    }

    int FindSize(int length) const
    {
        const long long size = (length + 10LL + 7) & ~7LL;
        return encryptArith > 1 || size > INT_MAX ? 0 : static_cast<int>(size);
    }
};

void CheckEncrypt(const CCrypt& crypt, Cipher& model, std::string payload, bool inPlace)
{
    const auto length = static_cast<int>(payload.size());
    std::string out = payload + std::string(20, '\xEE');
    const std::string before = out;
    int size = -7;
    crypt.Encrypt(Unsigned(inPlace ? out : payload), length, Unsigned(out), size);
    MODEL_CHECK(size == (model.encryptArith == 0 ? model.FindSize(length) : -7));
    const std::size_t written = size > 0 ? static_cast<std::size_t>(size) : 0;
    MODEL_CHECK(out.substr(written) == before.substr(written));
    if (written > 0) {
        // The random part is read back; everything else is fixed.
        const std::string plain = model.Run(out.substr(0, written), false);
        MODEL_CHECK((plain[0] & 7) == size - length - 10);
        MODEL_CHECK(plain.substr(written - payload.size() - 7) == payload + std::string(7, '\0'));
        MODEL_CHECK(model.Run(plain, true) == out.substr(0, written));
    }
}

void CheckDecrypt(const CCrypt& crypt, Cipher& model, std::string envelope, int room, bool inPlace)
{
    const auto size = static_cast<int>(envelope.size());
    const std::string plain = model.Run(envelope, false);
    const int length = size - 10 - (plain.empty() ? 0 : plain[0] & 7);
    const bool runs =
        model.decryptArith == 0 && size >= 16 && size % 8 == 0 && length >= 0 && length <= room;
    const bool opens = runs && plain.substr(plain.size() - 7) == std::string(7, '\0');
    std::string out = inPlace ? envelope : std::string(envelope.size(), '\xEE');
    std::string expected = out;
    if (runs) { // also when the trailer is wrong
        std::copy(plain.end() - 7 - length, plain.end() - 7, expected.begin());
    }
    int outLen = room;
    MODEL_CHECK(crypt.Decrypt(Unsigned(inPlace ? out : envelope), size, Unsigned(out), outLen) ==
                opens);
    MODEL_CHECK(outLen == (runs ? length : room));
    MODEL_CHECK(out == expected);
}

} // namespace

void DriveModel(ByteSource& source)
{
    // As published, but for the number of cycles; the expected word is a Python program's.
    MODEL_CHECK(Tea::Encipher({}, {}, 16).y == 0xA889F798);
    const std::uint8_t flags = source.Byte();
    Cipher model{std::string(16, static_cast<char>(source.Byte())), flags % 2 == 1, flags % 4 > 1};
    CCrypt crypt(Unsigned(model.key), model.encryptArith, model.decryptArith);
    if (flags % 8 > 3) {
        crypt = CCrypt();
        model = {std::string(16, '\0')};
    }
    while (!source.IsEmpty()) {
        const int operation = source.Between(0, 7);
        std::string bytes = source.Bytes(operation == 0 ? 32 : 255);
        if (operation == 0) {
            crypt.SetKey(Unsigned(bytes), static_cast<int>(bytes.size()));
            model.key = bytes.size() == 16 ? bytes : model.key;
        } else if (operation == 1) {
            model.encryptArith = source.Byte() % 3;
            model.decryptArith = source.Byte() % 2;
            crypt.SetArith(model.encryptArith, model.decryptArith);
            const auto length = static_cast<int>(source.Word());
            MODEL_CHECK(crypt.FindEncryptSize(length) == model.FindSize(length));
        } else if (operation <= 3) {
            CheckEncrypt(crypt, model, bytes, operation == 2);
        } else {
            if (operation >= 6) { // any header and fill, a trailer that is mostly right
                bytes.resize((bytes.size() + 17) / 8 * 8);
                bytes.end()[source.Between(-7, -1)] =
                    static_cast<char>(source.Byte() % 4 == 0 ? source.Byte() : 0);
                bytes = model.Run(bytes, true);
            }
            const int room = static_cast<int>(bytes.size()) - source.Between(0, 20);
            CheckDecrypt(crypt, model, bytes, room, operation % 2 == 0);
        }
    }
}
