// The binary interface that clients were built against: order, place and size of the fields of
// every class of theirs that has any, and the slot order of its virtual operations. It must come
// out the same from every compiler and, but for the size of pointers, on 32- and 64-bit machines.

#include "TestPrelude.h"

#include <EveryHeader.h>

namespace
{

std::vector<std::string> misplaced;

template <std::size_t start, std::size_t... sizes>
struct Sizes {
};

template <class Class, class Sizes, auto... Members>
struct Layout;

// The members follow `start`, what stands before them, in the order and the sizes that are given,
// each at its natural place, and nothing follows them. The check is an initialiser because an
// explicit instantiation may name private members.
template <class Class, std::size_t start, std::size_t... sizes, auto... Members>
struct Layout<Class, Sizes<start, sizes...>, Members...> {
    inline static const bool checked = [] {
        std::size_t end = start;
        bool right = true;
        const auto align = [&](std::size_t to) { return end = (end + to - 1) / to * to; };
        const auto follow = [&]<class Type>(std::size_t size, Type Class::*member) {
            // In the ABI of all our machines a pointer to a data member is the member's offset.
            const auto offset = std::bit_cast<std::size_t>(member);
            right = right && size == sizeof(Type) && offset == align(alignof(Type));
            end += sizeof(Type);
        };
        (follow(sizes, Members), ...);
        right = right && sizeof(Class) == align(alignof(Class));
        misplaced.resize(misplaced.size() + (right ? 0 : 1), __PRETTY_FUNCTION__); // has its name
        return right;
    }();
};

using namespace OrvoStream;
constexpr std::size_t P = sizeof(void*);

template struct Layout<CQSString, Sizes<P, P, 4>, &CQSString::m_pData, &CQSString::m_nLen>;
template struct Layout<CQWString, Sizes<P, P, 4, 4, P>, &CQWString::m_pData, &CQWString::m_nDataLen,
                       &CQWString::m_nMAXLen, &CQWString::m_pUtf16>;
template struct Layout<CMLDataBuf, Sizes<P, 2, 4, 4, P>, &CMLDataBuf::m_wMode,
                       &CMLDataBuf::m_dwMaxSize, &CMLDataBuf::m_dwUsedSize, &CMLDataBuf::m_pData>;
template struct Layout<COStream, Sizes<P, P, 4, 4>, &COStream::m_pBuffer, &COStream::m_nCapacity,
                       &COStream::m_nUsed>;
template struct Layout<CIStream, Sizes<P, P, 4, 4>, &CIStream::m_pBuffer, &CIStream::m_nValidLen,
                       &CIStream::m_nPos>;
template struct Layout<FileOutputStream, Sizes<sizeof(COStream), P, sizeof(CQWString), 3>,
                       &FileOutputStream::m_pFile, &FileOutputStream::m_strPath,
                       &FileOutputStream::m_record>;
template struct Layout<FileInputStream, Sizes<sizeof(CIStream), P, sizeof(CQWString), 2>,
                       &FileInputStream::m_pFile, &FileInputStream::m_strPath,
                       &FileInputStream::m_record>;
template struct Layout<DataOutputStream, Sizes<sizeof(COStream), P, 1>, &DataOutputStream::m_pOut,
                       &DataOutputStream::m_bFailed>;
template struct Layout<DataInputStream, Sizes<sizeof(CIStream), P, 1>, &DataInputStream::m_pIn,
                       &DataInputStream::m_bFailed>;
template struct Layout<CCrypt, Sizes<P, 16, 1, 1>, &CCrypt::m_Key, &CCrypt::m_EncryptArith,
                       &CCrypt::m_DecryptArith>;
template struct Layout<tagMD5State, Sizes<0, 16, 8, 64, 4>, &tagMD5State::m_dwChain,
                       &tagMD5State::m_dwBits, &tagMD5State::m_Block, &tagMD5State::m_nBlockLen>;
template struct Layout<CQActive, Sizes<P, 4, 4, 4, 4>, &CQActive::m_nReserved,
                       &CQActive::m_nPriority, &CQActive::m_nReady, &CQActive::m_nStatus>;
template struct Layout<CQActiveScheduler, Sizes<sizeof(QObject), P>, &CQActiveScheduler::m_pWorker>;
template struct Layout<CQSchedulerInstance, Sizes<sizeof(QThread), 5 * P, P, P>,
                       &CQSchedulerInstance::m_pLists, &CQSchedulerInstance::m_pMutex,
                       &CQSchedulerInstance::m_pReceiver>;
template struct Layout<CQSchedulerEvent, Sizes<sizeof(QEvent), P>, &CQSchedulerEvent::m_pActive>;
template struct Layout<CQTimer, Sizes<sizeof(QObject), P, P>, &CQTimer::m_pTimer,
                       &CQTimer::m_pObserver>;
template struct Layout<CTimeOutTimer, Sizes<sizeof(QObject) + P, 1, 4>, &CTimeOutTimer::m_bActive,
                       &CTimeOutTimer::m_nTimerId>;
template struct Layout<CQInstance, Sizes<P, sizeof(QList<void*>), sizeof(QList<int>)>,
                       &CQInstance::m_Objects, &CQInstance::m_Uids>;
template struct Layout<CQBTreeNodeBase, Sizes<0, 4, P, P, P>, &CQBTreeNodeBase::m_nColor,
                       &CQBTreeNodeBase::m_pParent, &CQBTreeNodeBase::m_pLeft,
                       &CQBTreeNodeBase::m_pRight>;
template struct Layout<CQPlex, Sizes<0, P>, &CQPlex::m_pNext>;
template struct Layout<CLimitedCounter, Sizes<P, 4, 4>, &CLimitedCounter::m_nCount,
                       &CLimitedCounter::m_nMaxCount>;
template struct Layout<
    CQFile, Sizes<P, 4, sizeof(QFile), 1, P, 1, sizeof(CQSString), 1, sizeof(QStringList)>,
    &CQFile::m_dwMode, &CQFile::m_file, &CQFile::m_bCacheEnabled, &CQFile::m_pCache,
    &CQFile::m_bOpened, &CQFile::m_strName, &CQFile::m_bFailed, &CQFile::m_dirsToSync>;
template struct Layout<CQZipFile, Sizes<P, P, 1, sizeof(QStringList)>, &CQZipFile::m_pFile,
                       &CQZipFile::m_bFailed, &CQZipFile::m_dirsToSync>;
template struct Layout<TImageMIMETypes, Sizes<0, P, sizeof(QList<QString*>)>,
                       &TImageMIMETypes::m_pArray, &TImageMIMETypes::m_ownedStrings>;
template struct Layout<CQImageDecode, Sizes<P, P>, &CQImageDecode::m_pPrivate>;
template struct Layout<CQBImageDecode, Sizes<P, P>, &CQBImageDecode::m_pPrivate>;

static_assert(sizeof(_tag_THashHexString8) == 33);
static_assert(sizeof(TRTTIBase) == P);

// The slots of virtual operations, and -1 for an ordinary one: the Itanium C++ ABI stores the
// offset in the table plus one, its ARM variant the offset and a mark in the second word.
std::string SlotsOf(auto... functions)
{
    std::string all;
    const auto add = [&all](const std::array<std::ptrdiff_t, 2>& words) {
#ifdef __arm__
        const std::ptrdiff_t isVirtual = words[1] & 1, offset = words[0];
#else
        const std::ptrdiff_t isVirtual = words[0] & 1, offset = words[0] - 1;
#endif
        all += std::to_string(isVirtual ? offset / std::ptrdiff_t{sizeof(void*)} : -1) + ' ';
    };
    (add(std::bit_cast<std::array<std::ptrdiff_t, 2>>(functions)), ...);
    return all;
}

// The overload with these parameters.
template <class... Parameters, class Class>
auto Overload(int (Class::*function)(Parameters...))
{
    return function;
}

} // namespace

TEST(Layout, FieldsStandInOrderAndSizeAndNothingElseDoes)
{
    EXPECT_EQ(std::vector<std::string>{}, misplaced);
}

// A virtual destructor takes two slots.
TEST(Layout, VirtualOperationsStandInSlotOrder)
{
    EXPECT_EQ("2 3 4 5 6 ", SlotsOf(&COStream::Write, &COStream::Flush, &COStream::Close,
                                    &COStream::SaveBuffer, &COStream::PrepareBuffer));
    EXPECT_EQ("2 3 4 5 -1 ", SlotsOf(&CIStream::Read, &CIStream::Available, &CIStream::Close,
                                     &CIStream::LoadBuffer, &CIStream::PrepareBuffer));
    using In = DataInputStream;
    EXPECT_EQ("6 7 8 9 ", SlotsOf(&In::ReadInt, &In::ReadShort, &In::ReadChar, &In::ReadBytes));
    using Out = DataOutputStream;
    EXPECT_EQ("7 8 9 10 ",
              SlotsOf(Overload<int>(&Out::Write), Overload<short>(&Out::Write),
                      Overload<char>(&Out::Write), Overload<const CQSString&>(&Out::Write)));
    using F = CQFile;
    EXPECT_EQ("2 3 4 5 6 7 8 9 10 11 ",
              SlotsOf(Overload<const wchar_t*, unsigned>(&F::Open),
                      Overload<CQSString&, unsigned>(&F::Open), &F::OpenWithWriteCache, &F::Close,
                      &F::Read, &F::Write, &F::Seek, &F::GetLength, &F::GetModifiedTime,
                      &F::SetSize));
    EXPECT_EQ("-1 -1 -1 -1 ", SlotsOf(Overload<QString&, unsigned>(&F::Open), &F::WriteData,
                                      &F::SeekToBegin, &F::SeekToEnd));
    using Zip = CQZipFile;
    EXPECT_EQ("2 3 4 -1 ",
              SlotsOf(&Zip::Close, Overload<unsigned char**, int*, const wchar_t*>(&Zip::Read),
                      &Zip::Write, &Zip::Open));
    EXPECT_EQ("2 3 ", SlotsOf(&CQActive::DoCancel, &CQActive::RunL));
    EXPECT_EQ("0 1 2 ",
              SlotsOf(&TRTTIBase::IsDerived, &TRTTIBase::GetClassName, &TRTTIBase::IsBaseClass));
    EXPECT_EQ("0 0 0 0 ", SlotsOf(&ISerializable::Serialize, &CQTimerObserver::OnPeriodTask,
                                  &MTimeOutNotifier::OnTimeOut, &CImgDecodeNotify::OnImageDecoded));
}
