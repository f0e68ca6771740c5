// Examples of the reference: streams, cipher and digests.

#include "Require.h"

#include <CCrypt.h>
#include <CIStream.h>
#include <COStream.h>
#include <CQSString.h>
#include <CQWString.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <ISerializable.h>

#include <QTemporaryDir>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

namespace
{

//! [COStream]
/// A device in memory. Flush() calls SaveBuffer() with what is buffered.
class MemoryOutput : public OrvoStream::COStream
{
public:
    void Close() override {}
    void SaveBuffer(char const* data, int len) override
    {
        if (data != nullptr && len > 0) {
            m_bytes.append(data, static_cast<std::size_t>(len));
        }
    }
    std::string m_bytes;
};
//! [COStream]

//! [CIStream]
class MemoryInput : public OrvoStream::CIStream
{
public:
    explicit MemoryInput(std::string bytes) : m_bytes(std::move(bytes)) {}
    int Available() override { return static_cast<int>(m_bytes.size() - m_used); }
    void Close() override {}
    int LoadBuffer(char* dest, int len) override
    {
        const int count = std::min(len, Available());
        std::memcpy(dest, m_bytes.data() + m_used, static_cast<std::size_t>(count));
        m_used += static_cast<std::size_t>(count);
        return count;
    }

private:
    std::string m_bytes;
    std::size_t m_used = 0;
};
//! [CIStream]

//! [ISerializable]
struct Contact : ISerializable {
    Contact(int number, const char* text) : m_nNumber(number) { m_strName.SetData(text); }
    virtual ~Contact() = default;
    void Serialize(DataOutputStream& out) const override
    {
        out << m_nNumber << m_strName.GetLength();
        out.Write(m_strName);
    }
    int m_nNumber;
    CQSString m_strName;
};
//! [ISerializable]

void InMemory()
{
    MemoryOutput device;
    DataOutputStream out(device);
    out << Contact(10001, "Anna");
    out.Flush();
    REQUIRE(device.m_bytes.size() == 12);

    MemoryInput source(device.m_bytes);
    OrvoStream::DataInputStream in(source);
    REQUIRE(in.ReadInt() == 10001);
    int length = in.ReadInt();
    const std::unique_ptr<char[]> name(in.ReadBytes(length));
    REQUIRE(std::string(name.get(), 4) == "Anna");
}

void Files(const CQWString& path)
{
    //! [FileOutputStream]
    OrvoStream::FileOutputStream file(path); // opened, and emptied, at the first flush
    DataOutputStream out(file);
    out << 42 << "text"; // 4 bytes, then the bytes of the text
    out.Flush();         // closing or destroying drops what was not flushed
    out.Close();
    REQUIRE(!file.HasFailed()); // all of it has reached the system
    //! [FileOutputStream]

    //! [FileInputStream]
    OrvoStream::FileInputStream source(path); // for inputs of up to 20480 bytes
    OrvoStream::DataInputStream in(source);
    try {
        REQUIRE(in.ReadInt() == 42);
        REQUIRE(in.ReadChar() == 't');
        in.ReadInt(); // three bytes are left
        REQUIRE(false);
    } catch (int error) {
        REQUIRE(error == -1);
    }
    //! [FileInputStream]
}

void Cipher()
{
    //! [CCrypt]
    char password[] = "correct horse";
    const std::unique_ptr<unsigned char[]> key(CCrypt::GetMd5Key(10001, password));
    CCrypt cipher(key.get(), 0, 0);

    const unsigned char plain[] = "Meet at noon.";
    unsigned char envelope[32];
    int size = cipher.FindEncryptSize(13);
    REQUIRE(size <= int(sizeof envelope));
    cipher.Encrypt(plain, 13, envelope, size);

    int length = size; // the room in the buffer, and then the length of the payload
    REQUIRE(cipher.Decrypt(envelope, size, envelope, length));
    REQUIRE(length == 13 && std::memcmp(envelope, plain, 13) == 0);
    //! [CCrypt]

    //! [MD5]
    _tag_THashHexString8 digest;
    CCrypt::MD5HashHexString("abc", digest);
    REQUIRE(std::strcmp(digest.m_szHex, "900150983cd24fb0d6963f7d28e17f72") == 0);
    //! [MD5]
}

} // namespace

int main()
{
    const QTemporaryDir directory;
    InMemory();
    Files(CQWString(directory.filePath(QStringLiteral("example.info"))));
    Cipher();
}
