// Buffer, block chain and tree beside what the standard library or Qt would do instead.

#include "Row.h"

#include <CQBTreeUtil.h>
#include <CQList.h>
#include <MLDataBuf.h>

#include <QByteArray>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr unsigned enItems = 1000;

std::size_t FillBuffer(CMLDataBuf& buffer)
{
    for (unsigned i = 0; i < enItems; ++i) {
        buffer.Append(static_cast<unsigned char>(i));
        buffer.Append(static_cast<unsigned short>(i));
        buffer.Append(static_cast<unsigned long>(i));
    }
    const std::size_t filled = buffer.GetUsedSize();
    buffer.MoveDataToHead(static_cast<int>(filled));
    return filled;
}

template <class Append>
std::size_t FillWith(Append append)
{
    for (unsigned i = 0; i < enItems; ++i) {
        append(static_cast<unsigned char>(i));
        append(static_cast<unsigned short>(i));
        append(static_cast<std::uint32_t>(i));
    }
    return enItems;
}

std::size_t FillVector(std::vector<char>& vector)
{
    vector.clear();
    return FillWith([&](const auto item) {
        const auto* const bytes = reinterpret_cast<const char*>(&item);
        vector.insert(vector.end(), bytes, bytes + sizeof item);
    });
}

std::size_t FillByteArray(QByteArray& array)
{
    array.resize(0); // keeps what is reserved
    return FillWith([&](const auto item) {
        array.append(reinterpret_cast<const char*>(&item), static_cast<int>(sizeof item));
    });
}

struct BufferOf7000 : CMLDataBuf {
    BufferOf7000() { Create(7 * enItems); }
};

bool AddBufferRow()
{
    auto vector = std::make_shared<std::vector<char>>();
    vector->reserve(7 * enItems);
    auto array = std::make_shared<QByteArray>();
    array->reserve(7 * enItems);
    Row("buffer, append 3,000 items of 1, 2 and 4 B")
        .Library([buffer = std::make_shared<BufferOf7000>()] { return FillBuffer(*buffer); })
        .Peer("std::vector insert", 0.6, [vector] { return FillVector(*vector); })
        .Peer("QByteArray", 1, [array] { return FillByteArray(*array); });
    return true;
}

struct MallocBlock {
    MallocBlock* next;
};

constexpr unsigned enElementSize = 24;

// Links the elements of a block into a list of free nodes, as containers do.
void* Carve(void* storage, unsigned elements)
{
    auto* const bytes = static_cast<unsigned char*>(storage);
    void* next = nullptr;
    for (std::size_t i = elements; i-- > 0;) {
        std::memcpy(bytes + i * enElementSize, &next, sizeof next);
        next = bytes + i * enElementSize;
    }
    return next;
}

void* RunPlexChain(unsigned elements, bool carved)
{
    CQPlex* head = nullptr;
    void* node = nullptr;
    for (int i = 0; i < 100; ++i) {
        node = Create(&head, elements, enElementSize)->Data();
        node = carved ? Carve(node, elements) : node;
        benchmark::DoNotOptimize(node);
    }
    head->FreeDataChain();
    return node;
}

void* RunMallocChain(unsigned elements, bool carved)
{
    MallocBlock* head = nullptr;
    void* node = nullptr;
    for (int i = 0; i < 100; ++i) {
        auto* const block = static_cast<MallocBlock*>(
            std::malloc(sizeof(MallocBlock) + std::size_t{elements} * enElementSize));
        block->next = head;
        head = block;
        node = carved ? Carve(block + 1, elements) : block + 1;
        benchmark::DoNotOptimize(node);
    }
    while (head != nullptr) {
        std::free(std::exchange(head, head->next));
    }
    return node;
}

bool AddBlockRows()
{
    for (const unsigned elements : {16U, 256U}) {
        for (const bool carved : {false, true}) {
            Row("block chain, 100 x " + std::to_string(elements) + " x 24 B" +
                (carved ? ", carved" : ""))
                .Library([=] { return RunPlexChain(elements, carved); })
                .Peer("malloc chain", 0.95, [=] { return RunMallocChain(elements, carved); });
        }
    }
    return true;
}

/// The least ordered set that a client would build on the node operations.
class PlainTree
{
public:
    struct Node : CQBTreeNodeBase {
        int key;
    };

    PlainTree() = default;
    PlainTree(const PlainTree&) = delete;
    PlainTree& operator=(const PlainTree&) = delete;
    ~PlainTree()
    {
        while (m_header.m_pParent != nullptr) {
            Erase(m_header.m_pLeft);
        }
    }

    void insert(int key)
    {
        CQBTreeNodeBase* parent = &m_header;
        bool isLess = true;
        for (auto* next = m_header.m_pParent; next != nullptr;) {
            parent = next;
            isLess = key < static_cast<Node*>(parent)->key;
            next = isLess ? parent->m_pLeft : parent->m_pRight;
        }
        auto* const node = new Node{{CQBTreeNodeBase::enRed, parent, nullptr, nullptr}, key};
        if (parent == &m_header) {
            m_header.m_pParent = m_header.m_pLeft = m_header.m_pRight = node;
        } else if (isLess) {
            parent->m_pLeft = node;
            m_header.m_pLeft = parent == m_header.m_pLeft ? node : m_header.m_pLeft;
        } else {
            parent->m_pRight = node;
            m_header.m_pRight = parent == m_header.m_pRight ? node : m_header.m_pRight;
        }
        CQBTreeUtil::Rebalance(node, m_header.m_pParent);
    }

    void erase(int key)
    {
        CQBTreeNodeBase* found = &m_header; // the first node that is not less
        for (auto* next = m_header.m_pParent; next != nullptr;) {
            const bool isLess = static_cast<Node*>(next)->key < key;
            found = isLess ? found : next;
            next = isLess ? next->m_pRight : next->m_pLeft;
        }
        Erase(found);
    }

    std::size_t Walk() const
    {
        std::size_t sum = 0;
        for (auto* node = m_header.m_pLeft; node != &m_header;
             node = CQBTreeUtil::Increment(node)) {
            sum += static_cast<std::size_t>(static_cast<Node*>(node)->key);
        }
        return sum;
    }

private:
    void Erase(CQBTreeNodeBase* node)
    {
        delete static_cast<Node*>(CQBTreeUtil::RebalanceForRemove(
            node, m_header.m_pParent, m_header.m_pLeft, m_header.m_pRight));
    }

    CQBTreeNodeBase m_header{CQBTreeNodeBase::enRed, nullptr, &m_header, &m_header};
};
template <class Set>
std::size_t Walk(const Set& set)
{
    if constexpr (std::is_same_v<Set, PlainTree>) {
        return set.Walk();
    } else {
        std::size_t sum = 0;
        for (const int key : set) {
            sum += static_cast<std::size_t>(key);
        }
        return sum;
    }
}

enum Order { Ascending, Descending, Random };

std::vector<int> MakeKeys(int size, Order order)
{
    std::vector<int> keys(static_cast<std::size_t>(size));
    std::iota(keys.begin(), keys.end(), 0);
    if (order == Descending) {
        std::reverse(keys.begin(), keys.end());
    } else if (order == Random) {
        std::shuffle(keys.begin(), keys.end(), std::mt19937(20240607));
    }
    return keys;
}

/// As many sets of one size, built in one order, as make the work long enough to be measured. Of
/// large ones only the last keys come and go.
template <class Set>
class Grove
{
public:
    Grove(int size, Order order)
        : m_keys(MakeKeys(size, order)), m_sets(static_cast<std::size_t>(std::max(1, 5000 / size))),
          m_first(m_keys.size() - std::min<std::size_t>(m_keys.size(), 5000))
    {
    }

    void Fill()
    {
        for (; m_filled < m_keys.size(); ++m_filled) {
            ForEach([&](Set& set) { set.insert(m_keys[m_filled]); });
        }
    }

    void Thin()
    {
        Fill();
        EraseSome();
    }

    std::size_t InsertSome()
    {
        ForEach([&](Set& set) {
            for (std::size_t i = m_first; i < m_keys.size(); ++i) {
                set.insert(m_keys[i]);
            }
        });
        return m_filled = m_keys.size();
    }

    std::size_t EraseSome()
    {
        ForEach([&](Set& set) {
            for (std::size_t i = m_first; i < m_keys.size(); ++i) {
                set.erase(m_keys[i]);
            }
        });
        return m_filled = m_first;
    }

    std::size_t WalkAll()
    {
        std::size_t sum = 0;
        ForEach([&](Set& set) { sum += Walk(set); });
        return sum;
    }

private:
    template <class Action>
    void ForEach(Action action)
    {
        for (Set& set : m_sets) {
            action(set);
        }
    }

    std::vector<int> m_keys;
    std::vector<Set> m_sets;
    std::size_t m_first;
    std::size_t m_filled = 0;
};

/// Built when it is first measured, and only then.
template <class Set>
auto LazyGrove(int size, Order order)
{
    return [size, order, grove = std::make_shared<std::unique_ptr<Grove<Set>>>()]() -> Grove<Set>& {
        if (*grove == nullptr) {
            *grove = std::make_unique<Grove<Set>>(size, order);
        }
        return **grove;
    };
}

bool AddTreeRows()
{
    const std::pair<int, const char*> sizes[] = {{100, "1e2"}, {10000, "1e4"}, {1000000, "1e6"}};
    const std::pair<Order, const char*> orders[] = {
        {Ascending, "ascending"}, {Descending, "descending"}, {Random, "random"}};
    for (const auto& [size, sizeName] : sizes) {
        for (const auto& [order, orderName] : orders) {
            const std::string suffix = std::string(" ") + sizeName + ", " + orderName;
            const auto own = LazyGrove<PlainTree>(size, order);
            const auto peer = LazyGrove<std::set<int>>(size, order);
            Row("tree, insert" + suffix)
                .Library([own] { own().Thin(); }, [own] { return own().InsertSome(); })
                .Peer(
                    "std::set", 0.95, [peer] { peer().Thin(); },
                    [peer] { return peer().InsertSome(); });
            Row("tree, walk" + suffix)
                .Library([own] { own().Fill(); }, [own] { return own().WalkAll(); })
                .Peer(
                    "std::set", 0.95, [peer] { peer().Fill(); },
                    [peer] { return peer().WalkAll(); });
            Row("tree, erase" + suffix)
                .Library([own] { own().Fill(); }, [own] { return own().EraseSome(); })
                .Peer(
                    "std::set", 0.95, [peer] { peer().Fill(); },
                    [peer] { return peer().EraseSome(); });
        }
    }
    return true;
}

const bool rows = AddBufferRow() && AddBlockRows() && AddTreeRows();

} // namespace
