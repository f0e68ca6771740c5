// The binary interface that clients were built against: order, place and size of the fields of
// every class that has any, and the slot order of its virtual operations. It must come out the
// same from every compiler and, but for the size of pointers, on 32- and 64-bit machines.

#include <CCrypt.h>
#include <CImgDecodeNotify.h>
#include <CLimitedCounter.h>
#include <COStream.h>
#include <CQActive.h>
#include <CQActiveScheduler.h>
#include <CQBImageDecode.h>
#include <CQBTreeUtil.h>
#include <CQFile.h>
#include <CQImageDecode.h>
#include <CQInstance.h>
#include <CQList.h>
#include <CQSString.h>
#include <CQSchedulerEvent.h>
#include <CQSchedulerInstance.h>
#include <CQTimer.h>
#include <CQTimerObserver.h>
#include <CQWString.h>
#include <CQZipFile.h>
#include <CTimeOutTimer.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <ISerializable.h>
#include <MLDataBuf.h>
#include <MTimeOutNotifier.h>
#include <PrivateBImageDecode.h>
#include <PrivateImageDecode_win32.h>
#include <TImageMIMETypes.h>
#include <TRTTIBase.h>

#include <QImage>
#include <QImageReader>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using Pointer = void*;
template <class Base>
struct alignas(Base) Bytes {
    char bytes[sizeof(Base)];
};

// What each class looks like in memory, written out as plain data.
struct CQSStringData {
    Pointer vtable, m_pData;
    qint32 m_nLen;
};
struct CQWStringData {
    Pointer vtable, m_pData;
    qint32 m_nDataLen, m_nMAXLen;
    Pointer m_pUtf16;
};
struct CMLDataBufData {
    Pointer vtable;
    quint16 m_wMode;
    quint32 m_dwMaxSize, m_dwUsedSize;
    Pointer m_pData;
};
struct COStreamData {
    Pointer vtable, m_pBuffer;
    qint32 m_nCapacity, m_nUsed;
};
struct CIStreamData {
    Pointer vtable, m_pBuffer;
    qint32 m_nValidLen, m_nPos;
};
struct FileOutputStreamData {
    COStreamData base;
    Pointer m_pFile;
    CQWStringData m_strPath;
};
struct FileInputStreamData {
    CIStreamData base;
    Pointer m_pFile;
    CQWStringData m_strPath;
};
struct DataOutputStreamData {
    COStreamData base;
    Pointer m_pOut;
};
struct DataInputStreamData {
    CIStreamData base;
    Pointer m_pIn;
};
struct CCryptData {
    Pointer vtable;
    quint8 m_Key[16], m_EncryptArith, m_DecryptArith;
};
struct tagMD5StateData {
    quint32 m_dwChain[4], m_dwBits[2];
    unsigned char m_Block[64];
    qint32 m_nBlockLen;
};
struct CQActiveData {
    Pointer vtable;
    qint32 m_nReserved, m_nPriority, m_nReady, m_nStatus;
};
struct CQActiveSchedulerData {
    Bytes<QObject> base;
    Pointer m_pWorker;
};
struct CQSchedulerInstanceData {
    Bytes<QThread> base;
    Pointer m_pLists[5], m_pMutex, m_pReceiver;
};
struct CQSchedulerEventData {
    Bytes<QEvent> base;
    Pointer m_pActive;
};
struct CQTimerData {
    Bytes<QObject> base;
    Pointer m_pTimer, m_pObserver;
};
struct CTimeOutTimerData {
    Bytes<QObject> base;
    Pointer m_rNotifier;
    bool m_bActive;
    qint32 m_nTimerId;
};
struct CQInstanceData {
    Pointer vtable;
    Bytes<QList<void*>> m_Objects;
    Bytes<QList<int>> m_Uids;
};
struct CQBTreeNodeBaseData {
    qint32 m_nColor;
    Pointer m_pParent, m_pLeft, m_pRight;
};
struct CQPlexData {
    Pointer m_pNext;
};
struct CLimitedCounterData {
    Pointer vtable;
    qint32 m_nCount, m_nMaxCount;
};
struct CQFileData {
    Pointer vtable;
    quint32 m_dwMode;
    Bytes<QFile> m_file;
    quint8 m_bCacheEnabled;
    Pointer m_pCache;
    quint8 m_bOpened;
    CQSStringData m_strName;
};
struct CQZipFileData {
    Pointer vtable, m_pFile;
};
struct TImageMIMETypesData {
    Pointer m_pArray;
    Bytes<QList<QString*>> m_ownedStrings;
};
struct CQImageDecodeData {
    Pointer vtable, m_pPrivate;
};
struct CQBImageDecodeData {
    Pointer vtable, m_pPrivate;
};
struct PrivateImageDecodeData {
    Pointer vtable, m_pReader, m_pImage;
    qint32 m_nDisplayMode;
    Pointer m_pNotify;
    qint32 m_nId;
    CQWStringData m_FileName;
    Bytes<QString> m_Data, m_Mime;
    Pointer m_pMask;
    qint32 m_nHasAlpha;
};
struct PrivateBImageDecodeData {
    Pointer vtable, m_pImage, m_pMask;
    bool m_bHasMask;
    qint32 m_nDisplayMode;
    Pointer m_pNotify;
    qint32 m_nId;
    CQWStringData m_FileName;
    bool m_bFitScreen;
    qint32 m_nState, m_nScreenWidth, m_nScreenHeight;
    bool m_bImageFetched, m_bMaskFetched;
};

std::vector<std::string> misplaced;
int fieldsChecked = 0;

// A pointer to a data member is, in the ABI of all our machines, the member's offset.
template <class Class, class Type>
std::ptrdiff_t OffsetOf(Type Class::*member)
{
    std::ptrdiff_t offset;
    static_assert(sizeof member == sizeof offset);
    std::memcpy(&offset, &member, sizeof offset);
    return offset;
}

template <class Class, class Type>
std::size_t SizeOf(Type Class::*)
{
    return sizeof(Type);
}

// Explicit instantiation may name private members; the initialiser then does the check.
template <class Data, auto Member, std::size_t offset, std::size_t size>
struct FieldCheck {
    static const bool placed;
};
template <class Data, auto Member, std::size_t offset, std::size_t size>
const bool FieldCheck<Data, Member, offset, size>::placed = [] {
    ++fieldsChecked;
    const bool right =
        OffsetOf(Member) == static_cast<std::ptrdiff_t>(offset) && SizeOf(Member) == size;
    if (!right) {
        misplaced.push_back(std::string(testing::internal::GetTypeName<Data>()) + " at " +
                            std::to_string(offset));
    }
    return right;
}();

#define FIELD(Class, member)                                                                       \
    template struct FieldCheck<Class##Data, &Class::member, offsetof(Class##Data, member),         \
                               sizeof(Class##Data::member)>;

using namespace OrvoStream;

FIELD(CQSString, m_pData)
FIELD(CQSString, m_nLen)
FIELD(CQWString, m_pData)
FIELD(CQWString, m_nDataLen)
FIELD(CQWString, m_nMAXLen)
FIELD(CQWString, m_pUtf16)
FIELD(CMLDataBuf, m_wMode)
FIELD(CMLDataBuf, m_dwMaxSize)
FIELD(CMLDataBuf, m_dwUsedSize)
FIELD(CMLDataBuf, m_pData)
FIELD(COStream, m_pBuffer)
FIELD(COStream, m_nCapacity)
FIELD(COStream, m_nUsed)
FIELD(CIStream, m_pBuffer)
FIELD(CIStream, m_nValidLen)
FIELD(CIStream, m_nPos)
FIELD(FileOutputStream, m_pFile)
FIELD(FileOutputStream, m_strPath)
FIELD(FileInputStream, m_pFile)
FIELD(FileInputStream, m_strPath)
FIELD(DataOutputStream, m_pOut)
FIELD(DataInputStream, m_pIn)
FIELD(CCrypt, m_Key)
FIELD(CCrypt, m_EncryptArith)
FIELD(CCrypt, m_DecryptArith)
FIELD(tagMD5State, m_dwChain)
FIELD(tagMD5State, m_dwBits)
FIELD(tagMD5State, m_Block)
FIELD(tagMD5State, m_nBlockLen)
FIELD(CQActive, m_nReserved)
FIELD(CQActive, m_nPriority)
FIELD(CQActive, m_nReady)
FIELD(CQActive, m_nStatus)
FIELD(CQActiveScheduler, m_pWorker)
FIELD(CQSchedulerInstance, m_pLists)
FIELD(CQSchedulerInstance, m_pMutex)
FIELD(CQSchedulerInstance, m_pReceiver)
FIELD(CQSchedulerEvent, m_pActive)
FIELD(CQTimer, m_pTimer)
FIELD(CQTimer, m_pObserver)
FIELD(CTimeOutTimer, m_bActive)
FIELD(CTimeOutTimer, m_nTimerId)
FIELD(CQInstance, m_Objects)
FIELD(CQInstance, m_Uids)
FIELD(CQBTreeNodeBase, m_nColor)
FIELD(CQBTreeNodeBase, m_pParent)
FIELD(CQBTreeNodeBase, m_pLeft)
FIELD(CQBTreeNodeBase, m_pRight)
FIELD(CQPlex, m_pNext)
FIELD(CLimitedCounter, m_nCount)
FIELD(CLimitedCounter, m_nMaxCount)
FIELD(CQFile, m_dwMode)
FIELD(CQFile, m_file)
FIELD(CQFile, m_bCacheEnabled)
FIELD(CQFile, m_pCache)
FIELD(CQFile, m_bOpened)
FIELD(CQFile, m_strName)
FIELD(CQZipFile, m_pFile)
FIELD(TImageMIMETypes, m_pArray)
FIELD(TImageMIMETypes, m_ownedStrings)
FIELD(CQImageDecode, m_pPrivate)
FIELD(CQBImageDecode, m_pPrivate)
FIELD(PrivateImageDecode, m_pReader)
FIELD(PrivateImageDecode, m_pImage)
FIELD(PrivateImageDecode, m_nDisplayMode)
FIELD(PrivateImageDecode, m_pNotify)
FIELD(PrivateImageDecode, m_nId)
FIELD(PrivateImageDecode, m_FileName)
FIELD(PrivateImageDecode, m_Data)
FIELD(PrivateImageDecode, m_Mime)
FIELD(PrivateImageDecode, m_pMask)
FIELD(PrivateImageDecode, m_nHasAlpha)
FIELD(PrivateBImageDecode, m_pImage)
FIELD(PrivateBImageDecode, m_pMask)
FIELD(PrivateBImageDecode, m_bHasMask)
FIELD(PrivateBImageDecode, m_nDisplayMode)
FIELD(PrivateBImageDecode, m_pNotify)
FIELD(PrivateBImageDecode, m_nId)
FIELD(PrivateBImageDecode, m_FileName)
FIELD(PrivateBImageDecode, m_bFitScreen)
FIELD(PrivateBImageDecode, m_nState)
FIELD(PrivateBImageDecode, m_nScreenWidth)
FIELD(PrivateBImageDecode, m_nScreenHeight)

} // namespace

TEST(Layout, FieldsStandInOrderAndSize)
{
    EXPECT_EQ(83, fieldsChecked);
    EXPECT_EQ(std::vector<std::string>{}, misplaced);
}

TEST(Layout, ObjectsHoldNothingElse)
{
    EXPECT_EQ(sizeof(CQSStringData), sizeof(CQSString));
    EXPECT_EQ(sizeof(CQWStringData), sizeof(CQWString));
    EXPECT_EQ(sizeof(CMLDataBufData), sizeof(CMLDataBuf));
    EXPECT_EQ(sizeof(COStreamData), sizeof(COStream));
    EXPECT_EQ(sizeof(CIStreamData), sizeof(CIStream));
    EXPECT_EQ(sizeof(FileOutputStreamData), sizeof(FileOutputStream));
    EXPECT_EQ(sizeof(FileInputStreamData), sizeof(FileInputStream));
    EXPECT_EQ(sizeof(DataOutputStreamData), sizeof(DataOutputStream));
    EXPECT_EQ(sizeof(DataInputStreamData), sizeof(DataInputStream));
    EXPECT_EQ(sizeof(CCryptData), sizeof(CCrypt));
    EXPECT_EQ(sizeof(tagMD5StateData), sizeof(tagMD5State));
    EXPECT_EQ(33U, sizeof(_tag_THashHexString8));
    EXPECT_EQ(sizeof(CQActiveData), sizeof(CQActive));
    EXPECT_EQ(sizeof(CQActiveSchedulerData), sizeof(CQActiveScheduler));
    EXPECT_EQ(sizeof(CQSchedulerInstanceData), sizeof(CQSchedulerInstance));
    EXPECT_EQ(sizeof(CQSchedulerEventData), sizeof(CQSchedulerEvent));
    EXPECT_EQ(sizeof(CQTimerData), sizeof(CQTimer));
    EXPECT_EQ(sizeof(CTimeOutTimerData), sizeof(CTimeOutTimer));
    EXPECT_EQ(sizeof(CQInstanceData), sizeof(CQInstance));
    EXPECT_EQ(sizeof(CQBTreeNodeBaseData), sizeof(CQBTreeNodeBase));
    EXPECT_EQ(sizeof(CQPlexData), sizeof(CQPlex));
    EXPECT_EQ(sizeof(CLimitedCounterData), sizeof(CLimitedCounter));
    EXPECT_EQ(sizeof(CQFileData), sizeof(CQFile));
    EXPECT_EQ(sizeof(CQZipFileData), sizeof(CQZipFile));
    EXPECT_EQ(sizeof(TImageMIMETypesData), sizeof(TImageMIMETypes));
    EXPECT_EQ(sizeof(CQImageDecodeData), sizeof(CQImageDecode));
    EXPECT_EQ(sizeof(CQBImageDecodeData), sizeof(CQBImageDecode));
    EXPECT_EQ(sizeof(PrivateImageDecodeData), sizeof(PrivateImageDecode));
    EXPECT_EQ(sizeof(PrivateBImageDecodeData), sizeof(PrivateBImageDecode));
    EXPECT_EQ(sizeof(Pointer), sizeof(TRTTIBase));
}

namespace
{

// The slot of a virtual operation, or -1 for an ordinary one: the Itanium C++ ABI stores the
// offset in the table plus one, its ARM variant the offset and a mark in the second word.
template <class Function>
std::ptrdiff_t SlotOf(Function function)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof function == sizeof words);
    std::memcpy(words, &function, sizeof words);
#ifdef __arm__
    const bool isVirtual = (words[1] & 1) != 0;
    const std::ptrdiff_t offset = words[0];
#else
    const bool isVirtual = (words[0] & 1) != 0;
    const std::ptrdiff_t offset = words[0] - 1;
#endif
    return isVirtual ? offset / static_cast<std::ptrdiff_t>(sizeof(Pointer)) : -1;
}

// The slot of an overload or a protected operation, reached through its signature.
template <class Class, class Result, class... Arguments>
std::ptrdiff_t SlotOfOverload(Result (Class::*function)(Arguments...))
{
    return SlotOf(function);
}

} // namespace

// A virtual destructor takes two slots.
TEST(Layout, VirtualOperationsStandInSlotOrder)
{
    EXPECT_EQ(2, SlotOf(&COStream::Write));
    EXPECT_EQ(3, SlotOf(&COStream::Flush));
    EXPECT_EQ(4, SlotOf(&COStream::Close));
    EXPECT_EQ(5, SlotOf(&COStream::SaveBuffer));
    EXPECT_EQ(6, SlotOf(&COStream::PrepareBuffer));

    EXPECT_EQ(2, SlotOf(&CIStream::Read));
    EXPECT_EQ(3, SlotOf(&CIStream::Available));
    EXPECT_EQ(4, SlotOf(&CIStream::Close));
    EXPECT_EQ(5, SlotOf(&CIStream::LoadBuffer));
    EXPECT_EQ(-1, SlotOf(&CIStream::PrepareBuffer));

    EXPECT_EQ(6, SlotOf(&DataInputStream::ReadInt));
    EXPECT_EQ(7, SlotOf(&DataInputStream::ReadShort));
    EXPECT_EQ(8, SlotOf(&DataInputStream::ReadChar));
    EXPECT_EQ(9, SlotOf(&DataInputStream::ReadBytes));

    EXPECT_EQ(7, (SlotOfOverload<DataOutputStream, int, int>(&DataOutputStream::Write)));
    EXPECT_EQ(8, (SlotOfOverload<DataOutputStream, int, short>(&DataOutputStream::Write)));
    EXPECT_EQ(9, (SlotOfOverload<DataOutputStream, int, char>(&DataOutputStream::Write)));
    EXPECT_EQ(10,
              (SlotOfOverload<DataOutputStream, int, const CQSString&>(&DataOutputStream::Write)));

    EXPECT_EQ(2, (SlotOfOverload<CQFile, int, const wchar_t*, unsigned>(&CQFile::Open)));
    EXPECT_EQ(3, (SlotOfOverload<CQFile, int, CQSString&, unsigned>(&CQFile::Open)));
    EXPECT_EQ(4, SlotOf(&CQFile::OpenWithWriteCache));
    EXPECT_EQ(5, SlotOf(&CQFile::Close));
    EXPECT_EQ(6, SlotOf(&CQFile::Read));
    EXPECT_EQ(7, SlotOf(&CQFile::Write));
    EXPECT_EQ(8, SlotOf(&CQFile::Seek));
    EXPECT_EQ(9, SlotOf(&CQFile::GetLength));
    EXPECT_EQ(10, SlotOf(&CQFile::GetModifiedTime));
    EXPECT_EQ(11, SlotOf(&CQFile::SetSize));
    EXPECT_EQ(-1, (SlotOfOverload<CQFile, int, QString&, unsigned>(&CQFile::Open)));
    EXPECT_EQ(-1, SlotOf(&CQFile::WriteData));
    EXPECT_EQ(-1, SlotOf(&CQFile::SeekToBegin));
    EXPECT_EQ(-1, SlotOf(&CQFile::SeekToEnd));

    using Buffer = unsigned char**;
    EXPECT_EQ(2, SlotOf(&CQZipFile::Close));
    EXPECT_EQ(3, (SlotOfOverload<CQZipFile, int, Buffer, int*, const wchar_t*>(&CQZipFile::Read)));
    EXPECT_EQ(4, SlotOf(&CQZipFile::Write));
    EXPECT_EQ(-1, SlotOf(&CQZipFile::Open));

    EXPECT_EQ(2, SlotOf(&CQActive::DoCancel));
    EXPECT_EQ(3, SlotOf(&CQActive::RunL));
    EXPECT_EQ(0, SlotOf(&TRTTIBase::IsDerived));
    EXPECT_EQ(1, SlotOf(&TRTTIBase::GetClassName));
    EXPECT_EQ(2, SlotOf(&TRTTIBase::IsBaseClass));

    EXPECT_EQ(0, SlotOf(&ISerializable::Serialize));
    EXPECT_EQ(0, SlotOf(&CQTimerObserver::OnPeriodTask));
    EXPECT_EQ(0, SlotOf(&MTimeOutNotifier::OnTimeOut));
    EXPECT_EQ(0, SlotOf(&CImgDecodeNotify::OnImageDecoded));
}
