// First steps: name an account's file, write typed records, read them back, seal a note.
//
//     first_steps [DIR]

#include <CCrypt.h>
#include <CQSString.h>
#include <CQWString.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <Orvo/CQPath.h>

#include <cstdio>
#include <memory>
#include <vector>

namespace
{

bool WriteContacts(const CQSString& path)
{
    OrvoStream::FileOutputStream file{CQWString(path)}; // opened at the first flush
    DataOutputStream out(file);
    out << 2 << 4 << "Anna" << 3 << "Eva"; // numbers little-endian in 4 bytes, then bytes
    out.Flush();                           // nothing else writes: closing drops the rest
    out.Close();
    return !out.HasFailed() && !file.HasFailed();
}

bool PrintContacts(const CQSString& path)
{
    OrvoStream::FileInputStream file{CQWString(path)};
    OrvoStream::DataInputStream in(file);
    try {
        for (int left = in.ReadInt(); left > 0; --left) {
            int length = in.ReadInt();
            const std::unique_ptr<char[]> name(in.ReadBytes(length));
            std::printf("contact: %.*s\n", length, name.get());
        }
    } catch (int) {
        return false; // the file ends too early
    }
    return true;
}

// The envelope protects nothing by today's standards: it reads and writes existing data.
std::vector<unsigned char> Seal(const CQSString& note)
{
    char password[] = "correct horse";
    const std::unique_ptr<unsigned char[]> key(CCrypt::GetMd5Key(10001, password));
    const CCrypt cipher(key.get(), 0, 0);
    const auto* const plain = reinterpret_cast<const unsigned char*>(note.GetDataPtr());
    int size = cipher.FindEncryptSize(note.GetLength());
    std::vector<unsigned char> envelope(static_cast<std::size_t>(size));
    cipher.Encrypt(plain, note.GetLength(), envelope.data(), size);
    return envelope;
}

} // namespace

int main(int argc, char** argv)
{
    CQSString directory;
    directory.SetData(argc > 1 ? argv[1] : "account-data");
    CQSString path;
    CQPath::GetBuddylistFilePath(path, directory); // DIR/buddylist.info

    if (!WriteContacts(path) || !PrintContacts(path)) {
        std::fprintf(stderr, "first_steps: %s: could not be written or read back\n",
                     path.GetDataPtr());
        return 1;
    }
    CQSString note;
    note.SetData("Meet at noon.");
    std::printf("a note of %d bytes, sealed, takes %zu\n", note.GetLength(), Seal(note).size());
}
