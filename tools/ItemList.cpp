#include "ItemList.h"

#include "Command.h"

#include <map>

namespace
{

class ItemParser
{
public:
    explicit ItemParser(const QString& list) : m_list(list) {}

    std::vector<Item> ParseAll()
    {
        std::vector<Item> items = ParseSequence();
        if (m_position < m_list.size()) {
            Refuse(QStringLiteral("what stands there belongs to nothing"));
        }
        return items;
    }

private:
    std::vector<Item> ParseSequence()
    {
        std::vector<Item> items;
        do {
            items.push_back(ParseItem());
        } while (Take(QLatin1Char(',')));
        return items;
    }

    Item ParseItem()
    {
        static const std::map<QString, ItemKind> kinds = {
            {QStringLiteral("int"), ItemKind::Int},
            {QStringLiteral("uint"), ItemKind::UInt},
            {QStringLiteral("short"), ItemKind::Short},
            {QStringLiteral("ushort"), ItemKind::UShort},
            {QStringLiteral("char"), ItemKind::Char},
            {QStringLiteral("byte"), ItemKind::Byte},
            {QStringLiteral("bytes"), ItemKind::Bytes},
            {QStringLiteral("text"), ItemKind::Text},
            {QStringLiteral("repeat"), ItemKind::Repeat}};
        const auto start = m_position;
        const auto kind = kinds.find(TakeWord());
        if (kind == kinds.end()) {
            m_position = start;
            Refuse(QStringLiteral("an item is int, uint, short, ushort, char, byte, bytes:N, "
                                  "text:int or repeat(...)"));
        }
        Item item;
        item.kind = kind->second;
        if (Take(QLatin1Char(':'))) {
            ParseCount(item);
        }
        item.name = m_list.mid(start, m_position - start);
        RequireCount(item);
        if (item.kind == ItemKind::Repeat) {
            ParseRepeated(item);
        }
        return item;
    }

    void ParseCount(Item& item)
    {
        static const std::map<QString, ItemKind> counters = {
            {QStringLiteral("int"), ItemKind::Int},
            {QStringLiteral("short"), ItemKind::UShort},
            {QStringLiteral("char"), ItemKind::Byte}};
        const auto start = m_position;
        const QString word = TakeWord();
        const auto counter = counters.find(word);
        bool isNumber = false;
        item.count = word.toLongLong(&isNumber);
        if (counter != counters.end() && item.kind != ItemKind::Bytes) {
            item.counter = counter->second;
            item.count = -1;
        } else if (!isNumber) {
            m_position = start;
            Refuse(QStringLiteral("a count is a number, or int, short or char before the data"));
        }
    }

    void RequireCount(const Item& item)
    {
        const bool wanted = item.kind == ItemKind::Bytes || item.kind == ItemKind::Text;
        const bool given = item.counter.has_value() || item.count >= 0;
        if (wanted && !given) {
            Refuse(QStringLiteral("bytes and text want a count: bytes:16, text:int"));
        }
        if (given && !wanted && item.kind != ItemKind::Repeat) {
            Refuse(QStringLiteral("only bytes, text and repeat take a count"));
        }
    }

    void ParseRepeated(Item& item)
    {
        if (!Take(QLatin1Char('(')) || ++m_depth > 16) {
            Refuse(QStringLiteral("repeat wants items in parentheses, 16 deep at most"));
        }
        item.items = ParseSequence();
        if (!Take(QLatin1Char(')'))) {
            Refuse(QStringLiteral("a closing parenthesis is missing"));
        }
        --m_depth;
    }

    QString TakeWord()
    {
        const auto start = m_position;
        while (m_position < m_list.size() && m_list[m_position].isLetterOrNumber()) {
            ++m_position;
        }
        return m_list.mid(start, m_position - start);
    }

    bool Take(QChar c)
    {
        const bool found = m_position < m_list.size() && m_list[m_position] == c;
        m_position += found ? 1 : 0;
        return found;
    }

    [[noreturn]] void Refuse(const QString& why) const
    {
        throw UsageError(QStringLiteral("--items, at '%1': %2").arg(m_list.mid(m_position), why));
    }

    const QString& m_list;
    decltype(m_list.size()) m_position = 0;
    int m_depth = 0;
};

} // namespace

std::vector<Item> ParseItems(const QString& list)
{
    return ItemParser(list).ParseAll();
}
