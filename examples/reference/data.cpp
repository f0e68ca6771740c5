// Examples of the reference: packing, buffers, containers, type names.

#include "Require.h"

#include <ByteOrder.h>
#include <CLimitedCounter.h>
#include <CQBTreeUtil.h>
#include <CQList.h>
#include <MLDataBuf.h>
#include <OrvoAssert.h>
#include <TRTTIBase.h>

#include <cstring>

namespace
{

void Packing()
{
    //! [ByteOrder]
    unsigned char bytes[4];
    SetDWORD(bytes, 0x01020304);
    REQUIRE(bytes[0] == 1 && bytes[3] == 4); // network order, whatever the host
    unsigned long number = 0;
    GetDWORD(number, bytes);
    REQUIRE(number == 0x01020304);
    //! [ByteOrder]
}

void Buffer()
{
    //! [CMLDataBuf]
    CMLDataBuf record;
    record.Create(8);
    record.Append(HTONL(10001)); // appends keep the order of the host: convert first
    record.Append(static_cast<unsigned char>(1));
    const unsigned char text[] = "too long";
    REQUIRE(record.Append(text, 8) == 0); // all or nothing
    REQUIRE(record.GetUsedSize() == 5);
    //! [CMLDataBuf]
}

void Counter()
{
    //! [CLimitedCounter]
    CLimitedCounter tries;
    tries.SetMaxCount(3, 0);
    do {
        tries.IncreaseOne();
    } while (!tries.IsUpMax());
    //! [CLimitedCounter]
    REQUIRE(tries.GetMaxCount() == 3);
}

void Chain()
{
    //! [CQPlex]
    CQPlex* blocks = nullptr;
    CQPlex* const block = Create(&blocks, 64, sizeof(int));
    REQUIRE(block != nullptr);
    int* const numbers = static_cast<int*>(block->Data()); // room for 64
    numbers[63] = 1;
    blocks->FreeDataChain();
    //! [CQPlex]
}

//! [CQBTreeUtil]
struct Node : CQBTreeNodeBase {
    int key;
};

// Inserts `node` by its key; the header's parent is the root, its sides the ends.
void Insert(CQBTreeNodeBase& header, Node& node)
{
    CQBTreeNodeBase* parent = &header;
    CQBTreeNodeBase** link = &header.m_pParent;
    bool isFirst = true;
    bool isLast = true;
    while (*link != nullptr) {
        parent = *link;
        const bool below = node.key < static_cast<Node*>(parent)->key;
        isFirst = isFirst && below;
        isLast = isLast && !below;
        link = below ? &parent->m_pLeft : &parent->m_pRight;
    }
    node.m_pParent = parent;
    node.m_pLeft = node.m_pRight = nullptr;
    *link = &node;
    header.m_pLeft = isFirst ? &node : header.m_pLeft;
    header.m_pRight = isLast ? &node : header.m_pRight;
    CQBTreeUtil::Rebalance(&node, header.m_pParent);
}
//! [CQBTreeUtil]

void Tree()
{
    CQBTreeNodeBase header = {CQBTreeNodeBase::enRed, nullptr, &header, &header};
    Node nodes[5] = {};
    const int keys[] = {3, 1, 4, 5, 2};
    for (int i = 0; i < 5; ++i) {
        nodes[i].key = keys[i];
        Insert(header, nodes[i]);
    }
    int expected = 1;
    for (CQBTreeNodeBase* at = header.m_pLeft; at != &header; at = CQBTreeUtil::Increment(at)) {
        REQUIRE(static_cast<Node*>(at)->key == expected++);
    }
    REQUIRE(expected == 6);
}

//! [TRTTIBase]
class TShape : public TRTTIBase
{
public:
    char const* GetClassName() const override { return "TShape"; }
};

class TCircle : public TShape
{
public:
    char const* GetClassName() const override { return "TCircle"; }
    // Names the bases; IsDerived() asks here, so it must not be called from here.
    bool IsBaseClass(char const* name) override { return base_strcmp(name, "TShape") == 0; }
};
//! [TRTTIBase]

void TypeNames()
{
    TCircle circle;
    REQUIRE(circle.IsDerived("TCircle"));
    REQUIRE(circle.IsDerived("TShape"));
    REQUIRE(!circle.IsDerived("TSquare"));
}

void Assertions()
{
    //! [OrvoAssert]
    const OrvoAssertHandler previous =
        OrvoSetAssertHandler([](const char* expression, const char* source, int line) {
            std::fprintf(stderr, "%s in %s:%d\n", expression, source, line);
        });
    CMLDataBuf buffer;
    buffer.MoveDataToHead(1); // reported, and then without effect
    OrvoSetAssertHandler(previous);
    //! [OrvoAssert]
}

} // namespace

int main()
{
    Packing();
    Buffer();
    Counter();
    Chain();
    Tree();
    TypeNames();
    Assertions();
}
